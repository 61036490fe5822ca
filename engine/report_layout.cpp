#include "engine/report_layout.h"

#include <algorithm>
#include <map>

namespace kova::engine {
namespace {

// The categories that a line, a column or a layer stands for: one of each dimension of its place.
using Coordinates = std::vector<std::uint32_t>;
using Lines = std::vector<Coordinates>;

Coordinates coordinatesOf(const Cell& cell, const std::vector<std::size_t>& dimensions) {
  Coordinates coordinates;
  coordinates.reserve(dimensions.size());
  for (const std::size_t dimension : dimensions) coordinates.push_back(cell.at[dimension]);
  return coordinates;
}

// The lines that the cells stand in, in the order of the categories.
Lines linesOf(const std::vector<const Cell*>& cells, const std::vector<std::size_t>& dimensions) {
  Lines lines;
  lines.reserve(cells.size());
  for (const Cell* cell : cells) lines.push_back(coordinatesOf(*cell, dimensions));
  std::sort(lines.begin(), lines.end());
  lines.erase(std::unique(lines.begin(), lines.end()), lines.end());
  return lines;
}

std::size_t positionIn(const Lines& lines, const Coordinates& coordinates) {
  return static_cast<std::size_t>(std::lower_bound(lines.begin(), lines.end(), coordinates) - lines.begin());
}

// One heading for each run of lines that agree in their first `depth` coordinates, without a text yet.
HeadingRun runsOf(const Lines& lines, std::size_t depth) {
  HeadingRun run;
  for (std::size_t line = 0; line < lines.size(); ++line) {
    const auto end = static_cast<std::ptrdiff_t>(depth);
    const bool same = line > 0 && std::equal(lines[line].begin(), lines[line].begin() + end, lines[line - 1].begin());
    if (same) {
      ++run.back().span;
    } else {
      run.push_back({"", nullptr, line, 1});
    }
  }
  return run;
}

HeadingRun nameRun(const Dimension& dimension, const Lines& lines, std::size_t depth) {
  HeadingRun run = runsOf(lines, depth);
  for (Heading& heading : run) {
    heading.text = dimension.key.name;
    heading.notes = &dimension.notes;
  }
  return run;
}

HeadingRun categoryRun(const Dimension& dimension, const Lines& lines, std::size_t depth) {
  HeadingRun run = runsOf(lines, depth + 1);
  for (Heading& heading : run) {
    const Category& category = dimension.categories[lines[heading.first][depth]];
    heading.text = category.value.shown;
    heading.notes = &category.notes;
  }
  return run;
}

bool showsName(const Dimension& dimension) { return !dimension.key.hideName && !dimension.key.name.empty(); }

// The runs that form groups: the outermost one with several headings, when any of them spans.
std::vector<Group> groupsOf(const std::vector<const HeadingRun*>& runs, std::size_t lines) {
  for (const HeadingRun* run : runs) {
    if (run->size() < 2) continue;
    const bool spans = std::any_of(run->begin(), run->end(), [](const Heading& heading) { return heading.span > 1; });
    if (!spans) break;
    std::vector<Group> groups;
    for (const Heading& heading : *run) groups.push_back({heading.first, heading.span});
    return groups;
  }
  return {{0, lines}};
}

class Builder {
 public:
  explicit Builder(const PivotTable& table)
      : table_(table),
        layers_(table.dimensionsAt(Place::kLayer)),
        rows_(table.dimensionsAt(Place::kRow)),
        columns_(table.dimensionsAt(Place::kColumn)) {}

  std::vector<TableLayout> build() const {
    std::map<Coordinates, std::vector<const Cell*>> byLayer;
    for (const Cell& cell : table_.cells()) byLayer[coordinatesOf(cell, layers_)].push_back(&cell);
    std::vector<TableLayout> layouts;
    std::size_t room = kLargestLayout;
    for (const auto& [layer, cells] : byLayer) {
      layouts.push_back(layOutLayer(cells, &room));
      layouts.back().layer = partsOf(layer);
    }
    if (layouts.empty()) layouts.emplace_back();
    return layouts;
  }

 private:
  const Dimension& dimension(std::size_t index) const { return table_.dimensions()[index]; }

  std::vector<LayerPart> partsOf(const Coordinates& layer) const {
    std::vector<LayerPart> parts;
    for (std::size_t depth = 0; depth < layers_.size(); ++depth) {
      const Dimension& layerDimension = dimension(layers_[depth]);
      const Category& category = layerDimension.categories[layer[depth]];
      LayerPart part;
      if (showsName(layerDimension)) part.name = layerDimension.key.name, part.nameNotes = &layerDimension.notes;
      if (!layerDimension.key.hideLabels) part.category = category.value.shown, part.categoryNotes = &category.notes;
      if (part.nameNotes != nullptr || part.categoryNotes != nullptr) parts.push_back(part);
    }
    return parts;
  }

  // Takes the layer's places from the room that is left.
  TableLayout layOutLayer(const std::vector<const Cell*>& cells, std::size_t* room) const {
    const Lines rows = linesOf(cells, rows_);
    const Lines columns = linesOf(cells, columns_);
    TableLayout layout;
    layout.rows = rows.size();
    layout.columns = columns.size();
    layout.isTooLarge = rows.size() > *room / columns.size();
    if (layout.isTooLarge) return layout;
    *room -= layout.rows * layout.columns;
    addColumnHeadings(columns, &layout);
    addStubs(rows, &layout);
    addGroups(&layout);
    layout.cells.assign(layout.rows * layout.columns, nullptr);
    for (const Cell* cell : cells) {
      const std::size_t row = positionIn(rows, coordinatesOf(*cell, rows_));
      layout.cells[row * layout.columns + positionIn(columns, coordinatesOf(*cell, columns_))] = cell;
    }
    return layout;
  }

  void addColumnHeadings(const Lines& columns, TableLayout* layout) const {
    for (std::size_t depth = 0; depth < columns_.size(); ++depth) {
      const Dimension& column = dimension(columns_[depth]);
      if (showsName(column)) layout->columnHeadings.push_back(nameRun(column, columns, depth));
      if (!column.key.hideLabels) layout->columnHeadings.push_back(categoryRun(column, columns, depth));
    }
  }

  // A dimension whose categories are hidden shows its name beside the rows instead.
  void addStubs(const Lines& rows, TableLayout* layout) const {
    for (std::size_t depth = 0; depth < rows_.size(); ++depth) {
      const Dimension& row = dimension(rows_[depth]);
      if (!row.key.hideLabels) {
        Stub stub;
        if (showsName(row)) stub.heading = row.key.name, stub.notes = &row.notes;
        stub.headings = categoryRun(row, rows, depth);
        layout->stubs.push_back(std::move(stub));
      } else if (showsName(row)) {
        layout->stubs.push_back({"", nullptr, nameRun(row, rows, depth)});
      }
    }
  }

  static void addGroups(TableLayout* layout) {
    std::vector<const HeadingRun*> runs;
    for (const HeadingRun& run : layout->columnHeadings) runs.push_back(&run);
    layout->columnGroups = groupsOf(runs, layout->columns);
    // A heading beside rows ends where its group of rows ends, so the outermost headings alone form groups.
    runs.clear();
    if (!layout->stubs.empty()) runs.push_back(&layout->stubs.front().headings);
    layout->rowGroups = groupsOf(runs, layout->rows);
  }

  const PivotTable& table_;
  std::vector<std::size_t> layers_;
  std::vector<std::size_t> rows_;
  std::vector<std::size_t> columns_;
};

}  // namespace

std::vector<TableLayout> layOut(const PivotTable& table) { return Builder(table).build(); }

bool coversGroup(const Heading& heading, const std::vector<Group>& groups) {
  const auto found = std::lower_bound(groups.begin(), groups.end(), heading.first,
                                      [](const Group& group, std::size_t first) { return group.first < first; });
  return found != groups.end() && found->first == heading.first && found->span == heading.span && heading.span > 1;
}

std::string tooLargeText(const TableLayout& layout) {
  return "A table of " + std::to_string(layout.rows) + " rows and " + std::to_string(layout.columns) +
         " columns, too large to be shown; the output document holds its cells.";
}

}  // namespace kova::engine
