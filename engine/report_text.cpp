#include "engine/report_text.h"

#include <algorithm>
#include <utility>

#include "engine/output_texts.h"
#include "engine/report_text_table.h"
#include "engine/report_width.h"

namespace kova::engine {
namespace {

class SectionText {
 public:
  explicit SectionText(std::size_t width) : width_(std::max(width, kNarrowestReport)) {}

  std::string render(const OutputSection& section) {
    if (section.isProcedure()) addProcedureHeading(section);
    for (const OutputItem& item : section.items) {
      if (section.splitGroups > 1 && item.splitGroup != group_) addGroup(item.splitGroup);
      std::visit([this](const auto& content) { add(content); }, item.content);
    }
    return std::move(text_);
  }

 private:
  void addLine(const std::string& line) { text_ += line + "\n"; }

  void addWrapped(const std::string& text) {
    for (const std::string& line : wrapped(text, width_)) addLine(line);
  }

  void addHeading(const std::string& heading, char rule) {
    addWrapped(heading);
    addLine(std::string(std::min(displayWidth(heading), width_), rule));
    addLine("");
  }

  void addProcedureHeading(const OutputSection& section) {
    NoteMarks marks;
    marks.add(section.notes);
    addHeading(withMarks(section.label, &section.notes, marks), '=');
    if (section.notes.empty()) return;
    addNotes(marks);
    addLine("");
  }

  void addGroup(int group) {
    group_ = group;
    outline_.clear();
    addLine("Split group " + std::to_string(group));
    addLine("");
  }

  // True when the heading of an item is said here: not again, and not when the title says the same.
  bool opensOutline(const std::string& outline, const std::string& title) {
    if (outline.empty() || outline == title || outline == outline_) return false;
    outline_ = outline;
    return true;
  }

  void addOutline(const std::string& outline, const std::string& title) {
    if (opensOutline(outline, title)) addHeading(onOneLine(outline), '-');
  }

  void addNotes(const NoteMarks& marks) {
    for (std::size_t i = 0; i < marks.texts().size(); ++i) {
      const std::string mark = marks.isMarked(i) ? NoteMarks::markAt(i) + ". " : std::string();
      bool isFirst = true;
      const std::size_t room = width_ > mark.size() ? width_ - mark.size() : 1;
      for (const std::string& line : wrapped(presentable(marks.texts()[i]), room)) {
        addLine((isFirst ? mark : std::string(mark.size(), ' ')) + line);
        isFirst = false;
      }
    }
  }

  // Notes of an outline that is not shown by itself stand at the title.
  void add(const PivotTable& table) {
    const TableKey& key = table.key();
    const bool isShown = opensOutline(key.outline, key.title);
    const std::vector<TableLayout> layouts = layOut(table);
    const NoteMarks marks = marksOfTable(table, layouts, isShown);
    if (isShown) addHeading(withMarks(key.outline, &table.outlineNotes, marks), '-');
    Notes notes = table.titleNotes;
    if (!isShown) notes.insert(notes.end(), table.outlineNotes.begin(), table.outlineNotes.end());
    if (showsTitle(table)) {
      addWrapped(withMarks(key.title, &notes, marks));
      addLine("");
    }
    const ColumnLimits limits{width_, static_cast<std::size_t>(table.leastColumnWidth()),
                              static_cast<std::size_t>(table.mostColumnWidth())};
    for (const TableLayout& layout : layouts) {
      addLayer(layout, marks);
      for (const std::string& line : tableLines(layout, marks, limits)) addLine(line);
      addLine("");
    }
    addNotesAndCaption(table, marks);
  }

  void addLayer(const TableLayout& layout, const NoteMarks& marks) {
    if (layout.layer.empty()) return;
    std::string line;
    for (const LayerPart& part : layout.layer) {
      if (!line.empty()) line += ", ";
      if (part.nameNotes != nullptr) line += withMarks(part.name, part.nameNotes, marks);
      if (part.nameNotes != nullptr && part.categoryNotes != nullptr) line += ": ";
      if (part.categoryNotes != nullptr) line += withMarks(part.category, part.categoryNotes, marks);
    }
    addWrapped(line);
  }

  void addNotesAndCaption(const PivotTable& table, const NoteMarks& marks) {
    if (!table.caption.empty()) addWrapped(presentable(table.caption) + withMarks("", &table.captionNotes, marks));
    addNotes(marks);
    if (!table.caption.empty() || !marks.texts().empty()) addLine("");
  }

  void add(const TextBlock& block) {
    addOutline(block.outline, block.title);
    if (!block.title.empty()) addWrapped(onOneLine(block.title));
    addWrapped(presentable(block.text));
    addLine("");
  }

  void add(const PostedText& posted) {
    for (const std::string& line : linesOf(presentable(posted.text))) addLine(line);
    addLine("");
  }

  void add(const Graphic& graphic) {
    addOutline(graphic.outline, graphic.label);
    const std::string label = graphic.label.empty() ? graphic.name : graphic.label;
    addWrapped("[" + onOneLine(label) + ": " + graphic.type + " image, " + std::to_string(graphic.width) + " x " +
               std::to_string(graphic.height) + " pixels]");
    addLine("");
  }

  std::size_t width_;
  std::string text_;
  std::string outline_;
  int group_ = 0;
};

}  // namespace

std::string sectionText(const OutputSection& section, std::size_t width) { return SectionText(width).render(section); }

}  // namespace kova::engine
