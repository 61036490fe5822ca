// The rows of the wire table for the dictionary of a named data set.
#include "tests/api/wire_row.h"

namespace kova::wire {
namespace {

constexpr const char* kValues[] = {"one", "", "three"};

std::vector<Row> readingRows() {
  return {
      asksNumber("GetVarCountInDS", [] { return valueOf(GetVarCountInDS, "ds"); }, {.code = 148, .texts = {"ds"}}),
      asksText("GetVarNameInDS", [] { return valueOf(GetVarNameInDS, "ds", 1); },
               {.code = 149, .longs = {1}, .texts = {"ds"}}),
      asksText("GetVarLabelInDS", [] { return valueOf(GetVarLabelInDS, "ds", 2); },
               {.code = 151, .longs = {2}, .texts = {"ds"}}),
      asksNumber("GetVarTypeInDS", [] { return valueOf(GetVarTypeInDS, "ds", 3); },
                 {.code = 153, .longs = {3}, .texts = {"ds"}}),
      asksText("GetVarFormatInDS", [] { return valueOf(GetVarFormatInDS, "ds", 4); },
               {.code = 155, .longs = {4}, .texts = {"ds"}}),
      asksNumber("GetVarAlignmentInDS", [] { return valueOf(GetVarAlignmentInDS, "ds", 5); },
                 {.code = 157, .longs = {5}, .texts = {"ds"}}),
      asksNumber("GetVarColumnWidthInDS", [] { return valueOf(GetVarColumnWidthInDS, "ds", 6); },
                 {.code = 195, .longs = {6}, .texts = {"ds"}}),
      asksText("GetVarMeasurementLevelInDS", [] { return valueOf(GetVarMeasurementLevelInDS, "ds", 7); },
               {.code = 159, .longs = {7}, .texts = {"ds"}}),
      asksNumber("GetVarRoleInDS", [] { return valueOf(GetVarRoleInDS, "ds", 8); },
                 {.code = 225, .longs = {8}, .texts = {"ds"}}),
      tellsNumericMissing("GetVarNMissingValuesInDS",
                          [] { return numericMissingOf(GetVarNMissingValuesInDS, "ds", 9); },
                          {.code = 161, .longs = {9}, .texts = {"ds"}}),
      tellsTextMissing("GetVarCMissingValuesInDS", [] { return textMissingOf(GetVarCMissingValuesInDS, "ds", 10); },
                       {.code = 162, .longs = {10}, .texts = {"ds"}}),
      tellsNumberLabels("GetVarNValueLabelInDS", [] { return numberLabelsOf(GetVarNValueLabelInDS, "ds", 11); },
                        {.code = 170, .longs = {11}, .texts = {"ds"}}),
      tellsTextLabels("GetVarCValueLabelInDS", [] { return textLabelsOf(GetVarCValueLabelInDS, "ds", 12); },
                      {.code = 172, .longs = {12}, .texts = {"ds"}}),
      tellsCountedTexts("GetVarAttributesNameInDS", [] { return countedTextsOf(GetVarAttributesNameInDS, "ds", 13); },
                        {.code = 165, .longs = {13}, .texts = {"ds"}}),
      tellsCountedTexts("GetVarAttributesInDS", [] { return countedTextsOf(GetVarAttributesInDS, "ds", 14, "source"); },
                        {.code = 166, .longs = {14}, .texts = {"ds", "source"}}),
      tellsCountedTexts("GetDataFileAttributeNamesInDS",
                        [] { return countedTextsOf(GetDataFileAttributeNamesInDS, "ds"); },
                        {.code = 191, .texts = {"ds"}}),
      tellsCountedTexts("GetDataFileAttributesInDS",
                        [] { return countedTextsOf(GetDataFileAttributesInDS, "ds", "version"); },
                        {.code = 192, .texts = {"ds", "version"}}),
      asksTexts("GetMultiResponseSetNamesInDS", [] { return textsOf(GetMultiResponseSetNamesInDS, "ds"); },
                {.code = 193, .texts = {"ds"}}),
      tellsResponseSet("GetMultiResponseSetInDS", [] { return responseSetOf(GetMultiResponseSetInDS, "ds", "$seen"); },
                       {.code = 194, .texts = {"ds", "$seen"}}),
  };
}

std::vector<Row> changingRows() {
  return {
      tells("SetVarNameInDS", [] { return SetVarNameInDS("ds", 1, "mass"); },
            {.code = 150, .longs = {1}, .texts = {"ds", "mass"}}),
      tells("SetVarLabelInDS", [] { return SetVarLabelInDS("ds", 2, "Body mass"); },
            {.code = 152, .longs = {2}, .texts = {"ds", "Body mass"}}),
      tells("SetVarTypeInDS", [] { return SetVarTypeInDS("ds", 3, 12); },
            {.code = 154, .longs = {3, 12}, .texts = {"ds"}}),
      tells("SetVarFormatInDS", [] { return SetVarFormatInDS("ds", 4, 5, 8, 2); },
            {.code = 156, .longs = {4, 5, 8, 2}, .texts = {"ds"}}),
      tells("SetVarAlignmentInDS", [] { return SetVarAlignmentInDS("ds", 5, 2); },
            {.code = 158, .longs = {5, 2}, .texts = {"ds"}}),
      tells("SetVarColumnWidthInDS", [] { return SetVarColumnWidthInDS("ds", 6, 20); },
            {.code = 196, .longs = {6, 20}, .texts = {"ds"}}),
      tells("SetVarMeasurementLevelInDS", [] { return SetVarMeasurementLevelInDS("ds", 7, "scale"); },
            {.code = 160, .longs = {7}, .texts = {"ds", "scale"}}),
      tells("SetVarRoleInDS", [] { return SetVarRoleInDS("ds", 8, 1); },
            {.code = 226, .longs = {8, 1}, .texts = {"ds"}}),
      tells("SetVarNMissingValuesInDS", [] { return SetVarNMissingValuesInDS("ds", 9, 3, -9, 0.5, 7); },
            {.code = 163, .longs = {9, 3}, .doubles = {-9, 0.5, 7}, .texts = {"ds"}}),
      tells("SetVarCMissingValuesInDS", [] { return SetVarCMissingValuesInDS("ds", 10, 3, "x", "", "z"); },
            {.code = 164, .longs = {10, 3}, .texts = {"ds", "x", "", "z"}}),
      tells("SetVarNValueLabelInDS", [] { return SetVarNValueLabelInDS("ds", 11, 2007.5, "first"); },
            {.code = 173, .longs = {11}, .doubles = {2007.5}, .texts = {"ds", "first"}}),
      tells("SetVarCValueLabelInDS", [] { return SetVarCValueLabelInDS("ds", 12, "f", "female"); },
            {.code = 174, .longs = {12}, .texts = {"ds", "f", "female"}}),
      tells("DelVarValueLabelInDS", [] { return DelVarValueLabelInDS("ds", 13); },
            {.code = 175, .longs = {13}, .texts = {"ds"}}),
      tells("DelVarNValueLabelInDS", [] { return DelVarNValueLabelInDS("ds", 14, -1.25); },
            {.code = 176, .longs = {14}, .doubles = {-1.25}, .texts = {"ds"}}),
      tells("DelVarCValueLabelInDS", [] { return DelVarCValueLabelInDS("ds", 15, "f"); },
            {.code = 177, .longs = {15}, .texts = {"ds", "f"}}),
      tells("SetVarAttributesInDS", [] { return SetVarAttributesInDS("ds", 16, "source", kValues, 3); },
            {.code = 167, .longs = {16}, .texts = {"ds", "source"}, .lists = {{"one", "", "three"}}}),
      tells("DelVarAttributesInDS", [] { return DelVarAttributesInDS("ds", 17, "source"); },
            {.code = 168, .longs = {17}, .texts = {"ds", "source"}}),
      tells("SetDataFileAttributesInDS", [] { return SetDataFileAttributesInDS("ds", "version", kValues, 1); },
            {.code = 169, .texts = {"ds", "version"}, .lists = {{"one"}}}),
      tells("DelDataFileAttributesInDS", [] { return DelDataFileAttributesInDS("ds", "version"); },
            {.code = 198, .texts = {"ds", "version"}}),
      tells("SetMultiResponseSetInDS",
            [] { return SetMultiResponseSetInDS("ds", "$seen", "Colours seen", 2, "yes", kValues, 3); },
            {.code = 188,
             .longs = {2},
             .texts = {"ds", "$seen", "Colours seen", "yes"},
             .lists = {{"one", "", "three"}}}),
      tells("DelMultiResponseSetInDS", [] { return DelMultiResponseSetInDS("ds", "$seen"); },
            {.code = 199, .texts = {"ds", "$seen"}}),
  };
}

}  // namespace

std::vector<Row> dictionaryInDataSetRows() {
  std::vector<Row> rows = readingRows();
  for (Row& row : changingRows()) rows.push_back(std::move(row));
  return rows;
}

}  // namespace kova::wire
