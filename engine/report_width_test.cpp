#include "engine/report_width.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kova::engine {
namespace {

using testing::ElementsAre;

TEST(DisplayWidth, CountsColumns) {
  EXPECT_EQ(displayWidth(""), 0U);
  EXPECT_EQ(displayWidth("plain"), 5U);
  EXPECT_EQ(displayWidth("\u00E4\u00F6\u00FC"), 3U);
  EXPECT_EQ(displayWidth("Zoe\u0308"), 3U) << "a mark that combines takes no column";
  EXPECT_EQ(displayWidth("\u6771\u4EAC"), 4U) << "wide characters take two";
  EXPECT_EQ(displayWidth("\uFF21\uFF22"), 4U) << "full-width letters too";
  EXPECT_EQ(displayWidth("\U0001F427"), 2U) << "and emoji";
  EXPECT_EQ(displayWidth("a\u200Bb"), 2U) << "format characters take none";
  EXPECT_EQ(displayWidth("\u03B1\u0416\u05D0"), 3U);
  EXPECT_EQ(displayWidth("\U00020000"), 2U);
}

TEST(Wrapped, BreaksAtBlanks) {
  EXPECT_THAT(wrapped("one two three", 7), ElementsAre("one two", "three"));
  EXPECT_THAT(wrapped("one two three", 13), ElementsAre("one two three"));
  EXPECT_THAT(wrapped("", 5), ElementsAre(""));
  EXPECT_THAT(wrapped("one   two", 5), ElementsAre("one", "two"));
}

TEST(Wrapped, KeepsLines) {
  EXPECT_THAT(wrapped("one\n\ntwo", 5), ElementsAre("one", "", "two"));
  EXPECT_THAT(wrapped("  indented", 20), ElementsAre("  indented"));
}

TEST(Wrapped, BreaksWordsThatAreTooWide) {
  EXPECT_THAT(wrapped("abcdefgh", 3), ElementsAre("abc", "def", "gh"));
  EXPECT_THAT(wrapped("a bcdefg h", 3), ElementsAre("a", "bcd", "efg", "h"));
  EXPECT_THAT(wrapped("\u6771\u4EAC\u90FD", 4), ElementsAre("\u6771\u4EAC", "\u90FD"));
  EXPECT_THAT(wrapped("\u6771\u4EAC", 1), ElementsAre("\u6771", "\u4EAC")) << "no line can hold one";
  EXPECT_THAT(wrapped("e\u0308e\u0308e\u0308", 2), ElementsAre("e\u0308e\u0308", "e\u0308"))
      << "marks stay where they belong";
}

// To measure what is left of the word for every line would take minutes.
TEST(Wrapped, BreaksAVeryLongWord) {
  constexpr std::size_t kLong = 1 << 20;
  EXPECT_EQ(wrapped(std::string(kLong, 'x'), 1).size(), kLong);
}

TEST(Padded, FillsUp) {
  EXPECT_EQ(padded("ab", 5, Align::kLeft), "ab   ");
  EXPECT_EQ(padded("ab", 5, Align::kRight), "   ab");
  EXPECT_EQ(padded("ab", 5, Align::kCenter), " ab  ");
  EXPECT_EQ(padded("\u6771", 4, Align::kRight), "  \u6771");
  EXPECT_EQ(padded("abcdef", 3, Align::kLeft), "abcdef");
}

TEST(WidestWord, LooksAtEveryLine) {
  EXPECT_EQ(widestWord("a bcd\nefgh i"), 4U);
  EXPECT_EQ(widestWord(""), 0U);
}

}  // namespace
}  // namespace kova::engine
