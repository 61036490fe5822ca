#include "engine/output_log.h"

#include <utility>

namespace kova::engine {
namespace {

std::string identityOf(const TableKeyView& key) {
  std::string text = std::to_string(key.outline.size()) + " " + std::to_string(key.title.size()) + " ";
  text += key.isSplit ? '1' : '0';
  return text.append(key.outline).append(key.title).append(key.subtype);
}

const Graphic* findIn(const OutputSection& section, std::string_view name) {
  for (const OutputItem& item : section.items) {
    const auto* graphic = std::get_if<Graphic>(&item.content);
    if (graphic != nullptr && graphic->name == name) return graphic;
  }
  return nullptr;
}

}  // namespace

ErrorCode OutputLog::startProcedure(const std::string& name, const std::string& label) {
  if (open_) return ErrorCode::kProcedureOpen;
  if (name.empty()) return ErrorCode::kOutputNameEmpty;
  open_ = std::make_unique<OutputSection>();
  open_->name = name;
  open_->label = label.empty() ? name : label;
  style_ = NumberStyle{};
  return ErrorCode::kNone;
}

ErrorCode OutputLog::endProcedure() {
  if (!open_) return ErrorCode::kNoProcedureOpen;
  tables_.clear();
  lastTable_ = nullptr;
  finish(std::move(*std::exchange(open_, nullptr)));
  return ErrorCode::kNone;
}

void OutputLog::finish(OutputSection section) {
  finished_.push_back(std::move(section));
  if (listener_) listener_(finished_.back());
}

void OutputLog::add(std::variant<PivotTable, TextBlock, PostedText, Graphic> content) {
  if (open_) {
    open_->items.push_back({open_->splitGroups, std::move(content)});
    return;
  }
  OutputSection loose;
  loose.items.push_back({1, std::move(content)});
  finish(std::move(loose));
}

ErrorCode OutputLog::addProcedureNote(std::string_view text) {
  if (!open_) return ErrorCode::kNoProcedureOpen;
  addNote(&open_->notes, text);
  return ErrorCode::kNone;
}

ErrorCode OutputLog::startTable(const TableKeyView& key) {
  if (!open_) return ErrorCode::kNoProcedureOpen;
  std::string identity = identityOf(key);
  if (tables_.contains(identity)) return ErrorCode::kTableExists;
  add(PivotTable(key.copy()));
  lastTable_ = &std::get<PivotTable>(open_->items.back().content);
  tables_.emplace(std::move(identity), lastTable_);
  return ErrorCode::kNone;
}

ErrorCode OutputLog::findTable(const TableKeyView& key, PivotTable** table) {
  if (!open_) return ErrorCode::kNoProcedureOpen;
  if (lastTable_ == nullptr || !key.names(lastTable_->key())) {
    const auto found = tables_.find(identityOf(key));
    if (found == tables_.end()) return ErrorCode::kUnknownTable;
    lastTable_ = found->second;
  }
  *table = lastTable_;
  return ErrorCode::kNone;
}

ErrorCode OutputLog::addTextBlock(const std::string& outline, const std::string& title, const std::string& text,
                                  int blankLines) {
  if (!open_) return ErrorCode::kNoProcedureOpen;
  if (blankLines < 0 || blankLines > kMostBlankLines) return ErrorCode::kOutputNumberOutOfRange;
  TextBlock* last = nullptr;
  if (!open_->items.empty() && open_->items.back().splitGroup == open_->splitGroups) {
    last = std::get_if<TextBlock>(&open_->items.back().content);
  }
  const std::string skipped(static_cast<std::size_t>(blankLines), '\n');
  if (last != nullptr && last->outline == outline && last->title == title) {
    last->text += "\n" + skipped + text;
  } else {
    add(TextBlock{outline, title, skipped + text});
  }
  return ErrorCode::kNone;
}

// A group without output does not count, so that a change before the first and one after the last group show nothing.
void OutputLog::changeSplit() {
  if (!open_) return;
  lastTable_ = nullptr;
  std::erase_if(tables_, [](const auto& entry) { return entry.second->key().isSplit; });
  if (!open_->items.empty() && open_->items.back().splitGroup == open_->splitGroups) ++open_->splitGroups;
}

void OutputLog::post(const std::string& text) { add(PostedText{text}); }

void OutputLog::addGraphic(Graphic graphic) {
  graphic.name = "image" + std::to_string(++graphicCount_);
  graphic.label = graphicLabel_;
  graphic.outline = graphicOutline_;
  add(std::move(graphic));
}

void OutputLog::labelGraphics(const std::string& label, const std::string& outline) {
  graphicLabel_ = label;
  graphicOutline_ = outline;
}

const Graphic* OutputLog::findGraphic(std::string_view name) const {
  for (const OutputSection& section : finished_) {
    if (const Graphic* graphic = findIn(section, name)) return graphic;
  }
  return open_ ? findIn(*open_, name) : nullptr;
}

ErrorCode OutputLog::setStyle(const NumberStyle& style) {
  if (!open_) return ErrorCode::kNoProcedureOpen;
  style_ = style;
  return ErrorCode::kNone;
}

}  // namespace kova::engine
