#include "engine/cursor_handlers.h"

#include <algorithm>
#include <string>

#include "engine/case_values.h"
#include "engine/data_pass_access.h"
#include "engine/data_set_access.h"
#include "engine/data_set_rules.h"
#include "engine/missing_values.h"

namespace kova::engine {
namespace {

std::optional<CaseCursor::Access> accessOf(const std::string& mode) {
  if (mode == "r" || mode == "R") return CaseCursor::Access::kRead;
  if (mode == "w" || mode == "W") return CaseCursor::Access::kWrite;
  if (mode == "a" || mode == "A") return CaseCursor::Access::kAppend;
  return std::nullopt;
}

ErrorCode makeCaseCursor(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  const auto access = accessOf(request.Strings()[0]);
  if (!access) return ErrorCode::kAccessModeUnknown;
  DataSet* dataSet = nullptr;
  const ErrorCode code = findOfProcedure(state, &dataSet);
  if (code == ErrorCode::kNone) state.passes.insert_or_assign(state.conversation, DataPass(dataSet, *access));
  return code;
}

ErrorCode removeCaseCursor(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& /*reply*/) {
  return state.passes.erase(state.conversation) == 0 ? ErrorCode::kNoCaseCursor : ErrorCode::kNone;
}

ErrorCode resetDataPass(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& /*reply*/) {
  state.passes.erase(state.conversation);
  return ErrorCode::kNone;
}

ErrorCode hasCursor(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  reply.SetLong(state.passes.contains(state.conversation) ? 1 : 0);
  return ErrorCode::kNone;
}

ErrorCode getCursorPosition(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  DataPass* pass = nullptr;
  const ErrorCode code = findPass(state, &pass);
  if (code == ErrorCode::kNone) reply.SetLong(static_cast<int>(pass->cursor.handedOut()));
  return code;
}

ErrorCode nextCase(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& /*reply*/) {
  DataPass* pass = nullptr;
  const ErrorCode code = findPass(state, &pass);
  return code == ErrorCode::kNone ? pass->cursor.step() : code;
}

// A batch is no larger than this, whatever is asked for; but it has one case at least.
constexpr std::size_t kMostBatchBytes = std::size_t{64} << 20;

bool hasBlock(const CleXDSmb& reply) {
  int length = 0;
  return reply.GetVoidData(length) != nullptr;
}

// The codes that tell of an end come with the batch. The pass stays where it is when there is no memory for one.
ErrorCode nextCaseBatch(EngineState& state, const CleXDSmb& request, CleXDSmb& reply) {
  DataPass* pass = nullptr;
  const ErrorCode code = findPass(state, &pass);
  if (code != ErrorCode::kNone) return code;
  const int most = request.Longs()[0];
  const int caseBytes = request.Longs()[1];
  CaseCursor cursor = pass->cursor;
  if (most < 1 || static_cast<std::size_t>(caseBytes) != cursor.caseBytes()) return ErrorCode::kCaseSizeDiffers;
  const std::size_t fits = kMostBatchBytes / std::max<std::size_t>(cursor.caseBytes(), 1);
  const auto batch = cursor.nextBatch(std::clamp<std::size_t>(fits, 1, static_cast<std::size_t>(most)));
  cursor.addTo(&reply, batch);
  if (batch.count > 0 && !hasBlock(reply)) return ErrorCode::kOutOfMemory;
  reply.SetLong(static_cast<int>(batch.count));
  pass->cursor = cursor;
  return batch.code;
}

// The value that the current case has of a variable at the position that the first long tells.
template <typename Tell>
ErrorCode tellValue(EngineState& state, const CleXDSmb& request, Tell tell) {
  DataPass* pass = nullptr;
  const ErrorCode code = findPass(state, &pass);
  if (code != ErrorCode::kNone) return code;
  if (!pass->cursor.current()) return ErrorCode::kNoCurrentCase;
  const DataSet& dataSet = pass->cursor.dataSet();
  const int position = request.FirstLong();
  if (!isBelow(position, dataSet.variables.size())) return ErrorCode::kIndexOutOfRange;
  return tell(dataSet, *pass->cursor.current(), static_cast<std::size_t>(position));
}

ErrorCode getNumericValue(EngineState& state, const CleXDSmb& request, CleXDSmb& reply) {
  return tellValue(state, request, [&reply](const DataSet& dataSet, std::size_t current, std::size_t position) {
    if (!dataSet.variables[position].isNumeric()) return ErrorCode::kWrongKind;
    const double value = dataSet.cases.number(current, position);
    reply.SetLong(static_cast<int>(missingOf(dataSet.variables[position], value)));
    reply.SetDouble(value);
    return ErrorCode::kNone;
  });
}

ErrorCode getStringValue(EngineState& state, const CleXDSmb& request, CleXDSmb& reply) {
  return tellValue(state, request, [&reply](const DataSet& dataSet, std::size_t current, std::size_t position) {
    if (dataSet.variables[position].isNumeric()) return ErrorCode::kWrongKind;
    const std::string value = dataSet.cases.text(current, position);
    reply.SetLong(static_cast<int>(missingOf(dataSet.variables[position], value)));
    reply.SetString(value);
    return ErrorCode::kNone;
  });
}

ErrorCode isEndSplit(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  DataPass* pass = nullptr;
  const ErrorCode code = findPass(state, &pass);
  if (code == ErrorCode::kNone) reply.SetLong(pass->cursor.isAtGroupEnd() ? 1 : 0);
  return code;
}

// Answers with the current case as it is then, in a block of the pass's layout, whether it is selected still or not.
// There must be room for the block before anything changes.
ErrorCode commitCaseRecord(EngineState& state, const CleXDSmb& request, CleXDSmb& reply) {
  DataPass* pass = nullptr;
  ErrorCode code = findChangingPass(state, &pass);
  if (code != ErrorCode::kNone) return code;
  if (!pass->cursor.current()) return ErrorCode::kNoCurrentCase;
  const std::size_t current = *pass->cursor.current();
  DataSet& dataSet = pass->cursor.dataSet();
  CaseValues values;
  code = readCaseValues(dataSet, request, &values);
  if (code != ErrorCode::kNone) return code;
  const std::size_t size = pass->cursor.caseBytes();
  if (size > kMostCaseBytes) return ErrorCode::kOutOfMemory;
  reply.AllocVoidData(static_cast<int>(size));
  if (!hasBlock(reply)) return ErrorCode::kOutOfMemory;
  values.writeTo(&dataSet, current);
  reply.SaveDataIntoVoidData(dataSet.cases.caseAt(current), static_cast<int>(size));
  reply.SetLong(1);
  return ErrorCode::kNone;
}

ErrorCode commitNewCase(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  DataPass* pass = nullptr;
  ErrorCode code = findChangingPass(state, &pass);
  if (code != ErrorCode::kNone) return code;
  DataSet& dataSet = pass->cursor.dataSet();
  CaseValues values;
  code = readCaseValues(dataSet, request, &values);
  if (code != ErrorCode::kNone) return code;
  if (dataSet.variables.size() == 0) return ErrorCode::kNoVariables;
  if (!dataSet.cases.mayAdd(1)) return ErrorCode::kOutOfMemory;
  dataSet.cases.appendCase();
  values.writeTo(&dataSet, dataSet.cases.caseCount() - 1);
  return ErrorCode::kNone;
}

ErrorCode endChanges(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& /*reply*/) {
  DataPass* pass = nullptr;
  const ErrorCode code = findChangingPass(state, &pass);
  if (code == ErrorCode::kNone) pass->changesEnded = true;
  return code;
}

constexpr HandlerRow kRows[] = {
    {Command::GetNumericValue, getNumericValue},
    {Command::GetStringValue, getStringValue},
    {Command::NextCase, nextCase},
    {Command::NextCaseBatch, nextCaseBatch},
    {Command::RemoveCaseCursor, removeCaseCursor},
    {Command::GetCursorPosition, getCursorPosition},
    {Command::MakeCaseCursor, makeCaseCursor},
    {Command::HasCursor, hasCursor},
    {Command::CommitCaseRecord, commitCaseRecord},
    {Command::CommitNewCase, commitNewCase},
    {Command::EndChanges, endChanges},
    {Command::IsEndSplit, isEndSplit},
    {Command::ResetDataPass, resetDataPass},
};

}  // namespace

std::span<const HandlerRow> cursorHandlers() { return kRows; }

}  // namespace kova::engine
