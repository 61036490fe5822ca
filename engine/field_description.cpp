#include "engine/field_description.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>

#include "engine/number_text.h"
#include "engine/table_schema.h"

namespace kova::engine {
namespace {

using Json = nlohmann::ordered_json;

Json valueOf(const FieldForm& form, double number) {
  if (form.type == FieldType::kInteger) return static_cast<std::int64_t>(number);
  if (form.type != FieldType::kNumber) return numberText(form.type, number);
  if (number == kSystemMissing) return "NaN";
  return std::isfinite(number) ? Json(number) : Json(numberText(form.type, number));
}

Json valueOf(const FieldForm& /*form*/, const std::string& text) { return text; }

std::string missingText(const FieldForm& form, double number) { return numberText(form.type, number); }
std::string missingText(const FieldForm& /*form*/, const std::string& text) { return text; }

// The list of missing values says of the blank text that it means no value, and no more.
bool isBlank(double /*number*/) { return false; }
bool isBlank(const std::string& text) { return text.empty(); }

// Two zeros differ in their sign.
bool isSame(double a, double b) { return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b); }
bool isSame(const std::string& a, const std::string& b) { return a == b; }

template <typename Value>
using Labels = std::vector<ValueLabel<Value>>;

// How many of the labels, the last ones, are those of missing values in the same order: the list of the missing values
// can give them, and they come behind all others when it is read.
template <typename Value>
std::size_t labelsOfMissing(const Labels<Value>& labels, const std::vector<Value>& missing) {
  std::size_t count = 0;
  for (auto value = missing.rbegin(); value != missing.rend() && count < labels.size(); ++value) {
    const auto& last = labels[labels.size() - 1 - count];
    if (isSame(last.value, *value) && !last.label.empty() && !isBlank(*value)) ++count;
  }
  return count;
}

template <typename Value>
const std::string* labelOf(const Labels<Value>& labels, std::size_t first, const Value& value) {
  for (std::size_t i = first; i < labels.size(); ++i) {
    if (isSame(labels[i].value, value)) return &labels[i].label;
  }
  return nullptr;
}

template <typename Value>
Json describeLabels(const FieldForm& form, const Labels<Value>& labels, std::size_t count) {
  Json list = Json::array();
  for (std::size_t i = 0; i < count; ++i) {
    list.push_back({{"value", valueOf(form, labels[i].value)}, {"label", labels[i].label}});
  }
  return list;
}

// The empty text, which means no value, the user-missing values, and what other readers can not take for a number.
template <typename Value>
Json describeMissing(const FieldForm& form, const Labels<Value>& labels, std::size_t firstLabel,
                     const std::vector<Value>& missing) {
  Json list = Json::array({""});
  for (const Value& value : missing) {
    const std::string text = missingText(form, value);
    if (isBlank(value) || std::find(list.begin(), list.end(), Json(text)) != list.end()) continue;
    const std::string* label = labelOf(labels, firstLabel, value);
    list.push_back(label == nullptr ? Json(text) : Json({{"value", text}, {"label", *label}}));
  }
  for (const std::string& text : form.notNumbers) list.push_back(text);
  return list;
}

// True when the list of missing values can say all of them: what differs, and no blank text.
template <typename Value>
bool isPlain(const std::vector<Value>& missing) {
  for (auto value = missing.begin(); value != missing.end(); ++value) {
    if (std::find(missing.begin(), value, *value) != value || isBlank(*value)) return false;
  }
  return true;
}

// What the list can not say: a range, a blank text, and one value twice, be it with another sign of 0.
Json describeOwnMissing(const Variable& variable) {
  const MissingValues& missing = variable.missing;
  Json own = Json::object();
  if (missing.kind < 0) own["range"] = {missing.numbers[0], missing.numbers[1]};
  const auto numbers = discreteMissingNumbers(missing);
  const auto texts = discreteMissingTexts(missing);
  if (variable.isNumeric()) {
    if (!numbers.empty() && (missing.kind < 0 || !isPlain(numbers))) own["values"] = numbers;
  } else if (!isPlain(texts)) {
    own["values"] = texts;
  }
  return own;
}

// The standard has categories of strings and whole numbers alone, and takes any other value for an error.
bool mayHaveCategories(const FieldForm& form) {
  return form.allLabelled && !form.hasEscapes && (form.type == FieldType::kString || form.type == FieldType::kInteger);
}

Json describeOwn(const Variable& variable) {
  Json own = {{"measure", wordOf(variable.measure)}, {"format", formatText(variable.format)}};
  if (!variable.isNumeric()) own["width"] = variable.width;
  if (variable.role != Role::kInput) own["role"] = wordOf(variable.role);
  const Alignment usual = variable.isNumeric() ? Alignment::kRight : Alignment::kLeft;
  if (variable.alignment != usual) own["alignment"] = wordOf(variable.alignment);
  if (variable.columnWidth != kUsualColumnWidth) own["columnWidth"] = variable.columnWidth;
  return own;
}

template <typename Value>
Json describe(const FieldWriter& writer, const Labels<Value>& labels, const std::vector<Value>& missing) {
  const Variable& variable = writer.variable();
  const FieldForm& form = writer.form();
  const std::size_t count = labels.size() - labelsOfMissing(labels, missing);
  Json own = describeOwn(variable);
  Json field = {{"name", variable.name}};
  if (!variable.label.empty()) field["title"] = variable.label;
  field["type"] = wordOf(form.type);
  if (count > 0) {
    const bool asCategories = mayHaveCategories(form);
    (asCategories ? field["categories"] : own["labels"]) = describeLabels(form, labels, count);
    if (asCategories && variable.measure == Measure::kOrdinal) field["categoriesOrdered"] = true;
  }
  field["missingValues"] = describeMissing(form, labels, count, missing);
  if (Json ownMissing = describeOwnMissing(variable); !ownMissing.empty()) own["missing"] = std::move(ownMissing);
  if (!form.notNumbers.empty()) own["notANumber"] = true;
  if (form.hasEscapes) own["escapes"] = true;
  if (!variable.attributes.empty()) own["attributes"] = describeAttributes(variable.attributes);
  field["x-kova"] = std::move(own);
  return field;
}

Json describeTexts(const std::vector<std::string>& texts) { return texts.size() == 1 ? Json(texts[0]) : Json(texts); }

}  // namespace

Json describeField(const FieldWriter& field) {
  const Variable& variable = field.variable();
  return variable.isNumeric() ? describe(field, variable.numberLabels, discreteMissingNumbers(variable.missing))
                              : describe(field, variable.textLabels, discreteMissingTexts(variable.missing));
}

Json describeAttributes(const Attributes& attributes) {
  const auto byName = [](const Attribute& a, const Attribute& b) { return a.name < b.name; };
  const bool isSorted = std::is_sorted(attributes.begin(), attributes.end(), byName);
  Json all = isSorted ? Json::object() : Json::array();
  for (const Attribute& attribute : attributes) {
    Json values = describeTexts(attribute.values);
    if (isSorted) {
      all[attribute.name] = std::move(values);
    } else {
      all.push_back({{"name", attribute.name}, {"values", std::move(values)}});
    }
  }
  return all;
}

std::vector<double> discreteMissingNumbers(const MissingValues& missing) {
  if (missing.kind == kMissingRangeAndOne) return {missing.numbers[2]};
  if (missing.kind <= 0) return {};
  return {missing.numbers.begin(), missing.numbers.begin() + missing.kind};
}

std::vector<std::string> discreteMissingTexts(const MissingValues& missing) {
  if (missing.kind <= 0) return {};
  return {missing.texts.begin(), missing.texts.begin() + missing.kind};
}

}  // namespace kova::engine
