#include "engine/attribute_handlers.h"

#include <algorithm>
#include <string>
#include <utility>

#include "engine/data_set_access.h"

namespace kova::engine {
namespace {

ErrorCode answerNames(const Attributes& attributes, CleXDSmb& reply) {
  reply.SetLong(static_cast<int>(attributes.size()));
  for (const Attribute& attribute : attributes) reply.SetString(attribute.name);
  return ErrorCode::kNone;
}

ErrorCode answerValues(const Attributes& attributes, const std::string& name, CleXDSmb& reply) {
  const Attribute* attribute = findAttribute(attributes, name);
  if (attribute == nullptr) return ErrorCode::kNoSuchAttribute;
  reply.SetLong(static_cast<int>(attribute->values.size()));
  for (const std::string& value : attribute->values) reply.SetString(value);
  return ErrorCode::kNone;
}

ErrorCode setValues(Attributes* attributes, const std::string& name, const std::vector<std::string>& values) {
  const ErrorCode code = checkAttributeName(name);
  if (code != ErrorCode::kNone) return code;
  if (values.empty()) return ErrorCode::kAttributeWithoutValue;
  setAttribute(attributes, {name, values});
  return ErrorCode::kNone;
}

// Replaces one of the values, or adds one behind them: at 0, an attribute that is not there yet begins.
ErrorCode setOneValue(Attributes* attributes, const std::string& name, const std::string& value, int position) {
  const ErrorCode code = checkAttributeName(name);
  if (code != ErrorCode::kNone) return code;
  const Attribute* old = findAttribute(*attributes, name);
  Attribute changed = old == nullptr ? Attribute{name, {}} : *old;
  const auto place = static_cast<std::size_t>(position);
  if (position < 0 || place > changed.values.size()) return ErrorCode::kAttributePositionOutOfRange;
  changed.values.resize(std::max(changed.values.size(), place + 1));
  changed.values[place] = value;
  setAttribute(attributes, std::move(changed));
  return ErrorCode::kNone;
}

ErrorCode erase(Attributes* attributes, const std::string& name) {
  return eraseAttribute(attributes, name) ? ErrorCode::kNone : ErrorCode::kNoSuchAttribute;
}

ErrorCode variableNames(const Variable& variable, const RequestItems& /*items*/, CleXDSmb& reply) {
  return answerNames(variable.attributes, reply);
}

ErrorCode variableValues(const Variable& variable, const RequestItems& items, CleXDSmb& reply) {
  return answerValues(variable.attributes, items.text(0), reply);
}

ErrorCode setVariableValue(DataSet& dataSet, std::size_t position, const RequestItems& items) {
  return setOneValue(&dataSet.variables.change(position).attributes, items.text(0), items.text(1), items.integer(0));
}

ErrorCode setVariableValues(DataSet& dataSet, std::size_t position, const RequestItems& items) {
  return setValues(&dataSet.variables.change(position).attributes, items.text(0), items.texts(0));
}

ErrorCode eraseVariableAttribute(DataSet& dataSet, std::size_t position, const RequestItems& items) {
  return erase(&dataSet.variables.change(position).attributes, items.text(0));
}

ErrorCode fileNames(const DataSet& dataSet, const RequestItems& /*items*/, CleXDSmb& reply) {
  return answerNames(dataSet.attributes, reply);
}

ErrorCode fileValues(const DataSet& dataSet, const RequestItems& items, CleXDSmb& reply) {
  return answerValues(dataSet.attributes, items.text(0), reply);
}

ErrorCode setFileValues(DataSet& dataSet, const RequestItems& items) {
  return setValues(&dataSet.attributes, items.text(0), items.texts(0));
}

ErrorCode eraseFileAttribute(DataSet& dataSet, const RequestItems& items) {
  return erase(&dataSet.attributes, items.text(0));
}

constexpr HandlerRow kRows[] = {
    {Command::GetVarAttributeNames, askVariable<OfActive, variableNames>},
    {Command::GetVarAttributeNamesInProcDS, askVariable<OfProcedure, variableNames>},
    {Command::GetVarAttributesNameInDS, askVariable<OfNamed, variableNames>},
    {Command::GetVarAttributes, askVariable<OfActive, variableValues>},
    {Command::GetVarAttributesInProcDS, askVariable<OfProcedure, variableValues>},
    {Command::GetVarAttributesInDS, askVariable<OfNamed, variableValues>},
    {Command::SetVarAttributes, changeByName<setVariableValue>},
    {Command::SetVarAttributesInDS, changeAt<setVariableValues>},
    {Command::DelVarAttributesInDS, changeAt<eraseVariableAttribute>},
    {Command::GetDataFileAttributeNames, askDataSet<OfActive, fileNames>},
    {Command::GetDataFileAttributeNamesInProcDS, askDataSet<OfProcedure, fileNames>},
    {Command::GetDataFileAttributeNamesInDS, askDataSet<OfNamed, fileNames>},
    {Command::GetDataFileAttributes, askDataSet<OfActive, fileValues>},
    {Command::GetDataFileAttributesInProcDS, askDataSet<OfProcedure, fileValues>},
    {Command::GetDataFileAttributesInDS, askDataSet<OfNamed, fileValues>},
    {Command::SetDataFileAttributesInDS, changeNamed<setFileValues>},
    {Command::DelDataFileAttributesInDS, changeNamed<eraseFileAttribute>},
};

}  // namespace

std::span<const HandlerRow> attributeHandlers() { return kRows; }

}  // namespace kova::engine
