#include "config/XCmdArgument.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// What argv() holds, up to its null.
std::vector<std::string> vectorOf(XCmdArgument& arguments) {
  std::vector<std::string> result;
  for (char** next = arguments.argv(); next != nullptr && *next != nullptr; ++next) result.emplace_back(*next);
  return result;
}

TEST(XCmdArgument, StartsEmptyWithoutForms) {
  XCmdArgument arguments;
  EXPECT_EQ(arguments.argc(), 0);
  EXPECT_EQ(arguments.argv(), nullptr);
  EXPECT_EQ(arguments.cmdline(), nullptr);
  EXPECT_EQ(arguments.argumentAt(0), nullptr);
}

TEST(XCmdArgument, SplitsACommandLineAtEveryBlank) {
  struct Case {
    const char* label;
    const char* text;
    std::vector<std::string> list;
  };
  const Case cases[] = {
      {"nothing", "", {}},
      {"one", "a", {"a"}},
      {"two", "--silent --no-save", {"--silent", "--no-save"}},
      {"two blanks make an empty argument", "a  b", {"a", "", "b"}},
      {"quotes do not hold it together", "\"a b\"", {"\"a", "b\""}},
      {"a blank at the end", "a ", {"a"}},
      {"a blank alone", " ", {""}},
      {"a tab is no blank", "a\tb", {"a\tb"}},
  };
  for (const Case& c : cases) {
    XCmdArgument arguments{std::string(c.text)};
    EXPECT_EQ(arguments.argc(), static_cast<int>(c.list.size())) << c.label;
    EXPECT_EQ(vectorOf(arguments), c.list) << c.label;
  }
}

TEST(XCmdArgument, QuotesWhatHoldsABlank) {
  struct Case {
    const char* label;
    const char* argument;
    bool keepAsIs;
    const char* stored;
  };
  const Case cases[] = {
      {"no blank", "C:\\kova\\", false, "C:\\kova\\"},
      {"a blank", "C:\\Program Files\\R", false, "\"C:\\Program Files\\R\""},
      {"a blank and a backslash at the end", "C:\\Program Files\\", false, "\"C:\\Program Files\\\\\""},
      {"kept as it is", "C:\\Program Files\\", true, "C:\\Program Files\\"},
      {"double quote in front", "\"a b", false, "\"a b"},
      {"single quote in front", "'a b'", false, "'a b'"},
      {"quote inside", "a \"b\"", false, "\"a \"b\"\""},
      {"a blank alone", " ", false, "\" \""},
      {"empty", "", false, ""},
  };
  for (const Case& c : cases) {
    XCmdArgument arguments;
    arguments.pushArgument(c.argument, c.keepAsIs);
    EXPECT_STREQ(arguments.argumentAt(0), c.stored) << c.label;
  }
}

TEST(XCmdArgument, CommandLineHasABlankBeforeEachArgument) {
  XCmdArgument arguments;
  arguments.pushArgument("a", false);
  arguments.pushArgument("b", false);
  EXPECT_STREQ(arguments.cmdline(), " a b");
}

TEST(XCmdArgument, ArgumentsOfAVectorShowOnlyAfterAChange) {
  char program[] = "program";
  char option[] = "-x";
  char* argv[] = {program, option, nullptr};
  XCmdArgument arguments(2, argv);
  EXPECT_EQ(arguments.argc(), 0);
  EXPECT_EQ(arguments.argv(), nullptr);
  EXPECT_EQ(arguments.cmdline(), nullptr);
  EXPECT_STREQ(arguments.argumentAt(0), "program");
  EXPECT_STREQ(arguments.argumentAt(1), "-x");

  arguments.pushArgument("c", false);
  EXPECT_THAT(vectorOf(arguments), ElementsAre("program", "-x", "c"));
}

TEST(XCmdArgument, VectorWithoutStrings) {
  char* argv[] = {nullptr, nullptr};
  XCmdArgument holes(2, argv);
  EXPECT_STREQ(holes.argumentAt(1), "");
  XCmdArgument none(3, nullptr);
  EXPECT_EQ(none.argumentAt(0), nullptr);
  XCmdArgument negative(-1, argv);
  EXPECT_EQ(negative.argumentAt(0), nullptr);
}

TEST(XCmdArgument, ModifyReplacesInsideTheListOnly) {
  XCmdArgument arguments(std::string("a b"));
  ASSERT_EQ(arguments.argc(), 2);
  arguments.modifyArgument(1, "with blank");
  EXPECT_THAT(vectorOf(arguments), ElementsAre("a", "with blank"));

  char** const before = arguments.argv();
  arguments.modifyArgument(-1, "x");
  arguments.modifyArgument(2, "x");
  EXPECT_EQ(arguments.argv(), before) << "a change that is ignored does not mark the list as changed";
  EXPECT_THAT(vectorOf(arguments), ElementsAre("a", "with blank"));
}

TEST(XCmdArgument, ArgumentAtGivesNullOutsideTheList) {
  XCmdArgument arguments(std::string("a b"));
  EXPECT_EQ(arguments.argumentAt(-1), nullptr);
  EXPECT_EQ(arguments.argumentAt(2), nullptr);
  EXPECT_STREQ(arguments.argumentAt(1), "b");
}

TEST(XCmdArgument, FirstFormAskedForTakesTheChangeAway) {
  XCmdArgument arguments;
  arguments.pushArgument("a", false);
  EXPECT_THAT(vectorOf(arguments), ElementsAre("a"));
  EXPECT_EQ(arguments.cmdline(), nullptr) << "the vector took the first change";

  arguments.pushArgument("b", false);
  EXPECT_STREQ(arguments.cmdline(), " a b");
  EXPECT_EQ(arguments.argc(), 1) << "the command line took the second change";
  EXPECT_THAT(vectorOf(arguments), ElementsAre("a"));

  arguments.modifyArgument(0, "c");
  EXPECT_EQ(arguments.argc(), 2);
  EXPECT_STREQ(arguments.cmdline(), " a b") << "the vector took the third change";
}

TEST(XCmdArgument, VectorIsWritableAndTheListIsNotTouchedByIt) {
  XCmdArgument arguments(std::string("abc"));
  arguments.argv()[0][0] = 'X';
  EXPECT_STREQ(arguments.argumentAt(0), "abc");
}

}  // namespace
