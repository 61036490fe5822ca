// The marks of footnotes: a to z, then aa, ab, ... in the order in which a reader meets them. Equal texts of one table
// share a mark.
#ifndef KOVADX_ENGINE_REPORT_NOTES_H
#define KOVADX_ENGINE_REPORT_NOTES_H

#include <map>
#include <string>
#include <vector>

#include "engine/pivot_table.h"
#include "engine/report_layout.h"

namespace kova::engine {

// A plain value.
class NoteMarks {
 public:
  // Gives marks to those texts that have none yet.
  void add(const Notes& notes);
  // Lists those texts that are not there yet behind all that have marks. Nothing with a mark is added afterwards.
  void addUnmarked(const Notes& notes);

  // The positions of these notes, all of which were added, in rising order, and their marks.
  std::vector<std::size_t> positionsOf(const Notes& notes) const;
  std::vector<std::string> marksOf(const Notes& notes) const;
  // Every text: those with marks in their order, then the unmarked ones.
  const std::vector<std::string>& texts() const { return texts_; }
  bool isMarked(std::size_t position) const { return position < marked_; }

  // The mark at a position: 0 is a, 26 is aa.
  static std::string markAt(std::size_t position);

 private:
  std::vector<std::string> texts_;
  std::size_t marked_ = 0;
  std::map<std::string, std::size_t, std::less<>> positions_;
};

// The marks of a table: outline, title, the dimensions (layers, columns, rows) with their categories, the cells line by
// line, the caption. Notes of what is not shown are unmarked. The layouts are the table's; the outline's notes stand at
// the title when the outline is not shown.
NoteMarks marksOfTable(const PivotTable& table, const std::vector<TableLayout>& layouts, bool outlineIsShown);

bool showsTitle(const PivotTable& table);

}  // namespace kova::engine

#endif
