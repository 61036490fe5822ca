#include "engine/report_text_table.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "engine/output_texts.h"
#include "engine/report_width.h"

namespace kova::engine {
namespace {

constexpr std::size_t kGap = 2;            // Blanks between columns.
constexpr std::size_t kWidestText = 40;    // A column of texts, when the table sets no limit of its own.
constexpr std::size_t kShortHeading = 16;  // A heading up to here is not broken for a narrow column's sake.

std::string bracketed(const Notes* notes, const NoteMarks& marks) {
  if (notes == nullptr || notes->empty()) return {};
  std::string text;
  for (const std::string& mark : marks.marksOf(*notes)) text += (text.empty() ? "[" : ",") + mark;
  return text + "]";
}

// A column of cells: the marks of numbers stand to the right of where the numbers end.
struct Column {
  std::size_t body = 0;
  std::size_t marks = 0;

  std::size_t width() const { return body + marks; }
};

// Columns that stand side by side, from `first` on.
struct Panel {
  std::size_t first;
  std::size_t end;
};

// A block of text in a line of the table.
struct Block {
  std::vector<std::string> lines;
  std::size_t width;
  Align align;
};

void trimEnd(std::string* line) { line->erase(line->find_last_not_of(' ') + 1); }

// Sets blocks side by side. They stand at the bottom in headings, at the top in rows.
void addLines(const std::vector<Block>& blocks, bool atBottom, std::vector<std::string>* lines) {
  std::size_t height = 0;
  for (const Block& block : blocks) height = std::max(height, block.lines.size());
  for (std::size_t row = 0; row < height; ++row) {
    std::string line;
    for (const Block& block : blocks) {
      const std::size_t above = atBottom ? height - block.lines.size() : 0;
      const bool isThere = row >= above && row - above < block.lines.size();
      if (&block != &blocks.front()) line.append(kGap, ' ');
      line += padded(isThere ? block.lines[row - above] : std::string(), block.width, block.align);
    }
    trimEnd(&line);
    lines->push_back(std::move(line));
  }
}

class TableText {
 public:
  TableText(const TableLayout& layout, const NoteMarks& marks, const ColumnLimits& limits)
      : layout_(layout), marks_(marks), limits_(limits) {
    limits_.report = std::max(limits_.report, kNarrowestReport);
    measureStubs();
    for (std::size_t column = 0; column < layout_.columns; ++column) columns_.push_back(measure(column));
    widenForSpans();
  }

  std::vector<std::string> lines() {
    for (const Panel& panel : panels()) {
      if (!lines_.empty()) lines_.emplace_back();
      addHeadings(panel);
      for (std::size_t row = 0; row < layout_.rows; ++row) addRow(panel, row);
    }
    return std::move(lines_);
  }

 private:
  std::string textOf(const Heading& heading) const { return withMarks(heading.text, heading.notes, marks_); }

  // Row headings take half of the width at most.
  void measureStubs() {
    if (layout_.stubs.empty()) return;
    const std::size_t room = limits_.report / 2 / layout_.stubs.size();
    const std::size_t most = std::max<std::size_t>(room > kGap ? room - kGap : 1, 4);
    for (const Stub& stub : layout_.stubs) {
      std::size_t width = displayWidth(withMarks(stub.heading, stub.notes, marks_));
      for (const Heading& heading : stub.headings) width = std::max(width, displayWidth(textOf(heading)));
      stubWidths_.push_back(std::clamp<std::size_t>(width, 1, most));
    }
  }

  std::size_t stubsWidth() const {
    return std::accumulate(stubWidths_.begin(), stubWidths_.end(), stubWidths_.size() * kGap);
  }

  std::size_t roomForColumns() const { return limits_.report - std::min(limits_.report - 1, stubsWidth()); }

  // The innermost heading over one column, without those that it shares.
  const Heading* ownHeading(std::size_t column) const {
    if (layout_.columnHeadings.empty()) return nullptr;
    const Heading& heading = headingAt(layout_.columnHeadings.back(), column);
    return heading.span == 1 ? &heading : nullptr;
  }

  static const Heading& headingAt(const HeadingRun& run, std::size_t column) {
    const auto after = std::upper_bound(run.begin(), run.end(), column, [](std::size_t wanted, const Heading& heading) {
      return wanted < heading.first;
    });
    return *std::prev(after);
  }

  Column measure(std::size_t column) const {
    Column measured;
    std::size_t texts = 0;
    for (std::size_t row = 0; row < layout_.rows; ++row) {
      const Cell* cell = layout_.cell(row, column);
      if (cell == nullptr) continue;
      const std::string mark = bracketed(&cell->notes, marks_);
      if (cell->value.isNumber()) {
        measured.body = std::max(measured.body, displayWidth(cell->value.shown));
        measured.marks = std::max(measured.marks, displayWidth(mark));
      } else {
        texts = std::max(texts, widestLine(presentable(cell->value.shown) + mark));
      }
    }
    const std::size_t most = limits_.most < 1000 ? limits_.most : kWidestText;
    std::size_t wanted = std::max(texts, limits_.least);
    if (const Heading* heading = ownHeading(column)) {
      const std::string text = textOf(*heading);
      for (const std::string& line : wrapped(text, std::max(widestWord(text), kShortHeading))) {
        wanted = std::max(wanted, displayWidth(line));
      }
    }
    wanted = std::min({wanted, most, roomForColumns()});
    measured.body = std::max<std::size_t>({measured.body, wanted, 1});
    return measured;
  }

  static std::size_t widestLine(const std::string& text) {
    std::size_t widest = 0;
    for (const std::string& line : linesOf(text)) widest = std::max(widest, displayWidth(line));
    return widest;
  }

  // A heading over several columns gets room for its words by widening the last of them.
  void widenForSpans() {
    for (auto run = layout_.columnHeadings.rbegin(); run != layout_.columnHeadings.rend(); ++run) {
      for (const Heading& heading : *run) {
        if (heading.span == 1) continue;
        const std::size_t wanted = std::min(widestWord(textOf(heading)), roomForColumns());
        const std::size_t width = widthOf(heading.first, heading.first + heading.span);
        if (width < wanted) columns_[heading.first + heading.span - 1].body += wanted - width;
      }
    }
  }

  std::size_t widthOf(std::size_t first, std::size_t end) const {
    std::size_t width = (end - first - 1) * kGap;
    for (std::size_t column = first; column < end; ++column) width += columns_[column].width();
    return width;
  }

  std::vector<Panel> panels() const {
    const std::size_t room = roomForColumns();
    std::vector<Panel> panels;
    std::size_t taken = 0;
    for (std::size_t column = 0; column < layout_.columns; ++column) {
      const std::size_t width = columns_[column].width();
      if (panels.empty() || taken + kGap + width > room) {
        panels.push_back({column, column + 1});
        taken = width;
      } else {
        panels.back().end = column + 1;
        taken += kGap + width;
      }
    }
    return panels;
  }

  Block stubBlock(std::size_t stub, const std::string& text) const {
    return {wrapped(text, stubWidths_[stub]), stubWidths_[stub], Align::kLeft};
  }

  void addHeadings(const Panel& panel) {
    const std::size_t runs = layout_.columnHeadings.size();
    const bool named =
        std::any_of(layout_.stubs.begin(), layout_.stubs.end(), [](const Stub& stub) { return !stub.heading.empty(); });
    if (runs == 0 && !named) return;
    for (std::size_t run = 0; run < std::max<std::size_t>(runs, 1); ++run) {
      const bool isLast = run + 1 >= runs;
      std::vector<Block> blocks = stubHeadings(isLast);
      if (runs > 0) addRun(panel, layout_.columnHeadings[run], &blocks);
      addLines(blocks, true, &lines_);
      if (!isLast) addSpanRules(panel, layout_.columnHeadings[run]);
    }
    addRules(panel);
  }

  std::vector<Block> stubHeadings(bool isLast) const {
    std::vector<Block> blocks;
    for (std::size_t stub = 0; stub < layout_.stubs.size(); ++stub) {
      const Stub& column = layout_.stubs[stub];
      blocks.push_back(stubBlock(stub, isLast ? withMarks(column.heading, column.notes, marks_) : std::string()));
    }
    return blocks;
  }

  void addRun(const Panel& panel, const HeadingRun& run, std::vector<Block>* blocks) const {
    for (const auto& [heading, first, end] : visible(panel, run)) {
      const std::size_t width = widthOf(first, end);
      if (end - first > 1) {
        blocks->push_back({wrapped(textOf(*heading), width), width, Align::kCenter});
        continue;
      }
      // Over numbers the heading ends where they end.
      const Column& column = columns_[first];
      const bool right = isNumeric(first);
      const std::size_t room = right ? column.body : column.width();
      std::vector<std::string> lines = wrapped(textOf(*heading), room);
      if (right)
        std::transform(lines.begin(), lines.end(), lines.begin(),
                       [room](const std::string& line) { return padded(line, room, Align::kRight); });
      blocks->push_back({std::move(lines), column.width(), Align::kLeft});
    }
  }

  struct VisiblePart {
    const Heading* heading;
    std::size_t first;
    std::size_t end;
  };

  // The parts of the headings that stand over the panel's columns.
  static std::vector<VisiblePart> visible(const Panel& panel, const HeadingRun& run) {
    std::vector<VisiblePart> parts;
    for (std::size_t column = panel.first; column < panel.end; column = parts.back().end) {
      const Heading& heading = headingAt(run, column);
      parts.push_back({&heading, column, std::min(heading.first + heading.span, panel.end)});
    }
    return parts;
  }

  bool isNumeric(std::size_t column) const {
    for (std::size_t row = 0; row < layout_.rows; ++row) {
      const Cell* cell = layout_.cell(row, column);
      if (cell != nullptr && !cell->value.isNumber()) return false;
    }
    return true;
  }

  // A line below each heading that spans, to show what it spans.
  void addSpanRules(const Panel& panel, const HeadingRun& run) {
    std::string line(stubsWidth(), ' ');
    bool any = false;
    for (const auto& [heading, first, end] : visible(panel, run)) {
      const bool spans = end - first > 1 && !heading->text.empty();
      any = any || spans;
      if (first != panel.first) line.append(kGap, ' ');
      line.append(widthOf(first, end), spans ? '-' : ' ');
    }
    trimEnd(&line);
    if (any) lines_.push_back(std::move(line));
  }

  void addRules(const Panel& panel) {
    std::string line;
    for (const std::size_t width : stubWidths_) line += std::string(width, '-') + std::string(kGap, ' ');
    for (std::size_t column = panel.first; column < panel.end; ++column) {
      if (column != panel.first) line.append(kGap, ' ');
      line.append(columns_[column].width(), '-');
    }
    lines_.push_back(std::move(line));
  }

  void addRow(const Panel& panel, std::size_t row) {
    std::vector<Block> blocks;
    for (std::size_t stub = 0; stub < layout_.stubs.size(); ++stub) {
      const Heading& heading = headingAt(layout_.stubs[stub].headings, row);
      blocks.push_back(stubBlock(stub, heading.first == row ? textOf(heading) : std::string()));
    }
    for (std::size_t column = panel.first; column < panel.end; ++column) blocks.push_back(cellBlock(row, column));
    addLines(blocks, false, &lines_);
  }

  Block cellBlock(std::size_t row, std::size_t column) const {
    const Column& measured = columns_[column];
    const Cell* cell = layout_.cell(row, column);
    if (cell == nullptr) return {{}, measured.width(), Align::kLeft};
    const std::string mark = bracketed(&cell->notes, marks_);
    if (cell->value.isNumber()) {
      return {{padded(cell->value.shown, measured.body, Align::kRight) + mark}, measured.width(), Align::kLeft};
    }
    return {wrapped(presentable(cell->value.shown) + mark, measured.width()), measured.width(), Align::kLeft};
  }

  const TableLayout& layout_;
  const NoteMarks& marks_;
  ColumnLimits limits_;
  std::vector<std::size_t> stubWidths_;
  std::vector<Column> columns_;
  std::vector<std::string> lines_;
};

}  // namespace

std::string withMarks(std::string_view text, const Notes* notes, const NoteMarks& marks) {
  return onOneLine(text) + bracketed(notes, marks);
}

std::vector<std::string> tableLines(const TableLayout& layout, const NoteMarks& marks, const ColumnLimits& limits) {
  if (layout.rows == 0) return {"(no cells)"};
  if (layout.isTooLarge) return wrapped(tooLargeText(layout), std::max(limits.report, kNarrowestReport));
  return TableText(layout, marks, limits).lines();
}

}  // namespace kova::engine
