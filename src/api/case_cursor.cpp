// The case cursor: reads cases in batches, and sends new values and cases back.
#include <cstring>

#include "api/call_frame.h"
#include "api/client_cursor.h"
#include "api/kovadx.h"
#include "api/local_results.h"
#include "api/new_values.h"

using namespace kova;

namespace {

// The place of a result, or one that drops it.
template <class Value>
Value& placeOr(Value* place, Value& dropped) {
  return place ? *place : dropped;
}

// The first text, into a buffer of that length: a NUL follows only where there is room for it.
struct IntoBuffer {
  char* buffer;
  int length;
  void take(const CleXDSmb& reply) const {
    if (buffer && length > 0) std::strncpy(buffer, reply.FirstString(), static_cast<std::size_t>(length));
  }
};

// What is not a value of the cursor, or not all of it.
int numericValueOtherwise(int index, double* value, int* isMissing) {
  if (!IsEngineRunning()) return kEngineNotRunning;
  const CursorDataSmb* const cursor = ClientCursor();
  if (!cursor) return Tell(Command::GetNumericValue, Long{index}, IntoLong{isMissing}, IntoDouble{value});
  double number = 0;
  int missing = 0;
  return cursor->GetNumericValue(static_cast<unsigned int>(index), placeOr(value, number), placeOr(isMissing, missing));
}

template <class Value>
int keepNewValue(const char* varName, Value value) {
  if (!IsEngineRunning()) return kEngineNotRunning;
  return Guarded([&] {
    TheNewValues().add(varName, value);
    return 0;
  });
}

// Sends the new values, and forgets them when the engine has taken them.
template <class... Items>
int commit(Command command, const Items&... items) {
  const int code = Tell(command, TheNewValues(), items...);
  if (code == 0) TheNewValues().clear();
  return code;
}

// The end of a split group is an answer here, and no failure.
int askEndOfSplit(int* isEnd) {
  int answer = 0;
  const int code = SendInManner({EngineCode::kTellsTheEnd}, Command::IsEndSplit, nullptr, IntoLong{&answer});
  if (code != 0 && code != kEndOfSplitGroup) return code;
  StoreAt(isEnd, answer);
  return 0;
}

}  // namespace

int MakeCaseCursor(const char* accessMode) {
  const int code = Tell(Command::MakeCaseCursor, Text{accessMode});
  return code != 0 ? code : Guarded([&] { return MakeClientCursor(CursorAccessOf(accessMode)); });
}

int HasCursor(int* hasCursor) { return Tell(Command::HasCursor, IntoLong{hasCursor}); }

int GetCursorPosition(int* position) { return Tell(Command::GetCursorPosition, IntoLong{position}); }

int NextCase(void) {
  if (!IsEngineRunning()) return kEngineNotRunning;
  CursorDataSmb* const cursor = ClientCursor();
  if (!cursor) return Tell(Command::NextCase);
  const int code = cursor->NextCase();
  return code == CursorDataSmb::NO_CACHE_DATA ? FetchBatch(*cursor) : code;
}

int GetNumericValue(int index, double* value, int* isMissing) {
  const CursorDataSmb* const cursor = ClientCursor();
  const bool isLocal = cursor && value && isMissing && IsEngineRunning();
  return isLocal ? cursor->GetNumericValue(static_cast<unsigned int>(index), *value, *isMissing)
                 : numericValueOtherwise(index, value, isMissing);
}

int GetStringValue(int index, char** value, int length, int* isMissing) {
  if (!IsEngineRunning()) return kEngineNotRunning;
  const CursorDataSmb* const cursor = ClientCursor();
  char* buffer = value ? *value : nullptr;
  if (!cursor) {
    return Tell(Command::GetStringValue, Long{index}, Long{length}, IntoLong{isMissing}, IntoBuffer{buffer, length});
  }
  int missing = 0;
  return cursor->GetStringValue(static_cast<unsigned int>(index), buffer, length, placeOr(isMissing, missing));
}

int IsEndSplit(int* isEnd) {
  if (!IsEngineRunning()) return kEngineNotRunning;
  const CursorDataSmb* const cursor = ClientCursor();
  if (!cursor || !cursor->HasData()) return askEndOfSplit(isEnd);
  StoreAt(isEnd, 0);
  return 0;
}

int GetCaseLength(const char* dataSet, int* errorCode) {
  return Ask<int>(Command::GetCaseLength, errorCode, Text{dataSet});
}

int SetValueNumeric(const char* varName, double value) { return keepNewValue(varName, value); }

int SetValueChar(const char* varName, const char* value) { return keepNewValue(varName, value); }

int CommitNewCase(void) { return commit(Command::CommitNewCase); }

int CommitCaseRecord(void) {
  CursorDataSmb* const cursor = ClientCursor();
  return commit(Command::CommitCaseRecord, Long{CasesPerBatch(cursor)}, Long{CaseSizeOf(cursor)}, IntoCursor{cursor});
}

int CommitManyCases(const char* dataSet, const void* caseBlock, int blockSize, int caseCount, int varCount,
                    const int* varTypes) {
  return Tell(Command::CommitManyCases, Text{dataSet}, RawBlock{caseBlock, blockSize}, Long{caseCount}, Long{varCount},
              LongList{varTypes, varCount});
}

int AllocNewVarsBuffer(int count) { return Tell(Command::AllocNewVarsBuffer, Long{count}); }

int SetOneVarNameAndType(const char* name, int type) {
  return Tell(Command::SetOneVarNameAndType, Text{name}, Long{type});
}

int SetVarNameAndType(const char* const* varNames, const int* varTypes, int count) {
  return Tell(Command::SetVarNameAndType, Long{count}, Texts{varNames, count}, Longs{varTypes, count});
}

int CommitHeader(void) { return Tell(Command::CommitHeader); }

int EndChanges(void) { return Tell(Command::EndChanges); }

int ResetDataPass(void) {
  if (!IsEngineRunning()) return kEngineNotRunning;
  DropClientCursor();
  return Tell(Command::ResetDataPass);
}

int RemoveCaseCursor(void) {
  if (!IsEngineRunning()) return kEngineNotRunning;
  DropClientCursor();
  TheNewValues().clear();
  return Tell(Command::RemoveCaseCursor);
}
