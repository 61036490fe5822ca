#include "engine/response_set.h"

#include <charconv>
#include <string_view>

#include "engine/dictionary_rules.h"
#include "engine/text_rules.h"

namespace kova::engine {
namespace {

bool isNumber(std::string_view text) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size() && isValidNumber(value);
}

bool fitsAsCountedValue(const ResponseSet& set, const Variable& variable) {
  if (set.kind == ResponseSetKind::kCategories) return set.countedValue.empty();
  if (variable.isNumeric()) return isNumber(set.countedValue);
  return !set.countedValue.empty() && set.countedValue.size() <= static_cast<std::size_t>(variable.width);
}

}  // namespace

ErrorCode checkResponseSet(const Variables& variables, const ResponseSet& set) {
  const ErrorCode nameCode = checkResponseSetName(set.name);
  if (nameCode != ErrorCode::kNone) return nameCode;
  if (set.variables.size() < kFewestOfSet) return ErrorCode::kResponseSetTooSmall;
  std::vector<bool> isTaken(variables.size());
  std::optional<bool> isNumeric;
  for (const std::string& name : set.variables) {
    const auto position = variables.find(name);
    if (!position) return ErrorCode::kNoSuchVariable;
    if (isTaken[*position]) return ErrorCode::kResponseSetVariableTwice;
    isTaken[*position] = true;
    const Variable& variable = variables[*position];
    if (isNumeric.value_or(variable.isNumeric()) != variable.isNumeric()) return ErrorCode::kResponseSetKindsMixed;
    isNumeric = variable.isNumeric();
    if (!fitsAsCountedValue(set, variable)) return ErrorCode::kCountedValueNotValid;
  }
  return ErrorCode::kNone;
}

}  // namespace kova::engine
