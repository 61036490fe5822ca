#include "engine/output_value.h"

#include <bit>
#include <cstdint>

#include "engine/text_rules.h"

namespace kova::engine {
namespace {

// Zero is one number, whatever its sign.
std::string bitsOf(double number) { return std::to_string(std::bit_cast<std::uint64_t>(number == 0 ? 0.0 : number)); }

OutputValue make(ValueKind kind, std::string_view shown) {
  OutputValue value;
  value.kind = kind;
  value.shown = shown;
  return value;
}

}  // namespace

OutputValue numberValue(double number) {
  OutputValue value = make(ValueKind::kNumber, shortNumberText(number));
  value.number = number;
  return value;
}

OutputValue numberValue(double number, const NumberStyle& style) {
  OutputValue value = make(ValueKind::kNumber, numberText(number, style));
  value.number = number;
  value.style = style.name;
  return value;
}

OutputValue textValue(std::string_view text) { return make(ValueKind::kText, text); }

OutputValue dateValue(std::string_view date) { return make(ValueKind::kDate, date); }

OutputValue variableNameValue(const Variable& variable) {
  OutputValue value = make(ValueKind::kVariableName, variable.label.empty() ? variable.name : variable.label);
  value.variable = variable.name;
  return value;
}

OutputValue variableNumberValue(const Variable& variable, double number) {
  OutputValue value = make(ValueKind::kVariableNumber, "");
  value.number = number;
  value.variable = variable.name;
  for (const auto& [labelled, label] : variable.numberLabels) {
    if (labelled == number) value.shown = label;
  }
  if (value.shown.empty()) value.shown = numberText(number, variable.format);
  return value;
}

OutputValue variableTextValue(const Variable& variable, std::string_view text) {
  OutputValue value = make(ValueKind::kVariableText, "");
  value.value = withoutEndBlanks(text);
  value.variable = variable.name;
  for (const auto& [labelled, label] : variable.textLabels) {
    if (withoutEndBlanks(labelled) == value.value) value.shown = label;
  }
  if (value.shown.empty()) value.shown = value.value;
  return value;
}

std::string identityOf(const OutputValue& value) {
  switch (value.kind) {
    case ValueKind::kNumber:
      return "n" + bitsOf(value.number);
    case ValueKind::kText:
      return "t" + value.shown;
    case ValueKind::kDate:
      return "d" + value.shown;
    case ValueKind::kVariableName:
      return "v" + value.variable;
    case ValueKind::kVariableNumber:
      return "m" + bitsOf(value.number) + " " + value.variable;
    case ValueKind::kVariableText:
      return "s" + std::to_string(value.variable.size()) + " " + value.variable + value.value;
  }
  return {};
}

const char* kindName(ValueKind kind) {
  switch (kind) {
    case ValueKind::kNumber:
      return "number";
    case ValueKind::kText:
      return "text";
    case ValueKind::kDate:
      return "date";
    case ValueKind::kVariableName:
      return "variable";
    default:
      return "value";
  }
}

}  // namespace kova::engine
