// A pivot table as HTML: real tables, whose heading cells say what they are headings of, and linked footnotes.
#ifndef KOVADX_ENGINE_REPORT_HTML_TABLE_H
#define KOVADX_ENGINE_REPORT_HTML_TABLE_H

#include <string>
#include <string_view>

#include "engine/pivot_table.h"
#include "engine/report_notes.h"

namespace kova::engine {

// The text with what HTML reads as markup written out; quotes too, so that it fits into an attribute.
std::string htmlText(std::string_view text);

// Marks that link to their footnotes, and the footnotes, each of which links back to its first mark if it has any.
class NoteLinks {
 public:
  // Every id on the page begins with the prefix.
  NoteLinks(const NoteMarks& marks, std::string prefix) : marks_(marks), prefix_(std::move(prefix)) {}

  // "" without notes.
  std::string marksHtml(const Notes* notes);
  // The list of all footnotes; "" without any.
  std::string listHtml() const;

 private:
  const NoteMarks& marks_;
  std::string prefix_;
  std::vector<bool> isMarked_;
};

// The table as a figure: one table for each of its layouts, then caption and footnotes. Marks of the outline that stand
// in a heading of its own were made before, with the same links.
std::string tableHtml(const PivotTable& table, const std::vector<TableLayout>& layouts, bool outlineIsShown,
                      const std::string& prefix, NoteLinks* links);

}  // namespace kova::engine

#endif
