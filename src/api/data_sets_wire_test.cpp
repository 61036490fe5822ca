// The rows of the wire table for data sets and their cells.
#include "tests/api/wire_row.h"

namespace kova::wire {
namespace {

Outcome numberCell() {
  double value = kUntouched;
  int isMissing = kUntouched;
  const int code = GetNCellValue("ds", 3, 4, &value, &isMissing);
  return outcome(code, value, isMissing);
}

Outcome textCell() {
  int isMissing = kUntouched;
  int code = kUntouched;
  const char* const text = GetCCellValue("ds", 3, 4, &isMissing, &code);
  return outcome(code, text, isMissing);
}

// Shows whether the result is the code, which is stored whatever it is.
Outcome savedData() {
  int result = kUntouched;
  const int code = SaveDataToTempFile("cases.tmp", &result, 1);
  return outcome(code, result == code);
}

int commitCells() {
  SetNCellValue("ds", 1, 2, 2.5);
  return CommitDataSet();
}

// Status shape, a list of names.
Row tellsNames(const char* function, std::function<Outcome()> call, WireImage request) {
  return makeRow(function, kStatus, std::move(call), std::move(request), {.texts = {"one", "", "three"}},
                 "3 ['one' '' 'three']", "0", "-77");
}

std::vector<Row> nameRows() {
  const WireImage cases = {.code = 180, .texts = {"new"}};
  const WireImage variables = {.code = 148, .texts = {"new"}};
  return {
      before(variables, before(cases, tells("CreateDataset", [] { return CreateDataset("new", 1, 0); },
                                            {.code = 134, .longs = {1, 0}, .texts = {"new"}}))),
      tells("SetDatasetName", [] { return SetDatasetName("old", "new"); }, {.code = 135, .texts = {"old", "new"}}),
      tellsOwnText("GetNewDatasetName", [] { return ownTextOf(GetNewDatasetName); }, {.code = 136}),
      asksText("GetActive", [] { return valueOf(GetActive); }, {.code = 137}),
      tells("SetActive", [] { return SetActive("ds"); }, {.code = 138, .texts = {"ds"}}),
      tells("CopyDataset", [] { return CopyDataset("from", "to"); }, {.code = 139, .texts = {"from", "to"}}),
      tellsNames("GetKovaDatasets", [] { return countedTextsOf(GetKovaDatasets); }, {.code = 140}),
      tellsNames("GetOpenedKovaDatasets", [] { return countedTextsOf(GetOpenedKovaDatasets); }, {.code = 141}),
      tellsNames("GetDatastepDatasets", [] { return countedTextsOf(GetDatastepDatasets); }, {.code = 142}),
      tells("CloseDataset", [] { return CloseDataset("ds"); }, {.code = 145, .texts = {"ds"}}),
  };
}

std::vector<Row> countRows() {
  return {
      asksNumber("GetCaseCountInDS", [] { return valueOf(GetCaseCountInDS, "ds"); }, {.code = 180, .texts = {"ds"}}),
      asksNumber("GetVarObsIndex", [] { return valueOf(GetVarObsIndex, "ds", 2); },
                 {.code = 240, .longs = {2}, .texts = {"ds"}}),
      asksNumber("GetRowCountInProcDS", [] { return valueOf(GetRowCountInProcDS); }, {.code = 103}),
      makeRow(
          "GetSelectedRowCountInProcDS", kStatus, [] { return valueOf(GetSelectedRowCountInProcDS); }, {.code = 249},
          {.longs = {9, 8}}, "9", "0", "-1"),
      makeRow(
          "GetTrendsInfoInDS", kStatus, [] { return valueOf(GetTrendsInfoInDS, "ds"); }, {.code = 248, .texts = {"ds"}},
          {.longs = {9, 8}}, "9", "0", "0"),
      tells("SetCacheInDS", [] { return SetCacheInDS("ds", 1); }, {.code = 241, .longs = {1}, .texts = {"ds"}}),
      tellsNumber("IsNeedCache", [] { return numberOf(IsNeedCache); }, {.code = 127}),
  };
}

std::vector<Row> cellRows() {
  return {
      makeRow("GetNCellValue", kStatus, numberCell, {.code = 181, .longs = {3, 4}, .texts = {"ds"}},
              {.longs = {1, 7}, .doubles = {2.5, 8}}, "2.5 1", "0 0", "-77 -77"),
      makeRow("GetCCellValue", kValue, textCell, {.code = 182, .longs = {3, 4}, .texts = {"ds"}},
              {.longs = {1, 7}, .texts = {"Adelie", "more"}}, "'Adelie' 1", "'' 0", "null -77"),
      tells("CommitDataSet", commitCells,
            {.code = 228,
             .cells = {{.datasetName = "ds", .caseIndex = 1, .varIndex = 2, .numValue = 2.5, .strValue = {}}}}),
  };
}

std::vector<Row> fileRows() {
  return {
      makeRow("SaveDataToTempFile", kStatus, savedData, {.code = 232, .longs = {1}, .texts = {"cases.tmp"}}, {}, "true",
              "true", "true"),
      tells("GetDataFromTempFile", [] { return GetDataFromTempFile("cases.tmp", 5, 10); },
            {.code = 233, .longs = {5, 10}, .texts = {"cases.tmp"}}),
      asksNumber("GetRowCountInTempFile", [] { return valueOf(GetRowCountInTempFile); }, {.code = 236}),
  };
}

}  // namespace

std::vector<Row> dataSetRows() {
  std::vector<Row> rows;
  for (const auto& family : {nameRows, countRows, cellRows, fileRows}) {
    for (Row& row : family()) rows.push_back(std::move(row));
  }
  return rows;
}

}  // namespace kova::wire
