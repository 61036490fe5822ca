// The ways in which a command names the data set and the variable that it is about, as adaptors: a handler's own
// function is written once and serves every way.
//
// A command is about the active data set, about that of the running procedure, or about one that its first string
// names; "*" stands for the active one. It gives a variable's position as its first long, or, when it changes the
// active data set, the variable's name as its first string.
#ifndef KOVADX_ENGINE_DATA_SET_ACCESS_H
#define KOVADX_ENGINE_DATA_SET_ACCESS_H

#include <cstddef>
#include <string_view>

#include "engine/handler.h"
#include "engine/request_items.h"

namespace kova::engine {

// Each stores the data set, or answers with the code of what is missing.
ErrorCode findActive(const EngineState& state, DataSet** dataSet);
ErrorCode findOfProcedure(const EngineState& state, DataSet** dataSet);
ErrorCode findNamed(const EngineState& state, std::string_view name, DataSet** dataSet);

// True while a pass over its cases goes on. It must then stay open, with all cases and variables in their places.
bool isBeingRead(const EngineState& state, const DataSet& dataSet);

// Remembers that the present conversation's data step, if it has one, reads or changes the data set.
void touch(EngineState* state, DataSet* dataSet);

// So that touch can not fail once the change has been made.
void reserveTouch(EngineState* state);

// kNone when every text of the request is UTF-8 without NUL bytes.
ErrorCode checkAllTexts(const CleXDSmb& request);

// Where a command finds its data set, and how many strings that takes.
struct OfActive {
  static constexpr int kTexts = 0;
  static ErrorCode find(const EngineState& state, const CleXDSmb& /*request*/, DataSet** dataSet) {
    return findActive(state, dataSet);
  }
};

struct OfProcedure {
  static constexpr int kTexts = 0;
  static ErrorCode find(const EngineState& state, const CleXDSmb& /*request*/, DataSet** dataSet) {
    return findOfProcedure(state, dataSet);
  }
};

struct OfNamed {
  static constexpr int kTexts = 1;
  static ErrorCode find(const EngineState& state, const CleXDSmb& request, DataSet** dataSet) {
    return findNamed(state, request.Strings()[0], dataSet);
  }
};

// Functions that answer, and functions that change. A change either succeeds or leaves everything as it was.
using DataSetAnswer = ErrorCode (*)(const DataSet& dataSet, const RequestItems& items, CleXDSmb& reply);
using VariableAnswer = ErrorCode (*)(const Variable& variable, const RequestItems& items, CleXDSmb& reply);
using DataSetChange = ErrorCode (*)(DataSet& dataSet, const RequestItems& items);
using VariableChange = ErrorCode (*)(DataSet& dataSet, std::size_t position, const RequestItems& items);

// True of a position that one of so many things has.
inline bool isBelow(int position, std::size_t count) {
  return position >= 0 && static_cast<std::size_t>(position) < count;
}

// The texts are sound, and the data set is there.
template <typename Source>
ErrorCode reachDataSet(const EngineState& state, const CleXDSmb& request, DataSet** dataSet) {
  const ErrorCode code = checkAllTexts(request);
  return code == ErrorCode::kNone ? Source::find(state, request, dataSet) : code;
}

// And there is a variable at the position that the first long tells.
template <typename Source>
ErrorCode reachVariable(const EngineState& state, const CleXDSmb& request, DataSet** dataSet, std::size_t* position) {
  const ErrorCode code = reachDataSet<Source>(state, request, dataSet);
  if (code != ErrorCode::kNone) return code;
  const int index = request.FirstLong();
  if (!isBelow(index, (*dataSet)->variables.size())) return ErrorCode::kIndexOutOfRange;
  *position = static_cast<std::size_t>(index);
  return ErrorCode::kNone;
}

template <typename Source, DataSetAnswer answer>
ErrorCode askDataSet(EngineState& state, const CleXDSmb& request, CleXDSmb& reply) {
  DataSet* dataSet = nullptr;
  const ErrorCode code = reachDataSet<Source>(state, request, &dataSet);
  return code == ErrorCode::kNone ? answer(*dataSet, {request, Source::kTexts, 0}, reply) : code;
}

template <typename Source, VariableAnswer answer>
ErrorCode askVariable(EngineState& state, const CleXDSmb& request, CleXDSmb& reply) {
  DataSet* dataSet = nullptr;
  std::size_t position = 0;
  const ErrorCode code = reachVariable<Source>(state, request, &dataSet, &position);
  return code == ErrorCode::kNone ? answer(dataSet->variables[position], {request, Source::kTexts, 1}, reply) : code;
}

template <DataSetChange change>
ErrorCode changeNamed(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  DataSet* dataSet = nullptr;
  const ErrorCode code = reachDataSet<OfNamed>(state, request, &dataSet);
  return code == ErrorCode::kNone ? change(*dataSet, {request, OfNamed::kTexts, 0}) : code;
}

// Of a named data set, by position.
template <VariableChange change>
ErrorCode changeAt(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  DataSet* dataSet = nullptr;
  std::size_t position = 0;
  const ErrorCode code = reachVariable<OfNamed>(state, request, &dataSet, &position);
  return code == ErrorCode::kNone ? change(*dataSet, position, {request, OfNamed::kTexts, 1}) : code;
}

// Of the active data set, by name.
template <VariableChange change>
ErrorCode changeByName(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  DataSet* dataSet = nullptr;
  const ErrorCode code = reachDataSet<OfActive>(state, request, &dataSet);
  if (code != ErrorCode::kNone) return code;
  const auto position = dataSet->variables.find(request.Strings()[0]);
  return position ? change(*dataSet, *position, {request, 1, 0}) : ErrorCode::kNoSuchVariable;
}

}  // namespace kova::engine

#endif
