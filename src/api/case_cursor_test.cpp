// The case cursor: which requests it sends and which not, and what it makes of good and bad batches.
#include <limits>
#include <utility>

#include "tests/api/case_engine.h"

namespace {

using kova::CaseClientTest;
using kova::WireImage;
using testing::ElementsAre;

constexpr int kMost = std::numeric_limits<int>::max();
constexpr int kUntouched = -77;

class CaseCursor : public CaseClientTest {
 protected:
  // The code, and the value where it is 0.
  std::pair<int, double> Number(int index) {
    double value = kUntouched;
    int isMissing = kUntouched;
    const int code = GetNumericValue(index, &value, &isMissing);
    EXPECT_EQ(code == 0, isMissing != kUntouched);
    return {code, value};
  }
};

std::pair<int, double> good(double value) { return {0, value}; }
std::pair<int, double> bad(int code) { return {code, kUntouched}; }

// ---- Making the cursor.

TEST_F(CaseCursor, IsMadeOfTheVariablesTypesAndMissingValues) {
  types = {0, 12, 0};
  Serve();
  EXPECT_EQ(MakeCaseCursor("r"), 0);
  EXPECT_THAT(Codes(), ElementsAre(33, 104, 109, 32, 109, 31, 109, 32));
  EXPECT_THAT(LongsOf(2), ElementsAre(0));
  EXPECT_THAT(LongsOf(5), ElementsAre(1));
  EXPECT_THAT(LongsOf(7), ElementsAre(2));
}

TEST_F(CaseCursor, MissingValuesComeFromTheEngine) {
  types = {0, 12};
  missingNumbers = {.longs = {-3}, .doubles = {1, 3, -9}};
  missingTexts = {.longs = {1}, .texts = {"AB"}};
  batches = {Batch(0, 4, Numbers({2}) + "AB          ", Numbers({4}) + "AB         x", Numbers({-9}) + "x           ",
                   Numbers({std::bit_cast<double>(kova::kSystemMissingBits)}) + "            ")};
  Serve();
  MakeCaseCursor("r");
  const int expected[][2] = {{1, 1}, {0, 0}, {1, 0}, {2, 0}};
  for (const auto& [number, text] : expected) {
    EXPECT_EQ(NextCase(), 0);
    double value = 0;
    char buffer[13] = "";
    char* place = buffer;
    int isMissing = kUntouched;
    EXPECT_EQ(GetNumericValue(0, &value, &isMissing), 0);
    EXPECT_EQ(isMissing, number) << value;
    EXPECT_EQ(GetStringValue(1, &place, 0, &isMissing), 0);
    EXPECT_EQ(isMissing, text) << buffer;
  }
}

struct BatchSizeRow {
  const char* label;
  const char* mode;
  int access;
  std::vector<int> types;
  int cases;
  int caseSize;
};

TEST_F(CaseCursor, AsksForTwentyMebibytesOrForOneCase) {
  const BatchSizeRow rows[] = {
      {"r reads", "r", 0, {0}, 2621440, 8},
      {"R reads", "R", 0, {0}, 2621440, 8},
      {"w takes one", "w", 1, {0}, 1, 8},
      {"W takes one", "W", 1, {0}, 1, 8},
      {"two letters", "rr", 2, {0}, 1, 8},
      {"another letter", "a", 2, {0}, 1, 8},
      {"an empty mode", "", 2, {0}, 1, 8},
      {"no mode", nullptr, 2, {0}, 1, 8},
      {"no variables", "r", 0, {}, 1, 0},
      {"width 1", "r", 0, {1}, 2621440, 8},
      {"width 8", "r", 0, {8}, 2621440, 8},
      {"width 9", "r", 0, {9}, 1310720, 16},
      {"width 32767", "r", 0, {32767}, 640, 32768},
      {"all of them", "r", 0, {0, 1, 8, 9, 32767}, 639, 32808},
      {"half a batch", "r", 0, {10485760}, 2, 10485760},
      {"nearly a batch", "r", 0, {20971512}, 1, 20971512},
      {"a batch", "r", 0, {20971520}, 1, 20971520},
      {"more than a batch", "r", 0, {20971521}, 1, 20971528},
      {"a negative type", "r", 0, {-5}, 2621440, 8},
  };
  Serve();
  for (const BatchSizeRow& row : rows) {
    SCOPED_TRACE(row.label);
    types = row.types;
    EXPECT_EQ(MakeCaseCursor(row.mode), 0);
    EXPECT_EQ(kova::ClientCursor()->GetAccessType(), row.access);
    EXPECT_EQ(NextCase(), 23);
    EXPECT_EQ(Codes().back(), 227);
    EXPECT_THAT(LongsOf(Codes().size() - 1), ElementsAre(row.cases, row.caseSize));
  }
}

TEST_F(CaseCursor, ACaseThatNoMessageHoldsIsRefused) {
  types = {kMost, kMost};
  Serve();
  EXPECT_EQ(MakeCaseCursor("r"), 13);
  EXPECT_EQ(kova::ClientCursor(), nullptr);
}

TEST_F(CaseCursor, AFailingQuestionLeavesTheEarlierCursor) {
  types = {0, 8};
  for (const int code : {33, 104, 109, 32, 31}) {
    SCOPED_TRACE(code);
    EndConversation();
    batches = {Batch(0, 1, Numbers({4.5}) + "text    ")};
    refused = 0;
    Serve();
    EXPECT_EQ(MakeCaseCursor("r"), 0);
    EXPECT_EQ(NextCase(), 0);
    refused = code;
    EXPECT_EQ(MakeCaseCursor("r"), 55);
    EXPECT_EQ(Codes().back(), code);
    EXPECT_EQ(Number(0), good(4.5));
    kova::DropClientCursor();
    EXPECT_EQ(MakeCaseCursor("r"), 55);
    EXPECT_EQ(kova::ClientCursor(), nullptr);
  }
}

// No other code would tell of an answer that was cut short, and the cursor would have a layout that the data have not.
TEST_F(CaseCursor, AnAnswerCutShortMakesNoCursor) {
  Serve();
  cutsAt = WireImage{}.bytes().size();
  EXPECT_EQ(MakeCaseCursor("r"), 109) << "the number of variables";
  EXPECT_THAT(Codes(), ElementsAre(33, 104));
  EXPECT_EQ(kova::ClientCursor(), nullptr);
}

TEST_F(CaseCursor, ASecondOneReplacesTheFirst) {
  types = {0};
  batches = {Batch(0, 1, Numbers({4.5}))};
  Serve();
  MakeCaseCursor("r");
  NextCase();
  types = {8};
  EXPECT_EQ(MakeCaseCursor("r"), 0);
  EXPECT_EQ(Number(0), bad(24));
}

// ---- Reading.

TEST_F(CaseCursor, ValuesAndCasesOfABatchCostNoRequest) {
  types = {0, 8};
  batches = {Batch(0, 2, Numbers({1}) + "one     ", Numbers({2}) + "two     "),
             Batch(23, 1, Numbers({3}) + "three   ")};
  Serve();
  MakeCaseCursor("r");
  EXPECT_THAT(Codes(), ElementsAre(33, 104, 109, 32, 109, 31));
  EXPECT_EQ(NextCase(), 0);
  EXPECT_EQ(NextCase(), 0);
  EXPECT_EQ(Number(0), good(2));
  EXPECT_EQ(Codes().size(), 7u);
  EXPECT_EQ(NextCase(), 0);
  EXPECT_EQ(Number(0), good(3));
  EXPECT_EQ(Codes().size(), 8u);
  EXPECT_EQ(NextCase(), 23) << "kept from the batch";
  EXPECT_EQ(Codes().size(), 8u);
  EXPECT_EQ(NextCase(), 23) << "asked for anew";
  EXPECT_EQ(Codes().size(), 9u);
}

TEST_F(CaseCursor, ThereAreNoValuesBeforeTheFirstCaseAndBehindTheLast) {
  types = {0, 8};
  batches = {Batch(23, 1, Numbers({1}) + "one     ")};
  Serve();
  char buffer[9] = "--------";
  char* place = buffer;
  int isMissing = kUntouched;
  MakeCaseCursor("r");
  EXPECT_EQ(Number(0), bad(1900));
  EXPECT_EQ(GetStringValue(1, &place, 8, &isMissing), 1900);
  NextCase();
  EXPECT_EQ(Number(0), good(1));
  EXPECT_EQ(NextCase(), 23);
  EXPECT_EQ(Number(0), bad(1900));
  EXPECT_EQ(GetStringValue(1, &place, 8, &isMissing), 1900);
  EXPECT_STREQ(buffer, "--------");
  EXPECT_EQ(isMissing, kUntouched);
}

TEST_F(CaseCursor, ValuesHaveErrors) {
  types = {0, 8};
  batches = {Batch(0, 1, Numbers({1}) + "one     ")};
  Serve();
  MakeCaseCursor("r");
  NextCase();
  const std::size_t requests = Codes().size();
  char buffer[9] = "";
  char* place = buffer;
  EXPECT_EQ(Number(2), bad(10));
  EXPECT_EQ(Number(-1), bad(10));
  EXPECT_EQ(Number(kMost), bad(10));
  EXPECT_EQ(Number(std::numeric_limits<int>::min()), bad(10));
  EXPECT_EQ(Number(1), bad(24));
  EXPECT_EQ(GetStringValue(2, &place, 8, nullptr), 10);
  EXPECT_EQ(GetStringValue(-1, &place, 8, nullptr), 10);
  EXPECT_EQ(GetStringValue(0, &place, 8, nullptr), 24);
  EXPECT_EQ(GetStringValue(1, &place, 0, nullptr), 0);
  EXPECT_STREQ(buffer, "one     ");
  EXPECT_EQ(GetStringValue(1, nullptr, 8, nullptr), 0);
  EXPECT_EQ(GetNumericValue(0, nullptr, nullptr), 0);
  SetKovaRunning(false);
  EXPECT_EQ(Number(0), bad(17));
  EXPECT_EQ(NextCase(), 17);
  EXPECT_EQ(Codes().size(), requests);
}

struct EndRow {
  const char* label;
  WireImage reply;
  std::vector<int> codes;  // Of four calls of NextCase; the engine has no further case than those of the reply.
};

TEST_F(CaseCursor, EndsAsTheEngineTells) {
  const std::string cases = Numbers({1, 2, 3, 4});
  const EndRow rows[] = {
      {"no end, cases", {.longs = {2}, .block = cases}, {0, 0, 23, 23}},
      {"no end, a count of 0", {.longs = {0}, .block = cases}, {0, 23, 23, 23}},
      {"no end, a negative count", {.longs = {-3}, .block = cases}, {0, 23, 23, 23}},
      {"no end, no block", {.longs = {2}}, {0, 23, 23, 23}},
      {"no end, nothing", {}, {0, 23, 23, 23}},
      {"end of group, cases", {.error = 67, .longs = {2}, .block = cases}, {0, 0, 67, 23}},
      {"end of group, a count of 0", {.error = 67, .longs = {0}, .block = cases}, {67, 23, 23, 23}},
      {"end of group, a negative count", {.error = 67, .longs = {-1}, .block = cases}, {67, 23, 23, 23}},
      {"end of group, no block", {.error = 67, .longs = {2}}, {67, 23, 23, 23}},
      {"end of group, nothing", {.error = 67}, {67, 23, 23, 23}},
      {"end, cases", {.error = 23, .longs = {2}, .block = cases}, {0, 0, 23, 23}},
      {"end, no block", {.error = 23, .longs = {2}}, {23, 23, 23, 23}},
      {"more cases than sent", {.longs = {5}, .block = cases.substr(0, 16)}, {0, 23, 23, 23}},
      {"the largest count", {.longs = {kMost}, .block = cases}, {0, 0, 23, 23}},
      {"a part of a case", {.longs = {2}, .block = cases.substr(0, 24)}, {0, 23, 23, 23}},
      {"less than a case", {.longs = {1}, .block = cases.substr(0, 8)}, {0, 23, 23, 23}},
      {"less than a case at the end", {.error = 67, .longs = {1}, .block = cases.substr(0, 8)}, {67, 23, 23, 23}},
      {"another code", {.error = 55, .longs = {2}, .block = cases}, {55, 23, 23, 23}},
  };
  types = {0, 0};
  Serve();
  for (const EndRow& row : rows) {
    SCOPED_TRACE(row.label);
    MakeCaseCursor("r");
    batches = {row.reply};
    std::vector<int> codes;
    for (int i = 0; i < 4; ++i) {
      const bool hadCase = NextCaseInto(codes) && row.reply.longs.size() == 1 && Number(0).first == 0;
      EXPECT_EQ(Number(0).first, hadCase ? 0 : 1900);
    }
    EXPECT_EQ(codes, row.codes);
  }
}

TEST_F(CaseCursor, ACodeWithoutCasesLeavesNoData) {
  types = {0};
  batches = {WireImage{.longs = {3}}};
  Serve();
  MakeCaseCursor("r");
  EXPECT_EQ(NextCase(), 0);
  EXPECT_FALSE(kova::ClientCursor()->HasData());
  EXPECT_EQ(Number(0), bad(1900));
}

TEST_F(CaseCursor, CasesOfDataWithoutVariablesAreCounted) {
  batches = {WireImage{.longs = {1}}, WireImage{.longs = {1}}};
  Serve();
  MakeCaseCursor("r");
  EXPECT_EQ(NextCase(), 0);
  EXPECT_EQ(NextCase(), 0);
  EXPECT_EQ(NextCase(), 23);
  EXPECT_EQ(Number(0), bad(10));
}

TEST_F(CaseCursor, WideTextsCrossWhole) {
  types = {9, 32767};
  const std::string text(32767, 'z');
  batches = {Batch(0, 1, "123456789       " + text + " ")};
  Serve();
  MakeCaseCursor("r");
  NextCase();
  std::string buffer(32767, '-');
  char* place = buffer.data();
  EXPECT_EQ(GetStringValue(0, &place, 9, nullptr), 0);
  EXPECT_EQ(buffer.substr(0, 10), "123456789-");
  EXPECT_EQ(GetStringValue(1, &place, 32767, nullptr), 0);
  EXPECT_EQ(buffer, text);
}

TEST_F(CaseCursor, AnEngineThatDiesLeavesNoCase) {
  types = {0};
  batches = {Batch(0, 1, Numbers({1}))};
  Serve();
  MakeCaseCursor("r");
  NextCase();
  cutsAt = 0;
  EXPECT_EQ(NextCase(), 109);
  EXPECT_EQ(Number(0), bad(1900));
  EXPECT_EQ(KovaLastReceiveStatus(), 109);
}

TEST_F(CaseCursor, ABatchThatCanNotBeAskedForEndsAtOnce) {
  types = {0};
  Serve();
  MakeCaseCursor("r");
  const std::size_t requests = Codes().size();
  kova::fake::fail("WriteMessage", 232);
  EXPECT_EQ(NextCase(), 99104) << "without waiting for a reply";
  EXPECT_EQ(Codes().size(), requests);
}

TEST_F(CaseCursor, WithoutAnEngineItEndsAfterTwentyAttempts) {
  types = {0};
  Serve();
  MakeCaseCursor("r");
  EndConversation();
  const std::uint64_t start = kova::fake::elapsedMs();
  EXPECT_EQ(NextCase(), 99104);
  EXPECT_EQ(kova::fake::elapsedMs() - start, 2000u);
}

// ---- The end of a split group.

TEST_F(CaseCursor, TheEndOfAGroupIsAskedForOnlyWithoutCases) {
  types = {0};
  batches = {Batch(67, 2, Numbers({1, 2}))};
  others[95] = {.longs = {1}};
  Serve();
  int isEnd = kUntouched;
  EXPECT_EQ(IsEndSplit(&isEnd), 0);
  EXPECT_EQ(isEnd, 1);
  MakeCaseCursor("r");
  isEnd = kUntouched;
  EXPECT_EQ(IsEndSplit(&isEnd), 0) << "before the first batch";
  EXPECT_EQ(isEnd, 1);
  NextCase();
  NextCase();
  const std::size_t requests = Codes().size();
  EXPECT_EQ(IsEndSplit(&isEnd), 0);
  EXPECT_EQ(isEnd, 0) << "at the last case";
  EXPECT_EQ(IsEndSplit(nullptr), 0);
  EXPECT_EQ(Codes().size(), requests);
  EXPECT_EQ(NextCase(), 67);
  EXPECT_EQ(IsEndSplit(&isEnd), 0);
  EXPECT_EQ(isEnd, 1);
  EXPECT_EQ(Codes().size(), requests + 1);
  EXPECT_EQ(Codes().back(), 95);
}

struct SplitRow {
  int error;
  int code;
  int isEnd;
};

TEST_F(CaseCursor, TheCodeOfAnEndOfGroupIsAnAnswer) {
  Serve();
  for (const SplitRow& row : {SplitRow{67, 0, 5}, SplitRow{23, 23, kUntouched}, SplitRow{55, 55, kUntouched}}) {
    others[95] = {.error = row.error, .longs = {5}};
    int isEnd = kUntouched;
    EXPECT_EQ(IsEndSplit(&isEnd), row.code);
    EXPECT_EQ(isEnd, row.isEnd) << row.error;
  }
}

}  // namespace
