#include "engine/field_labels.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "engine/case_store.h"

namespace kova::engine {
namespace {

// Adds a label unless the value has one.
template <typename Value>
void addLabel(std::vector<ValueLabel<Value>>* labels, const Value& value, const std::string& label) {
  const auto same = [&](const ValueLabel<Value>& other) { return other.value == value; };
  if (std::find_if(labels->begin(), labels->end(), same) == labels->end()) labels->push_back({value, label});
}

// The value and the label of an entry that is either the value itself or an object.
std::pair<JsonNode, std::string> valueAndLabel(const JsonNode& entry) {
  if (!entry.value().is_object()) return {entry, ""};
  return {entry["value"], entry["label"].text("")};
}

// A value as a text, for texts, and for labels of values that have none.
std::string plainText(const JsonNode& node) {
  return node.value().is_string() ? node.value().get<std::string>() : node.value().dump();
}

void addTextCategory(const JsonNode& value, const std::string& label, Field* field) {
  const std::string text = value.text();
  const auto size = static_cast<int>(std::min<std::size_t>(text.size(), kWidestString + 1));
  const int widest = field->widthFromData ? kWidestString : field->variable.width;
  if (size > widest) value.fail("at most " + std::to_string(widest) + " bytes");
  addLabel(&field->variable.textLabels, text, label.empty() ? text : label);
}

void addNumberCategory(const JsonNode& value, const std::string& label, Field* field) {
  std::optional<double> number;
  if (!value.exists()) {
    value.fail("a value");
  } else if (value.value().is_number()) {
    number = value.value().get<double>();
  } else {
    number = numberOf(*field, plainText(value));
  }
  if (!number) value.fail(expectationOf(*field));
  addLabel(&field->variable.numberLabels, *number, label.empty() ? plainText(value) : label);
}

void addMissingText(const std::string& text, const std::string& label, Field* field) {
  MissingValues& missing = field->variable.missing;
  missing.texts.at(static_cast<std::size_t>(missing.kind)) = text;
  ++missing.kind;
  if (!label.empty()) addLabel(&field->variable.textLabels, text, label);
}

void addMissingNumber(double number, const std::string& label, Field* field) {
  MissingValues& missing = field->variable.missing;
  missing.numbers.at(static_cast<std::size_t>(missing.kind)) = number;
  ++missing.kind;
  if (!label.empty()) addLabel(&field->variable.numberLabels, number, label);
}

bool canBeMissingText(const std::string& text, const Field& field) {
  const auto size = static_cast<int>(std::min<std::size_t>(text.size(), kWidestString));
  return size <= kMissingTextBytes && (field.widthFromData || size <= field.variable.width);
}

void addMissing(const JsonNode& entry, const std::string& text, const std::string& label, Field* field) {
  const auto number = field->isText() ? std::nullopt : numberOf(*field, text);
  const bool isUserMissing = field->isText() ? canBeMissingText(text, *field) : number && *number != kSystemMissing;
  if (text.empty() || !isUserMissing) {
    field->noValue.push_back(text);
    return;
  }
  if (field->variable.missing.kind == kMostMissing) entry.fail("at most three user-missing values");
  if (field->isText()) {
    addMissingText(text, label, field);
  } else {
    addMissingNumber(*number, label, field);
  }
}

}  // namespace

void readCategories(const JsonNode& node, Field* field) {
  if (!node.exists()) return;
  for (const JsonNode& entry : node.elements()) {
    const auto [value, label] = valueAndLabel(entry);
    if (field->isText()) {
      addTextCategory(value, label, field);
    } else {
      addNumberCategory(value, label, field);
    }
  }
}

void readMissingValues(const JsonNode& node, Field* field) {
  if (!node.exists()) {
    field->noValue = {""};
    return;
  }
  std::vector<std::string> seen;
  for (const JsonNode& entry : node.elements()) {
    const auto [value, label] = valueAndLabel(entry);
    const std::string text = value.text();
    if (std::find(seen.begin(), seen.end(), text) != seen.end()) continue;
    seen.push_back(text);
    addMissing(entry, text, label, field);
  }
}

}  // namespace kova::engine
