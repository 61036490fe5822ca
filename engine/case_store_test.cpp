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

TEST(CaseStore, ACaseIsInsertedAndErasedAnywhere) {
  for (std::size_t place = 0; place <= 3; ++place) {
    CaseStore cases = numberTextNumber();
    cases.insertCase(place);
    ASSERT_EQ(cases.caseCount(), 4U);
    EXPECT_EQ(cases.number(place, 0), kSystemMissing) << place;
    EXPECT_EQ(cases.text(place, 1), "         ") << place;
    for (std::size_t i = 0; i < 3; ++i)
      EXPECT_EQ(cases.number(i < place ? i : i + 1, 2), 100 + static_cast<double>(i)) << place;
    cases.eraseCase(place);
    EXPECT_TRUE(cases == numberTextNumber()) << place;
  }
}

TEST(CaseStore, TheLastCaseCanBeErased) {
  CaseStore cases({8});
  cases.insertCase(0);
  cases.eraseCase(0);
  EXPECT_EQ(cases.caseCount(), 0U);
}

TEST(CaseStore, ManyCasesAreAppendedAsTheyTravel) {
  const CaseStore more = numberTextNumber();
  std::string unaligned = "x" + bytesOf(more);
  CaseStore cases = numberTextNumber();
  cases.appendCases(unaligned.data() + 1, 3);
  cases.appendCases(nullptr, 0);
  EXPECT_EQ(bytesOf(cases), bytesOf(more) + bytesOf(more));
}

TEST(CaseStore, GivesAndTakesTheBytesOfACase) {
  const CaseStore from = numberTextNumber();
  CaseStore cases = numberTextNumber();
  cases.setVariables(0, 0, 3, from.caseAt(2));
  EXPECT_EQ(cases.number(0, 0), 2.0);
  EXPECT_EQ(cases.number(0, 2), 102.0);
  EXPECT_EQ(cases.number(1, 0), 1.0);
  EXPECT_EQ(bytesOf(from).substr(64), std::string(static_cast<const char*>(from.caseAt(2)), 32));
}

TEST(CaseStore, GivesAndTakesTheBytesOfSomeVariables) {
  CaseStore cases = numberTextNumber();
  EXPECT_EQ(cases.bytesOfVariables(0, 0), 0U);
  EXPECT_EQ(cases.bytesOfVariables(0, 2), 24U);
  EXPECT_EQ(cases.bytesOfVariables(1, 2), 24U);
  const std::string bytes = "Gentoo          " + std::string("\0\0\0\0\0\0\x04\xC0", 8);
  cases.setVariables(1, 1, 2, bytes.data());
  cases.setVariables(1, 3, 0, nullptr);
  EXPECT_EQ(std::string(static_cast<const char*>(cases.variablesAt(1, 1)), 24), bytes);
  EXPECT_EQ(cases.number(1, 0), 1.0);
  EXPECT_EQ(cases.number(1, 2), -2.5);
  EXPECT_EQ(cases.text(2, 1), "Chinstrap");
}

TEST(CaseStore, VariablesAreInsertedAnywhere) {
  struct Row {
    std::size_t place;
    std::size_t number;
    std::size_t text;
    std::size_t other;
  };
  for (const Row row : {Row{0, 2, 3, 4}, Row{1, 0, 3, 4}, Row{2, 0, 1, 4}, Row{3, 0, 1, 2}}) {
    CaseStore cases = numberTextNumber();
    cases.insertVariables(row.place, {0, 32767});
    EXPECT_EQ(cases.caseBytes(), 32U + 8 + 32768);
    ASSERT_EQ(cases.caseCount(), 3U);
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_EQ(cases.number(i, row.place), kSystemMissing) << row.place;
      EXPECT_EQ(cases.text(i, row.place + 1), std::string(32767, ' ')) << row.place;
      EXPECT_EQ(cases.number(i, row.number), static_cast<double>(i)) << row.place;
      EXPECT_EQ(cases.text(i, row.text), "Chinstrap") << row.place;
      EXPECT_EQ(cases.number(i, row.other), 100 + static_cast<double>(i)) << row.place;
    }
    cases.eraseVariables(std::vector{row.place, row.place + 1});
    EXPECT_TRUE(cases == numberTextNumber()) << row.place;
  }
}

TEST(CaseStore, AVariableMovesBothWays) {
  CaseStore cases = numberTextNumber();
  cases.moveVariable(0, 2);
  EXPECT_EQ(cases.text(1, 0), "Chinstrap");
  EXPECT_EQ(cases.number(1, 1), 101.0);
  EXPECT_EQ(cases.number(1, 2), 1.0);
  EXPECT_EQ(cases.firstUnit(1), 2U);
  cases.moveVariable(2, 0);
  EXPECT_TRUE(cases == numberTextNumber());
  cases.moveVariable(1, 1);
  EXPECT_TRUE(cases == numberTextNumber());
}

TEST(CaseStore, WithTheLastVariableTheCasesGo) {
  CaseStore cases({9});
  cases.appendCase();
  cases.eraseVariables(std::vector<std::size_t>{0});
  EXPECT_EQ(cases.caseCount(), 0U);
  EXPECT_EQ(cases.caseBytes(), 0U);
  cases.insertVariables(0, {0});
  EXPECT_EQ(cases.caseCount(), 0U);
  cases.appendCase();
  EXPECT_EQ(cases.caseCount(), 1U);
}

TEST(CaseStore, MoreCasesOrVariablesTakeAtMost4GiBToo) {
  CaseStore cases({32760});
  cases.appendCase();
  EXPECT_TRUE(cases.mayAdd(131103)) << "131104 cases of 32760 bytes";
  EXPECT_FALSE(cases.mayAdd(131104));
  EXPECT_FALSE(cases.mayAdd(~std::uint64_t{0}));
  EXPECT_TRUE(cases.mayInsertVariables(std::vector<int>(131103, 32760)));
  EXPECT_FALSE(cases.mayInsertVariables(std::vector<int>(131104, 32760)));
}

TEST(CaseStore, WithoutVariablesThereAreNoCases) { EXPECT_EQ(CaseStore().caseCount(), 0U); }

}  // namespace
}  // namespace kova::engine
