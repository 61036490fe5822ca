// What a category or a cell shows, ready to be read. Taken when it is given: a variable that changes later leaves it as
// it was.
#ifndef KOVADX_ENGINE_OUTPUT_VALUE_H
#define KOVADX_ENGINE_OUTPUT_VALUE_H

#include <string>
#include <string_view>

#include "engine/output_number.h"
#include "engine/variable.h"

namespace kova::engine {

enum class ValueKind { kNumber, kText, kDate, kVariableName, kVariableNumber, kVariableText };

// A plain value.
struct OutputValue {
  ValueKind kind = ValueKind::kText;
  std::string shown;            // The text that stands for it.
  double number = 0;            // Of the two kinds of numbers.
  const char* style = nullptr;  // The name of a number's style; null without one.
  std::string variable;         // The variable's name, of the kinds that belong to one.
  std::string value;            // Of a variable's text, as it was given.

  bool isNumber() const { return kind == ValueKind::kNumber; }
};

// A number without a style names a category: it is shown as short as it goes.
OutputValue numberValue(double number);
OutputValue numberValue(double number, const NumberStyle& style);
OutputValue textValue(std::string_view text);
OutputValue dateValue(std::string_view date);
// Shown by the variable's label, by its name when it has none.
OutputValue variableNameValue(const Variable& variable);
// Shown by its value label; without one a number in the variable's print format, a text as it is. Blanks at the end of
// texts do not count.
OutputValue variableNumberValue(const Variable& variable, double number);
OutputValue variableTextValue(const Variable& variable, std::string_view text);

// A text by which equal values, and no others, are equal.
std::string identityOf(const OutputValue& value);

// The word for a kind in documents: "number", "text", "date", "variable", "value".
const char* kindName(ValueKind kind);

}  // namespace kova::engine

#endif
