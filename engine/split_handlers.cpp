#include "engine/split_handlers.h"

#include <string>

#include "engine/data_pass_access.h"
#include "engine/data_set_access.h"

namespace kova::engine {
namespace {

ErrorCode splitNames(const DataSet& dataSet, const RequestItems& /*items*/, CleXDSmb& reply) {
  for (const std::string& name : dataSet.split) reply.SetString(name);
  return ErrorCode::kNone;
}

// Of the group in which the program's pass over the data set stands; before a pass it is the first.
ErrorCode splitEnd(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  DataSet* dataSet = nullptr;
  const ErrorCode code = findOfProcedure(state, &dataSet);
  if (code != ErrorCode::kNone) return code;
  DataPass* pass = nullptr;
  const bool isInPass = findPass(state, &pass) == ErrorCode::kNone && &pass->cursor.dataSet() == dataSet;
  const std::size_t end =
      isInPass ? pass->cursor.groupEnd() : CaseCursor(dataSet, CaseCursor::Access::kRead).groupEnd();
  reply.SetLong(static_cast<int>(end));
  return ErrorCode::kNone;
}

constexpr HandlerRow kRows[] = {
    {Command::GetSplitVariableNames, askDataSet<OfProcedure, splitNames>},
    {Command::GetSplitEndIndex, splitEnd},
};

}  // namespace

std::span<const HandlerRow> splitHandlers() { return kRows; }

}  // namespace kova::engine
