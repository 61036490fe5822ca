// Data sets created and closed, and changes of cells that travel together: what is asked of the engine, in which order.
#include "tests/api/data_set_test.h"

namespace {

using kova::WireImage;
using testing::ElementsAre;
using testing::IsEmpty;

class DataSets : public kova::DataSetTest {
 protected:
  static const std::vector<std::string>& Created() { return kova::TheDataSetCaches().created.names(); }
  static std::size_t Pending() { return kova::TheDataSetCaches().pending.cells().size(); }
};

TEST_F(DataSets, CreatingOneAsksForItsCountsAndRemembersIt) {
  Serve();
  EXPECT_EQ(CreateDataset("new", 1, 0), 0);
  EXPECT_THAT(Asked(), ElementsAre(134, 180, 148));
  EXPECT_THAT(Created(), ElementsAre("new"));
  EXPECT_EQ(LastRequest(), (WireImage{.code = 148, .texts = {"new"}}.bytes()));
}

TEST_F(DataSets, CreatingOneWithoutANameTakesThatOfTheActiveOne) {
  answers_[137] = {.texts = {"active"}};
  Serve();
  for (const char* const name : {"*", "", static_cast<const char*>(nullptr)}) {
    SCOPED_TRACE(name ? name : "null");
    EXPECT_EQ(CreateDataset(name, 0, 0), 0);
    EXPECT_THAT(Asked(), ElementsAre(134, 137, 180, 148));
    EXPECT_EQ(LastRequest(), (WireImage{.code = 148, .texts = {"active"}}.bytes()));
  }
  EXPECT_EQ(CreateDataset("**", 0, 0), 0);
  EXPECT_THAT(Asked(), ElementsAre(134, 180, 148));
  EXPECT_THAT(Created(), ElementsAre("active", "active", "active", "**"));
}

TEST_F(DataSets, ACreationThatIsRefusedAsksNothingElse) {
  Refuse(134);
  Serve();
  EXPECT_EQ(CreateDataset("*", 0, 0), kRefusal);
  EXPECT_THAT(Asked(), ElementsAre(134));
  EXPECT_THAT(Created(), IsEmpty());
}

TEST_F(DataSets, WhatIsAskedBehindACreationDoesNotMatter) {
  for (const int code : {137, 180, 148}) Refuse(code);
  Serve();
  EXPECT_EQ(CreateDataset("new", 0, 0), 0);
  EXPECT_EQ(CreateDataset("*", 0, 0), 0);
  EXPECT_THAT(Asked(), ElementsAre(134, 180, 148, 134, 137, 180, 148));
  EXPECT_THAT(Created(), ElementsAre("new")) << "the other one's name was not told";
}

TEST_F(DataSets, AnEngineThatDiesBehindACreationHoldsNobodyUp) {
  diesAt_ = 137;
  Serve();
  EXPECT_EQ(CreateDataset("*", 0, 0), 0);
  EXPECT_EQ(KovaLastReceiveStatus(), kPeerGone);
  EXPECT_THAT(Created(), IsEmpty());
}

TEST_F(DataSets, CreatingOneLeavesTheSharedTextAlone) {
  answers_[9] = {.texts = {"species"}};
  answers_[137] = {.texts = {"active"}};
  Serve();
  const char* const name = GetVariableName(0, nullptr);
  EXPECT_EQ(CreateDataset("*", 0, 0), 0);
  EXPECT_STREQ(name, "species");
}

TEST_F(DataSets, ClosingOneForgetsItByItsExactName) {
  Serve();
  for (const char* const name : {"one", "two", "one"}) CreateDataset(name, 0, 0);
  Asked();
  EXPECT_EQ(CloseDataset("ONE"), 0);
  EXPECT_EQ(CloseDataset("other"), 0);
  EXPECT_EQ(CloseDataset(nullptr), 0);
  EXPECT_THAT(Asked(), ElementsAre(145, 145, 145)) << "sent all the same";
  EXPECT_THAT(Created(), ElementsAre("one", "two", "one"));
  EXPECT_EQ(CloseDataset("one"), 0);
  EXPECT_THAT(Created(), ElementsAre("two", "one"));
  Refuse(145);
  EXPECT_EQ(CloseDataset("two"), kRefusal);
  EXPECT_THAT(Created(), ElementsAre("two", "one"));
}

TEST_F(DataSets, ClosingOneSendsPendingChangesFirst) {
  Serve();
  SetNCellValue("ds", 0, 0, 1);
  EXPECT_EQ(CloseDataset("ds"), 0);
  EXPECT_EQ(CloseDataset("ds"), 0);
  EXPECT_THAT(Asked(), ElementsAre(228, 145, 145));
  Refuse(228);
  SetNCellValue("ds", 0, 0, 2);
  EXPECT_EQ(CloseDataset("ds"), 0) << "that the changes were refused is not told";
  EXPECT_THAT(Asked(), ElementsAre(228, 145));
  EXPECT_EQ(Pending(), 1u);
}

TEST_F(DataSets, WithoutAnEngineRunningNothingIsSentOrRemembered) {
  SetKovaRunning(false);
  EXPECT_EQ(CreateDataset("new", 0, 0), 17);
  EXPECT_EQ(SetNCellValue("ds", 0, 0, 1), 17);
  EXPECT_EQ(SetCCellValue("ds", 0, 0, "x"), 17);
  EXPECT_EQ(Pending(), 0u);
  SetKovaRunning(true);
  SetNCellValue("ds", 0, 0, 1);
  SetKovaRunning(false);
  EXPECT_EQ(CloseDataset("ds"), 17);
  EXPECT_EQ(CommitDataSet(), 17);
  EXPECT_EQ(Pending(), 1u);
  EXPECT_THAT(Created(), IsEmpty());
  EXPECT_THAT(kova::fake::calls(), IsEmpty());
}

TEST_F(DataSets, ChangesOfCellsTravelTogetherAndInOrder) {
  Serve();
  EXPECT_EQ(SetNCellValue("ds", 3, 1, 2.5), 0);
  EXPECT_EQ(SetCCellValue("other", -1, 2000000000, "Adelie"), 0);
  EXPECT_EQ(SetCCellValue(nullptr, 0, 0, nullptr), 0);
  EXPECT_THAT(Asked(), IsEmpty());
  EXPECT_EQ(CommitDataSet(), 0);
  EXPECT_EQ(
      LastRequest(),
      (WireImage{.code = 228,
                 .cells = {{"ds", 3, 1, 0, 2.5, ""}, {"other", -1, 2000000000, 1, 0, "Adelie"}, {"", 0, 0, 1, 0, ""}}}
           .bytes()));
  EXPECT_EQ(CommitDataSet(), 0);
  EXPECT_EQ(LastRequest(), (WireImage{.code = 228}.bytes())) << "they were sent already";
}

TEST_F(DataSets, ChangesThatAreRefusedAreSentAgain) {
  Refuse(228);
  Serve();
  SetNCellValue("ds", 3, 1, 2.5);
  EXPECT_EQ(CommitDataSet(), kRefusal);
  SetNCellValue("ds", 4, 1, 3.5);
  Accept(228);
  EXPECT_EQ(CommitDataSet(), 0);
  EXPECT_EQ(LastRequest(),
            (WireImage{.code = 228, .cells = {{"ds", 3, 1, 0, 2.5, ""}, {"ds", 4, 1, 0, 3.5, ""}}}.bytes()));
  EXPECT_EQ(Pending(), 0u);
}

TEST_F(DataSets, NamesComeAsTextsOrAsAListOfThem) {
  struct Row {
    const char* label;
    WireImage reply;
    std::vector<std::string> names;
  };
  const Row rows[] = {
      {"texts", {.texts = {"one", "two"}}, {"one", "two"}},
      {"a list", {.lists = {{"one", "two"}}}, {"one", "two"}},
      {"two lists", {.lists = {{"one"}, {"two"}}}, {"one"}},
      {"texts and a list", {.texts = {"one"}, .lists = {{"two", "three"}}}, {"one"}},
      {"an empty text and a list", {.texts = {""}, .lists = {{"two"}}}, {""}},
      {"an empty list", {.lists = {{}}}, {}},
      {"nothing", {}, {}},
  };
  Serve();
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    for (const int code : {140, 141, 142}) answers_[code] = row.reply;
    for (const auto function : {GetKovaDatasets, GetOpenedKovaDatasets, GetDatastepDatasets}) {
      char** names = nullptr;
      int count = -1;
      EXPECT_EQ(function(&names, &count), 0);
      EXPECT_EQ(std::vector<std::string>(names, names + count), row.names);
      EXPECT_EQ(names == nullptr, count == 0);
      FreeStringArray(names, count);
    }
  }
}

TEST_F(DataSets, TheResetForgetsEverything) {
  Serve();
  CreateDataset("new", 0, 0);
  SetNCellValue("ds", 0, 0, 1);
  StartDataStep();
  FetchDatastep("ds", 0, 1, nullptr);
  GetCaseValue("ds", 0, 0, nullptr, nullptr);
  kova::DataSetCaches& caches = kova::TheDataSetCaches();
  EXPECT_EQ(caches.registry.size(), 1u);
  kova::ForgetDataSets();
  EXPECT_THAT(Created(), IsEmpty());
  EXPECT_EQ(Pending(), 0u);
  EXPECT_EQ(caches.registry.size(), 0u);
  EXPECT_EQ(caches.batch.record(), nullptr);
  EXPECT_FALSE(caches.isInDataStep);
}

}  // namespace
