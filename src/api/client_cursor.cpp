#include "api/client_cursor.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <utility>

#include "api/call_frame.h"
#include "api/kovadx.h"

namespace kova {
namespace {

int readMissingNumbers(int index, VarInfo& info) {
  return GetVarNMissingValues(index, &info.missingCode, &info.missing[0].number, &info.missing[1].number,
                              &info.missing[2].number);
}

// A text of fewer bytes than a unit has blanks behind it.
OBS padded(const char* text) {
  OBS unit;
  std::memset(unit.bytes, ' ', sizeof unit.bytes);
  std::memcpy(unit.bytes, text, std::strlen(text));
  return unit;
}

int readMissingTexts(int index, VarInfo& info) {
  char texts[3][kUnitBytes + 1] = {};
  const int code = GetVarCMissingValues(index, &info.missingCode, texts[0], texts[1], texts[2]);
  std::transform(texts, std::end(texts), info.missing, padded);
  return code;
}

int addVariable(CursorDataSmb& cursor, int index, std::int64_t& units) {
  std::unique_ptr<VarInfo> info(cursor.NewVarInfo());
  int code = 0;
  info->type = GetVariableTypeInProcDS(index, &code);
  if (WhenWhole(code) != 0) return WhenWhole(code);
  code = WhenWhole(info->type == 0 ? readMissingNumbers(index, *info) : readMissingTexts(index, *info));
  if (code != 0) return code;
  cursor.GetObsIndex().push_back(static_cast<unsigned int>(units));
  units += UnitsOfType(info->type);
  cursor.AddVarInfo(info.release());
  return units * kUnitBytes > std::numeric_limits<int>::max() ? kInvalidAnswer : 0;
}

int addVariables(CursorDataSmb& cursor) {
  int code = 0;
  const int count = GetVariableCountInProcDS(&code);
  code = WhenWhole(code);
  std::int64_t units = 0;
  for (int index = 0; code == 0 && index < count; ++index) code = addVariable(cursor, index, units);
  if (code == 0) cursor.SetOneCaseSize(static_cast<int>(units) * kUnitBytes);
  return code;
}

// A case of no bytes, of data without variables, is in no block.
int casesIn(int blockLength, int caseSize) { return caseSize > 0 ? blockLength / caseSize : 0; }

}  // namespace

CursorAccess CursorAccessOf(const char* mode) {
  if (!mode || mode[0] == '\0' || mode[1] != '\0') return kOtherAccess;
  switch (mode[0]) {
    case 'r':
    case 'R':
      return kReads;
    case 'w':
    case 'W':
      return kWrites;
    default:
      return kOtherAccess;
  }
}

void DropClientCursor() { delete std::exchange(clientCursor, nullptr); }

int MakeClientCursor(CursorAccess access) {
  auto cursor = std::make_unique<CursorDataSmb>();
  const int code = addVariables(*cursor);
  if (code != 0) return code;
  cursor->SetAccessType(access);
  DropClientCursor();
  clientCursor = cursor.release();
  return 0;
}

int CasesPerBatch(const CursorDataSmb* cursor) {
  if (!cursor) return 0;
  const int size = cursor->GetOneCaseSize();
  const bool isBulk = cursor->GetAccessType() == kReads && size > 0 && size < CursorDataSmb::CACHE_SIZE;
  return isBulk ? CursorDataSmb::CACHE_SIZE / size : 1;
}

int CaseSizeOf(const CursorDataSmb* cursor) { return cursor ? cursor->GetOneCaseSize() : 0; }

void IntoCursor::take(CleXDSmb& reply) const {
  if (!cursor) return;
  int length = 0;
  reply.GetVoidData(length);
  const int cases = std::min(reply.FirstLong(), casesIn(length, cursor->GetOneCaseSize()));
  cursor->SetReceivedCases(-1);
  cursor->TakeCases(cases > 0 ? reply.TakeVoidData() : VoidData());
  cursor->SetReceivedCases(cases);
}

void DropBatch(CursorDataSmb& cursor) {
  cursor.SetCasePtr(nullptr, 0);
  cursor.SetReceivedCases(-1);
  cursor.SetLastError(0);
}

int FetchBatch(CursorDataSmb& cursor) {
  DropBatch(cursor);
  const int code = SendInManner({EngineCode::kTellsTheEnd, false}, Command::NextCaseBatch, nullptr,
                                Long{CasesPerBatch(&cursor)}, Long{CaseSizeOf(&cursor)}, IntoCursor{&cursor});
  if (code == 0) return 0;
  const bool hasCases = (code == kEndOfCases || code == kEndOfSplitGroup) && cursor.HasData();
  if (!hasCases) DropBatch(cursor);
  cursor.SetLastError(hasCases ? code : 0);
  return hasCases ? 0 : code;
}

}  // namespace kova
