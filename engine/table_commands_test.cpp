// Frequencies, descriptives, lists and the table of variables, as text.
#include "engine/case_summary.h"
#include "engine/command_kit.h"
#include "engine/output_client.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class TableCommands : public CommandTest {
 protected:
  const OutputSection& section() const { return state_.output.log.sections().back(); }
  const PivotTable& table(std::size_t position) const {
    return std::get<PivotTable>(section().items.at(position).content);
  }

  // The cells of a table row by row: "Bremen/Count=1".
  static Texts cellsOf(const PivotTable& table) {
    Texts all;
    for (const Cell& cell : table.cells()) {
      std::string text;
      for (std::size_t i = 0; i < cell.at.size(); ++i) {
        text += (i == 0 ? "" : "/") + table.dimensions()[i].categories[cell.at[i]].value.shown;
      }
      all.push_back(text + "=" + cell.value.shown);
    }
    return all;
  }
};

TEST_F(TableCommands, FrequenciesCountValues) {
  run("compute one = mod(one, 2); values one 0 'even', 1 'odd'; frequencies one");
  EXPECT_EQ(section().name, "Frequencies");
  EXPECT_EQ(table(0).key().subtype, "Frequencies");
  EXPECT_THAT(cellsOf(table(0)), ElementsAre("even/Count=2", "even/Percent=40.0", "even/Percent of valid=40.0",
                                             "even/Running percent=40.0", "odd/Count=3", "odd/Percent=60.0",
                                             "odd/Percent of valid=60.0", "odd/Running percent=100.0", "Total/Count=5",
                                             "Total/Percent=100.0", "Total/Percent of valid=100.0"));
}

TEST_F(TableCommands, FrequenciesTellValidFromMissing) {
  run("frequencies score town");
  EXPECT_EQ(table(0).key().title, "Score");
  EXPECT_THAT(
      cellsOf(table(0)),
      ElementsAre("low/Count=1", "low/Percent=20.0", "low/Percent of valid=33.3", "low/Running percent=33.3",
                  "high/Count=1", "high/Percent=20.0", "high/Percent of valid=33.3", "high/Running percent=66.7",
                  "4.0/Count=1", "4.0/Percent=20.0", "4.0/Percent of valid=33.3", "4.0/Running percent=100.0",
                  "-5.0/Count=1", "-5.0/Percent=20.0", "No value/Count=1", "No value/Percent=20.0", "Total/Count=5",
                  "Total/Percent=100.0", "Total/Percent of valid=100.0"));
  EXPECT_THAT(last(), HasSubstr("Counts as missing."));
  EXPECT_EQ(cellsOf(table(1)).front(), "none/Count=1") << "an empty text, by its label";
}

TEST_F(TableCommands, FrequenciesCountZerosAsDescriptivesDo) {
  run("compute r = round(-0.3) where case() = 1; compute r = 0 where case() > 1; missing r 0; frequencies r");
  EXPECT_THAT(cellsOf(table(0)), ElementsAre("0.00/Count=5", "0.00/Percent=100.0", "Total/Count=5",
                                             "Total/Percent=100.0", "Total/Percent of valid=."));
  run("descriptives r");
  EXPECT_THAT(cellsOf(table(0)), testing::IsSupersetOf({"r/Count=0", "r/Missing=5"}));
  EXPECT_EQ(submit("missing r -0; frequencies r"), 0);
  EXPECT_EQ(cellsOf(table(0)).front(), "0.00/Count=5") << "a zero that is written has no sign either";
  EXPECT_THAT(last(), HasSubstr("Counts as missing."));
}

// Data from elsewhere may have zeros with a sign, and only one of the two may be a missing value.
TEST_F(TableCommands, FrequenciesTellTheTwoZerosApartWhereTheyDiffer) {
  for (const double first : {0.0, -0.0}) {
    for (std::size_t i = 0; i < 5; ++i) main().cases.setNumber(i, 2, i < 2 ? first : -first);
    run("missing one off; frequencies one");
    EXPECT_EQ(cellsOf(table(0)).front(), "0.00/Count=5");
    run("missing one 0; frequencies one");
    const std::string plain = std::signbit(first) ? "3" : "2";
    const std::string with = std::signbit(first) ? "2" : "3";
    EXPECT_THAT(cellsOf(table(0)),
                testing::IsSupersetOf(Texts{"-0/Count=" + with, "-0/Percent of valid=100.0", "0.00/Count=" + plain}));
    run("descriptives one");
    EXPECT_THAT(cellsOf(table(0)), testing::IsSupersetOf({"one/Count=" + with, "one/Missing=" + plain}));
  }
}

TEST_F(TableCommands, DescriptivesTellMeanAndSpread) {
  run("descriptives one, score");
  EXPECT_THAT(cellsOf(table(0)),
              ElementsAre("one/Count=5", "one/Missing=0", "one/Minimum=1.00", "one/Maximum=5.00", "one/Mean=3.0000",
                          "one/Standard deviation=1.5811", "Score/Count=3", "Score/Missing=2", "Score/Minimum=1.0",
                          "Score/Maximum=4.0", "Score/Mean=2.333", "Score/Standard deviation=1.528"));
  refuse(ErrorCode::kWrongKind, "descriptives one town", "The variable town holds texts");
}

TEST_F(TableCommands, TakeWeightFilterAndSplit) {
  run("weight by two; filter by one; compute one = 0 where one = 4; descriptives one");
  EXPECT_THAT(cellsOf(table(0)), ElementsAre("one/Count=10", "one/Missing=0", "one/Minimum=1.00", "one/Maximum=1.00",
                                             "one/Mean=1.0000", "one/Standard deviation=0.0000"));
  EXPECT_THAT(section().notes, ElementsAre("Cases selected by one.", "Weighted by two."));
  run("weight off; filter off; compute group = case() > 2; split by group; frequencies group; descriptives one");
  EXPECT_EQ(section().splitGroups, 2);
  EXPECT_THAT(cellsOf(table(0)).front(), "one/Count=2");
  EXPECT_THAT(cellsOf(table(1)).front(), "one/Count=3");
  run("compute one = one / 3; weight by one; frequencies group; split off");
  EXPECT_THAT(cellsOf(table(1)).front(), "1.00/Count=2.67") << "weights need not be whole";
}

TEST_F(TableCommands, ListShowsCases) {
  run("list one town");
  EXPECT_THAT(cellsOf(table(0)), testing::IsSupersetOf({"1/one=1.00", "1/town=Bremen", "4/town=none", "5/one=5.00"}));
  run("filter by two; list 1");
  EXPECT_EQ(cellsOf(table(0)).size(), 4U);
  EXPECT_THAT(last(), HasSubstr("More cases follow; list COUNT shows so many."));
  run("list 2 one");
  EXPECT_THAT(cellsOf(table(0)), ElementsAre("1/one=1.00", "4/one=4.00"));
  EXPECT_THAT(last(), Not(HasSubstr("More cases")));
  refuse(ErrorCode::kTableTooLarge, "list 0",
         "column 6: A list can not have 0 cases. Give a whole number of 1 to 10000");
  refuse(ErrorCode::kTableTooLarge, "list 1e9 one", "A list can not have 1e9 cases.");
  refuse(ErrorCode::kTableTooLarge, "list 1.5", "A list can not have 1.5 cases.");
  run("delete where 1; list");
  EXPECT_THAT(last(), HasSubstr("There are no cases."));
}

TEST_F(TableCommands, VariablesShowTheDictionary) {
  run("variables");
  EXPECT_THAT(cellsOf(table(0)),
              testing::IsSupersetOf({"score/Label=Score", "score/Type=number", "score/Format=F8.1",
                                     "score/Measure=scale", "score/Missing=-9 to -1, 99", "score/Values=1 low, 2 high",
                                     "town/Type=text of 12", "town/Missing=NA, ?", "town/Values=B Bremen,  none"}));
}

TEST_F(TableCommands, NameVariablesInWays) {
  run("list score to one");
  EXPECT_EQ(cellsOf(table(0)).size(), 15U);
  run("list all, one");
  EXPECT_EQ(cellsOf(table(0)).size(), 20U) << "each once";
  refuse(ErrorCode::kSyntaxNotValid, "list one to score", "The variable score stands in front of one.");
  refuse(ErrorCode::kSyntaxNotValid, "frequencies",
         "Expected a variable, found the end of the command. Write: frequenc");
  refuse(ErrorCode::kSyntaxNotValid, "frequencies one,", "Expected a variable, found the end of the command.");
}

TEST_F(TableCommands, RefuseTablesThatNobodyReads) {
  while (main().cases.caseCount() < 10'001) main().cases.appendCase();
  run("compute id = case(); split by id");
  const std::size_t sections = state_.output.log.sections().size();
  refuse(ErrorCode::kTableTooLarge, "descriptives one", "The split has more than 1000 groups.");
  run("split off");
  refuse(ErrorCode::kTableTooLarge, "frequencies id", "The variable id has more than 10000 values.");
  EXPECT_EQ(state_.output.log.sections().size(), sections + 2) << "the two problems";
}

TEST_F(TableCommands, WaitForTheProcedureOfAProgram) {
  ASSERT_EQ(tell(Command::StartProcedure, "Own", ""), 0);
  for (const char* text : {"frequencies one", "descriptives one", "list", "variables", "show"}) {
    EXPECT_EQ(submit(text), 98102) << text;
  }
  ASSERT_EQ(tell(Command::EndProcedure), 0);
  EXPECT_EQ(section().items.size(), 5U) << "the problems stand in the program's procedure";
}

// Numbers that differ far behind their first digits: the textbook formula would lose them all.
TEST(Moments, KeepSmallDifferencesOfLargeNumbers) {
  Moments moments;
  for (const double value : {1e9 + 4, 1e9 + 7, 1e9 + 13, 1e9 + 16}) moments.add(value, 1);
  EXPECT_DOUBLE_EQ(moments.mean(), 1e9 + 10);
  EXPECT_DOUBLE_EQ(moments.deviation(), std::sqrt(30.0));
}

TEST(Moments, WeightsCountCases) {
  Moments weighted;
  Moments plain;
  for (const double value : {1.0, 2.0, 5.0}) {
    weighted.add(value, 3);
    for (int i = 0; i < 3; ++i) plain.add(value, 1);
  }
  weighted.add(100, 0);
  EXPECT_DOUBLE_EQ(weighted.mean(), plain.mean());
  EXPECT_DOUBLE_EQ(weighted.deviation(), plain.deviation());
  EXPECT_EQ(weighted.most(), 5);
}

TEST(Moments, OfTooFewValuesAreMissing) {
  Moments moments;
  EXPECT_EQ(moments.mean(), kSystemMissing);
  EXPECT_EQ(moments.least(), kSystemMissing);
  moments.add(3, 1);
  EXPECT_EQ(moments.mean(), 3);
  EXPECT_EQ(moments.deviation(), kSystemMissing);
  moments.add(1.7e308, 1);
  moments.add(-1.7e308, 1);
  EXPECT_EQ(moments.deviation(), kSystemMissing) << "beyond the range of numbers";
}

}  // namespace
}  // namespace kova::engine
