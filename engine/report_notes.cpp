#include "engine/report_notes.h"

#include <algorithm>

namespace kova::engine {
namespace {

// The cells that have notes, layer by layer and line by line.
std::vector<const Cell*> notedCells(const PivotTable& table, const std::vector<std::size_t>& dimensions) {
  std::vector<const Cell*> cells;
  for (const Cell& cell : table.cells()) {
    if (!cell.notes.empty()) cells.push_back(&cell);
  }
  std::sort(cells.begin(), cells.end(), [&dimensions](const Cell* left, const Cell* right) {
    for (const std::size_t dimension : dimensions) {
      if (left->at[dimension] != right->at[dimension]) return left->at[dimension] < right->at[dimension];
    }
    return false;
  });
  return cells;
}

void append(std::vector<std::size_t>* all, const std::vector<std::size_t>& more) {
  all->insert(all->end(), more.begin(), more.end());
}

}  // namespace

void NoteMarks::add(const Notes& notes) {
  for (const std::string& text : notes) {
    if (positions_.try_emplace(text, texts_.size()).second) texts_.push_back(text);
  }
}

std::vector<std::size_t> NoteMarks::positionsOf(const Notes& notes) const {
  std::vector<std::size_t> positions;
  for (const std::string& text : notes) positions.push_back(positions_.find(text)->second);
  std::sort(positions.begin(), positions.end());
  return positions;
}

std::vector<std::string> NoteMarks::marksOf(const Notes& notes) const {
  std::vector<std::string> marks;
  for (const std::size_t position : positionsOf(notes)) marks.push_back(markAt(position));
  return marks;
}

std::string NoteMarks::markAt(std::size_t position) {
  constexpr std::size_t kLetters = 26;
  std::string mark;
  for (std::size_t rest = position + 1; rest > 0; rest = (rest - 1) / kLetters) {
    mark.insert(mark.begin(), static_cast<char>('a' + (rest - 1) % kLetters));
  }
  return mark;
}

NoteMarks marksOfTable(const PivotTable& table) {
  const auto layers = table.dimensionsAt(Place::kLayer);
  const auto columns = table.dimensionsAt(Place::kColumn);
  const auto rows = table.dimensionsAt(Place::kRow);
  std::vector<std::size_t> heads = layers;
  append(&heads, columns);
  append(&heads, rows);
  std::vector<std::size_t> lines = layers;
  append(&lines, rows);
  append(&lines, columns);

  NoteMarks marks;
  marks.add(table.outlineNotes);
  marks.add(table.titleNotes);
  for (const std::size_t index : heads) {
    const Dimension& dimension = table.dimensions()[index];
    marks.add(dimension.notes);
    for (const Category& category : dimension.categories) marks.add(category.notes);
  }
  for (const Cell* cell : notedCells(table, lines)) marks.add(cell->notes);
  marks.add(table.captionNotes);
  return marks;
}

}  // namespace kova::engine
