#include "platform/win32/command_line_win32.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/os/environment.h"

namespace kova::os {
namespace {

struct QuotingRow {
  const char* label;
  std::string argument;
  std::string inLine;
};

const QuotingRow kQuotingRows[] = {
    {"plain", "plain", "plain"},
    {"empty", "", R"("")"},
    {"blank", "two words", R"("two words")"},
    {"tab", "a\tb", "\"a\tb\""},
    {"quote", R"(say "it")", R"("say \"it\"")"},
    {"backslash", R"(a\b)", R"(a\b)"},
    {"backslash at the end", R"(a\)", R"(a\)"},
    {"backslash before the closing quote", R"(a b\)", R"("a b\\")"},
    {"backslashes before a quote", R"(a\\"b)", R"("a\\\\\"b")"},
    {"quote alone", R"(")", R"("\"")"},
};

TEST(CommandLine, QuotesEachArgumentByNeed) {
  for (const QuotingRow& row : kQuotingRows) {
    EXPECT_EQ(commandLine("x", {row.argument}), "\"x\" " + row.inLine) << row.label;
  }
}

TEST(CommandLine, BeginsWithTheProgramAsItIs) {
  EXPECT_EQ(commandLine(R"(C:\Program Files\x.exe)", {}), R"("C:\Program Files\x.exe")");
}

TEST(ProgramFile, IsFoundByNameAndWithoutItsExtension) {
  const std::string found = programFile("cmd");
  EXPECT_NE(found.find('\\'), std::string::npos) << found;
  EXPECT_EQ(programFile(found.substr(0, found.size() - 4)), found) << "a path is completed too";
  EXPECT_EQ(programFile("kova_no_such_program"), "kova_no_such_program");
}

// The entries of a block, each as one text.
std::vector<std::wstring> entriesOf(const std::wstring& block) {
  std::vector<std::wstring> entries;
  for (std::size_t begin = 0; begin < block.size() && block[begin] != L'\0';) {
    entries.emplace_back(block.c_str() + begin);
    begin += entries.back().size() + 1;
  }
  return entries;
}

bool contains(const std::vector<std::wstring>& entries, const std::wstring& wanted) {
  for (const std::wstring& entry : entries) {
    if (entry == wanted) return true;
  }
  return false;
}

TEST(EnvironmentBlock, HoldsThisEnvironmentWithTheChanges) {
  SetEnvironment("KOVA_BLOCK_KEPT", "kept");
  SetEnvironment("KOVA_BLOCK_CHANGED", "before");
  SetEnvironment("KOVA_BLOCK_GONE", "before");
  const std::wstring block = environmentBlock({{"kova_block_changed", "after"}, {"KOVA_BLOCK_GONE", ""}, {"A", "=1"}});
  const std::vector<std::wstring> entries = entriesOf(block);
  EXPECT_TRUE(contains(entries, L"KOVA_BLOCK_KEPT=kept"));
  EXPECT_TRUE(contains(entries, L"kova_block_changed=after")) << "names are the same in upper and lower case";
  EXPECT_FALSE(contains(entries, L"KOVA_BLOCK_CHANGED=before"));
  EXPECT_FALSE(contains(entries, L"KOVA_BLOCK_GONE=before"));
  EXPECT_TRUE(contains(entries, L"A==1"));
  EXPECT_EQ(block.substr(block.size() - 2), std::wstring(2, L'\0')) << "an empty entry ends it";
  for (const char* name : {"KEPT", "CHANGED", "GONE"}) SetEnvironment(std::string("KOVA_BLOCK_") + name, "");
}

}  // namespace
}  // namespace kova::os
