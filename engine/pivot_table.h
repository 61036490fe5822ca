// A pivot table as it is built: dimensions, the categories of each, and cells that stand at one category of every
// dimension. docs/output.md tells how requests address it.
//
// Owned by the procedure whose output it is. One thread at a time uses it.
#ifndef KOVADX_ENGINE_PIVOT_TABLE_H
#define KOVADX_ENGINE_PIVOT_TABLE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "engine/error_codes.h"
#include "engine/output_value.h"

namespace kova::engine {

// Footnote texts of one place, in the order in which they were given, each once.
using Notes = std::vector<std::string>;
void addNote(Notes* notes, std::string_view text);

enum class Place : int { kRow = 0, kColumn = 1, kLayer = 2 };

// What names a table within its procedure.
struct TableKey {
  std::string outline;  // The heading under which the table stands.
  std::string title;
  std::string subtype;   // The kind of table, the same in every language.
  bool isSplit = false;  // Each split group has a table of its own.

  bool operator==(const TableKey&) const = default;
};

// The same as a request has it, without a copy of the texts.
struct TableKeyView {
  std::string_view outline;
  std::string_view title;
  std::string_view subtype;
  bool isSplit = false;

  bool names(const TableKey& key) const {
    return outline == key.outline && title == key.title && subtype == key.subtype && isSplit == key.isSplit;
  }
  TableKey copy() const { return {std::string(outline), std::string(title), std::string(subtype), isSplit}; }
};

// What names a dimension within its table.
struct DimensionKey {
  std::string name;
  int place = 0;     // One of Place, once it is in a table.
  int position = 0;  // Dimensions of one place stand in this order, the smallest number outermost.
  bool hideName = false;
  bool hideLabels = false;

  bool operator==(const DimensionKey&) const = default;
};

struct Category {
  OutputValue value;
  Notes notes;
};

struct Dimension {
  DimensionKey key;
  Notes notes;
  std::vector<Category> categories;  // In the order of their first mention.
  std::optional<std::uint32_t> current;
  std::unordered_map<std::string, std::uint32_t> byIdentity;

  Place place() const { return static_cast<Place>(key.place); }
};

struct Cell {
  std::vector<std::uint32_t> at;  // One category of each dimension, in the order in which those were added.
  OutputValue value;
  Notes notes;
};

class PivotTable {
 public:
  explicit PivotTable(TableKey key) : key_(std::move(key)) {}

  const TableKey& key() const { return key_; }
  const std::vector<Dimension>& dimensions() const { return dimensions_; }
  const std::vector<Cell>& cells() const { return cells_; }
  // The positions in `dimensions` of those at one place, the outermost first.
  std::vector<std::size_t> dimensionsAt(Place place) const;

  // Refused when the place is none or the position negative, when there is such a dimension, and once there are cells.
  ErrorCode addDimension(const DimensionKey& key);
  // Null when there is none. Valid until the next dimension is added.
  Dimension* findDimension(const DimensionKey& key);
  // Makes the category with this value the dimension's current one; adds it when it is new.
  static void select(Dimension* dimension, OutputValue value);
  // Sets the cell at the current category of every dimension. Refused when one of them has none.
  ErrorCode setCell(OutputValue value);
  // Adds a footnote to that cell, which must be there.
  ErrorCode addCellNote(std::string_view text);

  // Refused when the width is not within 1 to kWidestColumn, or when the least would exceed the most.
  ErrorCode limitColumns(std::optional<int> least, std::optional<int> most);
  static constexpr int kWidestColumn = 1000;

  bool titleHidden = false;
  std::string caption;
  Notes outlineNotes;
  Notes titleNotes;
  Notes captionNotes;
  int leastColumnWidth() const { return leastColumnWidth_; }
  int mostColumnWidth() const { return mostColumnWidth_; }

 private:
  // The current categories as bytes; nothing when a dimension has none.
  std::optional<std::string> currentPlace() const;

  TableKey key_;
  std::vector<Dimension> dimensions_;
  std::vector<Cell> cells_;
  std::unordered_map<std::string, std::size_t> cellsByPlace_;
  int leastColumnWidth_ = 1;
  int mostColumnWidth_ = kWidestColumn;
};

}  // namespace kova::engine

#endif
