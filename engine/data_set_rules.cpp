#include "engine/data_set_rules.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "engine/data_set_access.h"
#include "engine/text_rules.h"

namespace kova::engine {
namespace {

bool isTaken(const EngineState& state, const std::string& name, const DataSet* except) {
  return std::any_of(state.dataSets.begin(), state.dataSets.end(),
                     [&](const auto& other) { return other.get() != except && sameName(other->name, name); });
}

// The active one is the running procedure's unless another is stated.
bool isOfProcedure(const EngineState& state, const DataSet& dataSet) {
  if (state.ofProcedure != nullptr) return state.ofProcedure == &dataSet;
  return state.output.log.hasProcedure() && state.active == &dataSet;
}

}  // namespace

ErrorCode checkDataSetName(const EngineState& state, const std::string& name, const DataSet* dataSet) {
  const ErrorCode code = checkVariableName(name);
  if (code != ErrorCode::kNone) return code;
  return isTaken(state, name, dataSet) ? ErrorCode::kDataSetExists : ErrorCode::kNone;
}

std::string freeDataSetName(const EngineState& state) {
  for (int number = 1;; ++number) {
    std::string name = "DataSet" + std::to_string(number);
    if (!isTaken(state, name, nullptr)) return name;
  }
}

DataSet dictionaryOf(const DataSet& dataSet) {
  DataSet dictionary;
  dictionary.variables = dataSet.variables;
  dictionary.cases = CaseStore(dataSet.cases.widths());
  dictionary.attributes = dataSet.attributes;
  dictionary.responseSets = dataSet.responseSets;
  dictionary.weight = dataSet.weight;
  dictionary.split = dataSet.split;
  dictionary.filter = dataSet.filter;
  return dictionary;
}

DataSet* addDataSet(EngineState* state, DataSet dataSet) {
  state->dataSets.push_back(std::make_unique<DataSet>(std::move(dataSet)));
  DataSet* const added = state->dataSets.back().get();
  if (state->active == nullptr) state->active = added;
  return added;
}

ErrorCode closeDataSet(EngineState* state, DataSet* dataSet) {
  if (isBeingRead(*state, *dataSet) || isOfProcedure(*state, *dataSet)) return ErrorCode::kDataSetInUse;
  for (auto& [conversation, step] : state->steps) std::erase(step.touched, dataSet);
  const bool wasActive = state->active == dataSet;
  std::erase_if(state->dataSets, [dataSet](const auto& other) { return other.get() == dataSet; });
  if (wasActive) state->active = state->dataSets.empty() ? nullptr : state->dataSets.back().get();
  return ErrorCode::kNone;
}

}  // namespace kova::engine
