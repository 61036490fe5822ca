// A pivot table laid out as a person sees it: headings that span, rows and columns. One layout for each layer.
#ifndef KOVADX_ENGINE_REPORT_LAYOUT_H
#define KOVADX_ENGINE_REPORT_LAYOUT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "engine/pivot_table.h"

namespace kova::engine {

// A heading over some columns, or beside some rows.
struct Heading {
  std::string_view text;
  const Notes* notes = nullptr;
  std::size_t first = 0;
  std::size_t span = 1;
};

// Columns or rows that belong together.
struct Group {
  std::size_t first = 0;
  std::size_t span = 0;
};

// Headings that cover all columns or all rows, one behind the other.
using HeadingRun = std::vector<Heading>;

// A column of row headings, with a heading of its own.
struct Stub {
  std::string_view heading;
  const Notes* notes = nullptr;  // Null when the heading is hidden.
  HeadingRun headings;
};

// What a layer is called: a dimension's name and its category, either of which may be hidden and is empty then.
struct LayerPart {
  std::string_view name;
  const Notes* nameNotes = nullptr;
  std::string_view category;
  const Notes* categoryNotes = nullptr;
};

// Points into the table, which must outlive it and must not change.
struct TableLayout {
  std::vector<LayerPart> layer;
  std::vector<HeadingRun> columnHeadings;  // From the outermost to the innermost.
  std::vector<Stub> stubs;
  std::size_t rows = 0;
  std::size_t columns = 0;
  std::vector<Group> columnGroups;  // Side by side, all columns and all rows.
  std::vector<Group> rowGroups;
  bool isTooLarge = false;         // No room for its places: there are no headings and no cells then.
  std::vector<const Cell*> cells;  // Row by row; null where there is none.

  const Cell* cell(std::size_t row, std::size_t column) const { return cells[row * columns + column]; }
};

// The places of all layers of a table together. A layer that has more than the layers before it leave is too large.
constexpr std::size_t kLargestLayout = 1000000;

// The layers in the order of their categories; those, and the rows and columns, that have a cell. A table without cells
// has one layout without rows.
std::vector<TableLayout> layOut(const PivotTable& table);

// True when the heading covers one whole group of several columns or rows.
bool coversGroup(const Heading& heading, const std::vector<Group>& groups);

// What is said of a table that is too large.
std::string tooLargeText(const TableLayout& layout);

}  // namespace kova::engine

#endif
