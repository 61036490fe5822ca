#include "engine/case_cursor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace kova::engine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A data set of these values of "value", with the groups' letters in "group", split by it when they are given.
DataSet dataSetOf(const std::vector<double>& values, const std::string& groups = "") {
  Variable value;
  value.name = "value";
  Variable group;
  group.name = "group";
  group.width = 1;
  DataSet dataSet;
  dataSet.variables = {value, group};
  dataSet.cases = CaseStore({0, 1});
  for (std::size_t i = 0; i < values.size(); ++i) {
    dataSet.cases.appendCase();
    dataSet.cases.setNumber(i, 0, values[i]);
    if (!groups.empty()) dataSet.cases.setText(i, 1, groups.substr(i, 1));
  }
  if (!groups.empty()) dataSet.split = {"group"};
  return dataSet;
}

// The values of the variable "value" in a batch.
std::vector<double> valuesOf(const CaseCursor& cursor, const CaseCursor::Batch& batch) {
  CleXDSmb message;
  cursor.addTo(&message, batch);
  int length = 0;
  const auto* bytes = static_cast<const char*>(message.GetVoidData(length));
  EXPECT_EQ(static_cast<std::size_t>(length), batch.count * cursor.caseBytes());
  std::vector<double> values(batch.count);
  for (std::size_t i = 0; i < batch.count; ++i) std::memcpy(&values[i], bytes + i * cursor.caseBytes(), sizeof(double));
  return values;
}

void expectBatch(CaseCursor* cursor, std::size_t most, const std::vector<double>& values, ErrorCode code) {
  const CaseCursor::Batch batch = cursor->nextBatch(most);
  EXPECT_EQ(valuesOf(*cursor, batch), values);
  EXPECT_EQ(batch.code, code);
}

constexpr auto kRead = CaseCursor::Access::kRead;
constexpr auto kGroup = ErrorCode::kEndOfSplitGroup;
constexpr auto kEnd = ErrorCode::kEndOfCases;
constexpr auto kMore = ErrorCode::kNone;

TEST(CaseCursor, HandsOutBatchesAndTellsOfTheEndWithTheLastOne) {
  DataSet dataSet = dataSetOf({1, 2, 3, 4, 5});
  CaseCursor cursor(&dataSet, kRead);
  EXPECT_EQ(cursor.current(), std::nullopt);
  EXPECT_FALSE(cursor.isAtGroupEnd());
  expectBatch(&cursor, 2, {1, 2}, kMore);
  EXPECT_EQ(cursor.current(), 1U);
  EXPECT_EQ(cursor.handedOut(), 2U);
  EXPECT_FALSE(cursor.isAtGroupEnd());
  expectBatch(&cursor, 3, {3, 4, 5}, kEnd);
  EXPECT_TRUE(cursor.isAtGroupEnd());
  EXPECT_EQ(cursor.handedOut(), 5U);
  expectBatch(&cursor, 3, {}, kEnd);
  EXPECT_EQ(cursor.current(), std::nullopt);
}

TEST(CaseCursor, EndsABatchWithItsGroup) {
  DataSet dataSet = dataSetOf({1, 2, 3, 4, 5, 6}, "AAABBA");
  CaseCursor cursor(&dataSet, kRead);
  EXPECT_EQ(cursor.groupEnd(), 3U);
  expectBatch(&cursor, 2, {1, 2}, kMore);
  expectBatch(&cursor, 9, {3}, kGroup);
  EXPECT_TRUE(cursor.isAtGroupEnd());
  EXPECT_EQ(cursor.groupEnd(), 3U) << "the next group has not begun";
  expectBatch(&cursor, 2, {4, 5}, kGroup);
  EXPECT_EQ(cursor.groupEnd(), 5U);
  expectBatch(&cursor, 2, {6}, kEnd);
  EXPECT_EQ(cursor.groupEnd(), 6U);
}

TEST(CaseCursor, StepsTellOnceOfEachGroupsEnd) {
  DataSet dataSet = dataSetOf({1, 2, 3}, "AAB");
  CaseCursor cursor(&dataSet, kRead);
  EXPECT_EQ(cursor.step(), kMore);
  EXPECT_FALSE(cursor.isAtGroupEnd());
  EXPECT_EQ(cursor.step(), kMore);
  EXPECT_TRUE(cursor.isAtGroupEnd());
  EXPECT_EQ(cursor.step(), kGroup);
  EXPECT_EQ(cursor.current(), std::nullopt);
  EXPECT_TRUE(cursor.isAtGroupEnd());
  EXPECT_EQ(cursor.step(), kMore);
  EXPECT_EQ(cursor.current(), 2U);
  EXPECT_EQ(cursor.step(), kEnd);
  EXPECT_EQ(cursor.step(), kEnd);
}

TEST(CaseCursor, SkipsCasesThatAreNotSelected) {
  DataSet dataSet = dataSetOf({1, 0, 2, kSystemMissing, 3, -1}, "AABBCC");
  dataSet.filter = "value";
  dataSet.variables.change(0).missing = {kOneMissing, {-1, 0, 0}, {}};
  CaseCursor cursor(&dataSet, kRead);
  expectBatch(&cursor, 9, {1}, kGroup);
  EXPECT_EQ(cursor.current(), 0U);
  expectBatch(&cursor, 9, {2}, kGroup);
  expectBatch(&cursor, 9, {3}, kEnd);
  EXPECT_EQ(cursor.current(), 4U);
  EXPECT_EQ(cursor.handedOut(), 3U);
}

TEST(CaseCursor, AGroupWithoutASelectedCaseIsNoGroup) {
  DataSet dataSet = dataSetOf({1, 0, 2}, "ABC");
  dataSet.filter = "value";
  CaseCursor cursor(&dataSet, kRead);
  expectBatch(&cursor, 9, {1}, kGroup);
  expectBatch(&cursor, 9, {2}, kEnd);
}

TEST(CaseCursor, HandsOutNoCaseThatIsNoLongerSelected) {
  DataSet dataSet = dataSetOf({1, 2, 3, 4, 5, 6}, "AAAABB");
  dataSet.filter = "value";
  CaseCursor cursor(&dataSet, kRead);
  expectBatch(&cursor, 1, {1}, kMore);
  dataSet.cases.setNumber(1, 0, 0);
  expectBatch(&cursor, 1, {3}, kMore);
  dataSet.cases.setNumber(3, 0, 0);
  EXPECT_TRUE(cursor.isAtGroupEnd());
  expectBatch(&cursor, 9, {}, kGroup);
  dataSet.cases.setNumber(4, 0, 0);
  EXPECT_EQ(cursor.step(), kMore);
  EXPECT_EQ(cursor.current(), 5U);
  EXPECT_EQ(cursor.step(), kEnd);
  EXPECT_EQ(cursor.handedOut(), 3U);
}

TEST(CaseCursor, WithoutCasesItIsAtTheEnd) {
  DataSet none = dataSetOf({});
  CaseCursor cursor(&none, kRead);
  expectBatch(&cursor, 1, {}, kEnd);
  EXPECT_EQ(cursor.groupEnd(), 0U);
  EXPECT_FALSE(cursor.isAtGroupEnd()) << "no group was begun";

  DataSet unselected = dataSetOf({0, 0});
  unselected.filter = "value";
  EXPECT_EQ(CaseCursor(&unselected, kRead).step(), kEnd);

  DataSet nothing;
  EXPECT_EQ(CaseCursor(&nothing, kRead).nextBatch(1).code, kEnd);
}

TEST(CaseCursor, ToAppendHasNoCases) {
  DataSet dataSet = dataSetOf({1, 2});
  CaseCursor cursor(&dataSet, CaseCursor::Access::kAppend);
  EXPECT_EQ(cursor.step(), kEnd);
}

TEST(CaseCursor, DoesNotSeeWhatIsAddedBehind) {
  DataSet dataSet = dataSetOf({1, 2});
  CaseCursor cursor(&dataSet, CaseCursor::Access::kWrite);
  expectBatch(&cursor, 1, {1}, kMore);
  dataSet.cases.insertVariables(2, {20});
  dataSet.cases.appendCase();
  EXPECT_EQ(cursor.caseBytes(), 16U);
  expectBatch(&cursor, 9, {2}, kEnd);
}

TEST(CaseSelection, CountsWhatItTakes) {
  DataSet dataSet = dataSetOf({1, 0, 2, kSystemMissing});
  EXPECT_EQ(CaseSelection(dataSet).count(), 4U);
  dataSet.filter = "value";
  EXPECT_EQ(CaseSelection(dataSet).count(), 2U);
  EXPECT_FALSE(CaseSelection(dataSet).takesAll());
}

}  // namespace
}  // namespace kova::engine
