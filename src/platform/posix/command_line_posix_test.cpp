#include "platform/posix/command_line_posix.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kova::os {
namespace {

struct SplittingRow {
  const char* label;
  std::string text;
  std::vector<std::string> arguments;
};

const SplittingRow kSplittingRows[] = {
    {"nothing", "", {}},
    {"blanks alone", " \t ", {}},
    {"one", "one", {"one"}},
    {"a blank first", " one two", {"one", "two"}},
    {"blanks and tabs between", "one \t two\tthree  ", {"one", "two", "three"}},
    {"quoted", R"(a "two words" b)", {"a", "two words", "b"}},
    {"a tab between quotes", "\"a\tb\"", {"a\tb"}},
    {"quotes within an argument", R"(a" "b)", {"a b"}},
    {"quotes back to back", R"("a""b" c)", {"ab", "c"}},
    {"an empty one", R"("")", {""}},
    {"an empty one between others", R"(a "" b)", {"a", "", "b"}},
    {"a quote that nothing closes", R"(a "b c)", {"a", "b c"}},
    {"a backslash", R"(a\b \c d\)", {R"(a\b)", R"(\c)", R"(d\)"}},
    {"two backslashes", R"(a\\b)", {R"(a\\b)"}},
    {"a backslash before a blank", R"(a\ b)", {R"(a\)", "b"}},
    {"a backslash before a quote", R"(say \"it\")", {"say", R"("it")"}},
    {"a quote that stands for itself between quotes", R"("say \"it\" now")", {R"(say "it" now)"}},
    {"two backslashes before a quote", R"("a b\\" c)", {R"(a b\)", "c"}},
    {"three backslashes before a quote", R"(a\\\"b c)", {R"(a\"b)", "c"}},
    {"four backslashes before a quote", R"(a\\\\"b c")", {R"(a\\b c)"}},
    {"other bytes", "\xC3\xA4\n'x' $HOME *", {"\xC3\xA4\n'x'", "$HOME", "*"}},
};

TEST(SplitCommandLine, TakesATextApart) {
  for (const SplittingRow& row : kSplittingRows) EXPECT_EQ(splitCommandLine(row.text), row.arguments) << row.label;
}

}  // namespace
}  // namespace kova::os
