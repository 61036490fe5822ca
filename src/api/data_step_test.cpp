// The bracket of a data step, and the records that follow changes of its data sets: what is asked of the engine, in
// which order.
#include "tests/api/data_set_test.h"

namespace {

using kova::DataSetCaches;
using kova::TheDataSetCaches;
using kova::WireImage;
using testing::ElementsAre;
using testing::IsEmpty;

class DataStep : public kova::DataSetTest {
 protected:
  // A data set of a number and a text of 12 bytes.
  DataStep() {
    answers_[239] = {.longs = {24}};
    answers_[148] = {.longs = {2}};
    answers_[237] = {.block = std::string(8, '\0') + "twelve bytes    "};
  }

  // The engine, in a data step that has read a case of "ds" and fetched rows. Both variables are texts of 12 bytes, for
  // which the engine says one type for all.
  void ServeStep() {
    answers_[239] = {.longs = {32}};
    answers_[153] = {.longs = {12}};
    Serve();
    StartDataStep();
    GetCaseValue("ds", 0, 0, nullptr, nullptr);
    FetchDatastep("ds", 0, 1, nullptr);
    Asked();
  }

  // The types of the record of "ds"; empty without one.
  static std::vector<int> Types() {
    std::vector<int> types;
    const DatastepDataSmb* const record = TheDataSetCaches().registry.find("ds");
    for (int var = 0; record && var < record->VarCount(); ++var) types.push_back(record->VarType(var));
    return types;
  }
};

TEST_F(DataStep, BeginsWhenTheEngineSaysSo) {
  Refuse(132);
  Serve();
  EXPECT_EQ(StartDataStep(), kRefusal);
  EXPECT_FALSE(TheDataSetCaches().isInDataStep);
  Accept(132);
  EXPECT_EQ(StartDataStep(), 0);
  EXPECT_TRUE(TheDataSetCaches().isInDataStep);
  EXPECT_THAT(Asked(), ElementsAre(132, 132));
}

TEST_F(DataStep, EndsWithAllThatBelongsToIt) {
  ServeStep();
  CreateDataset("new", 0, 0);
  Asked();
  EXPECT_EQ(EndDataStep(), 0);
  EXPECT_THAT(Asked(), ElementsAre(133));
  const DataSetCaches& caches = TheDataSetCaches();
  EXPECT_FALSE(caches.isInDataStep);
  EXPECT_EQ(caches.batch.record(), nullptr);
  EXPECT_EQ(caches.registry.size(), 0u);
  EXPECT_THAT(caches.created.names(), IsEmpty());
}

TEST_F(DataStep, AnEndThatIsRefusedDropsTheRowsAlone) {
  ServeStep();
  CreateDataset("new", 0, 0);
  Refuse(133);
  EXPECT_EQ(EndDataStep(), kRefusal);
  const DataSetCaches& caches = TheDataSetCaches();
  EXPECT_TRUE(caches.isInDataStep);
  EXPECT_EQ(caches.batch.record(), nullptr);
  EXPECT_EQ(caches.registry.size(), 1u);
  EXPECT_THAT(caches.created.names(), ElementsAre("new"));
}

TEST_F(DataStep, AnEngineThatDiesAtTheEndLeavesTheSame) {
  ServeStep();
  diesAt_ = 133;
  EXPECT_EQ(EndDataStep(), kPeerGone);
  EXPECT_TRUE(TheDataSetCaches().isInDataStep);
  EXPECT_EQ(TheDataSetCaches().batch.record(), nullptr);
  EXPECT_EQ(TheDataSetCaches().registry.size(), 1u);
}

TEST_F(DataStep, EndsWithPendingChangesSentFirst) {
  ServeStep();
  SetNCellValue("ds", 0, 0, 1);
  EXPECT_EQ(EndDataStep(), 0);
  EXPECT_THAT(Asked(), ElementsAre(228, 133));
  EXPECT_TRUE(TheDataSetCaches().pending.empty());
  SetNCellValue("ds", 0, 0, 2);
  Refuse(228);
  EXPECT_EQ(EndDataStep(), 0) << "that the changes were refused is not told";
  EXPECT_THAT(Asked(), ElementsAre(228, 133));
  EXPECT_EQ(TheDataSetCaches().pending.cells().size(), 1u);
}

TEST_F(DataStep, WithoutAnEngineRunningNothingBeginsOrEnds) {
  ServeStep();
  SetNCellValue("ds", 0, 0, 1);
  SetKovaRunning(false);
  EXPECT_EQ(EndDataStep(), 17);
  EXPECT_EQ(StartDataStep(), 17);
  EXPECT_THAT(Asked(), IsEmpty());
  EXPECT_NE(TheDataSetCaches().batch.record(), nullptr);
  EXPECT_EQ(TheDataSetCaches().registry.size(), 1u);
}

TEST_F(DataStep, TheNextOneStartsWithoutRecords) {
  ServeStep();
  EXPECT_EQ(EndDataStep(), 0);
  EXPECT_EQ(StartDataStep(), 0);
  EXPECT_THAT(Types(), IsEmpty()) << "the remembered name is forgotten too";
  Asked();
  double value = 0;
  EXPECT_EQ(GetNCellValueFromCache("ds", 0, &value, nullptr), 56);
  EXPECT_THAT(Asked(), ElementsAre(239, 148, 153, 153));
}

struct Change {
  const char* label;
  int code;
  int (*call)();
  std::vector<int> types;
};

const Change kChanges[] = {
    {"insert in front", 146, [] { return InsertVariable("ds", 0, "mass", 0); }, {0, 12, 12}},
    {"insert at the end", 146, [] { return InsertVariable("ds", 2, "note", 9); }, {12, 12, 9}},
    {"insert outside", 146, [] { return InsertVariable("ds", 3, "note", 9); }, {12, 12}},
    {"insert in another data set", 146, [] { return InsertVariable("DS", 0, "note", 9); }, {12, 12}},
    {"insert without names", 146, [] { return InsertVariable(nullptr, 0, nullptr, 9); }, {12, 12}},
    {"delete the first", 147, [] { return DeleteVariable("ds", 0); }, {12}},
    {"delete outside", 147, [] { return DeleteVariable("ds", -1); }, {12, 12}},
    {"set the type", 154, [] { return SetVarTypeInDS("ds", 1, 0); }, {12, 0}},
    {"set the type outside", 154, [] { return SetVarTypeInDS("ds", 2, 0); }, {12, 12}},
    {"move", 245, [] { return MoveVariables("ds", 0, 1); }, {12, 12}},
    {"insert a case", 178, [] { return InsertCase("ds", 0); }, {12, 12}},
    {"delete a case", 179, [] { return DeleteCase("ds", 0); }, {12, 12}},
};

TEST_F(DataStep, RecordsFollowWhatTheEngineHasAccepted) {
  ServeStep();
  for (const Change& change : kChanges) {
    SCOPED_TRACE(change.label);
    TheDataSetCaches().registry.clear();
    GetCaseValue("ds", 0, 0, nullptr, nullptr);
    ASSERT_THAT(Types(), ElementsAre(12, 12));
    Asked();
    EXPECT_EQ(change.call(), 0);
    EXPECT_EQ(Types(), change.types);
    EXPECT_THAT(Asked(), ElementsAre(change.code));
  }
}

TEST_F(DataStep, RecordsStayWhenTheEngineRefuses) {
  ServeStep();
  for (const Change& change : kChanges) {
    SCOPED_TRACE(change.label);
    Refuse(change.code);
    EXPECT_EQ(change.call(), kRefusal);
    EXPECT_THAT(Types(), ElementsAre(12, 12));
  }
}

TEST_F(DataStep, ChangesMakeNoRecord) {
  Serve();
  StartDataStep();
  Asked();
  for (const Change& change : kChanges) {
    SCOPED_TRACE(change.label);
    EXPECT_EQ(change.call(), 0);
    EXPECT_THAT(Asked(), ElementsAre(change.code));
  }
  EXPECT_EQ(TheDataSetCaches().registry.size(), 0u);
}

}  // namespace
