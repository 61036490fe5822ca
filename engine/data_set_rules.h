// The rules for the data sets of an engine as such: their names, and what happens to the others when one comes or goes.
#ifndef KOVADX_ENGINE_DATA_SET_RULES_H
#define KOVADX_ENGINE_DATA_SET_RULES_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

#include "engine/engine_state.h"
#include "engine/error_codes.h"

namespace kova::engine {

// A reply can tell and carry a case of so many bytes.
constexpr std::size_t kMostCaseBytes = std::numeric_limits<std::int32_t>::max();

// kNone when the data set may have this name, or, without one, when a new data set may: the rules of a variable's name
// hold, and no other data set has it.
ErrorCode checkDataSetName(const EngineState& state, const std::string& name, const DataSet* dataSet = nullptr);

// "DataSet1", "DataSet2" and so on: the first that no data set has.
std::string freeDataSetName(const EngineState& state);

// What the data set says of its variables and of itself, without cases, name and source.
DataSet dictionaryOf(const DataSet& dataSet);

// Takes a data set in, behind the others. Where none is active it becomes the active one.
DataSet* addDataSet(EngineState* state, DataSet dataSet);

// Closes it: kDataSetInUse while a case cursor reads it or the running procedure is about it. The newest of the others
// becomes active in its place.
ErrorCode closeDataSet(EngineState* state, DataSet* dataSet);

}  // namespace kova::engine

#endif
