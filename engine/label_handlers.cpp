#include "engine/label_handlers.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "engine/data_set_access.h"
#include "engine/dictionary_rules.h"

namespace kova::engine {
namespace {

// Blanks at the end of a text mean nothing: cases have it filled up with them.
bool sameValue(double a, double b) { return a == b; }
bool sameValue(std::string_view a, std::string_view b) { return withoutEndBlanks(a) == withoutEndBlanks(b); }

template <typename Value>
auto findLabel(std::vector<ValueLabel<Value>>& labels, const Value& value) {
  return std::find_if(labels.begin(), labels.end(), [&](const auto& label) { return sameValue(label.value, value); });
}

template <typename Value>
void setLabel(std::vector<ValueLabel<Value>>* labels, Value value, std::string label) {
  const auto found = findLabel(*labels, value);
  if (found == labels->end()) {
    labels->push_back({std::move(value), std::move(label)});
  } else {
    found->label = std::move(label);
  }
}

template <typename Value>
ErrorCode eraseLabel(std::vector<ValueLabel<Value>>* labels, const Value& value) {
  const auto found = findLabel(*labels, value);
  if (found == labels->end()) return ErrorCode::kNoSuchValueLabel;
  labels->erase(found);
  return ErrorCode::kNone;
}

ErrorCode numberLabels(const Variable& variable, const RequestItems& /*items*/, CleXDSmb& reply) {
  if (!variable.isNumeric()) return ErrorCode::kWrongKind;
  reply.SetLong(static_cast<int>(variable.numberLabels.size()));
  for (const auto& [value, text] : variable.numberLabels) {
    reply.SetDouble(value);
    reply.SetString(text);
  }
  return ErrorCode::kNone;
}

// Two string lists: the values, then the labels.
ErrorCode textLabels(const Variable& variable, const RequestItems& /*items*/, CleXDSmb& reply) {
  if (variable.isNumeric()) return ErrorCode::kWrongKind;
  StringData values;
  StringData labels;
  for (const auto& [value, text] : variable.textLabels) {
    values.SetValue(value);
    labels.SetValue(text);
  }
  reply.SetLong(values.Size());
  reply.SetStringArray(values);
  reply.SetStringArray(labels);
  return ErrorCode::kNone;
}

ErrorCode setNumberLabel(DataSet& dataSet, std::size_t position, const RequestItems& items) {
  Variable& variable = dataSet.variables.change(position);
  if (!variable.isNumeric()) return ErrorCode::kWrongKind;
  if (!isValidNumber(items.number(0))) return ErrorCode::kNumberNotValid;
  setLabel(&variable.numberLabels, items.number(0), items.text(0));
  return ErrorCode::kNone;
}

ErrorCode setTextLabel(DataSet& dataSet, std::size_t position, const RequestItems& items) {
  Variable& variable = dataSet.variables.change(position);
  if (variable.isNumeric()) return ErrorCode::kWrongKind;
  const std::string value(withoutEndBlanks(items.text(0)));
  if (value.size() > static_cast<std::size_t>(variable.width)) return ErrorCode::kValueTooLong;
  setLabel(&variable.textLabels, value, items.text(1));
  return ErrorCode::kNone;
}

ErrorCode eraseLabels(DataSet& dataSet, std::size_t position, const RequestItems& /*items*/) {
  Variable& variable = dataSet.variables.change(position);
  variable.numberLabels.clear();
  variable.textLabels.clear();
  return ErrorCode::kNone;
}

ErrorCode eraseNumberLabel(DataSet& dataSet, std::size_t position, const RequestItems& items) {
  Variable& variable = dataSet.variables.change(position);
  return variable.isNumeric() ? eraseLabel(&variable.numberLabels, items.number(0)) : ErrorCode::kWrongKind;
}

ErrorCode eraseTextLabel(DataSet& dataSet, std::size_t position, const RequestItems& items) {
  Variable& variable = dataSet.variables.change(position);
  return variable.isNumeric() ? ErrorCode::kWrongKind : eraseLabel(&variable.textLabels, items.text(0));
}

constexpr HandlerRow kRows[] = {
    {Command::GetNValueLabels, askVariable<OfActive, numberLabels>},
    {Command::GetVarNValueLabelInDS, askVariable<OfNamed, numberLabels>},
    {Command::GetCValueLabels, askVariable<OfActive, textLabels>},
    {Command::GetVarCValueLabelInDS, askVariable<OfNamed, textLabels>},
    {Command::SetVarNValueLabel, changeByName<setNumberLabel>},
    {Command::SetVarNValueLabelInDS, changeAt<setNumberLabel>},
    {Command::SetVarCValueLabel, changeByName<setTextLabel>},
    {Command::SetVarCValueLabelInDS, changeAt<setTextLabel>},
    {Command::DelVarValueLabelInDS, changeAt<eraseLabels>},
    {Command::DelVarNValueLabelInDS, changeAt<eraseNumberLabel>},
    {Command::DelVarCValueLabelInDS, changeAt<eraseTextLabel>},
};

}  // namespace

std::span<const HandlerRow> labelHandlers() { return kRows; }

}  // namespace kova::engine
