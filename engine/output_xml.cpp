#include "engine/output_xml.h"

#include "engine/case_store.h"
#include "engine/output_texts.h"
#include "engine/report_notes.h"

namespace kova::engine {
namespace {

constexpr const char* kPlaceNames[] = {"row", "column", "layer"};

// An attribute that is left out where there is nothing to tell.
void setIfAny(pugi::xml_node element, const char* name, std::string_view value) {
  if (!value.empty()) putAttribute(element, name, value);
}

void setIfTrue(pugi::xml_node element, const char* name, bool value) {
  if (value) putAttribute(element, name, "true");
}

void setMarks(pugi::xml_node element, const char* name, const Notes& notes, const NoteMarks& marks) {
  std::string text;
  for (const std::string& mark : marks.marksOf(notes)) text += (text.empty() ? "" : " ") + mark;
  setIfAny(element, name, text);
}

void appendNotes(pugi::xml_node element, const NoteMarks& marks) {
  for (std::size_t i = 0; i < marks.texts().size(); ++i) {
    putAttribute(appendText(element, "footnote", marks.texts()[i]), "mark", NoteMarks::markAt(i));
  }
}

void describeValue(pugi::xml_node element, const OutputValue& value) {
  putAttribute(element, "type", kindName(value.kind));
  const bool isNumber = value.kind == ValueKind::kNumber || value.kind == ValueKind::kVariableNumber;
  if (isNumber && value.number != kSystemMissing) putAttribute(element, "number", shortNumberText(value.number));
  if (value.style != nullptr) putAttribute(element, "format", value.style);
  setIfAny(element, "variable", value.variable);
  if (value.kind == ValueKind::kVariableText) putAttribute(element, "value", value.value);
}

class TableXml {
 public:
  TableXml(pugi::xml_node parent, const PivotTable& table)
      : table_(table),
        marks_(marksOfTable(table, layOut(table), !table.key().outline.empty())),
        element_(parent.append_child("table")) {}

  pugi::xml_node write() {
    const TableKey& key = table_.key();
    putAttribute(element_, "title", key.title);
    putAttribute(element_, "subtype", key.subtype);
    putAttribute(element_, "outline", key.outline);
    setIfTrue(element_, "split", key.isSplit);
    setIfTrue(element_, "title-hidden", table_.titleHidden);
    setMarks(element_, "title-marks", table_.titleNotes, marks_);
    setMarks(element_, "outline-marks", table_.outlineNotes, marks_);
    for (const Dimension& dimension : table_.dimensions()) appendDimension(dimension);
    for (const Cell& cell : table_.cells()) appendCell(cell);
    if (!table_.caption.empty()) {
      setMarks(appendText(element_, "caption", table_.caption), "marks", table_.captionNotes, marks_);
    }
    appendNotes(element_, marks_);
    return element_;
  }

 private:
  void appendDimension(const Dimension& dimension) {
    pugi::xml_node element = element_.append_child("dimension");
    putAttribute(element, "name", dimension.key.name);
    putAttribute(element, "place", kPlaceNames[dimension.key.place]);
    putAttribute(element, "position", dimension.key.position);
    setIfTrue(element, "name-hidden", dimension.key.hideName);
    setIfTrue(element, "labels-hidden", dimension.key.hideLabels);
    setMarks(element, "marks", dimension.notes, marks_);
    for (const Category& category : dimension.categories) {
      pugi::xml_node child = appendText(element, "category", category.value.shown);
      describeValue(child, category.value);
      setMarks(child, "marks", category.notes, marks_);
    }
  }

  // The text stands behind the places, so that the cell's own text is what it shows.
  void appendCell(const Cell& cell) {
    pugi::xml_node element = element_.append_child("cell");
    describeValue(element, cell.value);
    setMarks(element, "marks", cell.notes, marks_);
    for (std::size_t i = 0; i < cell.at.size(); ++i) {
      const Dimension& dimension = table_.dimensions()[i];
      pugi::xml_node at = element.append_child("at");
      putAttribute(at, "dimension", dimension.key.name);
      putAttribute(at, "category", dimension.categories[cell.at[i]].value.shown);
    }
    element.append_child(pugi::node_pcdata).set_value(presentable(cell.value.shown).c_str());
  }

  const PivotTable& table_;
  NoteMarks marks_;
  pugi::xml_node element_;
};

pugi::xml_node append(pugi::xml_node parent, const PivotTable& table) { return TableXml(parent, table).write(); }

pugi::xml_node append(pugi::xml_node parent, const TextBlock& block) {
  pugi::xml_node element = appendText(parent, "text", block.text);
  putAttribute(element, "title", block.title);
  putAttribute(element, "outline", block.outline);
  return element;
}

pugi::xml_node append(pugi::xml_node parent, const PostedText& posted) {
  return appendText(parent, "posted", posted.text);
}

pugi::xml_node append(pugi::xml_node parent, const Graphic& graphic) {
  pugi::xml_node element = parent.append_child("image");
  putAttribute(element, "name", graphic.name);
  putAttribute(element, "type", graphic.type);
  putAttribute(element, "width", graphic.width);
  putAttribute(element, "height", graphic.height);
  putAttribute(element, "label", graphic.label);
  putAttribute(element, "outline", graphic.outline);
  return element;
}

}  // namespace

void appendSection(pugi::xml_node root, const OutputSection& section) {
  pugi::xml_node parent = root;
  NoteMarks marks;
  if (section.isProcedure()) {
    parent = root.append_child("procedure");
    putAttribute(parent, "name", section.name);
    putAttribute(parent, "label", section.label);
    marks.add(section.notes);
    setMarks(parent, "marks", section.notes, marks);
  }
  for (const OutputItem& item : section.items) {
    const pugi::xml_node element =
        std::visit([parent](const auto& content) { return append(parent, content); }, item.content);
    if (section.splitGroups > 1) putAttribute(element, "split-group", item.splitGroup);
  }
  if (section.isProcedure()) appendNotes(parent, marks);
}

void putAttribute(pugi::xml_node element, const char* name, std::string_view value) {
  element.append_attribute(name).set_value(presentable(value).c_str());
}

void putAttribute(pugi::xml_node element, const char* name, int value) {
  element.append_attribute(name).set_value(value);
}

pugi::xml_node appendText(pugi::xml_node parent, const char* name, std::string_view text) {
  pugi::xml_node element = parent.append_child(name);
  element.append_child(pugi::node_pcdata).set_value(presentable(text).c_str());
  return element;
}

}  // namespace kova::engine
