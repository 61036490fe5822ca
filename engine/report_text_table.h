// One layer of a pivot table as lines of text: columns side by side, numbers one under the other.
#ifndef KOVADX_ENGINE_REPORT_TEXT_TABLE_H
#define KOVADX_ENGINE_REPORT_TEXT_TABLE_H

#include <cstddef>
#include <string>
#include <vector>

#include "engine/report_layout.h"
#include "engine/report_notes.h"

namespace kova::engine {

constexpr std::size_t kNarrowestReport = 20;

// How wide columns may be. A plain value.
struct ColumnLimits {
  std::size_t report = 80;  // All columns side by side; those that do not fit follow in a block of their own below.
  std::size_t least = 1;
  std::size_t most = 1000;  // Texts are broken to it, numbers are not.
};

// The lines, without blanks at their ends. Columns keep within the limits as long as a number does not need more.
std::vector<std::string> tableLines(const TableLayout& layout, const NoteMarks& marks, const ColumnLimits& limits);

// The text with its marks: "Mean[a,b]".
std::string withMarks(std::string_view text, const Notes* notes, const NoteMarks& marks);

}  // namespace kova::engine

#endif
