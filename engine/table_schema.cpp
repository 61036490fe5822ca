#include "engine/table_schema.h"

#include <algorithm>
#include <optional>
#include <unordered_set>
#include <utility>

#include "engine/field_labels.h"
#include "engine/own_keys.h"
#include "engine/text_rules.h"

namespace kova::engine {
namespace {

// What a field is when its description does not say more. A text's print format of width 0 is as wide as the variable.
struct TypeRow {
  std::string_view word;
  FieldType type;
  Format format;
  Measure measure;
};

constexpr TypeRow kTypes[] = {
    {"string", FieldType::kString, {FormatType::kA, 0, 0}, Measure::kNominal},
    {"number", FieldType::kNumber, {FormatType::kF, 8, 2}, Measure::kScale},
    {"integer", FieldType::kInteger, {FormatType::kF, 8, 0}, Measure::kScale},
    {"boolean", FieldType::kBoolean, {FormatType::kF, 1, 0}, Measure::kNominal},
    {"date", FieldType::kDate, {FormatType::kDATE, 10, 0}, Measure::kScale},
    {"time", FieldType::kTime, {FormatType::kTIME, 8, 0}, Measure::kScale},
    {"datetime", FieldType::kDateTime, {FormatType::kDATETIME, 19, 0}, Measure::kScale},
};

// Properties that may stand in a field, but with this value alone: another one would change how texts are read.
const std::pair<const char*, nlohmann::json> kFixedProperties[] = {
    {"decimalChar", "."},
    {"groupChar", ""},
    {"bareNumber", true},
};

std::string readName(const JsonNode& node) {
  const std::string name = node.text();
  const bool hasControl = std::any_of(name.begin(), name.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; });
  if (name.empty() || name.size() > kLongestName || hasControl) node.fail("a name of 1 to 64 bytes");
  return name;
}

const TypeRow& readType(const JsonNode& node) {
  const std::string word = node.text("string");
  for (const TypeRow& row : kTypes) {
    if (row.word == word) return row;
  }
  node.fail("one of string, number, integer, boolean, date, time, datetime");
}

std::vector<std::string> readTexts(const JsonNode& node, std::vector<std::string> fallback) {
  if (!node.exists()) return fallback;
  std::vector<std::string> texts;
  for (const JsonNode& element : node.elements()) texts.push_back(element.text());
  if (texts.empty()) node.fail("at least one text");
  return texts;
}

// No word of these may mean the opposite too.
void checkWords(const JsonNode& node, const std::vector<std::string>& opposite) {
  if (!node.exists()) return;
  for (const JsonNode& element : node.elements()) {
    const bool isBoth = std::find(opposite.begin(), opposite.end(), element.text()) != opposite.end();
    if (isBoth) element.fail("a text that is not both true and false");
  }
}

void checkReadable(const JsonNode& node, const Field& field) {
  for (const auto& [key, value] : kFixedProperties) {
    const JsonNode property = node[key];
    if (property.exists() && property.value() != value) property.fail(value.dump());
  }
  const bool isMoment = field.variable.format.type == FormatType::kDATE ||
                        field.variable.format.type == FormatType::kTIME ||
                        field.variable.format.type == FormatType::kDATETIME;
  if (isMoment && node["format"].text("default") != "default") node["format"].fail("\"default\"");
}

void readFormat(const JsonNode& node, Field* field) {
  if (!node.exists()) return;
  const auto format = parseFormat(node.text());
  if (!format || format->isText() != field->isText()) {
    node.fail(field->isText() ? "a format of texts, as A20" : "a format of numbers, as F8.2");
  }
  field->variable.format = *format;
}

void readWidth(const JsonNode& node, Field* field) {
  if (!node.exists()) return;
  if (!field->isText()) node.fail("no width, which only a string field has");
  const auto& value = node.value();
  const auto inRange = [&] { return value.get<std::uint64_t>() >= 1 && value.get<std::uint64_t>() <= kWidestString; };
  if (!value.is_number_unsigned() || !inRange()) node.fail("a width of 1 to 32767 bytes");
  field->variable.width = value.get<int>();
  field->widthFromData = false;
}

template <typename Value>
void readWord(const JsonNode& node, std::optional<Value> (*lookUp)(std::string_view), const char* expected,
              Value* out) {
  if (!node.exists()) return;
  const auto value = lookUp(node.text());
  if (!value) node.fail(expected);
  *out = *value;
}

void readColumnWidth(const JsonNode& node, Field* field) {
  if (!node.exists()) return;
  const auto& value = node.value();
  const auto inRange = [&] { return value.get<std::uint64_t>() >= 1 && value.get<std::uint64_t>() <= kWidestColumn; };
  if (!value.is_number_unsigned() || !inRange()) node.fail("a column width of 1 to 255");
  field->variable.columnWidth = value.get<int>();
}

// A key that may say true, of fields of that type.
bool readTruth(const JsonNode& node, const Field& field, FieldType type, const char* otherwise) {
  if (!node.exists()) return false;
  if (!node.value().is_boolean()) node.fail("true or false");
  if (field.type != type) node.fail(otherwise);
  return node.value().get<bool>();
}

constexpr std::string_view kFieldKeys[] = {"measure",    "role",   "width",   "format",     "alignment", "columnWidth",
                                           "attributes", "labels", "missing", "notANumber", "escapes"};

void readFieldKeys(const JsonNode& node, Field* field) {
  if (!node.exists()) return;
  readWord(node["measure"], measureOf, "one of unknown, nominal, ordinal, scale", &field->variable.measure);
  readWord(node["role"], roleOf, "one of input, target, both, none, partition, split", &field->variable.role);
  readWord(node["alignment"], alignmentOf, "one of left, right, center", &field->variable.alignment);
  readColumnWidth(node["columnWidth"], field);
  field->variable.attributes = readAttributes(node["attributes"]);
  readWidth(node["width"], field);
  readFormat(node["format"], field);
  field->hasNotANumber =
      readTruth(node["notANumber"], *field, FieldType::kNumber, "no key that only a number field has");
  field->hasEscapes = readTruth(node["escapes"], *field, FieldType::kString, "no key that only a string field has");
  for (const auto& [key, value] : node.value().items()) {
    if (std::find(std::begin(kFieldKeys), std::end(kFieldKeys), key) == std::end(kFieldKeys)) {
      node[key].fail(
          "no keys but measure, role, width, format, alignment, columnWidth, attributes, labels, missing, notANumber, "
          "escapes");
    }
  }
}

// Categories are names of things, in an order if they say so.
Measure measureFrom(const JsonNode& node, const TypeRow& type) {
  if (!node["categories"].exists()) return type.measure;
  const JsonNode ordered = node["categoriesOrdered"];
  if (!ordered.exists()) return Measure::kNominal;
  if (!ordered.value().is_boolean()) ordered.fail("true or false");
  return ordered.value().get<bool>() ? Measure::kOrdinal : Measure::kNominal;
}

Field readField(const JsonNode& node, const JsonNode& tableMissing) {
  const TypeRow& type = readType(node["type"]);
  Field field;
  field.type = type.type;
  field.widthFromData = field.isText();
  field.variable.name = readName(node["name"]);
  field.variable.label = node["title"].text(node["description"].text(""));
  field.variable.width = field.isText() ? 1 : 0;
  field.variable.format = type.format;
  field.variable.alignment = field.isText() ? Alignment::kLeft : Alignment::kRight;
  field.variable.measure = measureFrom(node, type);
  field.trueTexts = readTexts(node["trueValues"], {"true", "True", "TRUE", "1"});
  field.falseTexts = readTexts(node["falseValues"], {"false", "False", "FALSE", "0"});
  checkWords(node["falseValues"], field.trueTexts);
  checkWords(node["trueValues"], field.falseTexts);
  checkReadable(node, field);
  const JsonNode own = node["x-kova"];
  readFieldKeys(own, &field);
  readCategories(node["categories"], &field);
  if (own.exists()) readCategories(own["labels"], &field);
  const JsonNode ownMissing = node["missingValues"];
  readMissingValues(ownMissing.exists() ? ownMissing : tableMissing, &field);
  if (own.exists()) readOwnMissing(own["missing"], &field);
  return field;
}

}  // namespace

std::string_view wordOf(FieldType type) {
  return std::find_if(std::begin(kTypes), std::end(kTypes) - 1, [type](const TypeRow& row) { return row.type == type; })
      ->word;
}

std::vector<Field> readTableSchema(const JsonNode& schema) {
  const JsonNode match = schema["fieldsMatch"];
  if (match.exists() && match.value() != "exact" && match.value() != nlohmann::json{"exact"}) match.fail("\"exact\"");
  std::vector<Field> fields;
  std::unordered_set<std::string, NameHash, NameEqual> names;
  for (const JsonNode& node : schema["fields"].elements()) {
    fields.push_back(readField(node, schema["missingValues"]));
    if (!names.insert(fields.back().variable.name).second) node["name"].fail("a name that no other field has");
  }
  if (fields.empty()) schema["fields"].fail("at least one field");
  return fields;
}

}  // namespace kova::engine
