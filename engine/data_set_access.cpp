#include "engine/data_set_access.h"

#include <algorithm>

namespace kova::engine {
namespace {

ErrorCode checkTexts(const StringData& texts) {
  for (const std::string& text : texts.values()) {
    const ErrorCode code = checkText(text);
    if (code != ErrorCode::kNone) return code;
  }
  return ErrorCode::kNone;
}

}  // namespace

ErrorCode findActive(const EngineState& state, DataSet** dataSet) {
  *dataSet = state.active;
  return state.active == nullptr ? ErrorCode::kNoActiveDataSet : ErrorCode::kNone;
}

ErrorCode findOfProcedure(const EngineState& state, DataSet** dataSet) {
  if (state.ofProcedure == nullptr) return findActive(state, dataSet);
  *dataSet = state.ofProcedure;
  return ErrorCode::kNone;
}

ErrorCode findNamed(const EngineState& state, std::string_view name, DataSet** dataSet) {
  if (name == "*") return findActive(state, dataSet);
  for (const auto& candidate : state.dataSets) {
    if (!sameName(candidate->name, name)) continue;
    *dataSet = candidate.get();
    return ErrorCode::kNone;
  }
  return ErrorCode::kNoSuchDataSet;
}

bool isBeingRead(const EngineState& state, const DataSet& dataSet) {
  return std::any_of(state.passes.begin(), state.passes.end(),
                     [&dataSet](const auto& entry) { return &entry.second.cursor.dataSet() == &dataSet; });
}

void touch(EngineState* state, DataSet* dataSet) {
  const auto step = state->steps.find(state->conversation);
  if (step == state->steps.end()) return;
  std::vector<DataSet*>& touched = step->second.touched;
  if (std::find(touched.begin(), touched.end(), dataSet) == touched.end()) touched.push_back(dataSet);
}

void reserveTouch(EngineState* state) {
  const auto step = state->steps.find(state->conversation);
  if (step != state->steps.end()) step->second.touched.reserve(step->second.touched.size() + 1);
}

ErrorCode checkAllTexts(const CleXDSmb& request) {
  const ErrorCode code = checkTexts(request.Strings());
  if (code != ErrorCode::kNone) return code;
  for (const StringData& list : request.StringArrays()) {
    const ErrorCode listCode = checkTexts(list);
    if (listCode != ErrorCode::kNone) return listCode;
  }
  return ErrorCode::kNone;
}

}  // namespace kova::engine
