// Writes the output of a command: a procedure with tables of two dimensions.
//
// Opens the procedure when it is made. What fails on its way ends it too. One thread uses it, and nothing else may
// write meanwhile.
#ifndef KOVADX_ENGINE_TABLE_WRITER_H
#define KOVADX_ENGINE_TABLE_WRITER_H

#include <string>
#include <string_view>

#include "engine/command_tokens.h"
#include "engine/engine_state.h"

namespace kova::engine {

// Throws CommandProblem while a program has a procedure open: its output can not stand inside that.
void requireNoProcedure(const EngineState& state, const CommandTokens& tokens);

class TableWriter {
 public:
  // No procedure is open.
  TableWriter(OutputLog* log, const std::string& procedure);
  TableWriter(const TableWriter&) = delete;
  TableWriter& operator=(const TableWriter&) = delete;
  ~TableWriter();

  // The key must be new in the procedure, or in its split group. What follows goes into this table.
  void startTable(const TableKey& key, const std::string& rows, const std::string& columns);
  void cell(const OutputValue& row, const OutputValue& column, OutputValue value);
  void cell(const OutputValue& row, std::string_view column, OutputValue value);

  // A footnote of the procedure, of the row that was written last.
  void note(std::string_view text);
  void noteRow(std::string_view text);

  // Text in place of a table that would be empty.
  void text(const std::string& text);

  // The tables that follow belong to the next group of the split.
  void nextGroup();

  // Ends the procedure, which shows it.
  void end();

 private:
  OutputLog* log_;
  PivotTable* table_ = nullptr;
  bool isEnded_ = false;
  DimensionKey rows_;
  DimensionKey columns_;
};

}  // namespace kova::engine

#endif
