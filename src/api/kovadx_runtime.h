/** @file
 * What a runtime library exports: the seven plain functions through which an engine runs a language inside its own
 * process. A runtime's source includes this file and defines them. The library itself exports none of them.
 *
 * The engine loads the library that its configuration names, looks the functions up by name, and calls them in this
 * order:
 *
 *     setup_dxcallback
 *     init_embedded_x
 *     set_post_kova_output
 *       pre_action, execute_x, post_action    a run; any number of them
 *     stop_embedded_x
 *
 * setup_dxcallback and set_post_kova_output may be missing. When any other is missing the library is refused with code
 * 99114.
 *
 * Results are 0 for success; any other number reaches the caller of the run unchanged. Take numbers below 90000: those
 * above are the library's and the engine's own.
 *
 * Threads: one call at a time, on any thread, and not always the same one. While execute_x waits for a call of the
 * engine that it has made, a nested run may call pre_action, execute_x and post_action on another thread; they return
 * before that call does. So no lock may be held across a call of the engine that these three need.
 *
 * The library's symbols are its own: two runtimes may use the same names. After stop_embedded_x it may be unloaded, so
 * no thread may run its code then; a runtime that can not be unloaded keeps itself loaded.
 */
#ifndef KOVADX_API_KOVADX_RUNTIME_H
#define KOVADX_API_KOVADX_RUNTIME_H

#ifndef KOVADX_RUNTIME_API
#ifdef _WIN32
#define KOVADX_RUNTIME_API __declspec(dllexport)
#else
#define KOVADX_RUNTIME_API __attribute__((visibility("default")))
#endif
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup runtime The entry points of a runtime library
 *
 * Defined by the runtime, called by the engine. Nothing to free on either side.
 *
 * @{
 */

/** Optional. Takes the table of the library's functions. What it points to is the library's affair; it stays where it
 * is for the life of the process. */
KOVADX_RUNTIME_API void setup_dxcallback(void* callback);

/** Starts the runtime. The arguments are the words of ARGS in the language's section of the configuration, valid during
 * the call; `argv` is null when there are none. The environment variables of that section are set before the library is
 * loaded. Called again after stop_embedded_x, when the engine starts the language anew. 0 when the runtime is ready. */
KOVADX_RUNTIME_API int init_embedded_x(int argc, char** argv);

/** Runs a block of syntax: UTF-8, each line followed by a line feed, closed by a NUL. The text is the engine's, valid
 * during the call; it may be written to, but not beyond its end. The result is that of the run. */
KOVADX_RUNTIME_API int execute_x(char* syntax);

/** Ends the runtime; init_embedded_x may follow. */
KOVADX_RUNTIME_API int stop_embedded_x(void);

/** Optional. Takes the function that shows a text: UTF-8 and its length in bytes. That function calls the engine, so it
 * is called by the thread that runs the syntax and not after execute_x has returned. It gives an error code. */
KOVADX_RUNTIME_API void set_post_kova_output(int (*post)(const char* text, int length));

/** Prepares a run. When the result is not 0 neither execute_x nor post_action follows; the language PYTHON reports a 1
 * as 999988. */
KOVADX_RUNTIME_API int pre_action(void);

/** Ends a run; the result changes nothing. */
KOVADX_RUNTIME_API int post_action(void);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
