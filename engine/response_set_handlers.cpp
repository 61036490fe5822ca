#include "engine/response_set_handlers.h"

#include <algorithm>
#include <string>
#include <utility>

#include "engine/data_set_access.h"

namespace kova::engine {
namespace {

auto named(const std::string& name) {
  return [&name](const ResponseSet& set) { return sameName(set.name, name); };
}

ErrorCode setNames(const DataSet& dataSet, const RequestItems& /*items*/, CleXDSmb& reply) {
  for (const ResponseSet& set : dataSet.responseSets) reply.SetString(set.name);
  return ErrorCode::kNone;
}

// The kind; then the label, the counted value and the names of the variables.
ErrorCode describeSet(const DataSet& dataSet, const RequestItems& items, CleXDSmb& reply) {
  const auto& sets = dataSet.responseSets;
  const auto set = std::find_if(sets.begin(), sets.end(), named(items.text(0)));
  if (set == sets.end()) return ErrorCode::kNoSuchResponseSet;
  reply.SetLong(static_cast<int>(set->kind));
  reply.SetString(set->label);
  reply.SetString(set->countedValue);
  for (const std::string& variable : set->variables) reply.SetString(variable);
  return ErrorCode::kNone;
}

// The names as the dictionary has them.
std::vector<std::string> ownNames(const Variables& variables, std::vector<std::string> names) {
  for (std::string& name : names) name = variables[*variables.find(name)].name;
  return names;
}

ErrorCode setSet(DataSet& dataSet, const RequestItems& items) {
  const int kind = items.integer(0);
  if (kind != static_cast<int>(ResponseSetKind::kDichotomies) &&
      kind != static_cast<int>(ResponseSetKind::kCategories)) {
    return ErrorCode::kResponseSetKindOutOfRange;
  }
  ResponseSet set{items.text(0), items.text(1), static_cast<ResponseSetKind>(kind), items.text(2), items.texts(0)};
  const ErrorCode code = checkResponseSet(dataSet.variables, set);
  if (code != ErrorCode::kNone) return code;
  set.variables = ownNames(dataSet.variables, std::move(set.variables));
  const auto old = std::find_if(dataSet.responseSets.begin(), dataSet.responseSets.end(), named(set.name));
  if (old == dataSet.responseSets.end()) {
    dataSet.responseSets.push_back(std::move(set));
  } else {
    *old = std::move(set);
  }
  return ErrorCode::kNone;
}

ErrorCode eraseSet(DataSet& dataSet, const RequestItems& items) {
  const auto erased = std::erase_if(dataSet.responseSets, named(items.text(0)));
  return erased > 0 ? ErrorCode::kNone : ErrorCode::kNoSuchResponseSet;
}

constexpr HandlerRow kRows[] = {
    {Command::GetMultiResponseSetNames, askDataSet<OfActive, setNames>},
    {Command::GetMultiResponseSetNamesInProcDS, askDataSet<OfProcedure, setNames>},
    {Command::GetMultiResponseSetNamesInDS, askDataSet<OfNamed, setNames>},
    {Command::GetMultiResponseSet, askDataSet<OfActive, describeSet>},
    {Command::GetMultiResponseSetInProcDS, askDataSet<OfProcedure, describeSet>},
    {Command::GetMultiResponseSetInDS, askDataSet<OfNamed, describeSet>},
    {Command::SetMultiResponseSetInDS, changeNamed<setSet>},
    {Command::DelMultiResponseSetInDS, changeNamed<eraseSet>},
};

}  // namespace

std::span<const HandlerRow> responseSetHandlers() { return kRows; }

}  // namespace kova::engine
