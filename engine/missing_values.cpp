#include "engine/missing_values.h"

#include <algorithm>
#include <bit>
#include <cstdint>

#include "engine/case_store.h"
#include "engine/text_rules.h"

namespace kova::engine {
namespace {

bool isSame(double a, double b) { return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b); }

bool isUserMissing(const MissingValues& missing, double value) {
  const auto& [first, second, third] = missing.numbers;
  if (missing.kind == kMissingRange || missing.kind == kMissingRangeAndOne) {
    return (first <= value && value <= second) || (missing.kind == kMissingRangeAndOne && isSame(value, third));
  }
  const auto end = missing.numbers.begin() + missing.kind;
  return std::any_of(missing.numbers.begin(), end, [&](double one) { return isSame(value, one); });
}

}  // namespace

Missing missingOf(const Variable& variable, double value) {
  if (isSame(value, kSystemMissing)) return Missing::kSystem;
  return isUserMissing(variable.missing, value) ? Missing::kUser : Missing::kNone;
}

Missing missingOf(const Variable& variable, std::string_view value) {
  const auto end = variable.missing.texts.begin() + variable.missing.kind;
  const std::string_view text = withoutEndBlanks(value);
  const bool isOne = std::any_of(variable.missing.texts.begin(), end,
                                 [&](const std::string& one) { return withoutEndBlanks(one) == text; });
  return isOne ? Missing::kUser : Missing::kNone;
}

}  // namespace kova::engine
