/** @file
 * Functions beside the client interface, for those who write language packages.
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

/** @defgroup case_blocks Cases in blocks
 *
 * For a language package that makes a whole array of cases at once: the case cursor's batch, as it lies in memory, and
 * the layout of a case. Status shape. Nothing to free: the blocks and the missing values are the library's own.
 *
 * A case is a run of units of 8 bytes, and a block is cases one behind the other. A number is an IEEE double in one
 * unit, in the machine's byte order; the one with the bits 0xFFEFFFFFFFFFFFFF, the most negative finite double, stands
 * for "no value". A string takes as many units as its width in bytes fills, padded with blanks.
 *
 * Reading: MakeCaseCursor("r"), KovaGetCaseLayout, KovaGetCaseVariable for each variable, then KovaNextCaseBlock until
 * it gives another code than 0. Writing: KovaLayOutCase for the variables' types, a block of the caller's own,
 * CommitManyCases.
 *
 * The code 1900 means that this process has no case cursor.
 *
 * @{
 */

/** The number of the case cursor's variables, and the size of a case in bytes, a multiple of 8. A local function: 0 or
 * 1900. */
KOVADX_API int KovaGetCaseLayout(int* variableCount, int* caseSize);

/** How a case holds the variable at that position, from 0: its type, 0 for a number, else the width of the string in
 * bytes; the offset of its first byte within a case, a multiple of 8; the kind of its user-missing values, and these
 * themselves: three units of 8 bytes in the form in which a case has them, valid as long as the cursor.
 *
 * The kinds: 0 none; 1, 2 or 3 that many single values, the first ones of the three; for a number also -2, the range
 * from the first to the second, ends included, and -3, that range and the third. A single number is missing when all
 * its bits agree. A string is missing when its first unit agrees and all its others are blank.
 *
 * A local function: 0; 10 when there is no such variable; 1900. */
KOVADX_API int KovaGetCaseVariable(int index, int* type, int* offset, int* missingKind, const void** missingValues);

/** The cases that NextCase has not served yet, as one block: all that the batch still holds, or else those of the next
 * batch, for which the engine is asked. `*cases` is aligned to 8 bytes and must not be written to; `*caseCount` is
 * above 0. The cases count as served: the last of them is the current case, and NextCase goes on behind it.
 *
 * The block is valid until the next NextCase, KovaNextCaseBlock or CommitCaseRecord and until the cursor ends, by
 * MakeCaseCursor, RemoveCaseCursor or ResetDataPass. Copy what is needed longer.
 *
 * 0 with a block. 23 when there is no further case, 67 when there is none in the present split group, as NextCase gives
 * them; 1900; 13 when the engine's reply had no cases though it told of no end. Nothing is stored unless the code is 0.
 * Unlike NextCase, a batch that was cut short on its way is dropped, and the reason is the result, such as 109. */
KOVADX_API int KovaNextCaseBlock(const void** cases, int* caseCount, int* caseSize);

/** The layout of a case with `varCount` variables of those types, 0 for a number, else the width in bytes: the offset
 * of each variable's first byte, into `offsets`, which has room for `varCount` of them or is null, and the size of a
 * case. No cursor is needed. A local function: 0, or 13 when a case would be larger than any message. */
KOVADX_API int KovaLayOutCase(const int* varTypes, int varCount, int* offsets, int* caseSize);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
