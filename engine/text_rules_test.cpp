#include "engine/text_rules.h"

#include <gtest/gtest.h>

namespace kova::engine {
namespace {

TEST(TextRules, TellWhatIsWrongWithAName) {
  struct Row {
    const char* label;
    std::string name;
    NameFault fault;
  };
  const Row rows[] = {
      {"a letter", "x", NameFault::kNone},
      {"everything that may follow", "a1._$#@Z", NameFault::kNone},
      {"@ in front", "@x", NameFault::kNone},
      {"64 bytes", std::string(64, 'n'), NameFault::kNone},
      {"a letter beyond ASCII", "\u00E9t\u00E9", NameFault::kNone},
      {"another script", "\u5E74\u9F62", NameFault::kNone},
      {"the first letter beyond ASCII", "\u00AA", NameFault::kNone},
      {"a letter of four bytes", "\U00020000", NameFault::kNone},
      {"begins with a reserved word", "android", NameFault::kNone},
      {"empty", "", NameFault::kEmpty},
      {"65 bytes", std::string(65, 'n'), NameFault::kTooLong},
      {"33 letters of two bytes",
       "a" + std::string("\u00E9\u00E9\u00E9\u00E9\u00E9\u00E9\u00E9\u00E9") +
           "\u00E9\u00E9\u00E9\u00E9\u00E9\u00E9\u00E9\u00E9\u00E9\u00E9\u00E9\u00E9\u00E9"
           "\u00E9\u00E9\u00E9\u00E9\u00E9\u00E9\u00E9\u00E9\u00E9\u00E9\u00E9",
       NameFault::kTooLong},
      {"a digit in front", "1x", NameFault::kBadStart},
      {"a dollar sign in front", "$x", NameFault::kBadStart},
      {"an underscore in front", "_x", NameFault::kBadStart},
      {"a blank in front", " x", NameFault::kBadStart},
      {"a symbol in front", "\u20AC", NameFault::kBadStart},
      {"a blank", "a b", NameFault::kBadCharacter},
      {"a quote", "a\"b", NameFault::kBadCharacter},
      {"markup", "a<b>", NameFault::kBadCharacter},
      {"a NUL", std::string("a\0b", 3), NameFault::kBadCharacter},
      {"a space beyond ASCII", "a\u00A0b", NameFault::kBadCharacter},
      {"a multiplication sign", "a\u00D7", NameFault::kBadCharacter},
      {"a quotation mark beyond ASCII", "a\u2019s", NameFault::kBadCharacter},
      {"a picture", "a\U0001F427", NameFault::kBadCharacter},
      {"a comma of another script", "a\u060C", NameFault::kBadCharacter},
      {"a full stop of another script", "a\u0964", NameFault::kBadCharacter},
      {"a hyphen of another script", "a\u05BE", NameFault::kBadCharacter},
      {"a question mark of another script", "a\u037E", NameFault::kBadCharacter},
      {"a percent sign of another script", "a\u066A", NameFault::kBadCharacter},
      {"a space of another script", "a\u1361", NameFault::kBadCharacter},
      {"a format character", "a\u180E", NameFault::kBadCharacter},
      {"the last private character", "a\U0010FFFD", NameFault::kBadCharacter},
      {"no character at all", "a\U0010FFFF", NameFault::kBadCharacter},
      {"a mark in front", "\u0301", NameFault::kBadStart},
      {"a vowel sign in front", "\u093E\u0915", NameFault::kBadStart},
      {"a mark behind its letter", "e\u0301", NameFault::kNone},
      {"a vowel sign behind its letter", "\u0915\u093E", NameFault::kNone},
      {"a digit of another script", "a\u0661", NameFault::kNone},
      {"a period at the end", "a.", NameFault::kEndsInPeriod},
      {"a reserved word", "with", NameFault::kReserved},
      {"a reserved word in capitals", "ALL", NameFault::kReserved},
      {"a lone byte", "a\xE9", NameFault::kNotUtf8},
      {"an overlong form", "a\xC0\xAF", NameFault::kNotUtf8},
      {"a surrogate", "a\xED\xA0\x80", NameFault::kNotUtf8},
  };
  for (const Row& row : rows) EXPECT_EQ(faultOfVariableName(row.name), row.fault) << row.label;
}

TEST(TextRules, KnowEveryReservedWord) {
  for (const char* word : {"ALL", "AND", "BY", "EQ", "GE", "GT", "LE", "LT", "NE", "NOT", "OR", "TO", "WITH"}) {
    EXPECT_EQ(checkVariableName(word), ErrorCode::kNameReserved) << word;
    EXPECT_EQ(checkAttributeName(word), ErrorCode::kNone) << word;
    EXPECT_EQ(checkResponseSetName("$" + std::string(word)), ErrorCode::kNone) << word;
  }
}

TEST(TextRules, GiveEachFaultACode) {
  EXPECT_EQ(checkVariableName("a"), ErrorCode::kNone);
  EXPECT_EQ(checkVariableName(""), ErrorCode::kNameEmpty);
  EXPECT_EQ(checkVariableName(std::string(65, 'a')), ErrorCode::kNameTooManyBytes);
  EXPECT_EQ(checkVariableName("1"), ErrorCode::kNameBadStart);
  EXPECT_EQ(checkVariableName("a b"), ErrorCode::kNameBadCharacter);
  EXPECT_EQ(checkVariableName("a."), ErrorCode::kNameEndsInPeriod);
  EXPECT_EQ(checkVariableName("\xFF"), ErrorCode::kTextNotUtf8);
}

TEST(TextRules, ResponseSetsHaveADollarSignInFront) {
  EXPECT_EQ(checkResponseSetName("$a"), ErrorCode::kNone);
  EXPECT_EQ(checkResponseSetName("$" + std::string(63, 'a')), ErrorCode::kNone);
  EXPECT_EQ(checkResponseSetName("$" + std::string(64, 'a')), ErrorCode::kNameTooManyBytes);
  EXPECT_EQ(checkResponseSetName(""), ErrorCode::kNameEmpty);
  EXPECT_EQ(checkResponseSetName("a"), ErrorCode::kNameBadStart);
  EXPECT_EQ(checkResponseSetName("$"), ErrorCode::kNameBadStart);
  EXPECT_EQ(checkResponseSetName("$1"), ErrorCode::kNameBadStart);
  EXPECT_EQ(checkResponseSetName("$a b"), ErrorCode::kNameBadCharacter);
}

TEST(TextRules, NamesDifferInMoreThanTheCaseOfAToZ) {
  EXPECT_TRUE(sameName("aZ9_", "Az9_"));
  EXPECT_FALSE(sameName("a", "ab"));
  EXPECT_FALSE(sameName("\u00E9", "\u00C9")) << "letters beyond ASCII have no case here";
  EXPECT_FALSE(sameName("[", "{")) << "these differ in the bit that is the case of letters";
  EXPECT_EQ(NameHash()("Name"), NameHash()("nAME"));
}

TEST(TextRules, TextsAreUtf8WithoutNul) {
  EXPECT_EQ(checkText(""), ErrorCode::kNone);
  EXPECT_EQ(checkText("line\n\u20AC"), ErrorCode::kNone);
  EXPECT_EQ(checkText(std::string("a\0", 2)), ErrorCode::kTextWithNul);
  EXPECT_EQ(checkText("\x80"), ErrorCode::kTextNotUtf8);
}

TEST(TextRules, BlanksAtTheEndMeanNothing) {
  EXPECT_EQ(withoutEndBlanks(" a b  "), " a b");
  EXPECT_EQ(withoutEndBlanks("   "), "");
  EXPECT_EQ(withoutEndBlanks(""), "");
}

}  // namespace
}  // namespace kova::engine
