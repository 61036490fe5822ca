// Cells of the rows that were fetched last: when rows are asked for, and what is read from them.
#include <cstdlib>

#include "tests/api/data_set_test.h"

namespace {

using kova::WireImage;
using testing::ElementsAre;
using testing::IsEmpty;

// Rows 10 to 12, a number and a text. The number of row 11 and the text of row 12 are missing.
WireImage threeRows() {
  return {.longs = {10, 3, 2},
          .longLists = {{0, 0, 1, 0, 0, 1}},
          .doubleLists = {{1.5, 0, 2.5, 0, 3.5, 0}},
          .lists = {{"", "one", "", "two", "", "three"}}};
}

// A number with its flag, or its error, as a text.
template <class... Parameters, class... Arguments>
std::string numberOf(int (*function)(Parameters...), Arguments... arguments) {
  double value = -1;
  int isMissing = -1;
  const int code = function(arguments..., &value, &isMissing);
  if (code == 0) return std::to_string(value).substr(0, 3) + " " + std::to_string(isMissing);
  EXPECT_EQ(value, -1) << "nothing is stored";
  EXPECT_EQ(isMissing, -1);
  return "error " + std::to_string(code);
}

template <class... Parameters, class... Arguments>
std::string textOf(char* (*function)(Parameters...), Arguments... arguments) {
  int isMissing = -1;
  int code = -1;
  char* const text = function(arguments..., &isMissing, &code);
  if (code == 0) {
    const std::string result = text ? text : "null";
    FreeString(text);
    return result + " " + std::to_string(isMissing);
  }
  EXPECT_EQ(text, nullptr);
  EXPECT_EQ(isMissing, -1);
  return "error " + std::to_string(code);
}

class DataCells : public kova::DataSetTest {
 protected:
  DataCells() { answers_[221] = threeRows(); }

  // What GetRowList reports, or its error.
  static std::string Rows(int firstRow, int rowCount) {
    int values[3] = {-1, -1, -1};
    const int code = GetRowList("ds", firstRow, rowCount, &values[0], &values[1], &values[2]);
    if (code != 0) return "error " + std::to_string(code);
    return std::to_string(values[0]) + " " + std::to_string(values[1]) + " " + std::to_string(values[2]);
  }
};

struct Cell {
  const char* label;
  int row;
  int column;
  const char* number;
  const char* text;
};

TEST_F(DataCells, AreReadFromTheRowsThatWereFetched) {
  const Cell rows[] = {
      {"first number", 10, 0, "1.5 0", " 0"},
      {"first text", 10, 1, "0.0 0", "one 0"},
      {"missing number", 11, 0, "2.5 1", " 1"},
      {"missing text", 12, 1, "0.0 1", "three 1"},
      {"row before the first", 9, 0, "error 10", "error 10"},
      {"row before any", -1, 0, "error 10", "error 10"},
      {"row behind the last", 13, 0, "error 10", "error 10"},
      {"column before the first", 11, -1, "error 10", "error 10"},
      {"column behind the last", 10, 2, "error 10", "error 10"},
  };
  Serve();
  int result = -1;
  EXPECT_EQ(FetchDatastep("ds", 10, 3, &result), 0);
  EXPECT_EQ(result, 10);
  Asked();
  for (const Cell& row : rows) {
    SCOPED_TRACE(row.label);
    EXPECT_EQ(numberOf(GetNCellValueCache, "any", row.row, row.column), row.number);
    EXPECT_EQ(textOf(GetCCellValueCache, "any", row.row, row.column), row.text);
    void* const batch = kova::TheDataSetCaches().batch.record();
    EXPECT_EQ(numberOf(GetNCellValueBatch, batch, "any", row.row, row.column), row.number);
    EXPECT_EQ(textOf(GetCCellValueBatch, batch, "any", row.row, row.column), row.text);
  }
  EXPECT_THAT(Asked(), IsEmpty());
}

TEST_F(DataCells, AreNotThereBeforeAFetchAndAfterADrop) {
  Serve();
  EXPECT_EQ(numberOf(GetNCellValueCache, "ds", 10, 0), "error 10");
  EXPECT_EQ(textOf(GetCCellValueCache, "ds", 10, 1), "error 10");
  EXPECT_EQ(numberOf(GetNCellValueBatch, nullptr, "ds", 10, 0), "error 10");
  EXPECT_EQ(textOf(GetCCellValueBatch, nullptr, "ds", 10, 1), "error 10");
  EXPECT_EQ(ClearDatastepBatch(), 0);
  EXPECT_EQ(FetchDatastep("ds", 10, 3, nullptr), 0);
  EXPECT_EQ(numberOf(GetNCellValueCache, "ds", 10, 0), "1.5 0");
  EXPECT_EQ(ClearDatastepBatch(), 0);
  EXPECT_EQ(numberOf(GetNCellValueCache, "ds", 10, 0), "error 10");
  EXPECT_THAT(Asked(), ElementsAre(221));
}

TEST_F(DataCells, ResultsThatNobodyWantsAreDropped) {
  Serve();
  FetchDatastep("ds", 10, 3, nullptr);
  EXPECT_EQ(GetNCellValueCache("ds", 10, 0, nullptr, nullptr), 0);
  FreeString(GetCCellValueCache("ds", 10, 1, nullptr, nullptr));
  EXPECT_EQ(GetCCellValueCache("ds", 99, 1, nullptr, nullptr), nullptr);
  EXPECT_EQ(GetRowList("ds", 10, 3, nullptr, nullptr, nullptr), 0);
}

TEST_F(DataCells, AFetchThatFailsKeepsTheRows) {
  Serve();
  FetchDatastep("ds", 10, 3, nullptr);
  Refuse(221);
  int result = -1;
  EXPECT_EQ(FetchDatastep("ds", 20, 3, &result), kRefusal);
  EXPECT_EQ(result, -1);
  EXPECT_EQ(numberOf(GetNCellValueCache, "ds", 10, 0), "1.5 0");
  diesAt_ = 221;
  EXPECT_EQ(FetchDatastep("ds", 20, 3, nullptr), kPeerGone);
  EXPECT_EQ(numberOf(GetNCellValueOptimize, "ds", 12, 0), "3.5 0");
}

struct BadReply {
  const char* label;
  WireImage reply;
};

TEST_F(DataCells, RepliesThatLackCellsHaveNone) {
  const BadReply rows[] = {
      {"nothing", {}},
      {"no arrays", {.longs = {10, 3, 2}}},
      {"no flags", {.longs = {10, 3, 2}, .doubleLists = {{1, 2, 3, 4, 5, 6}}, .lists = {{"1", "2"}}}},
      {"no values", {.longs = {10, 3, 2}, .longLists = {{0, 0, 0, 0, 0, 0}}}},
      {"empty arrays", {.longs = {10, 3, 2}, .longLists = {{}}, .doubleLists = {{}}, .lists = {{}}}},
      {"no columns", {.longs = {10, 3, 0}, .longLists = {{0}}, .doubleLists = {{1}}, .lists = {{"1"}}}},
      {"negative numbers", {.longs = {-5, -3, -2}, .longLists = {{0}}, .doubleLists = {{1}}, .lists = {{"1"}}}},
  };
  Serve();
  for (const BadReply& row : rows) {
    SCOPED_TRACE(row.label);
    answers_[221] = row.reply;
    EXPECT_EQ(FetchDatastep("ds", 10, 3, nullptr), 0);
    EXPECT_EQ(numberOf(GetNCellValueCache, "ds", 10, 0), "error 10");
    EXPECT_EQ(textOf(GetCCellValueCache, "ds", 10, 1), "error 10");
    EXPECT_EQ(numberOf(GetNCellValueOptimize, "ds", 10, 0), "error 10");
    EXPECT_EQ(textOf(GetCCellValueOptimize, "ds", 10, 1), "error 10");
  }
}

TEST_F(DataCells, OptimizedReadsInOneBlockFetchOnce) {
  Serve();
  EXPECT_EQ(numberOf(GetNCellValueOptimize, "ds", 10, 0), "1.5 0");
  EXPECT_EQ(LastRequest(), (WireImage{.code = 221, .longs = {10, 1000}, .texts = {"ds"}}.bytes()));
  EXPECT_EQ(textOf(GetCCellValueOptimize, "ds", 12, 1), "three 1");
  EXPECT_EQ(numberOf(GetNCellValueOptimize, "ds", 11, 0), "2.5 1");
  EXPECT_EQ(numberOf(GetNCellValueOptimize, "ds", 11, 2), "error 10");
  EXPECT_THAT(Asked(), ElementsAre(221));
}

TEST_F(DataCells, OptimizedReadsFetchWhatIsNotThere) {
  Serve();
  FetchDatastep("ds", 10, 3, nullptr);
  Asked();
  EXPECT_EQ(numberOf(GetNCellValueOptimize, "other", 10, 0), "1.5 0");
  EXPECT_THAT(Asked(), ElementsAre(221)) << "another data set";
  EXPECT_EQ(numberOf(GetNCellValueOptimize, "OTHER", 10, 0), "1.5 0");
  EXPECT_THAT(Asked(), ElementsAre(221)) << "names are exact";
  EXPECT_EQ(textOf(GetCCellValueOptimize, "OTHER", 13, 1), "error 10");
  EXPECT_THAT(Asked(), ElementsAre(221)) << "a row behind; the engine sent others";
  EXPECT_EQ(textOf(GetCCellValueOptimize, "OTHER", 9, 1), "error 10");
  EXPECT_THAT(Asked(), ElementsAre(221)) << "a row before";
  EXPECT_EQ(numberOf(GetNCellValueOptimize, nullptr, 10, 0), "1.5 0");
  EXPECT_EQ(LastRequest(), (WireImage{.code = 221, .longs = {10, 1000}}.bytes())) << "a null name is not sent";
  Asked();
  EXPECT_EQ(numberOf(GetNCellValueOptimize, "ds", -1, 0), "error 10");
  EXPECT_EQ(textOf(GetCCellValueOptimize, "ds", -1, 0), "error 10");
  EXPECT_THAT(Asked(), IsEmpty()) << "there is no such row";
}

TEST_F(DataCells, OptimizedReadsPassTheFetchesErrorOn) {
  Refuse(221);
  Serve();
  EXPECT_EQ(numberOf(GetNCellValueOptimize, "ds", 10, 0), "error 31");
  EXPECT_EQ(textOf(GetCCellValueOptimize, "ds", 10, 0), "error 31");
  EXPECT_EQ(Rows(10, 3), "error 31");
}

TEST_F(DataCells, WithoutAnEngineRunningOnlyRowsThatAreThereAreRead) {
  Serve();
  FetchDatastep("ds", 10, 3, nullptr);
  SetKovaRunning(false);
  EXPECT_EQ(numberOf(GetNCellValueOptimize, "ds", 10, 0), "1.5 0");
  EXPECT_EQ(numberOf(GetNCellValueCache, "ds", 10, 0), "1.5 0");
  EXPECT_EQ(numberOf(GetNCellValueOptimize, "ds", 13, 0), "error 17");
  EXPECT_EQ(textOf(GetCCellValueOptimize, "ds", 13, 0), "error 17");
  EXPECT_EQ(Rows(10, 4), "error 17");
  EXPECT_EQ(Rows(10, 3), "10 3 2");
  EXPECT_THAT(Asked(), ElementsAre(221));
}

TEST_F(DataCells, RowsAreListedAndFetchedWhenTheyAreNotThere) {
  Serve();
  EXPECT_EQ(Rows(10, 3), "10 3 2");
  EXPECT_EQ(LastRequest(), (WireImage{.code = 221, .longs = {10, 3}, .texts = {"ds"}}.bytes()));
  EXPECT_EQ(Rows(11, 2), "10 3 2");
  EXPECT_THAT(Asked(), ElementsAre(221));
  EXPECT_EQ(Rows(11, 3), "10 3 2");
  EXPECT_THAT(Asked(), ElementsAre(221)) << "one row more";
  EXPECT_EQ(Rows(11, -3), "10 3 2");
  EXPECT_THAT(Asked(), IsEmpty()) << "no row at all";
  EXPECT_EQ(Rows(20, -3), "10 3 2");
  EXPECT_EQ(LastRequest(), (WireImage{.code = 221, .longs = {20, 0}, .texts = {"ds"}}.bytes()));
  EXPECT_EQ(Rows(-1, 3), "error 10");
}

TEST_F(DataCells, RowsAreListedByTheFirstAndTheLastTwoNumbers) {
  struct Row {
    const char* label;
    std::vector<std::int32_t> numbers;
    const char* listed;
  };
  const Row rows[] = {
      {"none", {}, "0 0 0"}, {"one", {7}, "7 0 7"}, {"two", {7, 8}, "7 7 8"}, {"four", {0, 3, 2, 9}, "0 2 9"}};
  Serve();
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    ClearDatastepBatch();
    answers_[221] = {.longs = row.numbers};
    EXPECT_EQ(Rows(0, 3), row.listed);
  }
}

}  // namespace
