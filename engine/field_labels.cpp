#include "engine/field_labels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

#include "engine/data_problem.h"
#include "engine/dictionary_rules.h"

namespace kova::engine {
namespace {

// Adds the label that an entry gives to a value. The same one may be given twice, but no other one.
template <typename Value>
void addLabel(const JsonNode& entry, const Value& value, const std::string& label,
              std::vector<ValueLabel<Value>>* labels) {
  const auto same = [&](const ValueLabel<Value>& other) { return other.value == value; };
  const auto found = std::find_if(labels->begin(), labels->end(), same);
  if (found == labels->end()) {
    labels->push_back({value, label});
  } else if (found->label != label) {
    const JsonNode place = entry.value().is_object() ? entry["label"] : entry;
    place.fail(quotedText(found->label) + " as the only label of this value");
  }
}

// The value and the label of an entry that is either the value itself or an object, which may have no label.
std::pair<JsonNode, std::optional<std::string>> valueAndLabel(const JsonNode& entry) {
  if (!entry.value().is_object()) return {entry, std::nullopt};
  const JsonNode label = entry["label"];
  return {entry["value"], label.exists() ? std::optional(label.text()) : std::nullopt};
}

// A value as a text, for texts, and for labels of values that have none.
std::string plainText(const JsonNode& node) {
  return node.value().is_string() ? node.value().get<std::string>() : node.value().dump();
}

void addTextCategory(const JsonNode& entry, const JsonNode& value, const std::optional<std::string>& label,
                     Field* field) {
  const std::string text = value.text();
  const auto size = static_cast<int>(std::min<std::size_t>(text.size(), kWidestString + 1));
  const int widest = field->widthFromData ? kWidestString : field->variable.width;
  if (size > widest) value.fail("at most " + std::to_string(widest) + " bytes");
  addLabel(entry, text, label.value_or(text), &field->variable.textLabels);
}

// A JSON number is taken as its text would be in the table: not every number is a value of every type.
void addNumberCategory(const JsonNode& entry, const JsonNode& value, const std::optional<std::string>& label,
                       Field* field) {
  if (!value.exists()) value.fail("a value");
  const auto number = numberOf(*field, plainText(value));
  if (!number) value.fail(expectationOf(*field));
  addLabel(entry, *number, label.value_or(plainText(value)), &field->variable.numberLabels);
}

// Adds a user-missing value unless it is there, in these words or in others.
template <typename Value>
void addMissingValue(const JsonNode& entry, const Value& value, int* kind, std::array<Value, kMostMissing>* values) {
  const auto next = values->begin() + *kind;
  if (std::find(values->begin(), next, value) != next) return;
  if (*kind == kMostMissing) entry.fail("at most three user-missing values");
  *next = value;
  ++*kind;
}

bool canBeMissingText(const std::string& text, const Field& field) {
  const auto size = static_cast<int>(std::min<std::size_t>(text.size(), kWidestString));
  return size <= kMissingTextBytes && (field.widthFromData || size <= field.variable.width);
}

void addMissing(const JsonNode& entry, const std::string& text, const std::string& label, Field* field) {
  const auto number = field->isText() ? std::nullopt : numberOf(*field, text);
  if (number && std::isnan(*number)) return;  // It stands there for other readers, which have no not-a-numbers.
  const bool isUserMissing = field->isText() ? canBeMissingText(text, *field) : number && isValidNumber(*number);
  if (text.empty() || !isUserMissing) {
    field->noValue.push_back(text);
    return;
  }
  Variable& variable = field->variable;
  if (field->isText()) {
    addMissingValue(entry, text, &variable.missing.kind, &variable.missing.texts);
    if (!label.empty()) addLabel(entry, text, label, &variable.textLabels);
  } else {
    addMissingValue(entry, *number, &variable.missing.kind, &variable.missing.numbers);
    if (!label.empty()) addLabel(entry, *number, label, &variable.numberLabels);
  }
}

double readMissingNumber(const JsonNode& node) {
  const bool isNumber = node.value().is_number();
  if (!isNumber || !isValidNumber(node.value().get<double>())) node.fail("a number");
  return node.value().get<double>();
}

std::string readMissingText(const JsonNode& node, const Field& field) {
  const std::string text = node.text();
  if (!canBeMissingText(text, field)) node.fail("a text of at most 8 bytes that is no longer than the field's width");
  return text;
}

void readMissingRange(const JsonNode& node, const Field& field, MissingValues* missing) {
  if (field.isText()) node.fail("no range, which only a field of numbers has");
  const auto ends = node.elements();
  if (ends.size() != 2) node.fail("a list of two numbers");
  missing->kind = kMissingRange;
  missing->numbers = {readMissingNumber(ends[0]), readMissingNumber(ends[1]), 0};
  if (missing->numbers[0] > missing->numbers[1]) node.fail("the lower end first");
}

}  // namespace

void readCategories(const JsonNode& node, Field* field) {
  if (!node.exists()) return;
  for (const JsonNode& entry : node.elements()) {
    const auto [value, label] = valueAndLabel(entry);
    if (field->isText()) {
      addTextCategory(entry, value, label, field);
    } else {
      addNumberCategory(entry, value, label, field);
    }
  }
}

void readMissingValues(const JsonNode& node, Field* field) {
  if (!node.exists()) {
    field->noValue = {""};
    return;
  }
  for (const JsonNode& entry : node.elements()) {
    const auto [value, label] = valueAndLabel(entry);
    addMissing(entry, value.text(), label.value_or(""), field);
  }
}

void readOwnMissing(const JsonNode& node, Field* field) {
  if (!node.exists()) return;
  for (const auto& [key, value] : node.value().items()) {
    if (key != "range" && key != "values") node[key].fail("no keys but range, values");
  }
  MissingValues& missing = field->variable.missing;
  missing = {};
  const JsonNode range = node["range"];
  if (range.exists()) readMissingRange(range, *field, &missing);
  const JsonNode values = node["values"];
  if (!values.exists()) return;
  const auto entries = values.elements();
  const std::size_t first = range.exists() ? 2 : 0;
  if (entries.size() > kMostMissing - first) values.fail(first == 0 ? "at most three values" : "at most one value");
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (field->isText()) {
      missing.texts.at(i) = readMissingText(entries[i], *field);
    } else {
      missing.numbers.at(first + i) = readMissingNumber(entries[i]);
    }
  }
  if (!range.exists()) missing.kind = static_cast<int>(entries.size());
  if (range.exists() && !entries.empty()) missing.kind = kMissingRangeAndOne;
}

}  // namespace kova::engine
