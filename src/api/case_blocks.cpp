// The cases of a cursor as blocks of memory.
#include <cstdint>
#include <limits>

#include "api/call_frame.h"
#include "api/client_cursor.h"
#include "api/kovadx_ext.h"
#include "api/local_results.h"

using namespace kova;

namespace {

constexpr int kNoVariable = 10;
constexpr int kNoBatch = CursorDataSmb::NO_CACHE_DATA;

// A batch whose end was lost reads as zeros there. It is no batch here, where nobody would look at every case.
int fetchWholeBatch(CursorDataSmb& cursor) {
  const int code = FetchBatch(cursor);
  if (code != 0) return code;
  const int status = LastReceiveStatus();
  if (status == 0 && cursor.HasData()) return 0;
  DropBatch(cursor);
  return status != 0 ? status : kInvalidAnswer;
}

int toNextCase(CursorDataSmb& cursor) {
  const int code = cursor.NextCase();
  return code == kNoBatch ? fetchWholeBatch(cursor) : code;
}

}  // namespace

int KovaGetCaseLayout(int* variableCount, int* caseSize) {
  const CursorDataSmb* const cursor = ClientCursor();
  if (!cursor) return kNoBatch;
  StoreAt(variableCount, static_cast<int>(cursor->Variables().size()));
  StoreAt(caseSize, cursor->GetOneCaseSize());
  return 0;
}

int KovaGetCaseVariable(int index, int* type, int* offset, int* missingKind, const void** missingValues) {
  const CursorDataSmb* const cursor = ClientCursor();
  if (!cursor) return kNoBatch;
  if (index < 0 || static_cast<std::size_t>(index) >= cursor->Variables().size()) return kNoVariable;
  const VarInfo& info = *cursor->Variables()[static_cast<std::size_t>(index)];
  StoreAt(type, info.type);
  StoreAt(offset, static_cast<int>(cursor->OBSIndex(index)) * kUnitBytes);
  StoreAt(missingKind, info.missingCode);
  StoreAt(missingValues, static_cast<const void*>(info.missing));
  return 0;
}

int KovaNextCaseBlock(const void** cases, int* caseCount, int* caseSize) {
  if (!IsEngineRunning()) return kEngineNotRunning;
  CursorDataSmb* const cursor = ClientCursor();
  if (!cursor) return kNoBatch;
  const int code = toNextCase(*cursor);
  if (code != 0) return code;
  const CaseRun rest = cursor->ServeRest();
  StoreAt(cases, rest.cases);
  StoreAt(caseCount, rest.count);
  StoreAt(caseSize, cursor->GetOneCaseSize());
  return 0;
}

int KovaLayOutCase(const int* varTypes, int varCount, int* offsets, int* caseSize) {
  std::int64_t bytes = 0;
  for (int i = 0; varTypes && i < varCount; ++i) {
    if (offsets) offsets[i] = static_cast<int>(bytes);
    bytes += std::int64_t{UnitsOfType(varTypes[i])} * kUnitBytes;
    if (bytes > std::numeric_limits<int>::max()) return kInvalidAnswer;
  }
  StoreAt(caseSize, static_cast<int>(bytes));
  return 0;
}
