#include "engine/dictionary_handlers.h"

namespace kova::engine {
namespace {

// Most commands ask one thing of one variable, whose position is the first long item.
using Answer = ErrorCode (*)(const Variable& variable, CleXDSmb& reply);

template <Answer answer>
ErrorCode ofVariable(EngineState& state, const CleXDSmb& request, CleXDSmb& reply) {
  if (state.active == nullptr) return ErrorCode::kNoActiveDataSet;
  const int position = request.FirstLong();
  const auto& variables = state.active->variables;
  if (position < 0 || static_cast<std::size_t>(position) >= variables.size()) return ErrorCode::kIndexOutOfRange;
  return answer(variables[static_cast<std::size_t>(position)], reply);
}

ErrorCode getVariableCount(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  if (state.active == nullptr) return ErrorCode::kNoActiveDataSet;
  reply.SetLong(static_cast<int>(state.active->variables.size()));
  return ErrorCode::kNone;
}

ErrorCode getRowCount(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  if (state.active == nullptr) return ErrorCode::kNoActiveDataSet;
  reply.SetLong(static_cast<int>(state.active->cases.caseCount()));
  return ErrorCode::kNone;
}

ErrorCode name(const Variable& variable, CleXDSmb& reply) {
  reply.SetString(variable.name);
  return ErrorCode::kNone;
}

ErrorCode label(const Variable& variable, CleXDSmb& reply) {
  reply.SetString(variable.label);
  return ErrorCode::kNone;
}

// 0 for a number, else the string's width in bytes.
ErrorCode type(const Variable& variable, CleXDSmb& reply) {
  reply.SetLong(variable.width);
  return ErrorCode::kNone;
}

ErrorCode formatAsText(const Variable& variable, CleXDSmb& reply) {
  reply.SetString(formatText(variable.format));
  return ErrorCode::kNone;
}

ErrorCode formatAsNumbers(const Variable& variable, CleXDSmb& reply) {
  reply.SetLong(static_cast<int>(variable.format.type));
  reply.SetLong(variable.format.width);
  reply.SetLong(variable.format.decimals);
  return ErrorCode::kNone;
}

ErrorCode measure(const Variable& variable, CleXDSmb& reply) {
  reply.SetLong(static_cast<int>(variable.measure));
  return ErrorCode::kNone;
}

ErrorCode role(const Variable& variable, CleXDSmb& reply) {
  reply.SetLong(static_cast<int>(variable.role));
  return ErrorCode::kNone;
}

// All three values travel, so that the caller's variables are set whatever the kind.
ErrorCode missingNumbers(const Variable& variable, CleXDSmb& reply) {
  if (!variable.isNumeric()) return ErrorCode::kWrongKind;
  reply.SetLong(variable.missing.kind);
  for (const double value : variable.missing.numbers) reply.SetDouble(value);
  return ErrorCode::kNone;
}

ErrorCode missingTexts(const Variable& variable, CleXDSmb& reply) {
  if (variable.isNumeric()) return ErrorCode::kWrongKind;
  reply.SetLong(variable.missing.kind);
  for (const std::string& value : variable.missing.texts) reply.SetString(value);
  return ErrorCode::kNone;
}

ErrorCode numberLabels(const Variable& variable, CleXDSmb& reply) {
  if (!variable.isNumeric()) return ErrorCode::kWrongKind;
  reply.SetLong(static_cast<int>(variable.numberLabels.size()));
  for (const auto& [value, text] : variable.numberLabels) {
    reply.SetDouble(value);
    reply.SetString(text);
  }
  return ErrorCode::kNone;
}

// Two string lists: the values, then the labels.
ErrorCode textLabels(const Variable& variable, CleXDSmb& reply) {
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

constexpr HandlerRow kRows[] = {
    {Command::GetVariableCount, getVariableCount},
    {Command::GetRowCount, getRowCount},
    {Command::GetVariableName, ofVariable<name>},
    {Command::GetVariableLabel, ofVariable<label>},
    {Command::GetVariableType, ofVariable<type>},
    {Command::GetVariableFormat, ofVariable<formatAsText>},
    {Command::GetVariableFormatType, ofVariable<formatAsNumbers>},
    {Command::GetVariableMeasurementLevel, ofVariable<measure>},
    {Command::GetVariableRole, ofVariable<role>},
    {Command::GetVarNMissingValues, ofVariable<missingNumbers>},
    {Command::GetVarCMissingValues, ofVariable<missingTexts>},
    {Command::GetNValueLabels, ofVariable<numberLabels>},
    {Command::GetCValueLabels, ofVariable<textLabels>},
};

}  // namespace

std::span<const HandlerRow> dictionaryHandlers() { return kRows; }

}  // namespace kova::engine
