// The rows of the wire table for the case cursor.
#include <cstring>

#include "tests/api/wire_row.h"

namespace kova::wire {
namespace {

constexpr const char* kNames[] = {"mass"};
constexpr int kTypes[] = {12, 0, 8};

Outcome numericValue() {
  double value = kUntouched;
  int isMissing = kUntouched;
  const int code = GetNumericValue(3, &value, &isMissing);
  return outcome(code, value, isMissing);
}

// Into a buffer of which four bytes may be used.
Outcome stringValue() {
  char buffer[9] = "--------";
  char* value = buffer;
  int isMissing = kUntouched;
  const int code = GetStringValue(4, &value, 4, &isMissing);
  return outcome(code, static_cast<const char*>(buffer), isMissing);
}

void setNewValues() {
  SetValueNumeric("mass", 1.5);
  SetValueChar("sex", "female");
  SetValueChar("note", "");
}

int commitNewCase() {
  setNewValues();
  return CommitNewCase();
}

int commitCaseRecord() {
  setNewValues();
  return CommitCaseRecord();
}

int commitManyCases() {
  const double block[] = {1.5, 2.5};
  return CommitManyCases("ds", block, sizeof block, 2, 3, kTypes);
}

std::string unitsOf(std::initializer_list<double> values) {
  std::string bytes(values.size() * sizeof(double), '\0');
  std::memcpy(bytes.data(), values.begin(), bytes.size());
  return bytes;
}

// A function whose reply has a batch of cases that nobody wants without a cursor of this process.
Row tellsWithBlock(const char* function, int (*call)(), WireImage request) {
  return makeRow(
      function, kStatus, [call] { return outcome(call()); }, std::move(request),
      {.longs = {1}, .block = unitsOf({4.5})}, "", "", "");
}

std::vector<Row> readingRows() {
  return {
      needs({.code = 104}, tells("MakeCaseCursor", [] { return MakeCaseCursor("r"); }, {.code = 33, .texts = {"r"}})),
      tellsNumber("HasCursor", [] { return numberOf(HasCursor); }, {.code = 34}),
      tellsNumber("GetCursorPosition", [] { return numberOf(GetCursorPosition); }, {.code = 30}),
      tellsWithBlock("NextCase", NextCase, {.code = 27}),
      makeRow("GetNumericValue", kStatus, numericValue, {.code = 25, .longs = {3}}, {.longs = {1}, .doubles = {4.5}},
              "4.5 1", "0 0", "-77 -77"),
      makeRow("GetStringValue", kStatus, stringValue, {.code = 26, .longs = {4, 4}},
              {.longs = {1}, .texts = {"Adelie"}}, "'Adel----' 1", "'' 0", "'--------' -77"),
      tellsNumber("IsEndSplit", [] { return numberOf(IsEndSplit); }, {.code = 95}),
      asksNumber("GetCaseLength", [] { return valueOf(GetCaseLength, "ds"); }, {.code = 239, .texts = {"ds"}}),
      tells("ResetDataPass", [] { return ResetDataPass(); }, {.code = 120}),
      tells("RemoveCaseCursor", [] { return RemoveCaseCursor(); }, {.code = 28}),
  };
}

std::vector<Row> writingRows() {
  return {
      tells("CommitNewCase", commitNewCase,
            {.code = 93, .doubles = {1.5}, .texts = {"mass"}, .lists = {{"sex", "note"}, {"female", ""}}}),
      tellsWithBlock("CommitCaseRecord", commitCaseRecord,
                     {.code = 92,
                      .longs = {0, 0},
                      .doubles = {1.5},
                      .texts = {"mass"},
                      .lists = {{"sex", "note"}, {"female", ""}}}),
      tells("CommitManyCases", commitManyCases,
            {.code = 220, .longs = {2, 3}, .texts = {"ds"}, .longLists = {{12, 0, 8}}, .block = unitsOf({1.5, 2.5})}),
      tells("AllocNewVarsBuffer", [] { return AllocNewVarsBuffer(7); }, {.code = 121, .longs = {7}}),
      tells("SetOneVarNameAndType", [] { return SetOneVarNameAndType("mass", 12); },
            {.code = 122, .longs = {12}, .texts = {"mass"}}),
      tells("SetVarNameAndType", [] { return SetVarNameAndType(kNames, kTypes, 1); },
            {.code = 80, .longs = {1, 12}, .texts = {"mass"}}),
      tells("CommitHeader", [] { return CommitHeader(); }, {.code = 89}),
      tells("EndChanges", [] { return EndChanges(); }, {.code = 94}),
  };
}

}  // namespace

std::vector<Row> caseCursorRows() {
  std::vector<Row> rows = readingRows();
  for (Row& row : writingRows()) rows.push_back(std::move(row));
  return rows;
}

}  // namespace kova::wire
