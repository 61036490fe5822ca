#include "engine/field_writer.h"

#include <algorithm>
#include <cmath>

#include "engine/csv_rows.h"
#include "engine/field_description.h"
#include "engine/number_text.h"
#include "engine/text_file.h"
#include "engine/text_rules.h"

namespace kova::engine {
namespace {

// The type that says most about numbers of this format. One that can not say all of them is given up for kNumber.
FieldType typeFor(const Variable& variable) {
  if (!variable.isNumeric()) return FieldType::kString;
  switch (variable.format.type) {
    case FormatType::kDATE:
      return FieldType::kDate;
    case FormatType::kTIME:
      return FieldType::kTime;
    case FormatType::kDATETIME:
      return FieldType::kDateTime;
    default:
      return variable.format.decimals == 0 ? FieldType::kInteger : FieldType::kNumber;
  }
}

// True of what JSON and CSV can not hold.
bool needsEscapes(std::string_view text) {
  return text.find('\0') != std::string_view::npos || findInvalidUtf8(text) != std::string_view::npos;
}

void appendEscaped(unsigned char byte, std::string* text) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  text->push_back('%');
  text->push_back(kDigits[byte >> 4U]);
  text->push_back(kDigits[byte & 15U]);
}

// Escapes the bytes that are no part of a character, NUL bytes and '%' itself.
std::string withEscapes(std::string_view bytes) {
  std::string text;
  while (!bytes.empty()) {
    const std::size_t sound = std::min(findInvalidUtf8(bytes), bytes.size());
    for (const char c : bytes.substr(0, sound)) {
      if (c == '%' || c == '\0') {
        appendEscaped(static_cast<unsigned char>(c), &text);
      } else {
        text.push_back(c);
      }
    }
    bytes.remove_prefix(sound);
    if (bytes.empty()) break;
    appendEscaped(static_cast<unsigned char>(bytes.front()), &text);
    bytes.remove_prefix(1);
  }
  return text;
}

}  // namespace

FieldWriter::FieldWriter(const Variable& variable, const CaseStore& cases, std::size_t index)
    : variable_(variable), cases_(cases), index_(index) {
  form_.type = typeFor(variable);
  form_.allLabelled = true;
  if (variable.isNumeric()) {
    for (const double number : discreteMissingNumbers(variable.missing)) addKnown(number);
    for (const auto& label : variable.numberLabels) addKnown(label.value);
  } else {
    for (const std::string& text : discreteMissingTexts(variable.missing)) knownTexts_.insert(text);
    for (const auto& label : variable.textLabels) knownTexts_.insert(label.value);
  }
}

// The description must say it too.
void FieldWriter::addKnown(double number) {
  if (!canBeWritten(form_.type, number)) form_.type = FieldType::kNumber;
  knownNumbers_.insert(number);
}

void FieldWriter::look(std::size_t position) {
  if (variable_.isNumeric()) {
    lookAtNumber(cases_.number(position, index_));
  } else {
    lookAtText(textAt(position));
  }
}

void FieldWriter::lookAtNumber(double number) {
  if (number == kSystemMissing) return;
  if (form_.type != FieldType::kNumber && !canBeWritten(form_.type, number)) form_.type = FieldType::kNumber;
  if (std::isnan(number)) {
    form_.notNumbers.insert(notANumberText(number));
    form_.allLabelled = false;
  } else if (form_.allLabelled) {
    form_.allLabelled = knownNumbers_.contains(number);
  }
}

void FieldWriter::lookAtText(const std::string& text) {
  if (text.empty()) return;
  if (!form_.hasEscapes) form_.hasEscapes = needsEscapes(text);
  if (form_.allLabelled) form_.allLabelled = knownTexts_.contains(text);
}

std::string FieldWriter::textAt(std::size_t position) const {
  std::string text = cases_.text(position, index_);
  text.resize(withoutEndBlanks(text).size());
  return text;
}

void FieldWriter::appendValue(std::size_t position, std::string* line) const {
  if (!variable_.isNumeric()) {
    const std::string text = textAt(position);
    appendCsvValue(form_.hasEscapes ? withEscapes(text) : text, line);
    return;
  }
  const double number = cases_.number(position, index_);
  if (number == kSystemMissing) return;
  if (std::isnan(number)) {
    line->append(notANumberText(number));
  } else {
    appendNumber(form_.type, number, line);
  }
}

}  // namespace kova::engine
