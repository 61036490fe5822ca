#include "engine/report_notes.h"

#include <algorithm>
#include <set>

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

// The notes of everything that a reader of the layouts sees.
class ShownNotes {
 public:
  explicit ShownNotes(const std::vector<TableLayout>& layouts) {
    for (const TableLayout& layout : layouts) {
      for (const LayerPart& part : layout.layer) add(part.nameNotes), add(part.categoryNotes);
      for (const HeadingRun& run : layout.columnHeadings) addRun(run);
      for (const Stub& stub : layout.stubs) add(stub.notes), addRun(stub.headings);
      for (const Cell* cell : layout.cells) {
        if (cell != nullptr) add(&cell->notes);
      }
    }
  }

  bool contains(const Notes& notes) const { return shown_.contains(&notes); }

 private:
  void add(const Notes* notes) {
    if (notes != nullptr && !notes->empty()) shown_.insert(notes);
  }
  void addRun(const HeadingRun& run) {
    for (const Heading& heading : run) add(heading.notes);
  }

  std::set<const Notes*> shown_;
};

}  // namespace

void NoteMarks::add(const Notes& notes) {
  addUnmarked(notes);
  marked_ = texts_.size();
}

void NoteMarks::addUnmarked(const Notes& notes) {
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

bool showsTitle(const PivotTable& table) { return !table.titleHidden && !table.key().title.empty(); }

NoteMarks marksOfTable(const PivotTable& table, const std::vector<TableLayout>& layouts, bool outlineIsShown) {
  const auto layers = table.dimensionsAt(Place::kLayer);
  const auto columns = table.dimensionsAt(Place::kColumn);
  const auto rows = table.dimensionsAt(Place::kRow);
  std::vector<std::size_t> heads = layers;
  append(&heads, columns);
  append(&heads, rows);
  std::vector<std::size_t> lines = layers;
  append(&lines, rows);
  append(&lines, columns);

  const ShownNotes shown(layouts);
  NoteMarks marks;
  std::vector<const Notes*> hidden;
  const auto take = [&marks, &hidden](const Notes& notes, bool isShown) {
    if (isShown) marks.add(notes);
    if (!isShown && !notes.empty()) hidden.push_back(&notes);
  };
  take(table.outlineNotes, outlineIsShown || showsTitle(table));
  take(table.titleNotes, showsTitle(table));
  for (const std::size_t index : heads) {
    const Dimension& dimension = table.dimensions()[index];
    take(dimension.notes, shown.contains(dimension.notes));
    for (const Category& category : dimension.categories) take(category.notes, shown.contains(category.notes));
  }
  for (const Cell* cell : notedCells(table, lines)) take(cell->notes, shown.contains(cell->notes));
  take(table.captionNotes, !table.caption.empty());
  for (const Notes* notes : hidden) marks.addUnmarked(*notes);
  return marks;
}

}  // namespace kova::engine
