// The rows of the wire table for the data step.
#include "tests/api/wire_row.h"

namespace kova::wire {
namespace {

// The bytes of a case, read outside a data step.
Outcome caseBytes() {
  void* record = nullptr;
  int code = kUntouched;
  const int size = GetCaseValue("ds", 7, 1, &record, &code);
  const std::string bytes(static_cast<const char*>(record), record ? static_cast<std::size_t>(size) : 0);
  return outcome(code, size, record ? bytes.c_str() : nullptr);
}

}  // namespace

std::vector<Row> dataStepRows() {
  return {
      tells("StartDataStep", [] { return StartDataStep(); }, {.code = 132}),
      tells("EndDataStep", [] { return EndDataStep(); }, {.code = 133}),
      makeRow(
          "FetchDatastep", kStatus, [] { return numberOf(FetchDatastep, "ds", 5, 2); },
          {.code = 221, .longs = {5, 2}, .texts = {"ds"}},
          {.longs = {5, 2, 1}, .longLists = {{0, 1}}, .doubleLists = {{1.5, 0}}, .lists = {{"", ""}}}, "5", "0", "-77"),
      tells("InsertCase", [] { return InsertCase("ds", 7); }, {.code = 178, .longs = {7}, .texts = {"ds"}}),
      tells("DeleteCase", [] { return DeleteCase("ds", 7); }, {.code = 179, .longs = {7}, .texts = {"ds"}}),
      tells("InsertVariable", [] { return InsertVariable("ds", 3, "note", 12); },
            {.code = 146, .longs = {3, 12}, .texts = {"ds", "note"}}),
      tells("DeleteVariable", [] { return DeleteVariable("ds", 3); }, {.code = 147, .longs = {3}, .texts = {"ds"}}),
      tells("MoveVariables", [] { return MoveVariables("ds", 3, 0); }, {.code = 245, .longs = {3, 0}, .texts = {"ds"}}),
      makeRow("GetCaseValue", kValue, caseBytes, {.code = 237, .longs = {7, 1}, .texts = {"ds"}}, {.block = "12345678"},
              "8 '12345678'", "0 null", "0 null"),
      tells("SetCaseValue", [] { return SetCaseValue("ds", 7, 1, "12345678", 8); },
            {.code = 238, .longs = {7, 1}, .texts = {"ds"}, .block = "12345678"}),
      tells("SetCasePartValue", [] { return SetCasePartValue("ds", 7, 1, 2, 3, 4, "12345678", 4); },
            {.code = 238, .longs = {7, 1, 2, 3, 4}, .texts = {"ds"}, .block = "1234"}),
  };
}

}  // namespace kova::wire
