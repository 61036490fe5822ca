// The rows of the wire table for pivot tables, their dimensions, categories and cells.
#include "tests/api/wire_row.h"

namespace kova::wire {
namespace {

// The keys of the table and the dimension in each of these calls: every value another one.
const std::vector<std::string> kTable = {"Report", "Body mass", "means"};
const std::vector<std::string> kDimension = {"Report", "Body mass", "means", "Species"};
const std::vector<std::int32_t> kDimensionNumbers = {1, 2, 7, 0, 1};

WireImage ofTable(std::int32_t code, std::vector<std::string> moreTexts = {},
                  std::vector<std::int32_t> moreLongs = {}) {
  WireImage image{.code = code, .longs = {1}, .texts = kTable};
  image.texts.insert(image.texts.end(), moreTexts.begin(), moreTexts.end());
  image.longs.insert(image.longs.end(), moreLongs.begin(), moreLongs.end());
  return image;
}

WireImage ofDimension(std::int32_t code, std::vector<std::string> moreTexts = {},
                      std::vector<std::int32_t> moreLongs = {}, std::vector<double> doubles = {}) {
  WireImage image{.code = code, .longs = kDimensionNumbers, .doubles = std::move(doubles), .texts = kDimension};
  image.texts.insert(image.texts.end(), moreTexts.begin(), moreTexts.end());
  image.longs.insert(image.longs.end(), moreLongs.begin(), moreLongs.end());
  return image;
}

// A call with the keys before its own arguments.
template <class... Parameters, class... Arguments>
std::function<int()> withTable(int (*function)(Parameters...), Arguments... arguments) {
  return [=] { return function("Report", "Body mass", "means", true, arguments...); };
}

template <class... Parameters, class... Arguments>
std::function<int()> withDimension(int (*function)(Parameters...), Arguments... arguments) {
  return withTable(function, "Species", 2, 7, false, true, arguments...);
}

std::vector<Row> tableRows() {
  return {
      tells("StartPivotTable", withTable(StartPivotTable), ofTable(35)),
      tells("HidePivotTableTitle", withTable(HidePivotTableTitle), ofTable(39)),
      tells("PivotTableCaption", withTable(PivotTableCaption, "a caption"), ofTable(40, {"a caption"})),
      tells(
          "AddOutlineFootnotes", [] { return AddOutlineFootnotes("Report", "Body mass", "means", "a note", true); },
          ofTable(36, {"a note"})),
      tells(
          "AddTitleFootnotes", [] { return AddTitleFootnotes("Report", "Body mass", "means", "a note", true); },
          ofTable(38, {"a note"})),
      tells("AddCaptionFootnotes", withTable(AddCaptionFootnotes, "one", "two"), ofTable(41, {"one", "two"})),
      tells("MinDataColumnWidth", withTable(MinDataColumnWidth, 40), ofTable(42, {}, {40})),
      tells("MaxDataColumnWidth", withTable(MaxDataColumnWidth, 90), ofTable(43, {}, {90})),
  };
}

std::vector<Row> dimensionRows() {
  return {
      tells("AddDimension", withDimension(AddDimension), ofDimension(44)),
      tells("AddDimFootnotes", withDimension(AddDimFootnotes, "a note"), ofDimension(45, {"a note"})),
      tells("AddNumberCategory", withDimension(AddNumberCategory, 1.5), ofDimension(62, {}, {}, {1.5})),
      tells("AddStringCategory", withDimension(AddStringCategory, "Adelie"), ofDimension(63, {"Adelie"})),
      tells("AddVarNameCategory", withDimension(AddVarNameCategory, 4), ofDimension(64, {}, {4})),
      tells("AddVarValueDoubleCategory", withDimension(AddVarValueDoubleCategory, 4, -0.5),
            ofDimension(65, {}, {4}, {-0.5})),
      tells("AddVarValueStringCategory", withDimension(AddVarValueStringCategory, 4, "f"), ofDimension(66, {"f"}, {4})),
      tells("AddCategoryFootnotes", withDimension(AddCategoryFootnotes, "a note"), ofDimension(67, {"a note"})),
      tells("SetNumberCell", withDimension(SetNumberCell, 3700.66), ofDimension(68, {}, {}, {3700.66})),
      tells("SetStringCell", withDimension(SetStringCell, "n/a"), ofDimension(69, {"n/a"})),
      tells("SetVarNameCell", withDimension(SetVarNameCell, 5), ofDimension(70, {}, {5})),
      tells("SetVarValueDoubleCell", withDimension(SetVarValueDoubleCell, 5, 2.5), ofDimension(71, {}, {5}, {2.5})),
      tells("SetVarValueStringCell", withDimension(SetVarValueStringCell, 5, "m"), ofDimension(72, {"m"}, {5})),
      tells("SetDateCell", withDimension(SetDateCell, "2007-11-11"), ofDimension(217, {"2007-11-11"})),
      // Five texts and five numbers: the footnote goes with the texts.
      tells("AddCellFootnotes", withDimension(AddCellFootnotes, "a note"), ofDimension(73, {"a note"})),
  };
}

}  // namespace

std::vector<Row> pivotTableRows() {
  std::vector<Row> rows = tableRows();
  for (Row& row : dimensionRows()) rows.push_back(std::move(row));
  return rows;
}

}  // namespace kova::wire
