#include "engine/report_html.h"

#include <algorithm>
#include <string_view>

#include "engine/report_html_table.h"
#include "engine/report_style.h"

namespace kova::engine {
namespace {

std::string base64(std::string_view bytes) {
  static constexpr char kLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const std::size_t count = std::min<std::size_t>(3, bytes.size() - at);
    unsigned group = 0;
    for (std::size_t i = 0; i < 3; ++i)
      group = group << 8 | (i < count ? static_cast<unsigned char>(bytes[at + i]) : 0U);
    for (std::size_t i = 0; i < 4; ++i) text += i <= count ? kLetters[group >> (18 - 6 * i) & 63] : '=';
  }
  return text;
}

// One section of the page.
class SectionHtml {
 public:
  SectionHtml(const OutputSection& section, std::string id) : section_(section), id_(std::move(id)) {}

  std::string render() {
    html_ = "<section id=\"" + id_ + "\"";
    if (section_.isProcedure()) {
      html_ += " aria-labelledby=\"" + id_ + "-heading\">\n";
      addHeading();
    } else {
      html_ += ">\n";
    }
    for (const OutputItem& item : section_.items) {
      if (section_.splitGroups > 1 && item.splitGroup != group_) addGroup(item.splitGroup);
      ++item_;
      std::visit([this](const auto& content) { add(content); }, item.content);
    }
    html_ += "</section>\n";
    return std::move(html_);
  }

 private:
  void addHeading() {
    NoteMarks marks;
    marks.add(section_.notes);
    NoteLinks links(marks, id_ + "-");
    html_ +=
        "<h2 id=\"" + id_ + "-heading\">" + htmlText(section_.label) + links.marksHtml(&section_.notes) + "</h2>\n";
    html_ += links.listHtml();
  }

  void addGroup(int group) {
    group_ = group;
    outline_.clear();
    html_ += "<h3>Split group " + std::to_string(group) + "</h3>\n";
  }

  // True when the outline gets a heading of its own here: not again, and not when the title says the same.
  bool opensOutline(const std::string& outline, const std::string& title) {
    if (outline.empty() || outline == title || outline == outline_) return false;
    outline_ = outline;
    return true;
  }

  void addOutline(const std::string& outline, const std::string& title) {
    if (opensOutline(outline, title)) html_ += "<h3>" + htmlText(outline) + "</h3>\n";
  }

  void add(const PivotTable& table) {
    const std::string prefix = id_ + "-" + std::to_string(item_) + "-";
    const bool opens = opensOutline(table.key().outline, table.key().title);
    const std::vector<TableLayout> layouts = layOut(table);
    const NoteMarks marks = marksOfTable(table, layouts, opens);
    NoteLinks links(marks, prefix);
    if (opens) html_ += "<h3>" + htmlText(table.key().outline) + links.marksHtml(&table.outlineNotes) + "</h3>\n";
    html_ += tableHtml(table, layouts, opens, prefix, &links);
  }

  void add(const TextBlock& block) {
    addOutline(block.outline, block.title);
    if (!block.title.empty()) html_ += "<p class=\"text-title\">" + htmlText(block.title) + "</p>\n";
    html_ += "<div class=\"text\">" + htmlText(block.text) + "</div>\n";
  }

  void add(const PostedText& posted) { html_ += "<pre class=\"posted\">\n" + htmlText(posted.text) + "</pre>\n"; }

  void add(const Graphic& graphic) {
    addOutline(graphic.outline, graphic.label);
    const std::string label = htmlText(graphic.label.empty() ? graphic.name : graphic.label);
    html_ += "<figure>\n<img src=\"data:image/png;base64," + base64(graphic.bytes) + "\" alt=\"" + label +
             "\" width=\"" + std::to_string(graphic.width) + "\" height=\"" + std::to_string(graphic.height) + "\">\n";
    if (!graphic.label.empty()) html_ += "<figcaption>" + label + "</figcaption>\n";
    html_ += "</figure>\n";
  }

  const OutputSection& section_;
  std::string id_;
  std::string html_;
  std::string outline_;
  int group_ = 0;
  int item_ = 0;
};

std::string idAt(std::size_t position) { return "s" + std::to_string(position + 1); }

// A list of the procedures, where there are several.
std::string contentsHtml(const std::deque<OutputSection>& sections) {
  std::string list;
  std::size_t count = 0;
  for (std::size_t i = 0; i < sections.size(); ++i) {
    if (!sections[i].isProcedure()) continue;
    ++count;
    list += "<li><a href=\"#" + idAt(i) + "\">" + htmlText(sections[i].label) + "</a></li>\n";
  }
  return count > 1 ? "<nav aria-label=\"Contents\">\n<ol>\n" + list + "</ol>\n</nav>\n" : "";
}

std::string titleOf(const std::deque<OutputSection>& sections) {
  for (const OutputSection& section : sections) {
    if (section.isProcedure()) return htmlText(section.label) + " \u2013 report";
  }
  return "Report";
}

}  // namespace

std::string htmlReport(const std::deque<OutputSection>& sections) {
  std::string html =
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<meta name=\"color-scheme\" content=\"light dark\">\n"
      "<title>" +
      titleOf(sections) + "</title>\n<link rel=\"icon\" href=\"data:,\">\n<style>" + reportStyle() +
      "</style>\n</head>\n<body>\n<header>\n<h1>Report</h1>\n" + contentsHtml(sections) + "</header>\n<main>\n";
  if (sections.empty()) html += "<p class=\"soft\">There is no output.</p>\n";
  for (std::size_t i = 0; i < sections.size(); ++i) html += SectionHtml(sections[i], idAt(i)).render();
  return html + "</main>\n</body>\n</html>\n";
}

}  // namespace kova::engine
