// One column of a table as its schema describes it: the variable that it becomes and how its texts are read.
#ifndef KOVADX_ENGINE_FIELD_H
#define KOVADX_ENGINE_FIELD_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/variable.h"

namespace kova::engine {

// Before the bits of a not-a-number.
constexpr std::string_view kNotANumberMark = "NaN:";

enum class FieldType { kString, kNumber, kInteger, kBoolean, kDate, kTime, kDateTime };

// A plain value.
struct Field {
  FieldType type = FieldType::kString;
  Variable variable;
  bool widthFromData = false;          // The variable's width is the longest text's, to be found out.
  std::vector<std::string> noValue;    // Texts that stand for no value: system-missing, or a blank text.
  std::vector<std::string> trueTexts;  // Of a boolean field.
  std::vector<std::string> falseTexts;
  bool hasNotANumber =
      false;                // A number field's texts "NaN:" and 16 hexadecimal digits are not-a-numbers of these bits.
  bool hasEscapes = false;  // '%' and two hexadecimal digits in a string field's text stand for a byte.

  bool isText() const { return type == FieldType::kString; }
  bool meansNoValue(std::string_view text) const;
};

// The number that the text of a field that is no string stands for: amounts as they are, 1 and 0 for true and false,
// days and times in seconds (since 1 January 1970 00:00, or since midnight). "NaN" is system-missing in a number field,
// "INF" and "-INF" are infinities. Nothing when the text is none of its type.
std::optional<double> numberOf(const Field& field, std::string_view text);

// The bytes that a text with escapes stands for. Nothing when a '%' has no two hexadecimal digits behind it.
std::optional<std::string> withoutEscapes(std::string_view text);

// What such a text must be, for a message: "a whole number".
std::string expectationOf(const Field& field);

}  // namespace kova::engine

#endif
