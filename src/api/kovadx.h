/** @file
 * The client interface of KovaDX: what a script calls to read and drive a running statistics engine.
 *
 * This file compiles as C99 and as C++, and a parser for C declarations can read it.
 *
 * A call packs its arguments into one message, sends it to the engine, waits for the reply and unpacks it; local
 * functions, marked so, touch no engine. A process serves one external language and makes one call at a time: no
 * function takes a lock, so callers on several threads take turns.
 *
 * Two shapes.
 * - Status shape: the result is an error code, results come through pointers. Nothing is stored unless the code is 0,
 *   save by GetSetting and SaveDataToTempFile.
 * - Value shape: the result is the value, and the last parameter, errorCode, receives the code. Look at it first: on
 *   failure the value means nothing, and a text or a list is null.
 *
 * A pointer for a result may be null; that result is then dropped. A null text among the arguments is not sent at all,
 * and the texts behind it move up in the request.
 *
 * Error codes, the same for every function that calls the engine:
 * - 0: success.
 * - 8: not enough memory.
 * - 17: the engine is not running, since SetKovaRunning(true) has not been called (status shape only).
 * - 99103: the reply was empty.
 * - 99104: this process has no pipes to the engine at present.
 * - A system error number of the pipe, such as 109 when the engine has gone, or 13 when the reply's length is wrong.
 * - Any other number is the engine's own, passed through unchanged: an unknown position, name or table, a value of the
 *   wrong kind and the like.
 *
 * A function's comment names what it adds to this list.
 *
 * Waiting: a call that finds no engine tries 20 times, 100 ms apart, to reach it, and then waits without limit for an
 * engine to come and reply; so does a call whose request could not be written.
 *
 * Who frees what. There are three kinds of result in memory:
 * - A text that a function of the value shape returns as `const char*` is the library's own. It is valid until the
 *   next function that returns such a text is called, on any thread, and is never freed. Copy it.
 * - A text through a `char**` (save that of GetSetting) or returned as `char*`, a list through a `char***` or a
 *   `double**`, and a list that is returned, are the caller's own, made by malloc. They go back with the function that
 *   the comment names. A list comes with its count; when that is 0 there is no list: nothing is allocated and its place
 *   is not stored.
 * - Lists behind a `void*` are the library's own until RemoveStringList.
 *
 * Texts are NUL-terminated bytes in the engine's encoding. Positions of variables, cases and the like count from 0.
 * What the numbers for types, levels, roles, alignments and formats mean is the engine's affair; they pass through
 * unchanged.
 */
#ifndef KOVADX_API_KOVADX_H
#define KOVADX_API_KOVADX_H

#include <stdbool.h>
#include <stddef.h>

#ifndef KOVADX_API
#if defined(_WIN32) && defined(KOVADX_BUILD)
#define KOVADX_API __declspec(dllexport)
#elif defined(_WIN32)
#define KOVADX_API
#else
#define KOVADX_API __attribute__((visibility("default")))
#endif
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup process This process
 *
 * Local functions. A process says who it is before its first call of the engine; the first call then makes its pipes.
 * Nothing here is given to the caller to free.
 *
 * @{
 */

/** Tells the library whether there is an engine to talk to; false when the library is loaded. Always 0. */
KOVADX_API int SetKovaRunning(bool running);

/** Sets the name of the external language that this process serves, in upper case (it becomes a part of the pipes'
 * names as it is given), and the engine's home folder. Null counts as empty: the process-wide name or folder is then
 * used. Read by the first call of the engine; later changes have no effect on it. */
KOVADX_API void SetXNameAndSHome(const char* xName, const char* kovaHome);

/** Begins a process that the engine has started for the runtime of an external language; called once, before any other
 * function. It takes the engine's home folder from the environment variable KOVA_HOME and all else from what the engine
 * tells its runtimes, marks the engine as running, and starts the language's runtime on the calling thread when the
 * configuration lists the language with a library; R, which is running already, is only marked as ready. A language
 * that the configuration does not list is no error. Null counts as empty.
 *
 * @param mode "LOCAL", or the name of the engine's program, for an engine on this machine; "REMOTE" otherwise
 * @param tempPath the engine's folder for temporary files
 * @param pid the text that the engine's pipe names begin with
 * @param xName the language's name, in upper case
 * @param reserved stored, and not used */
KOVADX_API void InitXProcess(const char* mode, const char* tempPath, const char* pid, const char* xName,
                             const char* reserved);

/** Stores a folder for the language package's own use; null counts as empty. 0, or 8. */
KOVADX_API int SetRTempFolderToKOVA(const char* folder);

/** The folder stored last, empty at first. Library-owned, valid until it is set again. */
KOVADX_API const char* GetRTempFolderToKOVA(void);

/** Does nothing. Always 0. */
KOVADX_API int SaveFileInDS(void);

/** @} */

/** @defgroup release Releasing results
 *
 * Local functions. Each takes back a result that the library has given to the caller; `count` is the count that came
 * with it, and a count below 1 frees nothing at all, since nothing was allocated. The text that a function of the value
 * shape returns is the library's own and is never given to these functions. Null is allowed.
 *
 * Lists can not be freed while the engine is marked as not running: free them before the engine is stopped.
 *
 * @{
 */

/** Frees one text, or an image. Always 0. */
KOVADX_API int FreeString(char* text);

/** Frees a list of texts: its texts, then the list. 0; 17 when the engine is not running, and then nothing is freed. */
KOVADX_API int FreeStringArray(char** list, int count);

/** Frees a list of doubles. Always 0. */
KOVADX_API int FreeDoubleArray(double* values, int count);

/** Frees a list of attribute names, as FreeStringArray does. */
KOVADX_API int FreeAttributeNames(char** list, int count);

/** Frees a list of attribute values, as FreeStringArray does. */
KOVADX_API int FreeAttributes(char** list, int count);

/** Frees both lists of GetNValueLabels. 0; 17 when the engine is not running, and then nothing is freed. */
KOVADX_API int FreeNValueLabels(double* values, char** labels, int count);

/** Frees both lists of GetCValueLabels. 0; 17 when the engine is not running, and then nothing is freed. */
KOVADX_API int FreeCValueLabels(char** values, char** labels, int count);

/** @} */

/** @defgroup control Engine control
 *
 * Starts and stops an engine, hands it command syntax and asks how it is. Status shape, but for the two questions that
 * answer with a bool. Nothing to free.
 *
 * @{
 */

/** Starts an engine of this process's own and waits until it is ready: the program "StartXD.exe" of the engine's home
 * folder (elsewhere than on Windows also "StartXD"). SetXNameAndSHome tells the name and the home folder before. When
 * the configuration lists the name as a language, blocks in that language that the engine is given run in this process,
 * on threads of the library. The engine ends when this process does.
 *
 * @param options a text in which three options are looked for: "-kovahome=FOLDER" and "-language=NAME", each up to the
 *   next "," or the end, replace the home folder and stand in for a name that was not told; "-temppath FOLDER", up to
 *   the next blank, is the folder for temporary files. The rest is handed on to the engine. Null counts as empty.
 * @return 0, also when the engine is up already; 17 when there is no such program, which is told on the standard output
 *   too; 99107 when it does not run half a second after its start; 109 when it ends before it has greeted this process;
 *   the code that it has greeted with, after it has ended. The engine is not running after a failure. */
KOVADX_API int StartKova(const char* options);

/** Stops the engine that this process has started, waits for its end, and resets all that this process knows of it,
 * what SetXNameAndSHome and SetRTempFolderToKOVA have stored included. Nothing, and no request, when the engine is not
 * ready or is not driven by this process. */
KOVADX_API void StopKova(void);

/** Hands command syntax to the engine and waits until it has been carried out: the first `length` bytes of `text`, NUL
 * bytes included; a negative length counts as 0. */
KOVADX_API int Submit(const char* text, int length);

/** Hands over a part of a command, to be carried out together with the parts that follow. The text is given as for
 * Submit. */
KOVADX_API int QueueCommandPart(const char* text, int length);

/** True when the engine answers that it is ready; false on any error, and without asking when the engine is not
 * running. */
KOVADX_API bool IsBackendReady(void);

/** True when an external program drives the engine, rather than the engine the external program. Asks whether the
 * engine is ready first; false when it is not, and on any error. */
KOVADX_API bool IsXDriven(void);

/** Tells the engine to end the thread that serves this process's calls: the last call before its pipes are closed. It
 * is sent whether or not the engine is marked as running, so 17 never comes. */
KOVADX_API int StopReceiveXdApiThread(void);

/** Stores the engine's mode of working with an external program that drives it. */
KOVADX_API int GetXDriveMode(int* mode);

/** Sets what GetXDriveMode stores. */
KOVADX_API int SetXDriveMode(int mode);

/** Sets the engine's mode of working with this process. */
KOVADX_API int SetMode(int mode);

/** The engine's setting `item`, or its part `subItem`, as a text. The text is shared as texts of the value shape are:
 * library-owned, valid until the next function that gives such a text is called, and never freed. On any failure
 * `*value` becomes null. */
KOVADX_API int GetSetting(const char* item, const char* subItem, char** value);

/** @} */

/** @defgroup surroundings The engine's surroundings
 *
 * Languages and encodings, the host application, modes, sockets. Value shape where a result is returned, else status
 * shape; the two questions without an error code say what an error gives.
 *
 * @{
 */

/** The width of text output, in characters. */
KOVADX_API int GetKovaOutputWidth(int* errorCode);

/** The name of the engine's locale. */
KOVADX_API const char* GetKOVALocale(int* errorCode);

/** The name of the language in which the engine writes output. */
KOVADX_API const char* GetOutputLanguage(int* errorCode);

/** Sets the language in which the engine writes output. The result is the error code, which `*errorCode` receives too;
 * the call goes to the engine whether or not that is marked as running. */
KOVADX_API int SetOutputLanguage(const char* language, int* errorCode);

/** The name of the locale in the form that the C library takes. The caller frees with FreeString. */
KOVADX_API int GetCLocale(char** locale);

/** Stores a number other than 0 when the engine's texts are UTF-8, 0 when they are in the code page of its locale. */
KOVADX_API int IsUTF8mode(int* isUtf8);

/** The text converted by the engine from the caller's encoding into its own. */
KOVADX_API const char* TransCode(const char* text, int* errorCode);

/** Stores how deep runs are nested in each other: 0 outside of any. */
KOVADX_API int GetNestDepth(int* depth);

/** The name and the version of the application that the engine works for. The caller frees each with FreeString. */
KOVADX_API int GetHostAppNameAndVersion(char** name, char** version);

/** Sets the name and the version of the application that the engine works for. */
KOVADX_API int SetHostAppNameAndVersion(const char* name, const char* version);

/** The copyright notice of the application that the engine works for. The caller frees with FreeString. */
KOVADX_API int GetHostAppCopyright(char** copyright);

/** Sets the copyright notice of the application that the engine works for. */
KOVADX_API int SetHostAppCopyright(const char* copyright);

/** The file handles that are defined, two texts each: its name and, behind it, its file. `*count` is the number of
 * texts. The caller frees with FreeStringArray. Value shape, but with the code 17, and nothing sent, when the engine is
 * not running. */
KOVADX_API char** GetFileHandles(int* count, int* errorCode);

/** True when the engine runs in distributed mode, away from the application's machine; false on any error, and without
 * asking when the engine is not running. */
KOVADX_API bool IsDistributedMode(void);

/** The engine's server mode; -1 on any error, and without asking when the engine is not running. */
KOVADX_API int GetZenthorServerMode(void);

/** Sets the engine's server mode. */
KOVADX_API int SetZenthorServerMode(int mode);

/**
 * Has the engine make a TCP socket for a runtime to connect to, and stores the port that the system has chosen. An
 * earlier socket is closed, and the connection of its runtime with it. The engine listens on every interface of its
 * machine. 99121 or 99122 when no such socket can be made.
 */
KOVADX_API int CreateSocket(int* port);

/**
 * Has the engine wait until a runtime has connected to the socket of CreateSocket; 0 at once when one has. The engine
 * carries out no other request meanwhile, so it gives up after a while (the reference engine after 4 seconds: 98131);
 * the call can then be made again. 98130 without a socket, 99121 when the runtime can not be taken in.
 */
KOVADX_API int AcceptSocket(void);

/** @} */

/** @defgroup data Data of the active data set
 *
 * How many cases there are, and how they are split into groups for a procedure. Value shape, and status shape where a
 * number is stored or nothing comes back.
 *
 * @{
 */

/** The number of cases. */
KOVADX_API int GetRowCount(int* errorCode);

/** The number of cases of the data that the running procedure works on. */
KOVADX_API int GetRowCountInProcDS(int* errorCode);

/** The number of those cases that are selected; -1 on failure. The code is 17, and nothing is sent, when the engine is
 * not running. */
KOVADX_API int GetSelectedRowCountInProcDS(int* errorCode);

/** The names of the variables whose values split the cases into groups, and their count; 0 without a split. The caller
 * frees with FreeStringArray. */
KOVADX_API char** GetSplitVariableNames(int* count, int* errorCode);

/** The position behind the last case of the present split group. */
KOVADX_API int GetSplitEndIndex(int* errorCode);

/** Tells the engine that the procedure of that name has come to the next split group, to which the output that follows
 * belongs. */
KOVADX_API int SplitChange(const char* procedureName);

/** Stores a number other than 0 when a selection of cases is in force, such as a filter; 0 when all cases count. */
KOVADX_API int IsUseOrFilter(int* isUse);

/** @} */

/** @defgroup dictionary Dictionary of the active data set
 *
 * Reading. A variable is addressed by its position `index`, from 0 in the order of the data set; a position that the
 * engine does not have ends in an error of the engine's own. Value shape, and status shape where there is more than one
 * result.
 *
 * @{
 */

/** The number of variables. */
KOVADX_API int GetVariableCount(int* errorCode);

/** The variable's name. */
KOVADX_API const char* GetVariableName(int index, int* errorCode);

/** The variable's label; empty when it has none. */
KOVADX_API const char* GetVariableLabel(int index, int* errorCode);

/** The variable's type: 0 when it is numeric, otherwise the width of its texts in bytes. */
KOVADX_API int GetVariableType(int index, int* errorCode);

/** The variable's print format as a text, such as "F8.2". */
KOVADX_API const char* GetVariableFormat(int index, int* errorCode);

/** The variable's print format as three numbers: format code, width in characters, number of decimals. A number that
 * the engine left out is stored as 0. */
KOVADX_API int GetVariableFormatType(int index, int* formatType, int* width, int* decimals);

/** The code of the variable's measurement level. */
KOVADX_API int GetVariableMeasurementLevel(int index, int* errorCode);

/** The code of the variable's role. */
KOVADX_API int GetVariableRole(int index, int* errorCode);

/** The user-missing values of a numeric variable: the code of their kind and up to three values. A value that the
 * engine left out is not stored. */
KOVADX_API int GetVarNMissingValues(int index, int* type, double* v1, double* v2, double* v3);

/** The user-missing values of a text variable: the code of their kind and up to three texts. Each buffer has room for
 * at least 9 bytes: at most 8 bytes and the terminating NUL are stored. A text that the engine left out is not stored.
 */
KOVADX_API int GetVarCMissingValues(int index, int* type, char* v1, char* v2, char* v3);

/** The value labels of a numeric variable: the values, their labels in the same order, and their count. The caller
 * frees with FreeNValueLabels(values, labels, count). */
KOVADX_API int GetNValueLabels(int index, double** values, char*** labels, int* count);

/** The value labels of a text variable, as GetNValueLabels gives them. The caller frees with FreeCValueLabels(values,
 * labels, count). */
KOVADX_API int GetCValueLabels(int index, char*** values, char*** labels, int* count);

/** The names of the variable's custom attributes, and their count. The caller frees with FreeAttributeNames. */
KOVADX_API int GetVarAttributeNames(int index, char*** names, int* count);

/** The values of one custom attribute of the variable, several for an attribute array, and their count. The caller
 * frees with FreeAttributes. */
KOVADX_API int GetVarAttributes(int index, const char* attrName, char*** attributes, int* count);

/** The names of the data file's custom attributes, and their count. The caller frees with FreeAttributeNames. */
KOVADX_API int GetDataFileAttributeNames(char*** names, int* count);

/** The values of one custom attribute of the data file, and their count. The caller frees with FreeAttributes. */
KOVADX_API int GetDataFileAttributes(const char* attrName, char*** attributes, int* count);

/** The names of the multiple-response sets, and their count. The caller frees with FreeStringArray. */
KOVADX_API char** GetMultiResponseSetNames(int* count, int* errorCode);

/** The definition of a multiple-response set: its label, the code of how its variables are coded, the value that is
 * counted (empty when there is none), and the names of its variables with their count. The caller frees the two texts
 * with FreeString and the names with FreeStringArray. */
KOVADX_API int GetMultiResponseSet(const char* setName, char** label, int* codeAs, char** countedValue,
                                   char*** varNames, int* varCount);

/** The name of the variable that weights the cases; empty when there is none. */
KOVADX_API const char* GetWeightVar(int* errorCode);

/** The number that stands for a missing value in numeric data. */
KOVADX_API int GetSystemMissingValue(double* value);

/** The numbers that stand for the lowest and the highest value in a range of missing values. A number that the engine
 * left out is stored as 0. */
KOVADX_API int GetKOVALowHigh(double* low, double* high);

/** Stores the engine's verdict on a name for a new variable: 0 when it may be used. */
KOVADX_API int ValidateVarName(const char* name, int* result);

/** @} */

/** @defgroup dictionary_changes Changes to the dictionary of the active data set
 *
 * Status shape. A variable is addressed by its name. When the engine refuses a change, nothing is changed.
 *
 * @{
 */

/** Sets the variable's label; an empty text removes it. */
KOVADX_API int SetVarLabel(const char* varName, const char* label);

/** Sets the label of one value of a text variable. */
KOVADX_API int SetVarCValueLabel(const char* varName, const char* value, const char* label);

/** Sets the label of one value of a numeric variable. */
KOVADX_API int SetVarNValueLabel(const char* varName, double value, const char* label);

/** Sets the user-missing values of a text variable: the code of their kind and up to three texts. */
KOVADX_API int SetVarCMissingValues(const char* varName, int type, const char* v1, const char* v2, const char* v3);

/** Sets the user-missing values of a numeric variable: the code of their kind and three values, of which the kind tells
 * how many count. */
KOVADX_API int SetVarNMissingValues(const char* varName, int type, double v1, double v2, double v3);

/** Sets the code of the variable's measurement level. */
KOVADX_API int SetVarMeasureLevel(const char* varName, int level);

/** Sets the code of the variable's alignment. */
KOVADX_API int SetVarAlignment(const char* varName, int alignment);

/** Sets the variable's print format: format code, width in characters, number of decimals. */
KOVADX_API int SetVarFormat(const char* varName, int formatType, int width, int decimals);

/** Sets the code of the variable's role. */
KOVADX_API int SetVarRole(const char* varName, int role);

/** Sets one value of a custom attribute of the variable: the one at position `index` of an attribute array. */
KOVADX_API int SetVarAttributes(const char* varName, const char* attrName, const char* attrValue, int index);

/** @} */

/** @defgroup dictionary_in_procedure Dictionary of the running procedure's data
 *
 * What the functions of the same names without "InProcDS" read from the active data set, these read from the data that
 * the running procedure works on. Shapes, addressing and what is to be freed are the same.
 *
 * @{
 */

/** The number of variables. */
KOVADX_API int GetVariableCountInProcDS(int* errorCode);

/** The variable's name. */
KOVADX_API const char* GetVariableNameInProcDS(int index, int* errorCode);

/** The variable's label; empty when it has none. */
KOVADX_API const char* GetVariableLabelInProcDS(int index, int* errorCode);

/** The variable's type: 0 when it is numeric, otherwise the width of its texts in bytes. */
KOVADX_API int GetVariableTypeInProcDS(int index, int* errorCode);

/** The variable's print format as a text. */
KOVADX_API const char* GetVariableFormatInProcDS(int index, int* errorCode);

/** The variable's print format as three numbers, as GetVariableFormatType stores them. */
KOVADX_API int GetVariableFormatTypeInProcDS(int index, int* formatType, int* width, int* decimals);

/** The code of the variable's measurement level. */
KOVADX_API int GetVariableMeasurementLevelInProcDS(int index, int* errorCode);

/** The code of the variable's role. */
KOVADX_API int GetVariableRoleInProcDS(int index, int* errorCode);

/** The user-missing values of a numeric variable, as GetVarNMissingValues stores them. */
KOVADX_API int GetVarNMissingValuesInProcDS(int index, int* type, double* v1, double* v2, double* v3);

/** The user-missing values of a text variable, as GetVarCMissingValues stores them: buffers of at least 9 bytes. */
KOVADX_API int GetVarCMissingValuesInProcDS(int index, int* type, char* v1, char* v2, char* v3);

/** The names of the variable's custom attributes. The caller frees with FreeAttributeNames. */
KOVADX_API int GetVarAttributeNamesInProcDS(int index, char*** names, int* count);

/** The values of one custom attribute of the variable. The caller frees with FreeAttributes. */
KOVADX_API int GetVarAttributesInProcDS(int index, const char* attrName, char*** attributes, int* count);

/** The names of the data file's custom attributes. The caller frees with FreeAttributeNames. */
KOVADX_API int GetDataFileAttributeNamesInProcDS(char*** names, int* count);

/** The values of one custom attribute of the data file. The caller frees with FreeAttributes. */
KOVADX_API int GetDataFileAttributesInProcDS(const char* attrName, char*** attributes, int* count);

/** The names of the multiple-response sets. The caller frees with FreeStringArray. */
KOVADX_API char** GetMultiResponseSetNamesInProcDS(int* count, int* errorCode);

/** The definition of a multiple-response set, as GetMultiResponseSet stores it: the two texts go back with FreeString,
 * the names with FreeStringArray. */
KOVADX_API int GetMultiResponseSetInProcDS(const char* setName, char** label, int* codeAs, char** countedValue,
                                           char*** varNames, int* varCount);

/** @} */

/** @defgroup dictionary_in_data_set Dictionary of a named data set
 *
 * The data set is addressed by its name `dataSet`, and a variable by its
 * position `index` in that data set, from 0. Single results have the value shape, everything else the status shape.
 * When the engine refuses a change, nothing is changed.
 *
 * @{
 */

/** The number of variables. */
KOVADX_API int GetVarCountInDS(const char* dataSet, int* errorCode);

/** The variable's name. */
KOVADX_API const char* GetVarNameInDS(const char* dataSet, int index, int* errorCode);

/** Renames the variable. */
KOVADX_API int SetVarNameInDS(const char* dataSet, int index, const char* name);

/** The variable's label; empty when it has none. */
KOVADX_API const char* GetVarLabelInDS(const char* dataSet, int index, int* errorCode);

/** Sets the variable's label; an empty text removes it. */
KOVADX_API int SetVarLabelInDS(const char* dataSet, int index, const char* label);

/** The variable's type: 0 when it is numeric, otherwise the width of its texts in bytes. */
KOVADX_API int GetVarTypeInDS(const char* dataSet, int index, int* errorCode);

/** Sets the variable's type, in the numbers of GetVarTypeInDS. */
KOVADX_API int SetVarTypeInDS(const char* dataSet, int index, int type);

/** The variable's print format as a text, such as "F8.2". */
KOVADX_API const char* GetVarFormatInDS(const char* dataSet, int index, int* errorCode);

/** Sets the variable's print format: format code, width in characters, number of decimals. */
KOVADX_API int SetVarFormatInDS(const char* dataSet, int index, int formatType, int width, int decimals);

/** The code of the variable's alignment. */
KOVADX_API int GetVarAlignmentInDS(const char* dataSet, int index, int* errorCode);

/** Sets the code of the variable's alignment. */
KOVADX_API int SetVarAlignmentInDS(const char* dataSet, int index, int alignment);

/** The width of the variable's column in a data view, in characters. */
KOVADX_API int GetVarColumnWidthInDS(const char* dataSet, int index, int* errorCode);

/** Sets the width of the variable's column in a data view, in characters. */
KOVADX_API int SetVarColumnWidthInDS(const char* dataSet, int index, int width);

/** The name of the variable's measurement level. */
KOVADX_API const char* GetVarMeasurementLevelInDS(const char* dataSet, int index, int* errorCode);

/** Sets the variable's measurement level by its name. */
KOVADX_API int SetVarMeasurementLevelInDS(const char* dataSet, int index, const char* level);

/** The code of the variable's role. */
KOVADX_API int GetVarRoleInDS(const char* dataSet, int index, int* errorCode);

/** Sets the code of the variable's role. */
KOVADX_API int SetVarRoleInDS(const char* dataSet, int index, int role);

/** The user-missing values of a numeric variable, as GetVarNMissingValues stores them. */
KOVADX_API int GetVarNMissingValuesInDS(const char* dataSet, int index, int* type, double* v1, double* v2, double* v3);

/** The user-missing values of a text variable, as GetVarCMissingValues stores them: buffers of at least 9 bytes. */
KOVADX_API int GetVarCMissingValuesInDS(const char* dataSet, int index, int* type, char* v1, char* v2, char* v3);

/** Sets the user-missing values of a numeric variable, as SetVarNMissingValues does. */
KOVADX_API int SetVarNMissingValuesInDS(const char* dataSet, int index, int type, double v1, double v2, double v3);

/** Sets the user-missing values of a text variable, as SetVarCMissingValues does. */
KOVADX_API int SetVarCMissingValuesInDS(const char* dataSet, int index, int type, const char* v1, const char* v2,
                                        const char* v3);

/** The value labels of a numeric variable. The caller frees with FreeNValueLabels(values, labels, count). */
KOVADX_API int GetVarNValueLabelInDS(const char* dataSet, int index, double** values, char*** labels, int* count);

/** The value labels of a text variable. The caller frees with FreeCValueLabels(values, labels, count). */
KOVADX_API int GetVarCValueLabelInDS(const char* dataSet, int index, char*** values, char*** labels, int* count);

/** Sets the label of one value of a numeric variable. */
KOVADX_API int SetVarNValueLabelInDS(const char* dataSet, int index, double value, const char* label);

/** Sets the label of one value of a text variable. */
KOVADX_API int SetVarCValueLabelInDS(const char* dataSet, int index, const char* value, const char* label);

/** Removes all value labels of the variable. */
KOVADX_API int DelVarValueLabelInDS(const char* dataSet, int index);

/** Removes the label of one value of a numeric variable. */
KOVADX_API int DelVarNValueLabelInDS(const char* dataSet, int index, double value);

/** Removes the label of one value of a text variable. */
KOVADX_API int DelVarCValueLabelInDS(const char* dataSet, int index, const char* value);

/** The names of the variable's custom attributes. (Spelt so: sic.) The caller frees with FreeAttributeNames. */
KOVADX_API int GetVarAttributesNameInDS(const char* dataSet, int index, char*** names, int* count);

/** The values of one custom attribute of the variable. The caller frees with FreeAttributes. */
KOVADX_API int GetVarAttributesInDS(const char* dataSet, int index, const char* attrName, char*** attributes,
                                    int* count);

/** Sets a custom attribute of the variable to the `count` values of `attrValues`; a null list is not sent. */
KOVADX_API int SetVarAttributesInDS(const char* dataSet, int index, const char* attrName, const char* const* attrValues,
                                    int count);

/** Removes a custom attribute of the variable. */
KOVADX_API int DelVarAttributesInDS(const char* dataSet, int index, const char* attrName);

/** The names of the data file's custom attributes. The caller frees with FreeAttributeNames. */
KOVADX_API int GetDataFileAttributeNamesInDS(const char* dataSet, char*** names, int* count);

/** The values of one custom attribute of the data file. The caller frees with FreeAttributes. */
KOVADX_API int GetDataFileAttributesInDS(const char* dataSet, const char* attrName, char*** attributes, int* count);

/** Sets a custom attribute of the data file to the `count` values of `attrValues`; a null list is not sent. */
KOVADX_API int SetDataFileAttributesInDS(const char* dataSet, const char* attrName, const char* const* attrValues,
                                         int count);

/** Removes a custom attribute of the data file. */
KOVADX_API int DelDataFileAttributesInDS(const char* dataSet, const char* attrName);

/** The names of the multiple-response sets. The caller frees with FreeStringArray. */
KOVADX_API char** GetMultiResponseSetNamesInDS(const char* dataSet, int* count, int* errorCode);

/** The definition of a multiple-response set, as GetMultiResponseSet stores it: the two texts go back with FreeString,
 * the names with FreeStringArray. */
KOVADX_API int GetMultiResponseSetInDS(const char* dataSet, const char* setName, char** label, int* codeAs,
                                       char** countedValue, char*** varNames, int* varCount);

/** Defines a multiple-response set: its label, the code of how its variables are coded, the value that is counted, and
 * the names of its `varCount` variables. */
KOVADX_API int SetMultiResponseSetInDS(const char* dataSet, const char* setName, const char* label, int codeAs,
                                       const char* countedValue, const char* const* varNames, int varCount);

/** Removes a multiple-response set. */
KOVADX_API int DelMultiResponseSetInDS(const char* dataSet, const char* setName);

/** @} */

/** @defgroup cases Cases
 *
 * Reads the cases of the data one after the other, changes them, and adds variables and cases. A process has one case
 * cursor: MakeCaseCursor makes it, NextCase moves it on, RemoveCaseCursor ends it. A variable is addressed by its
 * position, from 0 in the order of the procedure's data as it was when the cursor was made, or by its name where it is
 * written to. Status shape but for GetCaseLength; nothing to free.
 *
 * A cursor for reading takes cases from the engine in batches of up to 20 MiB; values come out of the batch and cost no
 * call of the engine. A cursor for writing takes one case at a time. Between MakeCaseCursor and RemoveCaseCursor the
 * record of the variables is this process's own: a cursor that only the engine has is asked for each case and value.
 *
 * Values to be written are kept in this process until a commit sends them, all at once, in the order in which they were
 * set. A commit that succeeds forgets them, one that fails keeps them.
 *
 * What these functions add to the error codes:
 * - 10: there is no variable at that position; 24: the variable is of the other kind; 1900: there is no current case,
 *   before the first NextCase and behind the last case. These three come from the values of a cursor of this process.
 * - 23: there is no further case; 67: there is none in the present split group, and the next NextCase begins the next
 *   group. They come from NextCase in place of a case: the case before them was the last.
 *
 * @{
 */

/** Makes the case cursor, in place of an earlier one. The mode is "r" or "R" for reading, "w" or "W" for writing; what
 * another text means is the engine's affair, and such a cursor takes one case at a time. Asks the engine for the type
 * and the missing values of each variable. When one of these questions fails, its code is the result and this process
 * keeps the cursor that it had; so it does with 13, which means that a case would be larger than any message. */
KOVADX_API int MakeCaseCursor(const char* accessMode);

/** Stores a number other than 0 when the engine has a case cursor. */
KOVADX_API int HasCursor(int* hasCursor);

/** Stores the engine's position in the data. It may be ahead of the current case by what the batch still holds. */
KOVADX_API int GetCursorPosition(int* position);

/** Moves to the next case. 0 with a case; 23 or 67 at the end, see above; any other code leaves no current case. A
 * request for a batch that could not be sent ends the call at once.
 *
 * A batch that was cut short on its way reads as zeros behind the cut: KovaLastReceiveStatus tells, which stands in
 * kovadx_ext.h. */
KOVADX_API int NextCase(void);

/** The current case's value of a numeric variable. `*isMissing` is 0 when it is valid, 1 when it is user-missing, 2
 * when it is system-missing. */
KOVADX_API int GetNumericValue(int index, double* value, int* isMissing);

/** The current case's value of a string variable, into the buffer at which `*value` points; `*isMissing` as for
 * GetNumericValue. The buffer needs room for as many bytes as the variable is wide: exactly so many are written, blanks
 * at the end included, with NUL bytes in place of all behind a first one. No NUL is added behind a value that fills the
 * width.
 *
 * Deliberate: `length`, the buffer's size, is looked at only where this process has no cursor and the engine gives the
 * value; at most so many bytes are written then. */
KOVADX_API int GetStringValue(int index, char** value, int length, int* isMissing);

/** Stores a number other than 0 when the present split group has ended, 0 while it goes on, and while the batch holds
 * cases. The code 67 is an answer here, and gives 0. */
KOVADX_API int IsEndSplit(int* isEnd);

/** The size of a case of that data set, in bytes. Value shape. */
KOVADX_API int GetCaseLength(const char* dataSet, int* errorCode);

/** Keeps a value for a numeric variable until the next commit. A null name keeps nothing. A local function: 0, 8 or 17.
 */
KOVADX_API int SetValueNumeric(const char* varName, double value);

/** Keeps a value for a string variable until the next commit. A null name or value keeps nothing. A local function: 0,
 * 8 or 17. */
KOVADX_API int SetValueChar(const char* varName, const char* value);

/** Adds a case with the kept values. */
KOVADX_API int CommitNewCase(void);

/** Writes the kept values into the current case, which the engine sends back: it takes the place of the cursor's batch,
 * so that values read next are the changed ones. */
KOVADX_API int CommitCaseRecord(void);

/** Adds many cases to a data set at once: `caseCount` cases, one behind the other in the `blockSize` bytes of
 * `caseBlock`. A case is a run of units of 8 bytes: a double for each numeric variable, and for a string variable as
 * many units as its width fills, padded with blanks. `varTypes` has the types of the `varCount` variables, 0 for a
 * number, else the width in bytes. The block is sent from where it lies and stays the caller's. KovaLayOutCase in
 * kovadx_ext.h tells where each variable begins. */
KOVADX_API int CommitManyCases(const char* dataSet, const void* caseBlock, int blockSize, int caseCount, int varCount,
                               const int* varTypes);

/** Tells the engine how many variables will be added. */
KOVADX_API int AllocNewVarsBuffer(int count);

/** Adds a variable: its name, and its type, 0 for a number, else the width in bytes. */
KOVADX_API int SetOneVarNameAndType(const char* name, int type);

/** Adds `count` variables, in one call. */
KOVADX_API int SetVarNameAndType(const char* const* varNames, const int* varTypes, int count);

/** Tells the engine that all new variables are named; it makes them now, behind the others. */
KOVADX_API int CommitHeader(void);

/** Ends the changes of this pass over the data and makes them good. */
KOVADX_API int EndChanges(void);

/** Begins the pass over the data anew. This process's cursor goes; the values kept for a commit stay. */
KOVADX_API int ResetDataPass(void);

/** Ends the case cursor. This process's cursor goes, and with it the values kept for a commit, whatever the engine
 * answers. */
KOVADX_API int RemoveCaseCursor(void);

/** @} */

/** @defgroup data_sets Data sets
 *
 * The data sets that the engine has open, addressed by their names; names are compared byte by byte on this side.
 * Status shape, but for the functions with an error code as their last parameter, which have the value shape.
 *
 * @{
 */

/** Has the engine create a data set of that name. What the flags mean is the engine's affair. On success the engine is
 * then asked for the name of the active data set, where the given one is empty or "*", and for the data set's numbers
 * of cases and variables; whatever becomes of these questions, the result is the code of the creation. */
KOVADX_API int CreateDataset(const char* name, int flag1, int flag2);

/** Renames a data set. */
KOVADX_API int SetDatasetName(const char* oldName, const char* newName);

/** A name that no data set has. The caller frees with FreeString. */
KOVADX_API int GetNewDatasetName(char** name);

/** The name of the active data set. */
KOVADX_API const char* GetActive(int* errorCode);

/** Makes a data set the active one. */
KOVADX_API int SetActive(const char* name);

/** Makes a copy of a data set under another name. */
KOVADX_API int CopyDataset(const char* source, const char* target);

/** Closes a data set. Changes of cells that are pending are sent first; a failure to do so is not told, and keeps them.
 */
KOVADX_API int CloseDataset(const char* name);

/** The names of the data sets that the engine knows, and their count. The caller frees with FreeStringArray. */
KOVADX_API int GetKovaDatasets(char*** names, int* count);

/** The names of the data sets that are open, and their count. The caller frees with FreeStringArray. */
KOVADX_API int GetOpenedKovaDatasets(char*** names, int* count);

/** The number of cases. */
KOVADX_API int GetCaseCountInDS(const char* dataSet, int* errorCode);

/** The first 8-byte unit of a variable within a case. */
KOVADX_API int GetVarObsIndex(const char* dataSet, int index, int* errorCode);

/** What the engine knows of trends in the data set, as a number of its own. The code is 17, and nothing is sent, when
 * the engine is not running. */
KOVADX_API int GetTrendsInfoInDS(const char* dataSet, int* errorCode);

/** Has the engine keep the data of a data set at hand, or not any more; what the flag means is the engine's affair. */
KOVADX_API int SetCacheInDS(const char* dataSet, int flag);

/** Stores a number other than 0 when the engine wants data to be kept at hand. */
KOVADX_API int IsNeedCache(int* isNeed);

/** Has the engine save data in a temporary file of that name. `*result` receives the code that is returned, whatever it
 * is; what the flag means is the engine's affair. */
KOVADX_API int SaveDataToTempFile(const char* fileName, int* result, int flag);

/** Has the engine take that many rows from a temporary file, from `firstRow` on. */
KOVADX_API int GetDataFromTempFile(const char* fileName, int firstRow, int rowCount);

/** The number of rows in the temporary file. */
KOVADX_API int GetRowCountInTempFile(int* errorCode);

/** Begins to copy the file `source` to the place of the file `target`, and removes `source` afterwards when `flag` is
 * true. Returns at once, before that is done; a failure is written into the trace file. The end of the process waits
 * for what is under way. A local function: 0, 17 when the engine is not running, or 8. */
KOVADX_API int TransportData(const char* source, const char* target, bool flag);

/** @} */

/** @defgroup cells Cells of a data set
 *
 * A cell is addressed by the data set's name, its row and its column, the position of the variable, each from 0. A cell
 * of a numeric variable is a number, one of a text variable a text; `*isMissing` receives a number other than 0 when
 * the value is missing.
 *
 * Three ways lead to a cell. The plain functions ask the engine each time. The functions with Cache, Batch or Optimize
 * read from the rows that FetchDatastep has fetched, and know nothing of what has happened to them since:
 * ClearDatastepBatch drops them. The functions with FromCache, in the group of the data step, read and write the one
 * case that GetCaseValue has read.
 *
 * Status shape for numbers. Texts have the value shape, and but for that of GetCCellValue they are the caller's own and
 * go back with FreeString. The local functions give the code 10 when there are no such rows or there is no such cell.
 *
 * @{
 */

/** The number in a cell, from the engine. */
KOVADX_API int GetNCellValue(const char* dataSet, int row, int column, double* value, int* isMissing);

/** The text in a cell, from the engine. Library-owned, as texts of the value shape are. */
KOVADX_API const char* GetCCellValue(const char* dataSet, int row, int column, int* isMissing, int* errorCode);

/** The number in a cell of the rows that were fetched last, of whatever data set. A local function: 0 or 10. */
KOVADX_API int GetNCellValueCache(const char* dataSet, int row, int column, double* value, int* isMissing);

/** The text in a cell of the rows that were fetched last, of whatever data set. The caller frees with FreeString. A
 * local function: 0, 8 or 10. */
KOVADX_API char* GetCCellValueCache(const char* dataSet, int row, int column, int* isMissing, int* errorCode);

/** As GetNCellValueCache, from rows of the caller's own: `batch` is a DatastepSmb of the C++ interface, which stays the
 * caller's. */
KOVADX_API int GetNCellValueBatch(void* batch, const char* dataSet, int row, int column, double* value, int* isMissing);

/** As GetCCellValueCache, from rows of the caller's own. */
KOVADX_API char* GetCCellValueBatch(void* batch, const char* dataSet, int row, int column, int* isMissing,
                                    int* errorCode);

/** The number in a cell. When the rows that were fetched last are not the data set's or have not this row, 1000 rows
 * are fetched from it on; the codes are then those of FetchDatastep too. */
KOVADX_API int GetNCellValueOptimize(const char* dataSet, int row, int column, double* value, int* isMissing);

/** The text in a cell, by way of GetNCellValueOptimize. The caller frees with FreeString. */
KOVADX_API char* GetCCellValueOptimize(const char* dataSet, int row, int column, int* isMissing, int* errorCode);

/** What the engine told of the rows from `firstRow` on: its first, its last number but one, and its last, which are the
 * first row, the number of rows and the number of columns; 0 for one that it left out. The rows are fetched unless
 * those fetched last have them all; the codes are then those of FetchDatastep too. A negative number of rows counts as
 * 0. 10 for a negative row. */
KOVADX_API int GetRowList(const char* dataSet, int firstRow, int rowCount, int* firstValue, int* nextToLastValue,
                          int* lastValue);

/** Keeps a number for a cell, to be sent by CommitDataSet. A local function: 0, 17 when the engine is not running,
 * or 8.
 */
KOVADX_API int SetNCellValue(const char* dataSet, int row, int column, double value);

/** Keeps a text for a cell, as SetNCellValue keeps a number; null counts as empty. */
KOVADX_API int SetCCellValue(const char* dataSet, int row, int column, const char* value);

/** Sends the numbers and texts that SetNCellValue and SetCCellValue have kept, in one message. On success they are
 * forgotten, otherwise they stay to be sent again. CloseDataset and EndDataStep do so by themselves. */
KOVADX_API int CommitDataSet(void);

/** @} */

/** @defgroup data_step Data step
 *
 * Between StartDataStep and EndDataStep several data sets may be read and changed case by case and variable by
 * variable. Status shape, but for the functions with an error code as their last parameter, which have the value shape.
 *
 * For each data set that is touched in the step this side keeps a record: the types of its variables and one case, the
 * one that GetCaseValue has read last. The first GetCaseValue and the first function with FromCache makes it and asks
 * the engine for the length of a case, the number of variables and their types, one question each; the code is that of
 * a question that fails. The record follows InsertVariable, DeleteVariable and SetVarTypeInDS once the engine has
 * accepted them; its case is then all zeros, to be read again. EndDataStep destroys all records.
 *
 * A case is a run of 8-byte units: one for a number, (width + 7) / 8 for a text, but at least one, padded with blanks.
 *
 * @{
 */

/** Begins a data step. */
KOVADX_API int StartDataStep(void);

/** Ends the data step. Changes of cells that are pending are sent first; a failure to do so is not told, and keeps
 * them. Rows that were fetched are dropped whatever the engine answers, the records when it succeeds. */
KOVADX_API int EndDataStep(void);

/** Fetches rows of a data set, from `firstRow` on and at most `rowCount`, in place of those fetched before; these are
 * kept on failure. `*result` receives the first number that the engine tells of them, which is the first row. The
 * functions with Cache and Optimize read their cells. */
KOVADX_API int FetchDatastep(const char* dataSet, int firstRow, int rowCount, int* result);

/** Drops the rows that were fetched last. A local function. Always 0. */
KOVADX_API int ClearDatastepBatch(void);

/** The names of the data sets of the data step, and their count. The caller frees with FreeStringArray. */
KOVADX_API int GetDatastepDatasets(char*** names, int* count);

/** Inserts an empty case before the case `caseIndex`. */
KOVADX_API int InsertCase(const char* dataSet, int caseIndex);

/** Deletes a case. */
KOVADX_API int DeleteCase(const char* dataSet, int caseIndex);

/** Inserts a variable before the one at position `index`; its type is 0 for a number, else the width of its texts in
 * bytes. */
KOVADX_API int InsertVariable(const char* dataSet, int index, const char* name, int type);

/** Deletes a variable with its data. */
KOVADX_API int DeleteVariable(const char* dataSet, int index);

/** Moves a variable from one position to another. The data set's record does not follow. */
KOVADX_API int MoveVariables(const char* dataSet, int fromIndex, int toIndex);

/** Reads a case into the data set's record and stores where its bytes lie; the result is their number. They are the
 * library's own, valid until the record changes, and are never freed. What the flag means is the engine's affair. Null
 * and 0, the record as it was, when the engine sends no bytes.
 *
 * Outside a data step there are no records: the bytes are then valid until the next such call, and serve nothing else.
 */
KOVADX_API int GetCaseValue(const char* dataSet, int caseIndex, int flag, void** record, int* errorCode);

/** Sends the bytes of a case: the first `size` bytes of `block`. None are sent when `block` is null or `size` is
 * below 1. What the flag means is the engine's affair. */
KOVADX_API int SetCaseValue(const char* dataSet, int caseIndex, int flag, const void* block, int size);

/** Sends the bytes of a part of a case, as SetCaseValue those of a whole one; the part is told by three numbers, whose
 * meaning is the engine's affair. When `block` is null, the case in the data set's record is sent in its place. */
KOVADX_API int SetCasePartValue(const char* dataSet, int caseIndex, int flag, int part1, int part2, int part3,
                                const void* block, int size);

/** What the data set's record says of a variable: its type, the first unit of its cell within a case, and the number of
 * its units. A local function: 0, or 10 when there is no record or no such variable. */
KOVADX_API int GetVarInfo(const char* dataSet, int index, int* type, int* obsIndex, int* obsLength);

/** The type of a variable in the data set's record. A local function: 0, or 10 when there is no record or no such
 * variable. */
KOVADX_API int GetVarTypeInDSCache(const char* dataSet, int index, int* errorCode);

/** The number in a cell of the case in the data set's record; `*isMissing` receives 1 for the system-missing value,
 * else 0. 10 when there is no record or no such cell, 56 when the variable is a text. */
KOVADX_API int GetNCellValueFromCache(const char* dataSet, int column, double* value, int* isMissing);

/** The text in a cell of the case in the data set's record, as wide as the variable. The caller frees with FreeString.
 * 10 when there is no record or no such cell, 57 when the variable is a number. */
KOVADX_API char* GetCCellValueFromCache(const char* dataSet, int column, int* errorCode);

/** Writes a number into a cell of the case in the data set's record; SetCasePartValue can send that case. 10 when there
 * is no record or no such cell, 57 when the variable is a text. */
KOVADX_API int SetNCellValueFromCache(const char* dataSet, int column, double value);

/** Writes a text into a cell of the case in the data set's record, padded with blanks or cut to its units; null counts
 * as empty. 10 when there is no record or no such cell.
 *
 * Deliberate: a numeric variable is not refused, its unit takes the first 8 bytes of the text. */
KOVADX_API int SetCCellValueFromCache(const char* dataSet, int column, const char* value);

/** @} */

/** @defgroup procedures Procedures
 *
 * A program makes output the way a procedure of the engine does: it opens a procedure, builds tables and text blocks,
 * and closes the procedure. The engine keeps the output; nothing of it stays in this process. Status shape, but for
 * HasProcedure. Nothing to free.
 *
 * @{
 */

/** Opens a procedure: its name, and the label under which its output is shown. A null label stands for the name. */
KOVADX_API int StartProcedure(const char* name, const char* label);

/** Closes the open procedure; its output is then complete. */
KOVADX_API int EndProcedure(void);

/** A number other than 0 when a procedure is open. It goes to the engine whether or not that is marked as running, and
 * the engine's error code is not looked at: the first number of the reply is the result, 0 when there is none. */
KOVADX_API int HasProcedure(void);

/** Adds a block of text to the open procedure's output: its heading in the outline, its title, its lines, and the
 * number of empty lines before them. */
KOVADX_API int AddTextBlock(const char* text1, const char* text2, const char* text3, int number);

/** Adds a footnote to the output of the whole procedure. */
KOVADX_API int AddProcFootnotes(const char* footnote);

/** @} */

/** @defgroup formats Formats of cells
 *
 * Each function chooses how the numbers of the cells that follow are shown, until another is called. The functions that
 * take a variable show them in the manner of that variable's own print format; `varIndex` is its position, from 0.
 * Status shape, nothing to free.
 *
 * @{
 */

/** For coefficients. */
KOVADX_API int SetFormatSpecCoefficient(void);

/** For standard errors of coefficients. */
KOVADX_API int SetFormatSpecCoefficientSE(void);

/** For variances of coefficients. */
KOVADX_API int SetFormatSpecCoefficientVar(void);

/** For correlations. */
KOVADX_API int SetFormatSpecCorrelation(void);

/** For statistics without a format of their own. */
KOVADX_API int SetFormatSpecGeneralStat(void);

/** For means of a variable. */
KOVADX_API int SetFormatSpecMean(int varIndex);

/** For counts. */
KOVADX_API int SetFormatSpecCount(void);

/** For percentages, with a percent sign. */
KOVADX_API int SetFormatSpecPercent(void);

/** For percentages without a percent sign. */
KOVADX_API int SetFormatSpecPercentNoSign(void);

/** For proportions, which lie between 0 and 1. */
KOVADX_API int SetFormatSpecProportion(void);

/** For levels of significance. */
KOVADX_API int SetFormatSpecSignificance(void);

/** For residuals. */
KOVADX_API int SetFormatSpecResidual(void);

/** For values of a variable. */
KOVADX_API int SetFormatSpecVariable(int varIndex);

/** For standard deviations of a variable. */
KOVADX_API int SetFormatSpecStdDev(int varIndex);

/** For differences between values of a variable. */
KOVADX_API int SetFormatSpecDifference(int varIndex);

/** For sums of a variable. */
KOVADX_API int SetFormatSpecSum(int varIndex);

/** @} */

/** @defgroup tables Pivot tables
 *
 * Status shape, nothing to free. A table has no handle: every call about it repeats its key, the three texts
 * `tableKey1` to `tableKey3` and the flag `tableFlag`, exactly as StartPivotTable had them. A key that names no table
 * ends in an error of the engine's own.
 *
 * @{
 */

/** Begins a table in the open procedure, under its key: its heading in the outline, its title, what kind of table it is
 * in every language, and whether each split group has a table of its own. Any flag that is not 0 counts as 1. */
KOVADX_API int StartPivotTable(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag);

/** Shows the table without its title. */
KOVADX_API int HidePivotTableTitle(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag);

/** Gives the table a caption, the text below it. */
KOVADX_API int PivotTableCaption(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                                 const char* caption);

/** Adds a footnote to the table's heading in the outline. The flag comes last here. */
KOVADX_API int AddOutlineFootnotes(const char* tableKey1, const char* tableKey2, const char* tableKey3,
                                   const char* footnote, bool tableFlag);

/** Adds a footnote to the table's title. The flag comes last here. */
KOVADX_API int AddTitleFootnotes(const char* tableKey1, const char* tableKey2, const char* tableKey3,
                                 const char* footnote, bool tableFlag);

/** Adds the footnote `text2` to the table's caption, which is `text1`. */
KOVADX_API int AddCaptionFootnotes(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                                   const char* text1, const char* text2);

/** Sets the least width of the table's data columns, in characters. */
KOVADX_API int MinDataColumnWidth(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                                  int width);

/** Sets the greatest width of the table's data columns, in characters. */
KOVADX_API int MaxDataColumnWidth(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                                  int width);

/** @} */

/** @defgroup dimensions Dimensions, categories and cells
 *
 * Status shape, nothing to free. A dimension has no handle either: every call about it repeats, behind the table's key,
 * the dimension's own: the text `dimKey`, which is its name, the integers `dimInt1` and `dimInt2`, and the flags
 * `dimFlag1` and `dimFlag2`, exactly as AddDimension had them.
 *
 * A category function makes the category that it gives the current one of its dimension, and adds it when it is new. A
 * cell stands at the current category of every dimension; the key may be that of any of them. Categories and cells
 * alike are a number, a text, a variable (`varIndex`, its position from 0), or a value of a variable, which is shown by
 * its value label.
 *
 * @{
 */

/** Adds a dimension to the table: its name, the place where it goes (0 rows, 1 columns, 2 layers), its position there,
 * from 0 for the outermost, and whether its name and its categories are hidden. */
KOVADX_API int AddDimension(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                            const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1, bool dimFlag2);

/** Adds a footnote to the dimension's name. */
KOVADX_API int AddDimFootnotes(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                               const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1, bool dimFlag2,
                               const char* footnote);

/** The category that is a number. */
KOVADX_API int AddNumberCategory(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                                 const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1, bool dimFlag2,
                                 double value);

/** The category that is a text. */
KOVADX_API int AddStringCategory(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                                 const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1, bool dimFlag2,
                                 const char* text);

/** The category that is a variable. */
KOVADX_API int AddVarNameCategory(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                                  const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1, bool dimFlag2,
                                  int varIndex);

/** The category that is a value of a numeric variable. */
KOVADX_API int AddVarValueDoubleCategory(const char* tableKey1, const char* tableKey2, const char* tableKey3,
                                         bool tableFlag, const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1,
                                         bool dimFlag2, int varIndex, double value);

/** The category that is a value of a text variable. */
KOVADX_API int AddVarValueStringCategory(const char* tableKey1, const char* tableKey2, const char* tableKey3,
                                         bool tableFlag, const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1,
                                         bool dimFlag2, int varIndex, const char* value);

/** Adds a footnote to the dimension's current category. */
KOVADX_API int AddCategoryFootnotes(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                                    const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1, bool dimFlag2,
                                    const char* footnote);

/** Fills the cell with a number. */
KOVADX_API int SetNumberCell(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                             const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1, bool dimFlag2, double value);

/** Fills the cell with a text. */
KOVADX_API int SetStringCell(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                             const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1, bool dimFlag2,
                             const char* text);

/** Fills the cell with a variable. */
KOVADX_API int SetVarNameCell(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                              const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1, bool dimFlag2, int varIndex);

/** Fills the cell with a value of a numeric variable. */
KOVADX_API int SetVarValueDoubleCell(const char* tableKey1, const char* tableKey2, const char* tableKey3,
                                     bool tableFlag, const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1,
                                     bool dimFlag2, int varIndex, double value);

/** Fills the cell with a value of a text variable. */
KOVADX_API int SetVarValueStringCell(const char* tableKey1, const char* tableKey2, const char* tableKey3,
                                     bool tableFlag, const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1,
                                     bool dimFlag2, int varIndex, const char* value);

/** Fills the cell with a date, given as a text. */
KOVADX_API int SetDateCell(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                           const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1, bool dimFlag2,
                           const char* date);

/** Adds a footnote to the cell. */
KOVADX_API int AddCellFootnotes(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                                const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1, bool dimFlag2,
                                const char* footnote);

/** @} */

/** @defgroup documents Output documents
 *
 * Reads back what the engine has put out. A document is addressed by its handle, a text that the caller chooses; it can
 * be queried by XPath, or read as XML. Value shape where there is a result, else status shape.
 *
 * The lists of texts that are returned here are opaque: see the group of string lists.
 *
 * @{
 */

/** Hands ready-made output to the engine, to be shown as it is: the first `length` bytes of `text`, NUL bytes included;
 * a negative length counts as 0. */
KOVADX_API int PostKovaOutput(const char* text, int length);

/** Makes a document of the active data set's dictionary, under that handle. */
KOVADX_API int CreateXPathDictionary(const char* handle);

/** Drops the document of that handle. */
KOVADX_API int RemoveXPathHandle(const char* handle);

/** Evaluates an XPath expression on the document of that handle, at the node that the XPath expression `context` names.
 * The results as texts, in a list that RemoveStringList takes back; null on failure. */
KOVADX_API void* EvaluateXPath(const char* handle, const char* context, const char* expression, int* errorCode);

/** The document of that handle as XML in UTF-16 units of the machine's byte order, ending in a unit of 0. The text is
 * the library's own: it is valid until the next call of GetXmlUtf16, and is never freed. Null when the transport
 * failed.
 *
 * Deliberate: the engine's own error code is not looked at. `*errorCode` receives the transport's alone, and a reply
 * without a text gives an empty one. */
KOVADX_API const unsigned short* GetXmlUtf16(const char* handle, int* errorCode);

/** The length of the text of the last GetXmlUtf16, in units, without its end; 0 on any error. It goes to the engine
 * whether or not that is marked as running. */
KOVADX_API int GetXmlUtf16Length(void);

/** The bytes of an image, named by `text1` and `text2`, their number in `*imageSize`, and the image's type in
 * `*imageType`: null when the engine does not tell it. A NUL stands behind the bytes. The caller frees both with
 * FreeString. Null when the transport failed.
 *
 * Deliberate: the engine's own error code is not looked at. `*errorCode` receives the transport's alone, and a reply
 * without an image gives one of 0 bytes. */
KOVADX_API char* GetImage(const char* text1, const char* text2, int* imageSize, char** imageType, int* errorCode);

/** The kinds of output that a document can hold, in a list that RemoveStringList takes back; null on failure. */
KOVADX_API void* GetOMSTagList(int* errorCode);

/** The handles of all documents, in a list that RemoveStringList takes back; null on failure. */
KOVADX_API void* GetHandleList(int* errorCode);

/** Has the engine show a graphic, given by its file, and waits until it has done so. Errors are dropped; it goes to the
 * engine whether or not that is marked as running. */
KOVADX_API void GetGraphic(const char* text);

/** Labels the graphics that follow: their label, and their heading in the outline. */
KOVADX_API int SetGraphicsLabel(const char* text1, const char* text2);

/** @} */

/** @defgroup string_lists String lists
 *
 * Local functions, for the lists that EvaluateXPath, GetOMSTagList and GetHandleList return. A null list is empty.
 *
 * @{
 */

/** The number of texts. */
KOVADX_API int GetStringListLength(void* list);

/** The text at that position, from 0; empty when the list has no such position. Owned by the list. */
KOVADX_API const char* GetStringFromList(void* list, int index);

/** Destroys the list with its texts; null does nothing. */
KOVADX_API void RemoveStringList(void* list);

/** @} */

/** @defgroup record Record file
 *
 * A language package may mirror what it shows into one file of this process. Nothing to free.
 *
 * @{
 */

/** Switches recording on or off. On: opens the file for appending and makes it when it is missing, but keeps to the
 * file of an earlier call that is still open. Off: closes the file. A local function. Always 0: a file that can not be
 * opened leaves recording off. */
KOVADX_API int SetRecordBrowserOutput(const char* path, bool on);

/** Appends a text to the record file, up to its NUL. Nothing happens when recording is off, `text` is null or `length`
 * is 0; `length` has no other meaning.
 *
 * When there is a converter and the engine says, asked anew each time, that its texts are UTF-8, the text goes through
 * the converter first: `input` with its `inputLength` bytes, the NUL included, is to be put into `output`, which has
 * room for `outputSize` bytes and is zeroed. */
KOVADX_API void RecordBrowserOutput(const char* text, size_t length,
                                    void (*converter)(const char* input, size_t inputLength, char* output,
                                                      size_t outputSize));

/** @} */

#ifdef __cplusplus
}
#endif

#endif
