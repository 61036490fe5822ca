#include "engine/case_store.h"

#include <gtest/gtest.h>

#include <cstring>

namespace kova::engine {
namespace {

std::string bytesOf(const CaseStore& cases) {
  return {static_cast<const char*>(cases.data()), cases.caseCount() * cases.caseBytes()};
}

TEST(CaseStore, GivesEachWidthItsUnits) {
  struct Row {
    int width;
    std::size_t units;
  };
  for (const Row row : {Row{0, 1}, Row{1, 1}, Row{8, 1}, Row{9, 2}, Row{16, 2}, Row{17, 3}, Row{32767, 4096}}) {
    EXPECT_EQ(CaseStore({row.width}).caseBytes(), row.units * 8) << "width " << row.width;
    EXPECT_EQ(CaseStore::caseBytesOf({row.width, 0}), row.units * 8 + 8) << "width " << row.width;
  }
}

TEST(CaseStore, StaysWhereItIsWithinWhatWasReserved) {
  CaseStore cases({0, 9});
  cases.reserve(1000);
  EXPECT_EQ(cases.caseCount(), 0U);
  cases.appendCase();
  const void* const start = cases.data();
  for (int i = 1; i < 1000; ++i) cases.appendCase();
  EXPECT_EQ(cases.data(), start);
}

TEST(CaseStore, ANewCaseIsMissingAndBlank) {
  CaseStore cases({0, 3, 12});
  cases.appendCase();
  EXPECT_EQ(bytesOf(cases), std::string("\xFF\xFF\xFF\xFF\xFF\xFF\xEF\xFF", 8) + std::string(24, ' '));
}

TEST(CaseStore, StoresACaseAsItTravels) {
  CaseStore cases({0, 9, 0});
  cases.appendCase();
  cases.setNumber(0, 0, 1.0);
  cases.setText(0, 1, "Chinstrap");
  cases.setNumber(0, 2, -2.5);
  const std::string expected =
      std::string("\0\0\0\0\0\0\xF0\x3F", 8) + "Chinstrap       " + std::string("\0\0\0\0\0\0\x04\xC0", 8);
  EXPECT_EQ(bytesOf(cases), expected);
  EXPECT_EQ(cases.firstUnit(2), 3U);
}

TEST(CaseStore, ReadsBackWhatWasStored) {
  CaseStore cases({0, 3});
  for (int i = 0; i < 1000; ++i) {
    cases.appendCase();
    cases.setNumber(static_cast<std::size_t>(i), 0, i);
  }
  cases.setText(999, 1, "ab");
  EXPECT_EQ(cases.caseCount(), 1000U);
  EXPECT_EQ(cases.number(500, 0), 500.0);
  EXPECT_EQ(cases.text(999, 1), "ab ");
  EXPECT_EQ(cases.text(0, 1), "   ");
}

TEST(CaseStore, AShorterTextLeavesNothingOfTheLongerOne) {
  CaseStore cases({9});
  cases.appendCase();
  cases.setText(0, 0, "Chinstrap");
  cases.setText(0, 0, "Gentoo");
  EXPECT_EQ(cases.text(0, 0), "Gentoo   ");
}

TEST(CaseStore, CutsATextAtTheVariablesWidth) {
  CaseStore cases({3});
  cases.appendCase();
  cases.setText(0, 0, "abcdef");
  EXPECT_EQ(bytesOf(cases), "abc     ");
}

CaseStore numberTextNumber() {
  CaseStore cases({0, 9, 0});
  for (int i = 0; i < 3; ++i) {
    const auto position = static_cast<std::size_t>(i);
    cases.appendCase();
    cases.setNumber(position, 0, i);
    cases.setText(position, 1, "Chinstrap");
    cases.setNumber(position, 2, 100 + i);
  }
  return cases;
}

TEST(CaseStore, AVariableGetsAnotherWidth) {
  struct Row {
    int width;
    std::size_t caseBytes;
    const char* text;
  };
  const Row rows[] = {{3, 24, "Chi"}, {8, 24, "Chinstra"}, {9, 32, "Chinstrap"}, {20, 40, "Chinstrap           "}};
  for (const Row& row : rows) {
    CaseStore cases = numberTextNumber();
    cases.changeWidth(1, row.width);
    EXPECT_EQ(cases.caseCount(), 3U) << row.width;
    EXPECT_EQ(cases.caseBytes(), row.caseBytes) << row.width;
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_EQ(cases.number(i, 0), static_cast<double>(i)) << row.width;
      EXPECT_EQ(cases.text(i, 1), row.text);
      EXPECT_EQ(cases.number(i, 2), 100 + static_cast<double>(i)) << row.width;
    }
  }
}

TEST(CaseStore, ANarrowerTextEndsInAWholeCharacter) {
  struct Row {
    int width;
    const char* text;
  };
  const char* const text = "a\u00E9\u20AC\U0001F427z";
  const Row rows[] = {{1, "a"},
                      {2, "a "},
                      {3, "a\u00E9"},
                      {4, "a\u00E9 "},
                      {5, "a\u00E9  "},
                      {6, "a\u00E9\u20AC"},
                      {9, "a\u00E9\u20AC   "},
                      {10, "a\u00E9\u20AC\U0001F427"},
                      {11, "a\u00E9\u20AC\U0001F427z"}};
  for (const Row& row : rows) {
    CaseStore cases({12});
    cases.appendCase();
    cases.setText(0, 0, text);
    cases.changeWidth(0, row.width);
    EXPECT_EQ(cases.text(0, 0), row.text) << row.width;
  }
}

TEST(CaseStore, AllCasesTakeAtMost4GiB) {
  CaseStore cases({0, 8});
  cases.reserve(131072);
  for (int i = 0; i < 131072; ++i) cases.appendCase();
  EXPECT_TRUE(cases.mayChangeWidth(1, 32760)) << "32768 bytes a case";
  EXPECT_FALSE(cases.mayChangeWidth(1, 32761));
  EXPECT_TRUE(CaseStore({0, 8}).mayChangeWidth(1, 32767)) << "without cases";
}

TEST(CaseStore, AVariableOfTheOtherKindHasNoValues) {
  CaseStore cases = numberTextNumber();
  cases.changeWidth(1, 0);
  cases.changeWidth(2, 10);
  EXPECT_EQ(cases.caseBytes(), 32U);
  EXPECT_EQ(cases.number(2, 0), 2.0);
  EXPECT_EQ(cases.number(2, 1), kSystemMissing);
  EXPECT_EQ(cases.text(2, 2), "          ");
}

TEST(CaseStore, ComparesValuesOfTwoCases) {
  CaseStore cases = numberTextNumber();
  EXPECT_FALSE(cases.sameValue(0, 1, 0));
  EXPECT_TRUE(cases.sameValue(0, 2, 1));
  cases.setText(2, 1, "Chinstra");
  EXPECT_FALSE(cases.sameValue(0, 2, 1)) << "it differs in its second unit";
}

TEST(CaseStore, WithoutVariablesThereAreNoCases) { EXPECT_EQ(CaseStore().caseCount(), 0U); }

}  // namespace
}  // namespace kova::engine
