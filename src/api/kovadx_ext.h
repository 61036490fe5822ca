/** @file
 * Functions beside the client interface, for those who write language packages. Local functions.
 */
#ifndef KOVADX_API_KOVADX_EXT_H
#define KOVADX_API_KOVADX_EXT_H

#include "kovadx.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup extensions For language packages
 *
 * Local functions. Nothing to free.
 *
 * @{
 */

/** How the transport fared with the last reply that this process waited for: 0 when it came whole (also before the
 * first call); otherwise the reason, such as 109 when the engine went away in the middle of it. A reply that was cut
 * short can still end a call with code 0, its missing values reading as 0 or empty: a language package that must not
 * take such values for the engine's answer looks here after the call. */
KOVADX_API int KovaLastReceiveStatus(void);

/** The name of an error code, such as "EngineNotStarted" for 17; an empty text for a number that is not known, since an
 * engine may answer with codes of its own. Static, never freed. */
KOVADX_API const char* KovaErrorName(int code);

/** One line on what may be done about an error code; an empty text for a number that is not known. Static, never
 * freed. */
KOVADX_API const char* KovaErrorAdvice(int code);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
