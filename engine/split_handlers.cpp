#include "engine/split_handlers.h"

#include <algorithm>
#include <string>

#include "engine/data_set_access.h"

namespace kova::engine {
namespace {

// The position behind the last case of the group that begins with this case: behind it a split variable has another
// value, or there is no case.
std::size_t endOfGroup(const DataSet& dataSet, std::size_t first) {
  const std::size_t count = dataSet.cases.caseCount();
  const auto isSame = [&](std::size_t position) {
    return std::all_of(dataSet.split.begin(), dataSet.split.end(), [&](const std::string& name) {
      return dataSet.cases.sameValue(first, position, dataSet.variables.find(name).value());
    });
  };
  std::size_t end = first;
  while (end < count && isSame(end)) ++end;
  return end;
}

ErrorCode splitNames(const DataSet& dataSet, const RequestItems& /*items*/, CleXDSmb& reply) {
  for (const std::string& name : dataSet.split) reply.SetString(name);
  return ErrorCode::kNone;
}

// No pass over the data has begun, so the present group is the first. Without split variables all cases are one group.
ErrorCode splitEnd(const DataSet& dataSet, const RequestItems& /*items*/, CleXDSmb& reply) {
  reply.SetLong(static_cast<int>(endOfGroup(dataSet, 0)));
  return ErrorCode::kNone;
}

constexpr HandlerRow kRows[] = {
    {Command::GetSplitVariableNames, askDataSet<OfProcedure, splitNames>},
    {Command::GetSplitEndIndex, askDataSet<OfProcedure, splitEnd>},
};

}  // namespace

std::span<const HandlerRow> splitHandlers() { return kRows; }

}  // namespace kova::engine
