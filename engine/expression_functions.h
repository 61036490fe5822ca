// The functions of expressions: each with its name, how it is written, what it gives, and its step.
#ifndef KOVADX_ENGINE_EXPRESSION_FUNCTIONS_H
#define KOVADX_ENGINE_EXPRESSION_FUNCTIONS_H

#include <cstddef>
#include <limits>
#include <span>
#include <string_view>

#include "engine/expression.h"

namespace kova::engine {

// Of arguments: as many as an expression has room for.
constexpr std::size_t kAnyNumber = std::numeric_limits<std::size_t>::max();

// What a function gives, and how wide that is when it is a text.
enum class FunctionResult {
  kNumber,
  kSameKind,    // What its last argument is, as wide as its widest argument.
  kText,        // As wide as its widest argument.
  kJoinedText,  // As wide as all arguments together.
  kNumberText,  // A number written out.
};

struct FunctionRow {
  std::string_view name;
  std::string_view syntax;
  std::string_view help;
  // A letter an argument: n number, t text, s of the kind that the argument in front of it has, x either. The last one
  // stands for all that follow.
  std::string_view kinds;
  std::size_t least;
  std::size_t most;
  FunctionResult result;
  ApplyStep numbers;  // When the last argument is a number.
  ApplyStep texts;    // When it is a text.
};

std::span<const FunctionRow> expressionFunctions();

// Null when there is none of this name. Upper and lower case are the same.
const FunctionRow* findFunction(std::string_view name);

}  // namespace kova::engine

#endif
