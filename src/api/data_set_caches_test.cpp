// What the client remembers of data sets, each part by itself.
#include "api/data_set_caches.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace {

using kova::CreatedDataSets;
using kova::DataStepBatch;
using kova::DataStepRegistry;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(CreatedDataSets, AreTakenOutOneByOneByTheirExactName) {
  CreatedDataSets created;
  for (const char* const name : {"one", "two", "one"}) created.add(name);
  created.remove("ONE");
  created.remove("on");
  EXPECT_THAT(created.names(), ElementsAre("one", "two", "one"));
  created.remove("one");
  EXPECT_THAT(created.names(), ElementsAre("two", "one"));
  created.clear();
  EXPECT_THAT(created.names(), IsEmpty());
}

DatastepDataSmb recordOf(int type) {
  DatastepDataSmb record;
  record.AddVarType(type);
  return record;
}

TEST(DataStepRegistry, FindsByExactName) {
  DataStepRegistry registry;
  DatastepDataSmb* const one = registry.add("one", recordOf(1));
  DatastepDataSmb* const two = registry.add("two", recordOf(2));
  EXPECT_EQ(registry.find("one"), one);
  EXPECT_EQ(registry.find("two"), two);
  for (const char* const name : {"", "On", "ONE", "one ", "three"}) EXPECT_EQ(registry.find(name), nullptr) << name;
  EXPECT_EQ(registry.find("two")->VarType(0), 2);
}

TEST(DataStepRegistry, TheNameFoundOrAddedLastIsNotSearchedAgain) {
  DataStepRegistry registry;
  registry.add("one", recordOf(1));
  registry.add("two", recordOf(2));
  EXPECT_EQ(registry.find("two")->VarType(0), 2);
  EXPECT_EQ(registry.searches(), 0u) << "it was added last";
  for (int i = 0; i < 3; ++i) EXPECT_EQ(registry.find("one")->VarType(0), 1);
  EXPECT_EQ(registry.searches(), 1u);
  EXPECT_EQ(registry.find("two")->VarType(0), 2);
  EXPECT_EQ(registry.searches(), 2u);
  registry.find("none");
  EXPECT_EQ(registry.find("two")->VarType(0), 2) << "a name that is not there is not remembered";
  EXPECT_EQ(registry.searches(), 3u);
}

// The functions that look a data set up without asking for it hand no exception on to their callers.
TEST(DataStepRegistry, ASearchNeedsNoMemory) {
  DataStepRegistry registry;
  static_assert(noexcept(registry.find("one")));
}

TEST(DataStepRegistry, ForgetsTheRememberedNameToo) {
  DataStepRegistry registry;
  registry.add("one", recordOf(1));
  registry.find("one");
  registry.clear();
  EXPECT_EQ(registry.size(), 0u);
  EXPECT_EQ(registry.find("one"), nullptr);
  DatastepDataSmb* const unnamed = registry.add("", recordOf(5));
  EXPECT_EQ(registry.find(""), unnamed) << "an empty name is a name";
}

// A reply with those three numbers, or others, and that many cells.
CleXDSmb replyOf(const std::vector<int>& numbers, int cells) {
  CleXDSmb reply;
  for (const int number : numbers) reply.SetLong(number);
  LongData flags;
  DoubleData values;
  for (int i = 0; i < cells; ++i) {
    flags.SetValue(0);
    values.SetValue(i);
  }
  reply.SetLongArray(flags);
  reply.SetDoubleArray(values);
  return reply;
}

struct BatchRow {
  const char* label;
  std::vector<int> numbers;
  int cells;
  int firstRow;
  int columns;
  int lastHeld;  // Below the first row when none is held.
};

// Rows 10 to 13 are asked for each time.
TEST(DataStepBatch, HoldsTheRowsThatTheReplyTellsOf) {
  constexpr int kMax = std::numeric_limits<int>::max();
  const BatchRow rows[] = {
      {"as asked", {10, 4, 3}, 12, 10, 3, 13},
      {"fewer rows", {10, 2, 3}, 6, 10, 3, 11},
      {"no rows", {10, 0, 3}, 0, 10, 3, 9},
      {"other rows", {8, 4, 3}, 12, 8, 3, 11},
      {"more rows than cells", {10, 4, 3}, 7, 10, 3, 11},
      {"far more rows than cells", {10, kMax, 3}, 7, 10, 3, 11},
      {"negative rows", {10, -4, 3}, 12, 10, 3, 9},
      {"negative columns", {10, 4, -3}, 12, 10, 0, 13},
      {"no numbers", {}, 12, 10, 3, 13},
      {"too few numbers", {3, 1}, 12, 10, 3, 13},
      {"a number more", {10, 4, 3, 99}, 12, 10, 3, 13},
      {"nothing", {}, 0, 10, 0, 13},
  };
  for (const BatchRow& row : rows) {
    SCOPED_TRACE(row.label);
    DataStepBatch batch;
    batch.fill("ds", 10, 4, replyOf(row.numbers, row.cells));
    ASSERT_NE(batch.record(), nullptr);
    EXPECT_EQ(batch.record()->FirstRow(), row.firstRow);
    EXPECT_EQ(batch.record()->VarCount(), row.columns);
    for (int at = 0; at < 20; ++at) {
      EXPECT_EQ(batch.holds("ds", at, 1), at >= row.firstRow && at <= row.lastHeld) << at;
    }
  }
}

TEST(DataStepBatch, HoldsWholeStretchesOfItsOwnDataSet) {
  DataStepBatch batch;
  EXPECT_FALSE(batch.holds("", 0, 0)) << "nothing was fetched";
  batch.fill("ds", 10, 4, replyOf({10, 4, 1}, 4));
  struct Row {
    const char* label;
    const char* dataSet;
    int firstRow;
    int rowCount;
    bool holds;
  };
  const Row rows[] = {
      {"all", "ds", 10, 4, true},
      {"a part", "ds", 11, 2, true},
      {"one too many", "ds", 11, 4, false},
      {"from before", "ds", 9, 2, false},
      {"no row behind the end", "ds", 14, 0, true},
      {"a negative number of rows", "ds", 10, -5, true},
      {"the largest numbers", "ds", std::numeric_limits<int>::max(), std::numeric_limits<int>::max(), false},
      {"another case", "DS", 10, 4, false},
      {"another data set", "other", 10, 4, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    EXPECT_EQ(batch.holds(row.dataSet, row.firstRow, row.rowCount), row.holds);
  }
  batch.drop();
  EXPECT_FALSE(batch.holds("ds", 10, 4));
  EXPECT_EQ(batch.record(), nullptr);
}

}  // namespace
