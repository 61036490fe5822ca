#include "engine/xpath_dictionary.h"

#include <string>

#include "engine/output_xml.h"

namespace kova::engine {
namespace {

constexpr const char* kRoleWords[] = {"input", "target", "both", "none", "partition", "split"};
constexpr const char* kAlignmentWords[] = {"left", "right", "center"};

void appendAttributes(pugi::xml_node parent, const Attributes& attributes) {
  for (const Attribute& attribute : attributes) {
    pugi::xml_node element = parent.append_child("attribute");
    putAttribute(element, "name", attribute.name);
    for (const std::string& value : attribute.values) appendText(element, "value", value);
  }
}

// A range is one element, every single value one.
void appendMissing(pugi::xml_node parent, const Variable& variable) {
  const MissingValues& missing = variable.missing;
  std::size_t next = 0;
  if (missing.kind < 0) {
    pugi::xml_node range = parent.append_child("missing");
    putAttribute(range, "low", shortNumberText(missing.numbers[0]));
    putAttribute(range, "high", shortNumberText(missing.numbers[1]));
    next = 2;
  }
  const auto end = static_cast<std::size_t>(missing.kind == kMissingRange ? 2 : missing.kind < 0 ? 3 : missing.kind);
  for (; next < end; ++next) {
    const bool isNumber = variable.isNumeric();
    putAttribute(parent.append_child("missing"), "value",
                 isNumber ? shortNumberText(missing.numbers[next]) : missing.texts[next]);
  }
}

void appendLabels(pugi::xml_node parent, const Variable& variable) {
  for (const auto& [value, label] : variable.numberLabels) {
    putAttribute(appendText(parent, "label", label), "value", shortNumberText(value));
  }
  for (const auto& [value, label] : variable.textLabels) {
    putAttribute(appendText(parent, "label", label), "value", value);
  }
}

void appendVariable(pugi::xml_node parent, const Variable& variable, std::size_t position) {
  pugi::xml_node element = parent.append_child("variable");
  putAttribute(element, "position", static_cast<int>(position));
  putAttribute(element, "name", variable.name);
  putAttribute(element, "label", variable.label);
  putAttribute(element, "type", variable.isNumeric() ? "number" : "string");
  if (!variable.isNumeric()) putAttribute(element, "width", variable.width);
  putAttribute(element, "format", formatText(variable.format));
  putAttribute(element, "measure", wordOf(variable.measure));
  putAttribute(element, "role", kRoleWords[static_cast<int>(variable.role)]);
  putAttribute(element, "alignment", kAlignmentWords[static_cast<int>(variable.alignment)]);
  putAttribute(element, "column-width", variable.columnWidth);
  appendMissing(element, variable);
  appendLabels(element, variable);
  appendAttributes(element, variable.attributes);
}

void appendResponseSet(pugi::xml_node parent, const ResponseSet& set) {
  pugi::xml_node element = parent.append_child("response-set");
  putAttribute(element, "name", set.name);
  putAttribute(element, "label", set.label);
  putAttribute(element, "kind", set.kind == ResponseSetKind::kDichotomies ? "dichotomies" : "categories");
  if (!set.countedValue.empty()) putAttribute(element, "counted", set.countedValue);
  for (const std::string& name : set.variables) putAttribute(element.append_child("member"), "variable", name);
}

}  // namespace

void appendDictionary(pugi::xml_node parent, const DataSet& dataSet) {
  pugi::xml_node element = parent.append_child("dictionary");
  putAttribute(element, "name", dataSet.name);
  putAttribute(element, "cases", static_cast<int>(dataSet.cases.caseCount()));
  if (!dataSet.weight.empty()) putAttribute(element, "weight", dataSet.weight);
  std::size_t position = 0;
  for (const Variable& variable : dataSet.variables) appendVariable(element, variable, position++);
  for (const ResponseSet& set : dataSet.responseSets) appendResponseSet(element, set);
  appendAttributes(element, dataSet.attributes);
}

}  // namespace kova::engine
