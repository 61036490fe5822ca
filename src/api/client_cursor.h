// The case cursor of the process: a record that is absent until MakeCaseCursor has succeeded, and how it is made and
// filled by calls of the engine.
//
// One for the process, freed by DropClientCursor alone. Its calls take turns as all calls of the client interface do.
#ifndef KOVADX_API_CLIENT_CURSOR_H
#define KOVADX_API_CLIENT_CURSOR_H

#include "message/CleXDSmb.h"
#include "message/CursorDataSmb.h"

namespace kova {

// What CursorDataSmb::GetAccessType tells.
enum CursorAccess : int { kReads = 0, kWrites = 1, kOtherAccess = 2 };

// "r" or "R" reads, "w" or "W" writes; any other text, null too, is neither.
CursorAccess CursorAccessOf(const char* mode);

// Null when there is none. Stands here, to be compiled into its callers: it is asked for every single value.
inline CursorDataSmb* clientCursor = nullptr;
inline CursorDataSmb* ClientCursor() { return clientCursor; }
void DropClientCursor();

// Asks the engine for the variables of the procedure's data and makes the cursor for them, in place of an earlier one.
// The result is the code of the call that failed, or of the reply that was cut short, and the earlier cursor stays
// then; 13 when a case would be larger than any message. Throws std::bad_alloc.
int MakeClientCursor(CursorAccess access);

// How many cases are asked for at once: for reading as many as take 20 MiB, else one. 0 without a cursor.
int CasesPerBatch(const CursorDataSmb* cursor);
// Bytes per case; 0 without a cursor.
int CaseSizeOf(const CursorDataSmb* cursor);

// Asks the engine for the next batch, and makes its first case the current one. The old batch goes first, so that its
// memory takes in the new one. When the result is not 0 there is no batch: 23 or 67 when nothing came with it, else the
// code of what failed. With cases, 23 and 67 are kept for the end of their batch.
int FetchBatch(CursorDataSmb& cursor);

// Gives the batch's memory back: no cases and no kept code are left.
void DropBatch(CursorDataSmb& cursor);

// Where the raw block of a reply goes: to the cursor, as its cases, as many of them as the first integer says and as
// the block holds. A null cursor drops them.
struct IntoCursor {
  CursorDataSmb* cursor;
  void take(CleXDSmb& reply) const;
};

}  // namespace kova

#endif
