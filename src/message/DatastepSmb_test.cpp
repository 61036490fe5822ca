// A rectangle of cells in a message.
#include "message/DatastepSmb.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <memory>
#include <string>

namespace {

struct FreeBlock {
  void operator()(void* block) const { std::free(block); }
};

// Two rows from row 5 on, three columns: number, text, number. Entry 4, the second row's text, is missing.
DatastepSmb sample() {
  DatastepSmb batch;
  LongData flags;
  DoubleData numbers;
  StringData texts;
  for (int i = 0; i < 6; ++i) {
    flags.SetValue(i == 4 ? 1 : 0);
    numbers.SetValue(i % 3 == 1 ? 0.0 : i + 0.5);
    texts.SetValue(i % 3 == 1 ? "text " + std::to_string(i) : "");
  }
  batch.SetLongArray(flags);
  batch.SetDoubleArray(numbers);
  batch.SetStringArray(texts);
  int error = -1;
  batch.SetrowInfo(5, error);
  EXPECT_EQ(error, 0);
  error = -1;
  batch.SetvarCount(3, error);
  EXPECT_EQ(error, 0);
  return batch;
}

struct Cell {
  int error;
  int flag;
  double number;
  std::string text;

  bool operator==(const Cell&) const = default;
};

Cell cellOf(DatastepSmb& batch, long row, int column) {
  Cell cell{-1, -1, -1, "none"};
  cell.number = batch.GetNCellValue("any", row, column, cell.flag, cell.error);
  int flag = -1;
  int error = -1;
  const std::unique_ptr<char, FreeBlock> text(batch.GetCCellValue(nullptr, row, column, flag, error));
  if (text) cell.text = text.get();
  EXPECT_EQ(flag, cell.flag);
  EXPECT_EQ(error, cell.error);
  return cell;
}

TEST(DatastepSmb, HasNoRowsAtFirst) {
  DatastepSmb batch;
  EXPECT_EQ(batch.FirstRow(), -1);
  EXPECT_EQ(batch.VarCount(), 0);
  EXPECT_EQ(cellOf(batch, 0, 0), (Cell{10, -1, 0, "none"}));
}

TEST(DatastepSmb, CellsAreFoundByTheirRowAndColumn) {
  struct Row {
    const char* label;
    long row;
    int column;
    Cell cell;
  };
  const Cell none{10, -1, 0, "none"};
  const Row rows[] = {
      {"first", 5, 0, {0, 0, 0.5, ""}},
      {"text", 5, 1, {0, 0, 0, "text 1"}},
      {"last of the first row", 5, 2, {0, 0, 2.5, ""}},
      {"missing", 6, 1, {0, 1, 0, "text 4"}},
      {"last", 6, 2, {0, 0, 5.5, ""}},
      {"row before the first", 4, 0, none},
      {"row behind the last", 7, 0, none},
      {"column before the first", 5, -1, none},
      {"column behind the last", 6, 3, none},
      {"column that is in the next row", 5, 3, {0, 0, 3.5, ""}},
      {"largest row", std::numeric_limits<long>::max(), 0, none},
      {"smallest row", std::numeric_limits<long>::min(), std::numeric_limits<int>::max(), none},
      {"largest column", 6, std::numeric_limits<int>::max(), none},
  };
  DatastepSmb batch = sample();
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    EXPECT_EQ(cellOf(batch, row.row, row.column), row.cell);
  }
}

TEST(DatastepSmb, ACellThatAnArrayLacksIsNotThere) {
  struct Row {
    const char* label;
    void (*spoil)(DatastepSmb& batch);
  };
  const Row rows[] = {
      {"no flags", [](DatastepSmb& batch) { batch.GetLongArrayRef().clear(); }},
      {"an empty list of flags", [](DatastepSmb& batch) { batch.GetLongArrayRef().front().CleanUp(); }},
      {"no values",
       [](DatastepSmb& batch) {
         batch.GetDoubleArrayRef().clear();
         batch.GetStringArrayRef().clear();
       }},
      {"empty lists of values",
       [](DatastepSmb& batch) {
         batch.GetDoubleArrayRef().front().CleanUp();
         batch.GetStringArrayRef().front().CleanUp();
       }},
      {"a negative column count",
       [](DatastepSmb& batch) {
         int error = 0;
         batch.SetvarCount(-3, error);
       }},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    DatastepSmb batch = sample();
    row.spoil(batch);
    EXPECT_EQ(cellOf(batch, 6, 0), (Cell{10, -1, 0, "none"}));
  }
}

TEST(DatastepSmb, TravelsAsAnyMessage) {
  DatastepSmb batch = sample();
  ASSERT_EQ(batch.ContructSendData(), 0);
  int length = 0;
  char* const bytes = batch.GetSendBuf(length);
  DatastepSmb copy;
  ASSERT_EQ(copy.ParseBuf(bytes, length), 0);
  int error = 0;
  copy.SetrowInfo(5, error);
  copy.SetvarCount(3, error);
  EXPECT_EQ(cellOf(copy, 6, 1), (Cell{0, 1, 0, "text 4"}));
}

}  // namespace
