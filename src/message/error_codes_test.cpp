// The table of error codes: no number and no name twice, texts that fit on a line, and the same table in the document.
#include "message/error_codes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <string>
#include <vector>

namespace kova {
namespace {

struct Definition {
  int code;
  std::string name;
  std::string happened;
  std::string advice;
};

const Definition kDefinitions[] = {
#define KOVA_ERROR(code, name, happened, advice) {code, #name, happened, advice},
#include "message/error_codes.def"
#undef KOVA_ERROR
};

bool isSentenceOnOneLine(const std::string& text) {
  return text.size() > 1 && text.back() == '.' && text.find_first_of("\r\n|\t") == std::string::npos;
}

TEST(ErrorCodes, EachIsFoundByItsNumber) {
  std::set<std::string> names;
  for (const Definition& row : kDefinitions) {
    EXPECT_EQ(errorName(row.code), row.name);
    EXPECT_EQ(errorMeaning(row.code), row.happened) << row.name;
    EXPECT_EQ(errorAdvice(row.code), row.advice) << row.name;
    EXPECT_TRUE(isSentenceOnOneLine(row.happened)) << row.name;
    EXPECT_TRUE(isSentenceOnOneLine(row.advice)) << row.name;
    EXPECT_TRUE(names.insert(row.name).second) << row.name;
  }
}

TEST(ErrorCodes, OthersHaveNoTexts) {
  for (const int code : {-1, 7, 98000, 99105, 2147483647, static_cast<int>(0x80000000U)}) {
    EXPECT_STREQ(errorName(code), "") << code;
    EXPECT_STREQ(errorMeaning(code), "") << code;
    EXPECT_STREQ(errorAdvice(code), "") << code;
  }
}

// The numbers that callers have in their programs, once more.
TEST(ErrorCodes, KeepTheirNumbers) {
  struct Row {
    int code;
    const char* name;
  };
  const Row rows[] = {
      {0, "None"},
      {8, "NotEnoughMemory"},
      {10, "IndexOutOfRange"},
      {17, "EngineNotStarted"},
      {24, "WrongKind"},
      {56, "CellIsText"},
      {57, "CellIsNumber"},
      {109, "PipeBroken"},
      {232, "PipeClosing"},
      {535, "PipeConnected"},
      {1900, "BatchUsedUp"},
      {98001, "UnknownCommand"},
      {98002, "CommandNotAnswered"},
      {98003, "MalformedRequest"},
      {98004, "NoActiveDataSet"},
      {98005, "SyntaxNotCarriedOut"},
      {98006, "OutOfMemory"},
      {98007, "InternalFailure"},
      {99103, "EmptyMessage"},
      {99104, "PipeOperationFailed"},
      {99106, "PipeNameMissing"},
      {99107, "ChildNotRunning"},
      {99114, "RuntimeNotLoaded"},
      {99115, "HostNotStarted"},
      {99116, "RunnerNotStarted"},
      {99118, "NoLibraryName"},
      {99119, "UnknownControlCommand"},
      {99120, "LanguageNotSupported"},
      {99121, "SocketNotAccepted"},
      {99122, "SocketFailed"},
      {99123, "JavaNotRunning"},
      {999988, "PythonSetUpFailed"},
  };
  for (const Row& row : rows) EXPECT_STREQ(errorName(row.code), row.name) << row.code;
}

// The rows of the tables below the heading "Error codes", up to the next heading of that level.
std::vector<std::string> documentedRows() {
  std::ifstream document(KOVA_SOURCE_DIR "/docs/kovadx.md");
  std::vector<std::string> rows;
  bool inSection = false;
  for (std::string line; std::getline(document, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.rfind("## ", 0) == 0) inSection = line == "## Error codes";
    if (inSection && line.size() > 2 && line[0] == '|' && line[2] >= '0' && line[2] <= '9') rows.push_back(line);
  }
  return rows;
}

TEST(ErrorCodes, TheDocumentHasTheSameTable) {
  std::vector<std::string> expected;
  for (const Definition& row : kDefinitions) {
    expected.push_back("| " + std::to_string(row.code) + " | " + row.name + " | " + row.happened + " | " + row.advice +
                       " |");
  }
  const auto found = documentedRows();
  EXPECT_EQ(found.size(), expected.size());
  for (const std::string& row : expected) {
    EXPECT_NE(std::find(found.begin(), found.end(), row), found.end()) << "docs/kovadx.md lacks: " << row;
  }
  for (const std::string& row : found) {
    EXPECT_NE(std::find(expected.begin(), expected.end(), row), expected.end()) << "no such code: " << row;
  }
}

}  // namespace
}  // namespace kova
