#include "engine/own_keys.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace kova::engine {
namespace {

// The keys of an object. Throws when it is none.
std::vector<std::string> keysOf(const JsonNode& node) {
  if (!node.value().is_object()) node.fail("an object");
  std::vector<std::string> keys;
  for (const auto& [key, value] : node.value().items()) keys.push_back(key);
  return keys;
}

void refuseOtherKeys(const JsonNode& node, std::initializer_list<std::string_view> known, const char* expected) {
  for (const std::string& key : keysOf(node)) {
    if (std::find(known.begin(), known.end(), key) == known.end()) node[key].fail(expected);
  }
}

std::vector<std::string> readTexts(const JsonNode& node) {
  if (!node.value().is_array()) return {node.text()};
  std::vector<std::string> texts;
  for (const JsonNode& element : node.elements()) texts.push_back(element.text());
  if (texts.empty()) node.fail("at least one text");
  return texts;
}

// The name as the field has it.
std::string readVariable(const JsonNode& node, const Variables& variables) {
  const auto position = variables.find(node.text());
  if (!position) node.fail("the name of a field");
  return variables[*position].name;
}

std::vector<std::string> readVariables(const JsonNode& node, const Variables& variables) {
  std::vector<std::string> names;
  for (const JsonNode& element : node.elements()) {
    names.push_back(readVariable(element, variables));
    if (std::find(names.begin(), names.end() - 1, names.back()) != names.end() - 1) element.fail("each field once");
  }
  return names;
}

ResponseSetKind readKind(const JsonNode& node) {
  const std::string word = node.text();
  if (word != "dichotomies" && word != "categories") node.fail("one of dichotomies, categories");
  return word == "dichotomies" ? ResponseSetKind::kDichotomies : ResponseSetKind::kCategories;
}

std::string readCountedValue(const JsonNode& node) {
  return node.exists() && node.value().is_number() ? node.value().dump() : node.text("");
}

ResponseSet readResponseSet(const JsonNode& node, const Variables& variables) {
  refuseOtherKeys(node, {"name", "label", "kind", "countedValue", "variables"},
                  "no keys but name, label, kind, countedValue, variables");
  ResponseSet set;
  set.name = node["name"].text();
  if (checkResponseSetName(set.name) != ErrorCode::kNone)
    node["name"].fail("a name of 2 to 64 bytes that begins with $");
  set.label = node["label"].text("");
  set.kind = readKind(node["kind"]);
  set.countedValue = readCountedValue(node["countedValue"]);
  set.variables = readVariables(node["variables"], variables);
  switch (checkResponseSet(variables, set)) {
    case ErrorCode::kNone:
      return set;
    case ErrorCode::kResponseSetTooSmall:
      node["variables"].fail("at least two fields");
    case ErrorCode::kResponseSetKindsMixed:
      node["variables"].fail("fields of one kind, all numbers or all strings");
    default:
      node["countedValue"].fail(set.kind == ResponseSetKind::kDichotomies
                                    ? "a value that the fields can have"
                                    : "no counted value, which only dichotomies have");
  }
}

void setResponseSet(std::vector<ResponseSet>* sets, ResponseSet set) {
  const auto same = [&set](const ResponseSet& other) { return sameName(other.name, set.name); };
  std::erase_if(*sets, same);
  sets->push_back(std::move(set));
}

std::string readNumericVariable(const JsonNode& node, const Variables& variables) {
  std::string name = readVariable(node, variables);
  if (!variables[*variables.find(name)].isNumeric()) node.fail("the name of a field of numbers");
  return name;
}

// What is wrong with the name is told at that place.
void addAttribute(const std::string& name, const JsonNode& place, const JsonNode& values, Attributes* attributes) {
  if (checkAttributeName(name) != ErrorCode::kNone) place.fail("a name of letters, digits and . _ $ # @");
  if (findAttribute(*attributes, name) != nullptr) place.fail("a name that no other attribute has");
  attributes->push_back({name, readTexts(values)});
}

}  // namespace

Attributes readAttributes(const JsonNode& node) {
  Attributes attributes;
  if (!node.exists()) return attributes;
  if (!node.value().is_array()) {
    for (const std::string& name : keysOf(node)) addAttribute(name, node[name], node[name], &attributes);
    return attributes;
  }
  for (const JsonNode& entry : node.elements()) {
    refuseOtherKeys(entry, {"name", "values"}, "no keys but name, values");
    const JsonNode values = entry["values"];
    if (!values.exists()) entry.fail("a name and values");
    addAttribute(entry["name"].text(), entry["name"], values, &attributes);
  }
  return attributes;
}

void readOwnKeys(const JsonNode& node, const Variables& variables, OwnKeys* keys) {
  if (!node.exists()) return;
  refuseOtherKeys(node, {"attributes", "responseSets", "weight", "split", "filter"},
                  "no keys but attributes, responseSets, weight, split, filter");
  for (Attribute& attribute : readAttributes(node["attributes"])) setAttribute(&keys->attributes, std::move(attribute));
  if (const JsonNode sets = node["responseSets"]; sets.exists()) {
    for (const JsonNode& set : sets.elements()) setResponseSet(&keys->responseSets, readResponseSet(set, variables));
  }
  if (const JsonNode weight = node["weight"]; weight.exists()) keys->weight = readNumericVariable(weight, variables);
  if (const JsonNode split = node["split"]; split.exists()) keys->split = readVariables(split, variables);
  if (const JsonNode filter = node["filter"]; filter.exists()) keys->filter = readNumericVariable(filter, variables);
}

}  // namespace kova::engine
