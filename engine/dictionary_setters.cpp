#include "engine/dictionary_setters.h"

#include <array>
#include <string>
#include <utility>

#include "engine/data_set_access.h"
#include "engine/dictionary_rules.h"

namespace kova::engine {
namespace {

ErrorCode setName(DataSet& dataSet, std::size_t position, const RequestItems& items) {
  return renameVariable(&dataSet, position, items.text(0));
}

ErrorCode setLabel(DataSet& dataSet, std::size_t position, const RequestItems& items) {
  std::string label = items.text(0);
  dataSet.variables.change(position).label.swap(label);
  return ErrorCode::kNone;
}

// A case cursor hands the values out with the widths that they had when it was made.
ErrorCode setType(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  DataSet* dataSet = nullptr;
  std::size_t position = 0;
  ErrorCode code = reachVariable<OfNamed>(state, request, &dataSet, &position);
  if (code != ErrorCode::kNone) return code;
  if (isBeingRead(state, *dataSet)) return ErrorCode::kDataSetInUse;
  reserveTouch(&state);
  code = changeType(dataSet, position, request.Longs()[1]);
  if (code == ErrorCode::kNone) touch(&state, dataSet);
  return code;
}

ErrorCode setFormat(DataSet& dataSet, std::size_t position, const RequestItems& items) {
  Variable& variable = dataSet.variables.change(position);
  return makeFormat(variable, items.integer(0), items.integer(1), items.integer(2), &variable.format);
}

ErrorCode setMeasure(DataSet& dataSet, std::size_t position, const RequestItems& items) {
  const int level = items.integer(0);
  if (level < static_cast<int>(Measure::kUnknown) || level > static_cast<int>(Measure::kScale)) {
    return ErrorCode::kMeasureOutOfRange;
  }
  dataSet.variables.change(position).measure = static_cast<Measure>(level);
  return ErrorCode::kNone;
}

ErrorCode setMeasureByWord(DataSet& dataSet, std::size_t position, const RequestItems& items) {
  for (const Measure measure : {Measure::kUnknown, Measure::kNominal, Measure::kOrdinal, Measure::kScale}) {
    if (!sameName(wordOf(measure), items.text(0))) continue;
    dataSet.variables.change(position).measure = measure;
    return ErrorCode::kNone;
  }
  return ErrorCode::kMeasureOutOfRange;
}

ErrorCode setRole(DataSet& dataSet, std::size_t position, const RequestItems& items) {
  const int role = items.integer(0);
  if (role < static_cast<int>(Role::kInput) || role > static_cast<int>(Role::kSplit)) return ErrorCode::kRoleOutOfRange;
  dataSet.variables.change(position).role = static_cast<Role>(role);
  return ErrorCode::kNone;
}

ErrorCode setAlignment(DataSet& dataSet, std::size_t position, const RequestItems& items) {
  const int alignment = items.integer(0);
  if (alignment < static_cast<int>(Alignment::kLeft) || alignment > static_cast<int>(Alignment::kCenter)) {
    return ErrorCode::kAlignmentOutOfRange;
  }
  dataSet.variables.change(position).alignment = static_cast<Alignment>(alignment);
  return ErrorCode::kNone;
}

ErrorCode setColumnWidth(DataSet& dataSet, std::size_t position, const RequestItems& items) {
  const int width = items.integer(0);
  if (width < 1 || width > kWidestColumn) return ErrorCode::kColumnWidthOutOfRange;
  dataSet.variables.change(position).columnWidth = width;
  return ErrorCode::kNone;
}

ErrorCode setMissingNumbers(DataSet& dataSet, std::size_t position, const RequestItems& items) {
  Variable& variable = dataSet.variables.change(position);
  const std::array<double, kMostMissing> numbers{items.number(0), items.number(1), items.number(2)};
  return makeMissing(variable, items.integer(0), numbers, &variable.missing);
}

ErrorCode setMissingTexts(DataSet& dataSet, std::size_t position, const RequestItems& items) {
  Variable& variable = dataSet.variables.change(position);
  const std::array<std::string, kMostMissing> texts{items.text(0), items.text(1), items.text(2)};
  return makeMissing(variable, items.integer(0), texts, &variable.missing);
}

constexpr HandlerRow kRows[] = {
    {Command::SetVarNameInDS, changeAt<setName>},
    {Command::SetVarLabel, changeByName<setLabel>},
    {Command::SetVarLabelInDS, changeAt<setLabel>},
    {Command::SetVarTypeInDS, setType},
    {Command::SetVarFormat, changeByName<setFormat>},
    {Command::SetVarFormatInDS, changeAt<setFormat>},
    {Command::SetVarMeasureLevel, changeByName<setMeasure>},
    {Command::SetVarMeasurementLevelInDS, changeAt<setMeasureByWord>},
    {Command::SetVarRole, changeByName<setRole>},
    {Command::SetVarRoleInDS, changeAt<setRole>},
    {Command::SetVarAlignment, changeByName<setAlignment>},
    {Command::SetVarAlignmentInDS, changeAt<setAlignment>},
    {Command::SetVarColumnWidthInDS, changeAt<setColumnWidth>},
    {Command::SetVarNMissingValues, changeByName<setMissingNumbers>},
    {Command::SetVarNMissingValuesInDS, changeAt<setMissingNumbers>},
    {Command::SetVarCMissingValues, changeByName<setMissingTexts>},
    {Command::SetVarCMissingValuesInDS, changeAt<setMissingTexts>},
};

}  // namespace

std::span<const HandlerRow> dictionarySetters() { return kRows; }

}  // namespace kova::engine
