#include "engine/dictionary_handlers.h"

#include <string>

#include "engine/data_set_access.h"

namespace kova::engine {
namespace {

ErrorCode variableCount(const DataSet& dataSet, const RequestItems& /*items*/, CleXDSmb& reply) {
  reply.SetLong(static_cast<int>(dataSet.variables.size()));
  return ErrorCode::kNone;
}

// Empty when every case counts once.
ErrorCode weight(const DataSet& dataSet, const RequestItems& /*items*/, CleXDSmb& reply) {
  reply.SetString(dataSet.weight);
  return ErrorCode::kNone;
}

ErrorCode name(const Variable& variable, const RequestItems& /*items*/, CleXDSmb& reply) {
  reply.SetString(variable.name);
  return ErrorCode::kNone;
}

ErrorCode label(const Variable& variable, const RequestItems& /*items*/, CleXDSmb& reply) {
  reply.SetString(variable.label);
  return ErrorCode::kNone;
}

// 0 for a number, else the string's width in bytes.
ErrorCode type(const Variable& variable, const RequestItems& /*items*/, CleXDSmb& reply) {
  reply.SetLong(variable.width);
  return ErrorCode::kNone;
}

ErrorCode formatAsText(const Variable& variable, const RequestItems& /*items*/, CleXDSmb& reply) {
  reply.SetString(formatText(variable.format));
  return ErrorCode::kNone;
}

ErrorCode formatAsNumbers(const Variable& variable, const RequestItems& /*items*/, CleXDSmb& reply) {
  reply.SetLong(static_cast<int>(variable.format.type));
  reply.SetLong(variable.format.width);
  reply.SetLong(variable.format.decimals);
  return ErrorCode::kNone;
}

ErrorCode measure(const Variable& variable, const RequestItems& /*items*/, CleXDSmb& reply) {
  reply.SetLong(static_cast<int>(variable.measure));
  return ErrorCode::kNone;
}

ErrorCode measureAsWord(const Variable& variable, const RequestItems& /*items*/, CleXDSmb& reply) {
  reply.SetString(std::string(wordOf(variable.measure)));
  return ErrorCode::kNone;
}

ErrorCode role(const Variable& variable, const RequestItems& /*items*/, CleXDSmb& reply) {
  reply.SetLong(static_cast<int>(variable.role));
  return ErrorCode::kNone;
}

ErrorCode alignment(const Variable& variable, const RequestItems& /*items*/, CleXDSmb& reply) {
  reply.SetLong(static_cast<int>(variable.alignment));
  return ErrorCode::kNone;
}

ErrorCode columnWidth(const Variable& variable, const RequestItems& /*items*/, CleXDSmb& reply) {
  reply.SetLong(variable.columnWidth);
  return ErrorCode::kNone;
}

// All three values travel, so that the caller's variables are set whatever the kind.
ErrorCode missingNumbers(const Variable& variable, const RequestItems& /*items*/, CleXDSmb& reply) {
  if (!variable.isNumeric()) return ErrorCode::kWrongKind;
  reply.SetLong(variable.missing.kind);
  for (const double value : variable.missing.numbers) reply.SetDouble(value);
  return ErrorCode::kNone;
}

ErrorCode missingTexts(const Variable& variable, const RequestItems& /*items*/, CleXDSmb& reply) {
  if (variable.isNumeric()) return ErrorCode::kWrongKind;
  reply.SetLong(variable.missing.kind);
  for (const std::string& value : variable.missing.texts) reply.SetString(value);
  return ErrorCode::kNone;
}

// Asks about the rules alone, not about a data set, so it is answered when there is none.
ErrorCode validateVarName(EngineState& /*state*/, const CleXDSmb& request, CleXDSmb& reply) {
  reply.SetLong(static_cast<int>(faultOfVariableName(request.Strings()[0])));
  return ErrorCode::kNone;
}

constexpr HandlerRow kRows[] = {
    {Command::GetVariableCount, askDataSet<OfActive, variableCount>},
    {Command::GetVariableCountInProcDS, askDataSet<OfProcedure, variableCount>},
    {Command::GetVarCountInDS, askDataSet<OfNamed, variableCount>},
    {Command::GetWeightVar, askDataSet<OfActive, weight>},
    {Command::GetVariableName, askVariable<OfActive, name>},
    {Command::GetVariableNameInProcDS, askVariable<OfProcedure, name>},
    {Command::GetVarNameInDS, askVariable<OfNamed, name>},
    {Command::GetVariableLabel, askVariable<OfActive, label>},
    {Command::GetVariableLabelInProcDS, askVariable<OfProcedure, label>},
    {Command::GetVarLabelInDS, askVariable<OfNamed, label>},
    {Command::GetVariableType, askVariable<OfActive, type>},
    {Command::GetVariableTypeInProcDS, askVariable<OfProcedure, type>},
    {Command::GetVarTypeInDS, askVariable<OfNamed, type>},
    {Command::GetVariableFormat, askVariable<OfActive, formatAsText>},
    {Command::GetVariableFormatInProcDS, askVariable<OfProcedure, formatAsText>},
    {Command::GetVarFormatInDS, askVariable<OfNamed, formatAsText>},
    {Command::GetVariableFormatType, askVariable<OfActive, formatAsNumbers>},
    {Command::GetVariableFormatTypeInProcDS, askVariable<OfProcedure, formatAsNumbers>},
    {Command::GetVariableMeasurementLevel, askVariable<OfActive, measure>},
    {Command::GetVariableMeasurementLevelInProcDS, askVariable<OfProcedure, measure>},
    {Command::GetVarMeasurementLevelInDS, askVariable<OfNamed, measureAsWord>},
    {Command::GetVariableRole, askVariable<OfActive, role>},
    {Command::GetVariableRoleInProcDS, askVariable<OfProcedure, role>},
    {Command::GetVarRoleInDS, askVariable<OfNamed, role>},
    {Command::GetVarAlignmentInDS, askVariable<OfNamed, alignment>},
    {Command::GetVarColumnWidthInDS, askVariable<OfNamed, columnWidth>},
    {Command::GetVarNMissingValues, askVariable<OfActive, missingNumbers>},
    {Command::GetVarNMissingValuesInProcDS, askVariable<OfProcedure, missingNumbers>},
    {Command::GetVarNMissingValuesInDS, askVariable<OfNamed, missingNumbers>},
    {Command::GetVarCMissingValues, askVariable<OfActive, missingTexts>},
    {Command::GetVarCMissingValuesInProcDS, askVariable<OfProcedure, missingTexts>},
    {Command::GetVarCMissingValuesInDS, askVariable<OfNamed, missingTexts>},
    {Command::ValidateVarName, validateVarName},
};

}  // namespace

std::span<const HandlerRow> dictionaryHandlers() { return kRows; }

}  // namespace kova::engine
