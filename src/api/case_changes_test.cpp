// What the case cursor sends back, and how it ends.
#include <limits>
#include <optional>

#include "tests/api/case_engine.h"

namespace {

using kova::WireImage;
using testing::ElementsAre;

constexpr int kMost = std::numeric_limits<int>::max();

class CaseChanges : public kova::CaseClientTest {
 protected:
  // The current case's number; none without one.
  static std::optional<double> Number() {
    double value = 0;
    return GetNumericValue(0, &value, nullptr) == 0 ? std::optional(value) : std::nullopt;
  }
};

// ---- Writing.

TEST_F(CaseChanges, NewValuesGoInTheirOrderAndOnce) {
  Serve();
  SetValueNumeric("mass", 1.5);
  SetValueChar("sex", "f");
  SetValueNumeric("mass", 2.5);
  SetValueChar("note", "");
  SetValueNumeric(nullptr, 9);
  SetValueChar(nullptr, "x");
  SetValueChar("x", nullptr);
  EXPECT_EQ(CommitNewCase(), 0);
  EXPECT_EQ(CommitNewCase(), 0);
  const WireImage first{
      .code = 93, .doubles = {1.5, 2.5}, .texts = {"mass", "mass"}, .lists = {{"sex", "note"}, {"f", ""}}};
  const WireImage second{.code = 93, .lists = {{}, {}}};
  EXPECT_THAT(Requests(), ElementsAre(first.bytes(), second.bytes()));
}

TEST_F(CaseChanges, NewValuesStayWhenTheCommitFails) {
  refused = 93;
  Serve();
  SetValueNumeric("mass", 1.5);
  EXPECT_EQ(CommitNewCase(), 55);
  refused = 0;
  EXPECT_EQ(CommitNewCase(), 0);
  EXPECT_EQ(Requests()[0], Requests()[1]);
  EXPECT_EQ(CommitNewCase(), 0);
  EXPECT_NE(Requests()[1], Requests()[2]);
}

TEST_F(CaseChanges, NewValuesNeedARunningEngine) {
  Serve();
  SetKovaRunning(false);
  EXPECT_EQ(SetValueNumeric("mass", 1), 17);
  EXPECT_EQ(SetValueChar("sex", "f"), 17);
  SetKovaRunning(true);
  EXPECT_EQ(CommitNewCase(), 0);
  EXPECT_THAT(Requests(), ElementsAre((WireImage{.code = 93, .lists = {{}, {}}}).bytes()));
}

TEST_F(CaseChanges, TheChangedCaseTakesThePlaceOfTheBatch) {
  types = {0};
  batches = {Batch(0, 1, Numbers({1})), Batch(0, 1, Numbers({2}))};
  others[92] = {.longs = {1}, .block = Numbers({4.5})};
  Serve();
  MakeCaseCursor("w");
  NextCase();
  SetValueNumeric("mass", 4.5);
  EXPECT_EQ(CommitCaseRecord(), 0);
  EXPECT_THAT(LongsOf(Codes().size() - 1), ElementsAre(1, 8));
  EXPECT_EQ(Number(), 4.5);
  EXPECT_EQ(NextCase(), 0);
  EXPECT_EQ(Codes().back(), 227);
  EXPECT_EQ(Number(), 2.0);
}

TEST_F(CaseChanges, AChangedCaseThatDoesNotComeLeavesNone) {
  types = {0, 0};
  others[92] = {.longs = {1}, .block = Numbers({4.5})};
  Serve();
  MakeCaseCursor("r");
  batches = {Batch(0, 2, Numbers({1, 2, 3, 4}))};
  NextCase();
  EXPECT_EQ(CommitCaseRecord(), 0) << "less than a case";
  EXPECT_THAT(LongsOf(Codes().size() - 1), ElementsAre(1310720, 16));
  EXPECT_EQ(Number(), std::nullopt);
  batches = {Batch(0, 2, Numbers({1, 2, 3, 4}))};
  EXPECT_EQ(NextCase(), 0);
  refused = 92;
  EXPECT_EQ(CommitCaseRecord(), 55);
  EXPECT_EQ(Number(), 1.0) << "a refusal leaves all as it was";
}

TEST_F(CaseChanges, ANullListAddsNoItem) {
  Serve();
  EXPECT_EQ(CommitManyCases(nullptr, nullptr, 5, 1, 2, nullptr), 0);
  EXPECT_EQ(CommitManyCases("ds", "", -5, 1, -2, &kMost), 0);
  EXPECT_EQ(SetVarNameAndType(nullptr, nullptr, 2), 0);
  EXPECT_THAT(Requests(),
              ElementsAre((WireImage{.code = 220, .longs = {1, 2}}).bytes(),
                          (WireImage{.code = 220, .longs = {1, -2}, .texts = {"ds"}, .longLists = {{}}}).bytes(),
                          (WireImage{.code = 80, .longs = {2}}).bytes()));
}

TEST_F(CaseChanges, ManyVariablesAreNamedInOneRequest) {
  Serve();
  const char* const names[] = {"a", "b"};
  const int widths[] = {0, 9};
  EXPECT_EQ(SetVarNameAndType(names, widths, 2), 0);
  EXPECT_THAT(Requests(), ElementsAre((WireImage{.code = 80, .longs = {2, 0, 9}, .texts = {"a", "b"}}).bytes()));
}

// ---- Its end.

TEST_F(CaseChanges, AResetDropsTheCursorAndKeepsTheNewValues) {
  types = {0};
  Serve();
  for (const bool refuses : {false, true}) {
    MakeCaseCursor("r");
    SetValueNumeric("mass", 1);
    refused = refuses ? 120 : 0;
    EXPECT_EQ(ResetDataPass(), refuses ? 55 : 0);
    EXPECT_EQ(NextCase(), 0);
    EXPECT_EQ(Codes().back(), 27);
    CommitNewCase();
    EXPECT_EQ(Requests().back(), (WireImage{.code = 93, .doubles = {1}, .texts = {"mass"}, .lists = {{}, {}}}).bytes());
  }
}

TEST_F(CaseChanges, ARemovalDropsTheCursorAndTheNewValues) {
  types = {0};
  Serve();
  for (const bool refuses : {false, true}) {
    MakeCaseCursor("r");
    SetValueNumeric("mass", 1);
    SetValueChar("sex", "f");
    refused = refuses ? 28 : 0;
    EXPECT_EQ(RemoveCaseCursor(), refuses ? 55 : 0);
    EXPECT_EQ(NextCase(), 0);
    EXPECT_EQ(Codes().back(), 27);
    CommitNewCase();
    EXPECT_EQ(Requests().back(), (WireImage{.code = 93, .lists = {{}, {}}}).bytes());
  }
}

TEST_F(CaseChanges, NothingIsDroppedWithoutAnEngineRunning) {
  types = {0};
  batches = {Batch(0, 1, Numbers({1}))};
  Serve();
  MakeCaseCursor("r");
  NextCase();
  SetKovaRunning(false);
  EXPECT_EQ(ResetDataPass(), 17);
  EXPECT_EQ(RemoveCaseCursor(), 17);
  EXPECT_EQ(IsEndSplit(nullptr), 17);
  SetKovaRunning(true);
  EXPECT_EQ(Number(), 1.0);
}

}  // namespace
