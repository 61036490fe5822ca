// Walks over the rows of a CSV text (RFC 4180).
#ifndef KOVADX_ENGINE_CSV_ROWS_H
#define KOVADX_ENGINE_CSV_ROWS_H

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace kova::engine {

// One row. Lines count from 1 and blank ones count too, so that `row` is the row that a spreadsheet shows; a line break
// inside quotes begins no new one. The values live until the next row.
struct CsvRow {
  std::size_t row;
  const std::vector<std::string>& values;
};

// Calls `visit` with each row. Blank lines are passed over, but in a table whose first row has one value a blank line
// is a row of one empty value. Blanks around a value belong to it. Throws DataProblem with `file`, row and column when
// quotes are not as they should be; what `visit` throws ends the walk and is passed on.
void forEachCsvRow(const std::string& file, std::string_view text, char delimiter,
                   const std::function<void(const CsvRow&)>& visit);

// Adds a value to a line as the walk above reads it, in quotes where it would be read otherwise, by this or by others.
void appendCsvValue(std::string_view value, std::string* line);

}  // namespace kova::engine

#endif
