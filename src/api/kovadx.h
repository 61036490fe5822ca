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
 *   save by GetSetting.
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
 * - A text that a function of the value shape returns is the library's own. It is valid until the next function that
 *   returns a text is called, on any thread, and is never freed. Copy it.
 * - A text through a `char**` (save that of GetSetting) and a list through a `char***` or a `double**`, and a list that
 * is returned, are the caller's own, made by malloc. They go back with the function that the comment names. A list
 * comes with its count; when that is 0 there is no list: nothing is allocated and its place is not stored.
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
 * Hands command syntax to the engine and asks how it is. Status shape, but for the two questions that answer with a
 * bool. Nothing to free.
 *
 * @{
 */

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

/** Has the engine make a socket for a runtime to connect to, and stores its port. */
KOVADX_API int CreateSocket(int* port);

/** Has the engine wait until a runtime has connected to the socket of CreateSocket. */
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
