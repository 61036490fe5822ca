#include "engine/case_bytes.h"

#include <cmath>
#include <cstring>

#include "engine/text_rules.h"

namespace kova::engine {
namespace {

ErrorCode checkNumberBytes(const char* bytes) {
  double value = 0;
  std::memcpy(&value, bytes, sizeof value);
  return checkNumber(value);
}

}  // namespace

ErrorCode checkNumber(double value) { return std::isfinite(value) ? ErrorCode::kNone : ErrorCode::kNumberNotValid; }

// Blanks at the end are no part of a value: they may go beyond the width.
ErrorCode checkCellText(const Variable& variable, std::string_view text) {
  const std::string_view value = withoutEndBlanks(text);
  const ErrorCode code = checkText(value);
  if (code != ErrorCode::kNone) return code;
  return value.size() > static_cast<std::size_t>(variable.width) ? ErrorCode::kValueTooLong : ErrorCode::kNone;
}

ErrorCode checkCaseBytes(const DataSet& dataSet, std::size_t first, std::size_t count, const void* bytes) {
  const char* value = static_cast<const char*>(bytes);
  for (std::size_t i = first; i < first + count; ++i) {
    const Variable& variable = dataSet.variables[i];
    const std::size_t size = dataSet.cases.bytesOfVariables(i, 1);
    const ErrorCode code = variable.isNumeric() ? checkNumberBytes(value) : checkCellText(variable, {value, size});
    if (code != ErrorCode::kNone) return code;
    value += size;
  }
  return ErrorCode::kNone;
}

}  // namespace kova::engine
