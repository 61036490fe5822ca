#include "engine/data_set_access.h"

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
