#include "engine/table_writer.h"

#include <utility>

namespace kova::engine {

void requireNoProcedure(const EngineState& state, const CommandTokens& tokens) {
  if (state.output.log.hasProcedure()) tokens.require(ErrorCode::kProcedureOpen);
}

TableWriter::TableWriter(OutputLog* log, const std::string& procedure) : log_(log) {
  log_->startProcedure(procedure, procedure);
}

TableWriter::~TableWriter() {
  if (isEnded_) return;
  try {
    end();
  } catch (...) {
    isEnded_ = true;  // What made the command fail is told; there is no memory to show the rest.
  }
}

void TableWriter::startTable(const TableKey& key, const std::string& rows, const std::string& columns) {
  const TableKeyView view{key.outline, key.title, key.subtype, key.isSplit};
  rows_ = {rows, static_cast<int>(Place::kRow), 0, true, false};
  columns_ = {columns, static_cast<int>(Place::kColumn), 0, true, false};
  log_->startTable(view);
  log_->findTable(view, &table_);
  table_->addDimension(rows_);
  table_->addDimension(columns_);
}

void TableWriter::cell(const OutputValue& row, const OutputValue& column, OutputValue value) {
  PivotTable::select(table_->findDimension(rows_), row);
  PivotTable::select(table_->findDimension(columns_), column);
  table_->setCell(std::move(value));
}

void TableWriter::cell(const OutputValue& row, std::string_view column, OutputValue value) {
  cell(row, textValue(column), std::move(value));
}

void TableWriter::note(std::string_view text) { log_->addProcedureNote(text); }

void TableWriter::noteRow(std::string_view text) {
  Dimension* const rows = table_->findDimension(rows_);
  addNote(&rows->categories[*rows->current].notes, text);
}

void TableWriter::text(const std::string& text) { log_->post(text); }

void TableWriter::nextGroup() { log_->changeSplit(); }

void TableWriter::end() {
  isEnded_ = true;
  log_->endProcedure();
}

}  // namespace kova::engine
