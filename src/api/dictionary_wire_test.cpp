// The rows of the wire table for the dictionary of the active data set and of the running procedure's data.
#include <limits>

#include "tests/api/wire_row.h"

namespace kova::wire {
namespace {

Outcome systemMissing() {
  double value = kUntouched;
  const int code = GetSystemMissingValue(&value);
  return outcome(code, value);
}

Outcome lowHigh() {
  double low = kUntouched;
  double high = kUntouched;
  const int code = GetKOVALowHigh(&low, &high);
  return outcome(code, low, high);
}

std::vector<Row> readingRows() {
  constexpr int kLast = std::numeric_limits<int>::max();
  return {
      asksNumber("GetVariableCount", [] { return valueOf(GetVariableCount); }, {.code = 7}),
      asksText("GetVariableName", [] { return valueOf(GetVariableName, 3); }, {.code = 9, .longs = {3}}),
      asksText("GetVariableLabel", [] { return valueOf(GetVariableLabel, 4); }, {.code = 10, .longs = {4}}),
      asksNumber("GetVariableType", [] { return valueOf(GetVariableType, -1); }, {.code = 11, .longs = {-1}}),
      asksText("GetVariableFormat", [] { return valueOf(GetVariableFormat, 5); }, {.code = 12, .longs = {5}}),
      tellsThreeNumbers("GetVariableFormatType", [] { return threeNumbersOf(GetVariableFormatType, 2); },
                        {.code = 29, .longs = {2}}),
      asksNumber("GetVariableMeasurementLevel", [] { return valueOf(GetVariableMeasurementLevel, 0); },
                 {.code = 13, .longs = {0}}),
      asksNumber("GetVariableRole", [] { return valueOf(GetVariableRole, kLast); }, {.code = 222, .longs = {kLast}}),
      tellsNumericMissing("GetVarNMissingValues", [] { return numericMissingOf(GetVarNMissingValues, 6); },
                          {.code = 32, .longs = {6}}),
      tellsTextMissing("GetVarCMissingValues", [] { return textMissingOf(GetVarCMissingValues, 7); },
                       {.code = 31, .longs = {7}}),
      tellsNumberLabels("GetNValueLabels", [] { return numberLabelsOf(GetNValueLabels, 8); },
                        {.code = 123, .longs = {8}}),
      tellsTextLabels("GetCValueLabels", [] { return textLabelsOf(GetCValueLabels, 9); }, {.code = 125, .longs = {9}}),
      tellsCountedTexts("GetVarAttributeNames", [] { return countedTextsOf(GetVarAttributeNames, 3); },
                        {.code = 96, .longs = {3}}),
      tellsCountedTexts("GetVarAttributes", [] { return countedTextsOf(GetVarAttributes, 3, "source"); },
                        {.code = 99, .longs = {3}, .texts = {"source"}}),
      tellsCountedTexts("GetDataFileAttributeNames", [] { return countedTextsOf(GetDataFileAttributeNames); },
                        {.code = 97}),
      tellsCountedTexts("GetDataFileAttributes", [] { return countedTextsOf(GetDataFileAttributes, "version"); },
                        {.code = 100, .texts = {"version"}}),
      asksTexts("GetMultiResponseSetNames", [] { return textsOf(GetMultiResponseSetNames); }, {.code = 186}),
      tellsResponseSet("GetMultiResponseSet", [] { return responseSetOf(GetMultiResponseSet, "$colours"); },
                       {.code = 187, .texts = {"$colours"}}),
      asksText("GetWeightVar", [] { return valueOf(GetWeightVar); }, {.code = 118}),
      makeRow("GetSystemMissingValue", kStatus, systemMissing, {.code = 128}, {.doubles = {-1.5}}, "-1.5", "0", "-77"),
      makeRow("GetKOVALowHigh", kStatus, lowHigh, {.code = 119}, {.doubles = {-2.5, 1e9, 3}}, "-2.5 1e+09", "0 0",
              "-77 -77"),
      tellsNumber("ValidateVarName", [] { return numberOf(ValidateVarName, "body mass"); },
                  {.code = 129, .texts = {"body mass"}}),
  };
}

std::vector<Row> changingRows() {
  return {
      tells("SetVarLabel", [] { return SetVarLabel("mass", "Body mass (g)"); },
            {.code = 81, .texts = {"mass", "Body mass (g)"}}),
      tells("SetVarCValueLabel", [] { return SetVarCValueLabel("sex", "f", "female"); },
            {.code = 82, .texts = {"sex", "f", "female"}}),
      tells("SetVarNValueLabel", [] { return SetVarNValueLabel("year", 2007.5, "first"); },
            {.code = 83, .doubles = {2007.5}, .texts = {"year", "first"}}),
      tells("SetVarCMissingValues", [] { return SetVarCMissingValues("sex", 3, "x", "", "z"); },
            {.code = 84, .longs = {3}, .texts = {"sex", "x", "", "z"}}),
      tells("SetVarNMissingValues", [] { return SetVarNMissingValues("mass", -3, -9, 0.5, 1e300); },
            {.code = 85, .longs = {-3}, .doubles = {-9, 0.5, 1e300}, .texts = {"mass"}}),
      tells("SetVarMeasureLevel", [] { return SetVarMeasureLevel("mass", 4); },
            {.code = 86, .longs = {4}, .texts = {"mass"}}),
      tells("SetVarAlignment", [] { return SetVarAlignment("mass", 2); },
            {.code = 87, .longs = {2}, .texts = {"mass"}}),
      tells("SetVarFormat", [] { return SetVarFormat("mass", 5, 8, 2); },
            {.code = 88, .longs = {5, 8, 2}, .texts = {"mass"}}),
      tells("SetVarRole", [] { return SetVarRole("mass", 1); }, {.code = 224, .longs = {1}, .texts = {"mass"}}),
      tells("SetVarAttributes", [] { return SetVarAttributes("mass", "source", "field", 6); },
            {.code = 102, .longs = {6}, .texts = {"mass", "source", "field"}}),
  };
}

std::vector<Row> procedureDataRows() {
  return {
      asksNumber("GetVariableCountInProcDS", [] { return valueOf(GetVariableCountInProcDS); }, {.code = 104}),
      asksText("GetVariableNameInProcDS", [] { return valueOf(GetVariableNameInProcDS, 1); },
               {.code = 108, .longs = {1}}),
      asksText("GetVariableLabelInProcDS", [] { return valueOf(GetVariableLabelInProcDS, 2); },
               {.code = 106, .longs = {2}}),
      asksNumber("GetVariableTypeInProcDS", [] { return valueOf(GetVariableTypeInProcDS, 3); },
                 {.code = 109, .longs = {3}}),
      asksText("GetVariableFormatInProcDS", [] { return valueOf(GetVariableFormatInProcDS, 4); },
               {.code = 105, .longs = {4}}),
      tellsThreeNumbers("GetVariableFormatTypeInProcDS",
                        [] { return threeNumbersOf(GetVariableFormatTypeInProcDS, 5); }, {.code = 116, .longs = {5}}),
      asksNumber("GetVariableMeasurementLevelInProcDS", [] { return valueOf(GetVariableMeasurementLevelInProcDS, 6); },
                 {.code = 107, .longs = {6}}),
      asksNumber("GetVariableRoleInProcDS", [] { return valueOf(GetVariableRoleInProcDS, 7); },
                 {.code = 223, .longs = {7}}),
      tellsNumericMissing("GetVarNMissingValuesInProcDS",
                          [] { return numericMissingOf(GetVarNMissingValuesInProcDS, 8); },
                          {.code = 115, .longs = {8}}),
      tellsTextMissing("GetVarCMissingValuesInProcDS", [] { return textMissingOf(GetVarCMissingValuesInProcDS, 9); },
                       {.code = 114, .longs = {9}}),
      tellsCountedTexts("GetVarAttributeNamesInProcDS", [] { return countedTextsOf(GetVarAttributeNamesInProcDS, 10); },
                        {.code = 110, .longs = {10}}),
      tellsCountedTexts("GetVarAttributesInProcDS",
                        [] { return countedTextsOf(GetVarAttributesInProcDS, 11, "source"); },
                        {.code = 112, .longs = {11}, .texts = {"source"}}),
      tellsCountedTexts("GetDataFileAttributeNamesInProcDS",
                        [] { return countedTextsOf(GetDataFileAttributeNamesInProcDS); }, {.code = 111}),
      tellsCountedTexts("GetDataFileAttributesInProcDS",
                        [] { return countedTextsOf(GetDataFileAttributesInProcDS, "version"); },
                        {.code = 113, .texts = {"version"}}),
      asksTexts("GetMultiResponseSetNamesInProcDS", [] { return textsOf(GetMultiResponseSetNamesInProcDS); },
                {.code = 189}),
      tellsResponseSet("GetMultiResponseSetInProcDS",
                       [] { return responseSetOf(GetMultiResponseSetInProcDS, "$seen"); },
                       {.code = 190, .texts = {"$seen"}}),
  };
}

}  // namespace

std::vector<Row> dictionaryRows() {
  std::vector<Row> rows = readingRows();
  for (const auto& more : {changingRows(), procedureDataRows()}) rows.insert(rows.end(), more.begin(), more.end());
  return rows;
}

}  // namespace kova::wire
