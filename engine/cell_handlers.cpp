#include "engine/cell_handlers.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "engine/case_bytes.h"
#include "engine/data_set_access.h"
#include "engine/missing_values.h"

namespace kova::engine {
namespace {

// A reply with a rectangle of cells is no larger than this.
constexpr std::uint64_t kMostFetchBytes = std::uint64_t{64} << 20;

// What the items around the cells take, and each cell in bytes: its flag, its number, and its text with a length.
constexpr std::uint64_t kFrameBytes = 1024;
constexpr std::uint64_t kCellBytes = 4 + 8 + 4;

struct Cell {
  DataSet* dataSet;
  std::size_t row;
  std::size_t column;

  const Variable& variable() const { return dataSet->variables[column]; }
};

ErrorCode locate(DataSet* dataSet, int row, int column, Cell* cell) {
  if (!isBelow(row, dataSet->cases.caseCount())) return ErrorCode::kCaseOutOfRange;
  if (!isBelow(column, dataSet->variables.size())) return ErrorCode::kIndexOutOfRange;
  *cell = {dataSet, static_cast<std::size_t>(row), static_cast<std::size_t>(column)};
  return ErrorCode::kNone;
}

ErrorCode reachCell(EngineState& state, const CleXDSmb& request, Cell* cell) {
  DataSet* dataSet = nullptr;
  const ErrorCode code = reachDataSet<OfNamed>(state, request, &dataSet);
  return code == ErrorCode::kNone ? locate(dataSet, request.Longs()[0], request.Longs()[1], cell) : code;
}

ErrorCode getNCellValue(EngineState& state, const CleXDSmb& request, CleXDSmb& reply) {
  Cell cell{};
  const ErrorCode code = reachCell(state, request, &cell);
  if (code != ErrorCode::kNone) return code;
  if (!cell.variable().isNumeric()) return ErrorCode::kCellIsText;
  const double value = cell.dataSet->cases.number(cell.row, cell.column);
  reply.SetDouble(value);
  reply.SetLong(missingOf(cell.variable(), value) == Missing::kNone ? 0 : 1);
  return ErrorCode::kNone;
}

ErrorCode getCCellValue(EngineState& state, const CleXDSmb& request, CleXDSmb& reply) {
  Cell cell{};
  const ErrorCode code = reachCell(state, request, &cell);
  if (code != ErrorCode::kNone) return code;
  if (cell.variable().isNumeric()) return ErrorCode::kCellIsNumber;
  const std::string value = cell.dataSet->cases.text(cell.row, cell.column);
  reply.SetString(value);
  reply.SetLong(missingOf(cell.variable(), value) == Missing::kNone ? 0 : 1);
  return ErrorCode::kNone;
}

bool isTextRecord(const dataSet& record) { return record.valueKind == 1; }

ErrorCode checkRecord(const EngineState& state, const dataSet& record, Cell* cell) {
  DataSet* dataSet = nullptr;
  ErrorCode code = checkText(record.datasetName);
  if (code == ErrorCode::kNone) code = findNamed(state, record.datasetName, &dataSet);
  if (code == ErrorCode::kNone) code = locate(dataSet, record.caseIndex, record.varIndex, cell);
  if (code != ErrorCode::kNone) return code;
  if (record.valueKind != 0 && record.valueKind != 1) return ErrorCode::kCellKindUnknown;
  if (isTextRecord(record) == cell->variable().isNumeric()) {
    return isTextRecord(record) ? ErrorCode::kCellIsNumber : ErrorCode::kCellIsText;
  }
  return isTextRecord(record) ? checkCellText(cell->variable(), record.strValue) : checkNumber(record.numValue);
}

// All records are checked before the first is carried out; of two for one cell the later one stays.
ErrorCode commitDataSet(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  const StructData::Values& records = request.Structs().values();
  std::vector<Cell> cells(records.size());
  for (std::size_t i = 0; i < records.size(); ++i) {
    const ErrorCode code = checkRecord(state, records[i], &cells[i]);
    if (code != ErrorCode::kNone) return code;
  }
  for (const Cell& cell : cells) touch(&state, cell.dataSet);
  for (std::size_t i = 0; i < records.size(); ++i) {
    const auto& [data, row, column] = cells[i];
    if (isTextRecord(records[i])) {
      data->cases.setText(row, column, records[i].strValue);
    } else {
      data->cases.setNumber(row, column, records[i].numValue);
    }
  }
  return ErrorCode::kNone;
}

std::uint64_t rowBytes(const DataSet& dataSet) {
  std::uint64_t bytes = 0;
  for (const Variable& variable : dataSet.variables) bytes += kCellBytes + static_cast<std::uint64_t>(variable.width);
  return bytes;
}

// The cells of a rectangle, as the reply has them: a value of each list for each cell.
struct CellLists {
  LongData flags;
  DoubleData numbers;
  StringData texts;

  void add(const DataSet& dataSet, std::size_t row, std::size_t column) {
    const Variable& variable = dataSet.variables[column];
    if (variable.isNumeric()) {
      const double value = dataSet.cases.number(row, column);
      add(missingOf(variable, value), value, {});
    } else {
      const auto* const bytes = static_cast<const char*>(dataSet.cases.variablesAt(row, column));
      const std::string_view text(bytes, static_cast<std::size_t>(variable.width));
      add(missingOf(variable, text), 0.0, text);
    }
  }

  void add(Missing missing, double number, std::string_view text) {
    flags.SetValue(missing == Missing::kNone ? 0 : 1);
    numbers.SetValue(number);
    texts.SetValue(text.empty() ? "" : text.data(), static_cast<int>(text.size()));
  }
};

// The rows asked for, as many of them as there are and as a reply can carry.
ErrorCode countRows(const DataSet& dataSet, int first, int asked, std::size_t* rows) {
  const std::size_t cases = dataSet.cases.caseCount();
  if (first < 0 || asked < 0 || static_cast<std::size_t>(first) > cases) return ErrorCode::kCaseOutOfRange;
  *rows = std::min(static_cast<std::size_t>(asked), cases - static_cast<std::size_t>(first));
  if (*rows == 0) return ErrorCode::kNone;
  *rows = std::min<std::size_t>(*rows, (kMostFetchBytes - kFrameBytes) / rowBytes(dataSet));
  return *rows == 0 ? ErrorCode::kRowTooLarge : ErrorCode::kNone;
}

// The first row, the rows, the variables; then for each cell, row by row, its missing flag, its number (0.0 of a text)
// and its text ("" of a number).
ErrorCode fetchDatastep(EngineState& state, const CleXDSmb& request, CleXDSmb& reply) {
  DataSet* dataSet = nullptr;
  ErrorCode code = reachDataSet<OfNamed>(state, request, &dataSet);
  if (code != ErrorCode::kNone) return code;
  const int first = request.Longs()[0];
  std::size_t rows = 0;
  code = countRows(*dataSet, first, request.Longs()[1], &rows);
  if (code != ErrorCode::kNone) return code;
  touch(&state, dataSet);
  CellLists cells;
  for (std::size_t row = static_cast<std::size_t>(first); row < static_cast<std::size_t>(first) + rows; ++row) {
    for (std::size_t column = 0; column < dataSet->variables.size(); ++column) cells.add(*dataSet, row, column);
  }
  reply.SetLong(first);
  reply.SetLong(static_cast<int>(rows));
  reply.SetLong(static_cast<int>(dataSet->variables.size()));
  reply.GetLongArrayRef().push_back(std::move(cells.flags));
  reply.GetDoubleArrayRef().push_back(std::move(cells.numbers));
  reply.GetStringArrayRef().push_back(std::move(cells.texts));
  return ErrorCode::kNone;
}

constexpr HandlerRow kRows[] = {
    {Command::GetNCellValue, getNCellValue},
    {Command::GetCCellValue, getCCellValue},
    {Command::CommitDataSet, commitDataSet},
    {Command::FetchDatastep, fetchDatastep},
};

}  // namespace

std::span<const HandlerRow> cellHandlers() { return kRows; }

}  // namespace kova::engine
