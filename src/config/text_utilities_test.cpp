#include "config/text_utilities.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/os_fake/os_fake.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct TextCase {
  const char* label;
  std::string in;
  std::string out;
};

TEST(TextUtilities, DecoratePathEnd) {
  const TextCase cases[] = {
      {"empty stays empty", "", ""},
      {"an end is added", "C:\\kova", "C:\\kova\\"},
      {"an end is kept", "C:\\kova\\", "C:\\kova\\"},
      {"slashes are turned", "/opt/kova", "\\opt\\kova\\"},
      {"a slash at the end becomes one end", "/opt/kova/", "\\opt\\kova\\"},
      {"both kinds", "a/b\\c", "a\\b\\c\\"},
      {"two ends stay two", "a//", "a\\\\"},
      {"a lone slash", "/", "\\"},
  };
  for (const TextCase& c : cases) {
    std::string path = c.in;
    DecoratePathEnd(path);
    EXPECT_EQ(path, c.out) << c.label;
  }
}

TEST(TextUtilities, TransPath) {
  const TextCase cases[] = {
      {"empty", "", ""},
      {"none", "a/b", "a/b"},
      {"each is doubled", "C:\\a\\b", "C:\\\\a\\\\b"},
      {"doubled ones too", "\\\\pipe", "\\\\\\\\pipe"},
  };
  for (const TextCase& c : cases) EXPECT_EQ(transPath(c.in), c.out) << c.label;
}

TEST(TextUtilities, UpperString) {
  const TextCase cases[] = {
      {"empty", "", ""},
      {"letters", "python", "PYTHON"},
      {"the neighbours of the letters stay", "`az{@AZ[", "`AZ{@AZ["},
      {"other bytes stay", "\xE9\xC3\xA9\xFF", "\xE9\xC3\xA9\xFF"},
      {"a NUL is a character", std::string("a\0b", 3), std::string("A\0B", 3)},
  };
  for (const TextCase& c : cases) EXPECT_EQ(UpperString(c.in), c.out) << c.label;
}

TEST(TextUtilities, StrincmpGivesTheFirstDifference) {
  struct Case {
    const char* label;
    const char* a;
    const char* b;
    unsigned long long n;
    int result;
  };
  const Case cases[] = {
      {"equal but for case", "PyThOn", "pYtHoN", 6, 0},
      {"both end before n", "AB", "ab", 9, 0},
      {"nothing to compare", "a", "b", 0, 0},
      {"equal so far", "HOME", "HOMEDIR", 4, 0},
      {"the second goes on", "HOME", "HOMEDIR", 5, -'D'},
      {"the first goes on", "HOMEDIR", "home", 7, 'D'},
      {"the first difference counts", "abc", "ADA", 3, 'B' - 'D'},
      {"upper case is compared", "a", "_", 1, 'A' - '_'},
      {"bytes above 127 are unsigned", "\xE9", "z", 1, 0xE9 - 'Z'},
      {"bytes above 127 have no case", "\xE9", "\xC9", 1, 0xE9 - 0xC9},
      {"null is empty", nullptr, "", 5, 0},
      {"null against a text", nullptr, "a", 5, -'A'},
      {"a text against null", "a", nullptr, 5, 'A'},
      {"n as large as can be", "x", "X", ~0ull, 0},
  };
  for (const Case& c : cases) EXPECT_EQ(strincmp(c.a, c.b, c.n), c.result) << c.label;
}

TEST(TextUtilities, GetListFromDelims) {
  struct Case {
    const char* label;
    const char* text;
    const char* delimiter;
    std::vector<std::string> list;
  };
  const Case cases[] = {
      {"empty text", "", ";", {}},
      {"no delimiter in it", "PYTHON", ";", {"PYTHON"}},
      {"pieces are not trimmed", "PYTHON; R", ";", {"PYTHON", " R"}},
      {"an empty piece between two", "a;;b", ";", {"a", "", "b"}},
      {"an empty piece in front", ";a", ";", {"", "a"}},
      {"no empty piece at the end", "a;b;", ";", {"a", "b"}},
      {"the delimiter alone", ";", ";", {""}},
      {"the delimiter is taken whole", "a<>b<c>d<>", "<>", {"a", "b<c>d"}},
      {"from left to right", "aaab", "aa", {"", "ab"}},
      {"an empty delimiter splits nothing", "ab", "", {"ab"}},
  };
  for (const Case& c : cases) EXPECT_EQ(GetListFromDelims(c.text, c.delimiter), c.list) << c.label;
}

TEST(TextUtilities, MsleepSleepsThatLong) {
  kova::fake::reset();
  msleep(100);
  EXPECT_EQ(kova::fake::elapsedMs(), 100u);
  EXPECT_EQ(kova::fake::callCount("SleepMs"), 1u);
}

TEST(TextUtilities, WhiteSpaceIsThatOfTheClassicLocale) {
  std::string white;
  for (int c = 0; c < 256; ++c) {
    if (kova::isWhiteSpace(static_cast<char>(c))) white += static_cast<char>(c);
  }
  EXPECT_EQ(white, "\t\n\v\f\r ");
}

}  // namespace
