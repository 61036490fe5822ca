// Whether a value counts as missing. Discrete values are compared bit for bit, so that -0.0 is none of 0.0; ranges as
// numbers; texts without the blanks at their end.
#ifndef KOVADX_ENGINE_MISSING_VALUES_H
#define KOVADX_ENGINE_MISSING_VALUES_H

#include <string_view>

#include "engine/variable.h"

namespace kova::engine {

// The numbers travel in replies.
enum class Missing : int {
  kNone = 0,
  kUser = 1,    // One of the variable's missing values.
  kSystem = 2,  // No value at all.
};

// Of a value of a numeric variable.
Missing missingOf(const Variable& variable, double value);

// Of a value of a string variable.
Missing missingOf(const Variable& variable, std::string_view value);

}  // namespace kova::engine

#endif
