#include "engine/pivot_handlers.h"

#include <utility>

#include "engine/data_set_access.h"
#include "engine/output_variable.h"

namespace kova::engine {
namespace {

// Each kind of item is counted for itself, so these are the places in every order of items:
// strings 0 to 2 and long 0 are the table's key, string 3 and longs 1 to 4 the dimension's.
constexpr int kText = 4;       // Behind both keys.
constexpr int kTableText = 3;  // Behind the table's key alone.
constexpr int kSecondTableText = 4;
constexpr int kNumber = 5;
constexpr int kTableNumber = 1;

TableKeyView tableKey(const CleXDSmb& request) {
  const StringData& texts = request.Strings();
  return {texts[0], texts[1], texts[2], request.Longs()[0] != 0};
}

DimensionKey dimensionKey(const CleXDSmb& request) {
  const LongData& longs = request.Longs();
  return {request.Strings()[3], longs[1], longs[2], longs[3] != 0, longs[4] != 0};
}

using OnTable = ErrorCode (*)(PivotTable& table, const CleXDSmb& request);

// What is done to the table that the request names.
template <OnTable act>
ErrorCode onTable(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  if (const ErrorCode code = checkAllTexts(request); code != ErrorCode::kNone) return code;
  PivotTable* table = nullptr;
  const ErrorCode code = state.output.log.findTable(tableKey(request), &table);
  return code == ErrorCode::kNone ? act(*table, request) : code;
}

ErrorCode startPivotTable(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  const ErrorCode code = checkAllTexts(request);
  return code == ErrorCode::kNone ? state.output.log.startTable(tableKey(request)) : code;
}

ErrorCode hideTitle(PivotTable& table, const CleXDSmb& /*request*/) {
  table.titleHidden = true;
  return ErrorCode::kNone;
}

ErrorCode setCaption(PivotTable& table, const CleXDSmb& request) {
  table.caption = request.Strings()[kTableText];
  return ErrorCode::kNone;
}

ErrorCode addOutlineNote(PivotTable& table, const CleXDSmb& request) {
  addNote(&table.outlineNotes, request.Strings()[kTableText]);
  return ErrorCode::kNone;
}

ErrorCode addTitleNote(PivotTable& table, const CleXDSmb& request) {
  addNote(&table.titleNotes, request.Strings()[kTableText]);
  return ErrorCode::kNone;
}

// The caption that is named must be the table's; a table without one takes it, but not an empty one.
ErrorCode addCaptionNote(PivotTable& table, const CleXDSmb& request) {
  const std::string& caption = request.Strings()[kTableText];
  if (caption.empty() || (!table.caption.empty() && table.caption != caption)) return ErrorCode::kUnknownCaption;
  table.caption = caption;
  addNote(&table.captionNotes, request.Strings()[kSecondTableText]);
  return ErrorCode::kNone;
}

ErrorCode limitLeast(PivotTable& table, const CleXDSmb& request) {
  return table.limitColumns(request.Longs()[kTableNumber], std::nullopt);
}

ErrorCode limitMost(PivotTable& table, const CleXDSmb& request) {
  return table.limitColumns(std::nullopt, request.Longs()[kTableNumber]);
}

ErrorCode addDimension(PivotTable& table, const CleXDSmb& request) { return table.addDimension(dimensionKey(request)); }

using OnDimension = ErrorCode (*)(PivotTable& table, Dimension* dimension, const CleXDSmb& request);

// What is done to the dimension that the request names.
template <OnDimension act>
ErrorCode ofDimension(PivotTable& table, const CleXDSmb& request) {
  Dimension* dimension = table.findDimension(dimensionKey(request));
  return dimension == nullptr ? ErrorCode::kUnknownDimension : act(table, dimension, request);
}

ErrorCode addDimensionNote(PivotTable& /*table*/, Dimension* dimension, const CleXDSmb& request) {
  addNote(&dimension->notes, request.Strings()[kText]);
  return ErrorCode::kNone;
}

ErrorCode addCategoryNote(PivotTable& /*table*/, Dimension* dimension, const CleXDSmb& request) {
  if (!dimension->current) return ErrorCode::kNoCategory;
  addNote(&dimension->categories[*dimension->current].notes, request.Strings()[kText]);
  return ErrorCode::kNone;
}

ErrorCode addCellNote(PivotTable& table, Dimension* /*dimension*/, const CleXDSmb& request) {
  return table.addCellNote(request.Strings()[kText]);
}

// What a request gives for a category or a cell.
using Reader = ErrorCode (*)(const EngineState& state, const CleXDSmb& request, OutputValue* value);

// A category is named by a number as it is, a cell shows one in the style that was chosen.
ErrorCode readPlainNumber(const EngineState& /*state*/, const CleXDSmb& request, OutputValue* value) {
  *value = numberValue(request.FirstDouble());
  return ErrorCode::kNone;
}

ErrorCode readStyledNumber(const EngineState& state, const CleXDSmb& request, OutputValue* value) {
  *value = numberValue(request.FirstDouble(), state.output.log.style());
  return ErrorCode::kNone;
}

ErrorCode readText(const EngineState& /*state*/, const CleXDSmb& request, OutputValue* value) {
  *value = textValue(request.Strings()[kText]);
  return ErrorCode::kNone;
}

ErrorCode readDate(const EngineState& /*state*/, const CleXDSmb& request, OutputValue* value) {
  *value = dateValue(request.Strings()[kText]);
  return ErrorCode::kNone;
}

ErrorCode readVariableName(const EngineState& state, const CleXDSmb& request, OutputValue* value) {
  const Variable* variable = nullptr;
  const ErrorCode code = findVariable(state, request.Longs()[kNumber], &variable);
  if (code == ErrorCode::kNone) *value = variableNameValue(*variable);
  return code;
}

ErrorCode readVariableNumber(const EngineState& state, const CleXDSmb& request, OutputValue* value) {
  const Variable* variable = nullptr;
  const ErrorCode code = findVariable(state, request.Longs()[kNumber], &variable);
  if (code != ErrorCode::kNone) return code;
  if (!variable->isNumeric()) return ErrorCode::kWrongKind;
  *value = variableNumberValue(*variable, request.FirstDouble());
  return ErrorCode::kNone;
}

ErrorCode readVariableText(const EngineState& state, const CleXDSmb& request, OutputValue* value) {
  const Variable* variable = nullptr;
  const ErrorCode code = findVariable(state, request.Longs()[kNumber], &variable);
  if (code != ErrorCode::kNone) return code;
  if (variable->isNumeric()) return ErrorCode::kWrongKind;
  *value = variableTextValue(*variable, request.Strings()[kText]);
  return ErrorCode::kNone;
}

// Table, then dimension, then value: the first that is wrong is told, and nothing is changed then.
template <Reader read, bool isCell>
ErrorCode give(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  if (const ErrorCode code = checkAllTexts(request); code != ErrorCode::kNone) return code;
  PivotTable* table = nullptr;
  const ErrorCode found = state.output.log.findTable(tableKey(request), &table);
  if (found != ErrorCode::kNone) return found;
  Dimension* dimension = table->findDimension(dimensionKey(request));
  if (dimension == nullptr) return ErrorCode::kUnknownDimension;
  OutputValue value;
  const ErrorCode code = read(state, request, &value);
  if (code != ErrorCode::kNone) return code;
  if constexpr (isCell) return table->setCell(std::move(value));
  PivotTable::select(dimension, std::move(value));
  return ErrorCode::kNone;
}

constexpr HandlerRow kRows[] = {
    {Command::StartPivotTable, startPivotTable},
    {Command::HidePivotTableTitle, onTable<hideTitle>},
    {Command::PivotTableCaption, onTable<setCaption>},
    {Command::AddOutlineFootnotes, onTable<addOutlineNote>},
    {Command::AddTitleFootnotes, onTable<addTitleNote>},
    {Command::AddCaptionFootnotes, onTable<addCaptionNote>},
    {Command::MinDataColumnWidth, onTable<limitLeast>},
    {Command::MaxDataColumnWidth, onTable<limitMost>},
    {Command::AddDimension, onTable<addDimension>},
    {Command::AddDimFootnotes, onTable<ofDimension<addDimensionNote>>},
    {Command::AddCategoryFootnotes, onTable<ofDimension<addCategoryNote>>},
    {Command::AddCellFootnotes, onTable<ofDimension<addCellNote>>},
    {Command::AddNumberCategory, give<readPlainNumber, false>},
    {Command::AddStringCategory, give<readText, false>},
    {Command::AddVarNameCategory, give<readVariableName, false>},
    {Command::AddVarValueDoubleCategory, give<readVariableNumber, false>},
    {Command::AddVarValueStringCategory, give<readVariableText, false>},
    {Command::SetNumberCell, give<readStyledNumber, true>},
    {Command::SetStringCell, give<readText, true>},
    {Command::SetVarNameCell, give<readVariableName, true>},
    {Command::SetVarValueDoubleCell, give<readVariableNumber, true>},
    {Command::SetVarValueStringCell, give<readVariableText, true>},
    {Command::SetDateCell, give<readDate, true>},
};

}  // namespace

std::span<const HandlerRow> pivotHandlers() { return kRows; }

}  // namespace kova::engine
