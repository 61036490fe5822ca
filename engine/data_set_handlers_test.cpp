// Data sets are counted, created, named, activated, copied and closed.
#include "engine/data_set_handlers.h"

#include <limits>

#include "engine/request_kit.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DataSets : public RequestTest {
 protected:
  std::string active() { return ask(Command::GetActive).FirstString(); }
  Texts open() { return textsOf(ask(Command::GetOpenedKovaDatasets)); }
  Texts created() { return textsOf(ask(Command::GetKovaDatasets)); }
  DataSet& last() { return *state_.dataSets.back(); }

  // As expectRefused, and the same data sets stay open with the same one active.
  template <typename... Items>
  void expectNothingHappens(ErrorCode code, Command command, const Items&... items) {
    const Texts before = open();
    const DataSet* const activeBefore = state_.active;
    expectRefused(code, command, items...);
    EXPECT_EQ(open(), before);
    EXPECT_EQ(state_.active, activeBefore);
  }
};

TEST_F(DataSets, TellHowManyCasesTheyHave) {
  EXPECT_EQ(ask(Command::GetRowCount).FirstLong(), 5);
  EXPECT_EQ(ask(Command::GetRowCountInProcDS).FirstLong(), 5);
  EXPECT_EQ(ask(Command::GetCaseCountInDS, "OTHER").FirstLong(), 1);
  EXPECT_EQ(ask(Command::GetCaseCountInDS, "*").FirstLong(), 5);
  state_.ofProcedure = &other();
  EXPECT_EQ(ask(Command::GetRowCountInProcDS).FirstLong(), 1);
  EXPECT_EQ(ask(Command::GetRowCount).FirstLong(), 5);
  expectRefused(ErrorCode::kNoSuchDataSet, Command::GetCaseCountInDS, "nowhere");
  expectRefused(ErrorCode::kTextNotUtf8, Command::GetCaseCountInDS, "\xFF");
}

TEST_F(DataSets, CountTheSelectedCases) {
  EXPECT_EQ(ask(Command::GetSelectedRowCountInProcDS).FirstLong(), 5) << "without a filter all are";
  EXPECT_EQ(ask(Command::IsUseOrFilter).FirstLong(), 0);
  main().filter = "score";
  EXPECT_EQ(ask(Command::IsUseOrFilter).FirstLong(), 1);
  EXPECT_EQ(ask(Command::GetSelectedRowCountInProcDS).FirstLong(), 0) << "no case has a value";
  main().cases.setNumber(0, 0, 1);
  main().cases.setNumber(1, 0, 0);
  main().cases.setNumber(2, 0, -5);
  main().cases.setNumber(3, 0, 99);
  main().cases.setNumber(4, 0, 0.5);
  EXPECT_EQ(ask(Command::GetSelectedRowCountInProcDS).FirstLong(), 2) << "neither 0 nor missing";
  EXPECT_EQ(ask(Command::GetRowCountInProcDS).FirstLong(), 5);
}

TEST_F(DataSets, TellWhereTheValuesOfACaseStand) {
  EXPECT_EQ(ask(Command::GetCaseLength, "main").FirstLong(), 40);
  EXPECT_EQ(ask(Command::GetCaseLength, "other").FirstLong(), 8);
  EXPECT_EQ(ask(Command::GetVarObsIndex, "main", 0).FirstLong(), 0);
  EXPECT_EQ(ask(Command::GetVarObsIndex, "main", 1).FirstLong(), 1);
  EXPECT_EQ(ask(Command::GetVarObsIndex, "main", 2).FirstLong(), 3) << "12 bytes take two units";
  expectRefused(ErrorCode::kIndexOutOfRange, Command::GetVarObsIndex, "main", 4);
  expectRefused(ErrorCode::kIndexOutOfRange, Command::GetVarObsIndex, "main", -1);
  expectRefused(ErrorCode::kNoSuchDataSet, Command::GetVarObsIndex, "nowhere", 0);
  expectRefused(ErrorCode::kNoSuchDataSet, Command::GetCaseLength, "nowhere");
}

TEST_F(DataSets, StringsOfAllWidthsTakeWholeUnits) {
  main().variables = {variable("score"), variable("town")};
  for (const auto& [width, bytes] : {std::pair{1, 8}, {7, 8}, {8, 8}, {9, 16}, {16, 16}, {17, 24}, {32767, 32768}}) {
    main().cases = CaseStore({0, width});
    EXPECT_EQ(ask(Command::GetCaseLength, "main").FirstLong(), 8 + bytes) << width;
  }
}

TEST_F(DataSets, NeedNoCacheAndRememberWhatWasAskedFor) {
  EXPECT_EQ(tell(Command::SetCacheInDS, "main", 1), 0);
  EXPECT_EQ(main().cacheFlag, 1);
  EXPECT_EQ(other().cacheFlag, 0);
  const CleXDSmb reply = ask(Command::IsNeedCache);
  EXPECT_EQ(reply.Longs().Size(), 1);
  EXPECT_EQ(reply.FirstLong(), 0);
  expectRefused(ErrorCode::kNoSuchDataSet, Command::SetCacheInDS, "nowhere", 0);
}

TEST_F(DataSets, KeepNoDates) {
  const CleXDSmb reply = ask(Command::GetTrendsInfoInDS, "main");
  EXPECT_EQ(reply.Longs().Size(), 1);
  EXPECT_EQ(reply.FirstLong(), 0);
  expectRefused(ErrorCode::kNoSuchDataSet, Command::GetTrendsInfoInDS, "nowhere");
}

TEST_F(DataSets, AreCreatedUnderTheirName) {
  EXPECT_EQ(tell(Command::CreateDataset, "Third", 0, 0), 0);
  EXPECT_THAT(open(), ElementsAre("main", "Other", "Third"));
  EXPECT_THAT(created(), ElementsAre("Third"));
  EXPECT_EQ(active(), "main");
  EXPECT_TRUE(last().isCreated);
  EXPECT_EQ(ask(Command::GetVarCountInDS, "third").FirstLong(), 0);
  EXPECT_EQ(ask(Command::GetCaseCountInDS, "third").FirstLong(), 0);
  EXPECT_EQ(ask(Command::GetCaseLength, "third").FirstLong(), 0);
}

TEST_F(DataSets, ACreatedOneBecomesActiveOnRequest) {
  EXPECT_EQ(tell(Command::CreateDataset, "Third", 1, 0), 0);
  EXPECT_EQ(active(), "Third");
}

TEST_F(DataSets, WithoutANameTheEngineChoosesOneAndActivatesIt) {
  EXPECT_STREQ(ask(Command::GetNewDatasetName).FirstString(), "DataSet1");
  EXPECT_STREQ(ask(Command::GetNewDatasetName).FirstString(), "DataSet1") << "it was not taken";
  EXPECT_EQ(tell(Command::CreateDataset, "", 0, 0), 0);
  EXPECT_EQ(active(), "DataSet1");
  EXPECT_EQ(tell(Command::CreateDataset, "dataset3", 0, 0), 0);
  EXPECT_EQ(tell(Command::CreateDataset, "*", 0, 0), 0);
  EXPECT_EQ(active(), "DataSet2");
  EXPECT_STREQ(ask(Command::GetNewDatasetName).FirstString(), "DataSet4") << "the third is taken";
  EXPECT_THAT(created(), ElementsAre("DataSet1", "dataset3", "DataSet2"));
}

TEST_F(DataSets, ACreatedOneTakesTheDictionaryOnRequest) {
  main().filter = "one";
  main().source = "somewhere";
  EXPECT_EQ(tell(Command::CreateDataset, "Third", 0, -1), 0);
  DataSet expected = main();
  expected.name = "Third";
  expected.source = "";
  expected.cases = CaseStore({0, 12, 0, 0});
  expected.isCreated = true;
  EXPECT_TRUE(last() == expected);
  EXPECT_EQ(ask(Command::GetCaseLength, "Third").FirstLong(), 40);
}

TEST_F(DataSets, OtherNamesAreRefused) {
  struct Row {
    ErrorCode code;
    std::string name;
  };
  const Row rows[] = {{ErrorCode::kDataSetExists, "MAIN"},
                      {ErrorCode::kNameBadCharacter, "two words"},
                      {ErrorCode::kNameBadStart, "1st"},
                      {ErrorCode::kNameBadStart, "**"},
                      {ErrorCode::kNameEndsInPeriod, "a."},
                      {ErrorCode::kNameReserved, "all"},
                      {ErrorCode::kNameTooManyBytes, std::string(65, 'a')},
                      {ErrorCode::kTextNotUtf8, "a\xFF"}};
  for (const Row& row : rows) {
    expectNothingHappens(row.code, Command::CreateDataset, row.name, 1, 1);
    expectNothingHappens(row.code, Command::SetDatasetName, "Other", row.name);
    expectNothingHappens(row.code, Command::CopyDataset, "Other", row.name);
  }
  for (const Command command : {Command::SetDatasetName, Command::CopyDataset}) {
    expectNothingHappens(ErrorCode::kNameEmpty, command, "Other", "");
    expectNothingHappens(ErrorCode::kNameBadStart, command, "Other", "*");
    expectNothingHappens(ErrorCode::kNoSuchDataSet, command, "nowhere", "Third");
  }
  EXPECT_EQ(tell(Command::CreateDataset, std::string(64, 'a'), 0, 0), 0);
}

TEST_F(DataSets, AreNamedAnew) {
  EXPECT_EQ(tell(Command::SetDatasetName, "other", "Another"), 0);
  EXPECT_THAT(open(), ElementsAre("main", "Another"));
  EXPECT_EQ(tell(Command::SetDatasetName, "*", "first"), 0);
  EXPECT_EQ(tell(Command::SetDatasetName, "", "FIRST"), 0) << "its own name in another case";
  EXPECT_EQ(active(), "FIRST");
  EXPECT_THAT(created(), IsEmpty());
}

TEST_F(DataSets, AreActivated) {
  EXPECT_EQ(tell(Command::SetActive, "OTHER"), 0);
  EXPECT_EQ(active(), "Other");
  EXPECT_EQ(ask(Command::GetVariableCount).FirstLong(), 1);
  EXPECT_EQ(tell(Command::SetActive, "*"), 0);
  EXPECT_EQ(active(), "Other");
  expectNothingHappens(ErrorCode::kNoSuchDataSet, Command::SetActive, "nowhere");
  expectNothingHappens(ErrorCode::kNoSuchDataSet, Command::SetActive, "");
}

TEST_F(DataSets, AreCopiedWithTheirCases) {
  main().source = "somewhere";
  main().cases.setNumber(3, 0, 1.5);
  EXPECT_EQ(tell(Command::CopyDataset, "*", "Third"), 0);
  DataSet expected = main();
  expected.name = "Third";
  expected.source = "";
  expected.isCreated = true;
  EXPECT_TRUE(last() == expected);
  EXPECT_EQ(active(), "main");
  last().cases.setNumber(3, 0, 2);
  EXPECT_EQ(main().cases.number(3, 0), 1.5) << "the copy has cases of its own";
}

TEST_F(DataSets, AreClosed) {
  EXPECT_EQ(tell(Command::CreateDataset, "Third", 0, 0), 0);
  EXPECT_EQ(tell(Command::CloseDataset, "OTHER"), 0);
  EXPECT_THAT(open(), ElementsAre("main", "Third"));
  EXPECT_EQ(active(), "main");
  EXPECT_EQ(tell(Command::GetCaseCountInDS, "Other"), static_cast<int>(ErrorCode::kNoSuchDataSet));
}

TEST_F(DataSets, TheNewestTakesTheActiveOnesPlace) {
  EXPECT_EQ(tell(Command::CreateDataset, "Third", 0, 0), 0);
  EXPECT_EQ(tell(Command::CloseDataset, "*"), 0);
  EXPECT_EQ(active(), "Third");
  EXPECT_EQ(tell(Command::CloseDataset, "*"), 0);
  EXPECT_EQ(active(), "Other");
  EXPECT_EQ(tell(Command::CloseDataset, "*"), 0);
  EXPECT_THAT(open(), IsEmpty());
  for (const Command command :
       {Command::GetActive, Command::GetRowCount, Command::GetRowCountInProcDS, Command::GetSelectedRowCountInProcDS}) {
    EXPECT_EQ(tell(command), static_cast<int>(ErrorCode::kNoActiveDataSet));
  }
  EXPECT_EQ(ask(Command::IsUseOrFilter).FirstLong(), 0);
  EXPECT_EQ(tell(Command::CloseDataset, "*"), static_cast<int>(ErrorCode::kNoActiveDataSet));
  EXPECT_EQ(tell(Command::SetDatasetName, "", "a"), static_cast<int>(ErrorCode::kNoActiveDataSet));
  EXPECT_EQ(tell(Command::CreateDataset, "a", 0, 1), static_cast<int>(ErrorCode::kNoActiveDataSet));
  EXPECT_EQ(tell(Command::CreateDataset, "a", 0, 0), 0);
  EXPECT_EQ(active(), "a") << "the only one is the active one";
}

TEST_F(DataSets, InUseStayOpen) {
  expectNothingHappens(ErrorCode::kNoSuchDataSet, Command::CloseDataset, "nowhere");
  expectNothingHappens(ErrorCode::kNoSuchDataSet, Command::CloseDataset, "");
  EXPECT_EQ(tell(Command::MakeCaseCursor, "r"), 0);
  expectNothingHappens(ErrorCode::kDataSetInUse, Command::CloseDataset, "main");
  EXPECT_EQ(tell(Command::RemoveCaseCursor), 0);
  EXPECT_EQ(tell(Command::StartProcedure, "Means", "Means"), 0);
  expectNothingHappens(ErrorCode::kDataSetInUse, Command::CloseDataset, "main");
  EXPECT_EQ(tell(Command::EndProcedure), 0);
  state_.ofProcedure = &other();
  expectNothingHappens(ErrorCode::kDataSetInUse, Command::CloseDataset, "Other");
  EXPECT_EQ(tell(Command::CloseDataset, "main"), 0);
}

}  // namespace
}  // namespace kova::engine
