/* The client interface of KovaDX: what a script calls to read and drive a running statistics engine.
 *
 * This file compiles as C99 and as C++, and a parser for C declarations can read it.
 *
 * A call packs its arguments into one message, sends it to the engine, waits for the reply and unpacks it; local
 * functions, marked so, touch no engine. A process serves one external language and makes one call at a time: no
 * function takes a lock, so callers on several threads take turns.
 *
 * Two shapes.
 *   Status shape: the result is an error code, results come through pointers. Nothing is stored unless the code is 0.
 *   Value shape: the result is the value, and the last parameter, errorCode, receives the code. Look at it first: on
 *   failure the value means nothing, and a text is null.
 * A pointer for a result may be null; that result is then dropped.
 *
 * Error codes, the same for every function that calls the engine:
 *   0      success.
 *   8      not enough memory.
 *   17     the engine is not running: SetKovaRunning(true) has not been called (status shape only).
 *   99103  the reply was empty.
 *   99104  a pipe could not be opened or written, or this process has no pipes to the engine at present.
 *   A system error number of the pipe, such as 109 when the engine has gone, or 13 when the reply's length is wrong.
 *   Any other number is the engine's own, passed through unchanged.
 * A function's comment names what it adds to this list.
 *
 * Waiting: a call that finds no engine tries 20 times, 100 ms apart, to reach it, and then waits without limit for an
 * engine to come and reply.
 *
 * Texts are NUL-terminated bytes in the engine's encoding. Positions are 0-based.
 */
#ifndef KOVADX_API_KOVADX_H
#define KOVADX_API_KOVADX_H

#include <stdbool.h>

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

/* ---- This process -------------------------------------------------------------------------------------------------
 *
 * Local functions. A process says who it is before its first call of the engine; the first call then makes its pipes.
 * Nothing here is given to the caller to free.
 */

/* Tells the library whether there is an engine to talk to; false when the library is loaded. Always 0. */
KOVADX_API int SetKovaRunning(bool running);

/* Sets the name of the external language that this process serves, in upper case (it becomes a part of the pipes'
 * names as it is given), and the engine's home folder. Null counts as empty: the process-wide name or folder is then
 * used. Read by the first call of the engine; later changes have no effect on it. */
KOVADX_API void SetXNameAndSHome(const char* xName, const char* kovaHome);

/* Stores a folder for the language package's own use; null counts as empty. 0, or 8. */
KOVADX_API int SetRTempFolderToKOVA(const char* folder);

/* The folder stored last, empty at first. Library-owned, valid until it is set again. */
KOVADX_API const char* GetRTempFolderToKOVA(void);

/* Does nothing. Always 0. */
KOVADX_API int SaveFileInDS(void);

/* ---- Releasing results --------------------------------------------------------------------------------------------
 *
 * Local functions. Each takes back a result that the library has given to the caller; `count` is the count that came
 * with it, and a count below 1 frees nothing at all, since nothing was allocated. The text that a function of the value
 * shape returns is the library's own and is never given to these functions. Null is allowed.
 *
 * Lists can not be freed while the engine is marked as not running: free them before the engine is stopped.
 */

/* Frees one text. Always 0. */
KOVADX_API int FreeString(char* text);

/* Frees a list of texts: its texts, then the list. 0; 17 when the engine is not running, and then nothing is freed. */
KOVADX_API int FreeStringArray(char** list, int count);

/* Frees a list of doubles. Always 0. */
KOVADX_API int FreeDoubleArray(double* values, int count);

/* Frees a list of attribute names, as FreeStringArray does. */
KOVADX_API int FreeAttributeNames(char** list, int count);

/* Frees a list of attribute values, as FreeStringArray does. */
KOVADX_API int FreeAttributes(char** list, int count);

/* Frees both lists of GetNValueLabels. 0; 17 when the engine is not running, and then nothing is freed. */
KOVADX_API int FreeNValueLabels(double* values, char** labels, int count);

/* Frees both lists of GetCValueLabels. 0; 17 when the engine is not running, and then nothing is freed. */
KOVADX_API int FreeCValueLabels(char** values, char** labels, int count);

/* ---- Engine control -----------------------------------------------------------------------------------------------
 *
 * Status shape, but for IsBackendReady. Nothing to free.
 */

/* Hands command syntax to the engine and waits until it has been carried out: the first `length` bytes of `text`, NUL
 * bytes included; a negative length counts as 0. */
KOVADX_API int Submit(const char* text, int length);

/* True when the engine answers that it is ready; false on any error, and without asking when the engine is not
 * running. */
KOVADX_API bool IsBackendReady(void);

/* ---- Data of the active data set ----------------------------------------------------------------------------------
 *
 * Value shape. Nothing to free.
 */

/* The number of cases. */
KOVADX_API int GetRowCount(int* errorCode);

/* ---- Dictionary of the active data set ----------------------------------------------------------------------------
 *
 * A variable is addressed by its position, from 0; a position that the engine does not have ends in an error of the
 * engine's own.
 *
 * Value shape, and status shape where there is more than one result. A returned text is the library's own: it is valid
 * until the next function that returns a text is called, on any thread, and is never freed. Copy it. Value labels come
 * as two lists of the caller's own, which go back with FreeNValueLabels or FreeCValueLabels.
 *
 * What the numbers for types, levels, roles and formats mean is the engine's affair; they pass through unchanged.
 */

/* The number of variables. */
KOVADX_API int GetVariableCount(int* errorCode);

/* The variable's name. */
KOVADX_API const char* GetVariableName(int index, int* errorCode);

/* The variable's label; empty when it has none. */
KOVADX_API const char* GetVariableLabel(int index, int* errorCode);

/* The variable's type: 0 when it is numeric, otherwise the width of its texts in bytes. */
KOVADX_API int GetVariableType(int index, int* errorCode);

/* The variable's print format as a text, such as "F8.2". */
KOVADX_API const char* GetVariableFormat(int index, int* errorCode);

/* The variable's print format as three numbers: format code, width in characters, number of decimals. A number that
 * the engine left out is stored as 0. */
KOVADX_API int GetVariableFormatType(int index, int* formatType, int* width, int* decimals);

/* The code of the variable's measurement level. */
KOVADX_API int GetVariableMeasurementLevel(int index, int* errorCode);

/* The code of the variable's role. */
KOVADX_API int GetVariableRole(int index, int* errorCode);

/* The user-missing values of a numeric variable: the code of their kind and up to three values. A value that the engine
 * left out is not stored. */
KOVADX_API int GetVarNMissingValues(int index, int* type, double* v1, double* v2, double* v3);

/* The user-missing values of a text variable: the code of their kind and up to three texts. Each buffer has room for at
 * least 9 bytes: at most 8 bytes and the terminating NUL are stored. A text that the engine left out is not stored. */
KOVADX_API int GetVarCMissingValues(int index, int* type, char* v1, char* v2, char* v3);

/* The value labels of a numeric variable: the values, their labels in the same order, and their count. With a count of
 * 0 nothing is allocated and neither list is stored. The caller frees with FreeNValueLabels(values, labels, count). */
KOVADX_API int GetNValueLabels(int index, double** values, char*** labels, int* count);

/* The value labels of a text variable, as GetNValueLabels gives them. The caller frees with FreeCValueLabels(values,
 * labels, count). */
KOVADX_API int GetCValueLabels(int index, char*** values, char*** labels, int* count);

/* The number that stands for a missing value in numeric data. */
KOVADX_API int GetSystemMissingValue(double* value);

#ifdef __cplusplus
}
#endif

#endif
