// A multiple-response set: several variables that hold the answers to one question. A plain value.
#ifndef KOVADX_ENGINE_RESPONSE_SET_H
#define KOVADX_ENGINE_RESPONSE_SET_H

#include <cstddef>
#include <string>
#include <vector>

#include "engine/error_codes.h"
#include "engine/variables.h"

namespace kova::engine {

// The numbers travel in requests and replies.
enum class ResponseSetKind : int {
  kDichotomies = 1,  // A variable for each possible answer; the counted value says that it was given.
  kCategories = 2,   // A variable for the first answer, one for the second, and so on.
};

constexpr std::size_t kFewestOfSet = 2;  // Variables of a response set.

struct ResponseSet {
  std::string name;  // With its '$'.
  std::string label;
  ResponseSetKind kind = ResponseSetKind::kDichotomies;
  std::string countedValue;            // A number as text where the variables are numeric. Empty for categories.
  std::vector<std::string> variables;  // Names of variables of the data set, in the set's order.

  bool operator==(const ResponseSet&) const = default;
};

// Checks everything but the label and the kind: the name, that the variables exist, are two or more, different and of
// one kind, and that the counted value fits.
ErrorCode checkResponseSet(const Variables& variables, const ResponseSet& set);

}  // namespace kova::engine

#endif
