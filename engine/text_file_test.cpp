#include "engine/text_file.h"

#include <gtest/gtest.h>

#include "engine/data_problem.h"
#include "tests/kit/scratch_folder.h"

namespace kova::engine {
namespace {

TEST(TextFile, ReadsAFileWhole) {
  const kit::ScratchFolder folder;
  const std::string text = std::string(100000, 'x') + std::string("\r\n\0y", 4);
  folder.write("t", text);
  EXPECT_EQ(readTextFile(folder.path("t")), text);
}

TEST(TextFile, LeavesOutAByteOrderMark) {
  const kit::ScratchFolder folder;
  folder.write("t", "\xEF\xBB\xBF{}");
  EXPECT_EQ(readTextFile(folder.path("t")), "{}");
}

TEST(TextFile, NamesAFileThatIsNotThere) {
  const kit::ScratchFolder folder;
  const std::string path = folder.path("none");
  try {
    readTextFile(path);
    FAIL() << "no problem";
  } catch (const DataProblem& problem) {
    EXPECT_EQ(std::string(problem.what()).find(path + ": expected a file that can be read, found "), 0U)
        << problem.what();
  }
}

TEST(TextFile, TellsAFolderFromAFile) {
  const kit::ScratchFolder folder;
  try {
    readTextFile(folder.path());
    FAIL() << "no problem";
  } catch (const DataProblem& problem) {
    EXPECT_EQ(std::string(problem.what()).find("a read error"), std::string::npos) << problem.what();
  }
}

TEST(TextFile, FindsWhatIsNotUtf8) {
  struct Row {
    const char* label;
    std::string text;
    std::size_t offset;
  };
  const Row rows[] = {
      {"plain", "abc", std::string::npos},
      {"two, three and four bytes", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x90\xA7", std::string::npos},
      {"a NUL byte", std::string("a\0b", 3), std::string::npos},
      {"a byte of another encoding", "caf\xE9", 3},
      {"a continuation alone", "a\x80", 1},
      {"overlong", "\xC0\xAF", 0},
      {"overlong, three bytes", "\xE0\x80\xAF", 0},
      {"a surrogate", "x\xED\xA0\x80", 1},
      {"beyond the last character", "\xF4\x90\x80\x80", 0},
      {"cut short", "ab\xE2\x82", 2},
      {"wrong third byte", "\xE2\x82x", 0},
  };
  for (const Row& row : rows) EXPECT_EQ(findInvalidUtf8(row.text), row.offset) << row.label;
}

TEST(TextFile, CountsRowsAndColumnsFromOne) {
  const std::string_view text = "ab\ncd\n";
  EXPECT_EQ(positionOf(text, 0).row, 1U);
  EXPECT_EQ(positionOf(text, 0).column, 1U);
  EXPECT_EQ(positionOf(text, 4).row, 2U);
  EXPECT_EQ(positionOf(text, 4).column, 2U);
  EXPECT_EQ(positionOf(text, 6).row, 3U);
  EXPECT_EQ(positionOf(text, 6).column, 1U);
}

TEST(DataProblem, IsOneLineWhateverItNames) {
  EXPECT_EQ(problemLine({"a\nb\x1B[2J.csv", 2, 3, "x\r\x7Fy"}, "one\tword", "\x1Ftwo"),
            "a?b?[2J.csv, row 2, column 3 (x??y): expected one?word, found ?two");
}

TEST(DataProblem, QuotesOnOneLine) {
  EXPECT_EQ(quotedText(""), "nothing");
  EXPECT_EQ(quotedText("a\nb\tc"), "\"a?b?c\"");
  EXPECT_EQ(quotedText(std::string(41, 'x')), "\"" + std::string(40, 'x') + "...\"");
  const std::string manyBytes = std::string(39, 'x') + "\xE2\x82\xAC";
  EXPECT_EQ(quotedText(manyBytes), "\"" + std::string(39, 'x') + "...\"") << "cut between characters";
}

}  // namespace
}  // namespace kova::engine
