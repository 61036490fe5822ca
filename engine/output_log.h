// Everything that programs have put out: finished procedures, one open procedure, and what came outside of them.
//
// A part of the engine's state; changed by request handlers alone, one at a time.
#ifndef KOVADX_ENGINE_OUTPUT_LOG_H
#define KOVADX_ENGINE_OUTPUT_LOG_H

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>

#include "engine/error_codes.h"
#include "engine/output_number.h"
#include "engine/pivot_table.h"

namespace kova::engine {

struct TextBlock {
  std::string outline;  // The heading under which the block stands.
  std::string title;
  std::string text;  // Lines, the last one without an end.
};

// Output that was ready-made: lines that are shown as they are.
struct PostedText {
  std::string text;
};

struct Graphic {
  std::string name;  // "image1", "image2", ...: one series in the whole output.
  std::string label;
  std::string outline;
  std::string type;  // "PNG".
  std::string bytes;
  int width = 0;  // In pixels.
  int height = 0;
};

struct OutputItem {
  int splitGroup = 1;
  std::variant<PivotTable, TextBlock, PostedText, Graphic> content;
};

// A procedure and its output; without a name, output that belongs to none.
struct OutputSection {
  std::string name;
  std::string label;  // What people read; may be the name.
  Notes notes;
  std::deque<OutputItem> items;
  int splitGroups = 1;

  bool isProcedure() const { return !name.empty(); }
};

class OutputLog {
 public:
  using Listener = std::function<void(const OutputSection& finished)>;

  // Finished output, oldest first. References stay valid.
  const std::deque<OutputSection>& sections() const { return finished_; }
  // Is told of each section once it is finished, in the thread that finished it.
  void setListener(Listener listener) { listener_ = std::move(listener); }

  ErrorCode startProcedure(const std::string& name, const std::string& label);
  ErrorCode endProcedure();
  bool hasProcedure() const { return open_ != nullptr; }

  ErrorCode addProcedureNote(std::string_view text);
  ErrorCode startTable(const TableKeyView& key);
  // The table that was started with this key. kNoProcedureOpen or kUnknownTable when there is none.
  ErrorCode findTable(const TableKeyView& key, PivotTable** table);
  // A block with the outline and the title of the last item goes on in it, after `blankLines` empty lines.
  ErrorCode addTextBlock(const std::string& outline, const std::string& title, const std::string& text, int blankLines);
  // From now on every key with the split flag names a new table. Without an open procedure there is nothing to do.
  void changeSplit();

  // Into the open procedure; a section of its own without one.
  void post(const std::string& text);
  // Gives the graphic its name and the labels that were set.
  void addGraphic(Graphic graphic);
  void labelGraphics(const std::string& label, const std::string& outline);
  // Null when no finished or open section has one of that name.
  const Graphic* findGraphic(std::string_view name) const;

  // For the cells that follow; back at its default with each procedure. kNoProcedureOpen without one.
  ErrorCode setStyle(const NumberStyle& style);
  const NumberStyle& style() const { return style_; }

  static constexpr int kMostBlankLines = 1000;

 private:
  void add(std::variant<PivotTable, TextBlock, PostedText, Graphic> content);
  void finish(OutputSection section);

  std::deque<OutputSection> finished_;
  std::unique_ptr<OutputSection> open_;
  std::unordered_map<std::string, PivotTable*> tables_;  // Of the open procedure, by key.
  PivotTable* lastTable_ = nullptr;                      // One of them, which the next request likely names too.
  NumberStyle style_;
  std::string graphicLabel_;
  std::string graphicOutline_;
  int graphicCount_ = 0;
  Listener listener_;
};

}  // namespace kova::engine

#endif
