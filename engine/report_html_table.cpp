#include "engine/report_html_table.h"

#include <algorithm>
#include <initializer_list>

#include "engine/output_texts.h"

namespace kova::engine {
namespace {

// A longer title is broken to the table's width, a shorter one stands on one line.
constexpr std::size_t kLongTitle = 80;

std::string spanAttribute(const char* name, std::size_t span) {
  return span > 1 ? std::string(" ") + name + "=\"" + std::to_string(span) + "\"" : std::string();
}

bool isNumeric(const TableLayout& layout, std::size_t column) {
  for (std::size_t row = 0; row < layout.rows; ++row) {
    const Cell* cell = layout.cell(row, column);
    if (cell != nullptr && !cell->value.isNumber()) return false;
  }
  return true;
}

std::string marked(std::string_view text, const Notes* notes, NoteLinks* links) {
  return htmlText(text) + links->marksHtml(notes);
}

// The title with what the layer is called.
std::string layerTitle(const TableLayout& layout, const std::string& titleHtml, NoteLinks* links) {
  std::string layer;
  for (const LayerPart& part : layout.layer) {
    if (!layer.empty()) layer += ", ";
    if (part.nameNotes != nullptr) layer += marked(part.name, part.nameNotes, links);
    if (part.nameNotes != nullptr && part.categoryNotes != nullptr) layer += ": ";
    if (part.categoryNotes != nullptr) layer += marked(part.category, part.categoryNotes, links);
  }
  if (layer.empty()) return titleHtml;
  return titleHtml + (titleHtml.empty() ? "" : " ") + "<span class=\"layer\">" + layer + "</span>";
}

// One layer of a table.
class LayerHtml {
 public:
  LayerHtml(const PivotTable& table, const TableLayout& layout, NoteLinks* links)
      : table_(table), layout_(layout), links_(*links), numberStyle_(cellStyle(true)), textStyle_(cellStyle(false)) {
    for (std::size_t column = 0; column < layout_.columns; ++column) numeric_.push_back(isNumeric(layout_, column));
    opensGroup_.resize(layout_.columns);
    for (const Group& group : layout_.columnGroups) opensGroup_[group.first] = group.first > 0;
  }

  std::string render(const std::string& captionId, const std::string& caption) {
    html_ += "<div class=\"scroll\" role=\"region\" aria-labelledby=\"" + captionId + "\" tabindex=\"0\">\n<table";
    if (!hasHead()) html_ += " class=\"bare\"";
    const bool isLong = table_.key().title.size() > kLongTitle;
    html_ += ">\n<caption id=\"" + captionId + (isLong ? "\" class=\"long\">" : "\">") + caption + "</caption>\n";
    addColumnGroups();
    addHead();
    addBodies();
    html_ += "</table>\n</div>\n";
    return std::move(html_);
  }

 private:
  std::string marked(std::string_view text, const Notes* notes) { return engine::marked(text, notes, &links_); }

  // Where a group of columns begins beside another.
  const char* groupClass(std::size_t column) const { return opensGroup_[column] ? "group" : ""; }

  static std::string classes(std::initializer_list<std::string_view> names) {
    std::string all;
    for (const std::string_view name : names) {
      if (!all.empty() && !name.empty()) all += ' ';
      all += name;
    }
    return all.empty() ? all : " class=\"" + all + "\"";
  }

  bool hasStubNames() const {
    return std::any_of(layout_.stubs.begin(), layout_.stubs.end(),
                       [](const Stub& stub) { return !stub.heading.empty(); });
  }

  bool hasHead() const { return !layout_.columnHeadings.empty() || hasStubNames(); }

  // Column groups give the headings that span a group its extent.
  void addColumnGroups() {
    if (!layout_.stubs.empty()) html_ += "<colgroup" + spanAttribute("span", layout_.stubs.size()) + "></colgroup>\n";
    for (const Group& group : layout_.columnGroups) {
      html_ += "<colgroup" + spanAttribute("span", group.span) + "></colgroup>\n";
    }
  }

  // A column's limits. Numbers keep on one line, so they have no greatest width.
  std::string cellStyle(bool isNumber) const {
    std::string style;
    if (table_.leastColumnWidth() > 1) style += "min-width:" + std::to_string(table_.leastColumnWidth()) + "ch";
    if (!isNumber && table_.mostColumnWidth() < PivotTable::kWidestColumn) {
      style += (style.empty() ? "" : ";") + ("max-width:" + std::to_string(table_.mostColumnWidth())) + "ch";
      style += ";overflow-wrap:anywhere";
    }
    return style.empty() ? style : " style=\"" + style + "\"";
  }

  // The names of the row headings stand in the last line, an empty cell fills the corner above them.
  void addHead() {
    if (!hasHead()) return;
    const std::size_t lines = std::max<std::size_t>(layout_.columnHeadings.size(), 1);
    const bool named = hasStubNames();
    html_ += "<thead>\n";
    for (std::size_t line = 0; line < lines; ++line) {
      html_ += "<tr>";
      if (line == 0) addCorner(named ? lines - 1 : lines);
      if (named && line + 1 == lines) addStubNames();
      if (layout_.columnHeadings.empty()) {
        html_ += "<td" + spanAttribute("colspan", layout_.columns) + "></td>";
      } else {
        for (const Heading& heading : layout_.columnHeadings[line]) addColumnHeading(heading);
      }
      html_ += "</tr>\n";
    }
    html_ += "</thead>\n";
  }

  void addCorner(std::size_t lines) {
    if (layout_.stubs.empty() || lines == 0) return;
    html_ += "<td" + spanAttribute("colspan", layout_.stubs.size()) + spanAttribute("rowspan", lines) + "></td>";
  }

  void addStubNames() {
    for (const Stub& stub : layout_.stubs) {
      html_ += stub.heading.empty() ? "<td></td>" : "<th scope=\"col\">" + marked(stub.heading, stub.notes) + "</th>";
    }
  }

  void addColumnHeading(const Heading& heading) {
    html_ += "<th";
    html_ += coversGroup(heading, layout_.columnGroups) ? " scope=\"colgroup\"" : " scope=\"col\"";
    html_ += spanAttribute("colspan", heading.span);
    html_ += classes({heading.span > 1          ? "span"
                      : numeric_[heading.first] ? "n"
                                                : "",
                      groupClass(heading.first)}) +
             (heading.span > 1 ? std::string() : textStyle_) + ">" + marked(heading.text, heading.notes) + "</th>";
  }

  // One body for each group of rows.
  void addBodies() {
    std::vector<std::size_t> next(layout_.stubs.size(), 0);
    for (const Group& group : layout_.rowGroups) {
      html_ += "<tbody>\n";
      for (std::size_t row = group.first; row < group.first + group.span; ++row) {
        html_ += "<tr>";
        addRowHeadings(row, &next);
        for (std::size_t column = 0; column < layout_.columns; ++column) addCell(row, column);
        html_ += "</tr>\n";
      }
      html_ += "</tbody>\n";
    }
  }

  void addRowHeadings(std::size_t row, std::vector<std::size_t>* next) {
    for (std::size_t stub = 0; stub < layout_.stubs.size(); ++stub) {
      const HeadingRun& run = layout_.stubs[stub].headings;
      std::size_t& position = (*next)[stub];
      if (position == run.size() || run[position].first != row) continue;
      const Heading& heading = run[position++];
      html_ += coversGroup(heading, layout_.rowGroups) ? "<th scope=\"rowgroup\"" : "<th scope=\"row\"";
      html_ += spanAttribute("rowspan", heading.span) + ">" + marked(heading.text, heading.notes) + "</th>";
    }
  }

  void addCell(std::size_t row, std::size_t column) {
    const Cell* cell = layout_.cell(row, column);
    if (cell == nullptr) {
      html_ += "<td" + classes({groupClass(column)}) + "></td>";
      return;
    }
    const bool isNumber = cell->value.isNumber();
    html_ += "<td" + classes({isNumber ? "n" : "", groupClass(column)}) + (isNumber ? numberStyle_ : textStyle_) + ">" +
             marked(cell->value.shown, &cell->notes) + "</td>";
  }

  const PivotTable& table_;
  const TableLayout& layout_;
  NoteLinks& links_;
  std::string numberStyle_;
  std::string textStyle_;
  std::vector<bool> numeric_;
  std::vector<bool> opensGroup_;
  std::string html_;
};

std::string titleHtml(const PivotTable& table, bool outlineIsShown, NoteLinks* links) {
  if (table.titleHidden) return "<span class=\"hidden\">" + htmlText(table.key().title) + "</span>";
  if (!showsTitle(table)) return {};
  Notes notes = table.titleNotes;
  if (!outlineIsShown) {
    for (const std::string& note : table.outlineNotes) addNote(&notes, note);
  }
  return htmlText(table.key().title) + links->marksHtml(&notes);
}

}  // namespace

std::string htmlText(std::string_view text) {
  std::string html;
  for (const char c : presentable(text)) {
    switch (c) {
      case '&':
        html += "&amp;";
        break;
      case '<':
        html += "&lt;";
        break;
      case '>':
        html += "&gt;";
        break;
      case '"':
        html += "&quot;";
        break;
      case '\'':
        html += "&#39;";
        break;
      default:
        html += c;
    }
  }
  return html;
}

std::string NoteLinks::marksHtml(const Notes* notes) {
  if (notes == nullptr || notes->empty()) return {};
  isMarked_.resize(marks_.texts().size());
  const std::vector<std::size_t> positions = marks_.positionsOf(*notes);
  std::string html = positions.size() == 1 ? "<sup class=\"one\">" : "<sup>";
  for (const std::size_t position : positions) {
    const std::string mark = NoteMarks::markAt(position);
    if (position != positions.front()) html += ",";
    html += "<a href=\"#" + prefix_ + "note-" + mark + "\"";
    if (!isMarked_[position]) html += " id=\"" + prefix_ + "mark-" + mark + "\"";
    isMarked_[position] = true;
    html += " aria-label=\"Footnote " + mark + "\">" + mark + "</a>";
  }
  return html + "</sup>";
}

std::string NoteLinks::listHtml() const {
  if (marks_.texts().empty()) return {};
  std::string html = "<ol class=\"notes\">\n";
  for (std::size_t position = 0; position < marks_.texts().size(); ++position) {
    const std::string text = htmlText(marks_.texts()[position]);
    if (!marks_.isMarked(position)) {
      html += "<li class=\"plain\">" + text + "</li>\n";
      continue;
    }
    const std::string mark = NoteMarks::markAt(position);
    html += "<li id=\"" + prefix_ + "note-" + mark + "\">" + text + " <a class=\"back\" href=\"#" + prefix_ + "mark-" +
            mark + "\" aria-label=\"Back to mark " + mark + "\">\u21A9\uFE0E</a></li>\n";
  }
  return html + "</ol>\n";
}

std::string tableHtml(const PivotTable& table, const std::vector<TableLayout>& layouts, bool outlineIsShown,
                      const std::string& prefix, NoteLinks* links) {
  std::string html = "<figure>\n";
  std::string title = titleHtml(table, outlineIsShown, links);
  std::size_t layer = 0;
  for (const TableLayout& layout : layouts) {
    const std::string caption = layerTitle(layout, title, links);
    // An id stands once: the other layers repeat the title without its marks.
    if (!table.titleHidden) title = htmlText(table.key().title);
    if (layout.rows == 0 || layout.isTooLarge) {
      const std::string said = layout.rows == 0 ? "No cells." : tooLargeText(layout);
      html += "<p>" + caption + "</p>\n<p class=\"soft\">" + htmlText(said) + "</p>\n";
      continue;
    }
    const std::string captionId = prefix + "caption-" + std::to_string(++layer);
    html += LayerHtml(table, layout, links).render(captionId, caption);
  }
  if (!table.caption.empty()) {
    html += "<figcaption>" + htmlText(table.caption) + links->marksHtml(&table.captionNotes) + "</figcaption>\n";
  }
  return html + links->listHtml() + "</figure>\n";
}

}  // namespace kova::engine
