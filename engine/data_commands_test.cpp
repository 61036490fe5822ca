// The commands that open, save, compute, choose cases and describe variables.
#include "engine/command_kit.h"
#include "tests/kit/scratch_folder.h"

namespace kova::engine {
namespace {

using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsNan;
using testing::Not;

class DataCommands : public CommandTest {};

TEST_F(DataCommands, SaveAndOpen) {
  const kit::ScratchFolder folder;
  const std::string path = folder.path() + "/datapackage.json";
  run("filter by two; save \"" + path + "\"; open '" + path + "' as copy");
  EXPECT_EQ(state_.active->name, "copy");
  EXPECT_EQ(state_.active->source, path);
  EXPECT_EQ(state_.active->cases.caseCount(), 5U);
  EXPECT_EQ(state_.active->filter, "two");
  run("use MAIN; save \"" + path + "\" selected; close copy; open \"" + folder.path() + "\" as copy");
  EXPECT_EQ(state_.active->cases.caseCount(), 2U);
  refuse(ErrorCode::kDataSetExists, "open '" + path + "' as other", "A data set \"other\" is open already. Close it");
  refuse(ErrorCode::kDataSetExists, "open '" + path + "'", "A data set \"main\" is open already.");
  refuse(ErrorCode::kNameReserved, "open '" + path + "' as all", "column");
  run("close main; open '" + path + "'");
  EXPECT_EQ(state_.active->name, "main");
}

TEST_F(DataCommands, TellWhatIsWrongWithAFile) {
  refuse(ErrorCode::kDataFileNotReadable, "open 'nowhere/x.json'",
         "line 1, column 6: The data package \"nowhere/x.json\" can not be read: ");
  refuse(ErrorCode::kDataFileNotWritable, "save 'nowhere/x.json'", "column 6: The data can not be saved: ");
  EXPECT_THAT(last(), ContainsRegex("check that its folder is there and that files may be made in it\\. What was there "
                                    "before is left as it was\\."));
  EXPECT_THAT(last(), Not(ContainsRegex("folder is there.*folder is there"))) << "what to do is told once";
  refuse(ErrorCode::kSyntaxNotValid, "open penguins",
         "Expected the path of a data package in quotes, found \"penguins\"");
  refuse(ErrorCode::kSyntaxNotValid, "save 'x' all", "Expected the end of the command, found \"all\".");
}

TEST_F(DataCommands, UseAndClose) {
  run("use Other");
  EXPECT_EQ(state_.active, state_.dataSets[1].get());
  refuse(ErrorCode::kNoSuchDataSet, "use nothing", "There is no data set \"nothing\".");
  run("close");
  EXPECT_EQ(state_.active->name, "main");
  run("close main");
  EXPECT_EQ(state_.active, nullptr);
  EXPECT_EQ(submit("compute x = 1"), 98004);
  EXPECT_THAT(last(), HasSubstr("No data set is open. Open one first: open \"datapackage.json\"."));
}

TEST_F(DataCommands, ComputeMakesAVariable) {
  run("compute double = one * 2; compute greeting = concat('to ', town)");
  EXPECT_THAT(numbers("double"), ElementsAre(2, 4, 6, 8, 10));
  EXPECT_EQ(variable("double").format, (Format{FormatType::kF, 8, 2}));
  EXPECT_THAT(texts("greeting"), ElementsAre("to Bremen", "", "to Bonn", "to", "to Z\u00FCrich"));
  EXPECT_EQ(variable("greeting").width, 15) << "as wide as the widest result can be";
}

TEST_F(DataCommands, ComputeChangesAVariable) {
  run("compute One = one + 10 where one > 3");
  EXPECT_THAT(numbers("one"), ElementsAre(1, 2, 3, 14, 15));
  run("compute flag = 1 where town = 'Bonn'");
  EXPECT_THAT(numbers("flag"), ElementsAre(IsNan(), IsNan(), 1, IsNan(), IsNan()));
  run("compute town = town");
  EXPECT_THAT(texts("town"), ElementsAre("Bremen", "", "Bonn", "", "Z\u00FCrich"));
  run("compute town = concat(town, ' and ', town)");
  EXPECT_EQ(texts("town").front(), "Bremen and B");
  EXPECT_THAT(last(), HasSubstr("compute town: 3 texts were longer than the variable and were cut."));
  run("compute town = concat('1234567890a', '\u00FC')");
  EXPECT_EQ(texts("town").front(), "1234567890a") << "behind a whole character";
}

TEST_F(DataCommands, ComputeRefuses) {
  refuse(ErrorCode::kSyntaxKindsDiffer, "compute town = 1", "column 16: The variable town holds texts, and this is a");
  refuse(ErrorCode::kSyntaxKindsDiffer, "compute one = 'x'", "The variable one holds numbers, and this is a text.");
  refuse(ErrorCode::kNameReserved, "compute all = 1", "column 9: ");
  refuse(ErrorCode::kNameBadStart, "compute $x = 1", "column 9: ");
  refuse(ErrorCode::kNameEndsInPeriod, "compute x. = 1", "column 9: ");
  refuse(ErrorCode::kSyntaxNotValid, "compute 'x' = 1", "Expected the name of a variable, found the text \"x\".");
  refuse(ErrorCode::kSyntaxNotValid, "compute x 1", "Expected \"=\", found the number 1. Write: compute NAME =");
  refuse(ErrorCode::kNoSuchVariable, "compute x = x + 1", "There is no variable \"x\".");
  refuse(ErrorCode::kSyntaxNotValid, "compute x = 1\nlist",
         "line 2, column 1: Expected the end of the command, found "
         "\"list\". Put a ; behind the command in front");
}

TEST_F(DataCommands, KeepAndDeleteTakeCasesAway) {
  run("keep where score > 1 or one = 3");
  EXPECT_THAT(numbers("one"), ElementsAre(2, 3, 5)) << "a condition that is missing does not hold";
  run("delete where score = 2");
  EXPECT_THAT(numbers("one"), ElementsAre(3, 5)) << "the missing score stays";
  run("delete where 1");
  EXPECT_THAT(numbers("one"), IsEmpty());
  run("keep where 0; compute x = 1; list; frequencies x; descriptives x");
  refuse(ErrorCode::kSyntaxNotValid, "keep score > 1", "Expected the word where, found \"score\".");
}

TEST_F(DataCommands, FilterWeightAndSplit) {
  run("filter by two; weight by one; split by town one");
  EXPECT_EQ(main().filter, "two");
  EXPECT_EQ(main().weight, "one");
  EXPECT_THAT(main().split, ElementsAre("town", "one"));
  EXPECT_EQ(ask(Command::GetSelectedRowCountInProcDS).FirstLong(), 2);
  run("FILTER OFF; weight off; split off");
  EXPECT_TRUE(main().filter.empty() && main().weight.empty() && main().split.empty());
  refuse(ErrorCode::kWrongKind, "filter by town", "column 11: The variable town holds texts");
  refuse(ErrorCode::kSyntaxNotValid, "weight one", "Expected by or off, found \"one\".");
  refuse(ErrorCode::kNoSuchVariable, "split by town, twn", "Did you mean town?");
}

TEST_F(DataCommands, DescribeVariables) {
  run("label one \"The first; it's \"\"1\"\"\"; values two 10 'ten', 20 'twenty', -1 'below'; format two F10.3");
  EXPECT_EQ(variable("one").label, "The first; it's \"1\"");
  EXPECT_EQ(variable("two").format, (Format{FormatType::kF, 10, 3}));
  ASSERT_EQ(variable("two").numberLabels.size(), 3U);
  EXPECT_EQ(variable("two").numberLabels[2].value, -1);
  run("values two 10 'Ten'");
  EXPECT_EQ(variable("two").numberLabels.front().label, "Ten");
  run("values town 'Bonn' 'the old one'; values two off");
  EXPECT_EQ(variable("town").textLabels.back().label, "the old one");
  EXPECT_TRUE(variable("two").numberLabels.empty());
  refuse(ErrorCode::kSyntaxNotValid, "values two 'x' 'y'", "Expected a value of two, a number, found the text \"x\".");
  refuse(ErrorCode::kValueTooLong, "values town '1234567890123' 'y'", "column 13");
  refuse(ErrorCode::kSyntaxNotValid, "values two 1 'a' 2 'b'", "Expected a comma and the next value");
  refuse(ErrorCode::kSyntaxNotValid, "values two",
         "column 11: Expected a value of two, a number, found the end of the command.");
  refuse(ErrorCode::kSyntaxNotValid, "values town 'B' 'x',",
         "column 21: Expected a value of town, a text in quotes, found the end of the command.");
  refuse(ErrorCode::kSyntaxNotValid, "values two off 1 'a'", "Expected the end of the command, found the number 1.");
  refuse(ErrorCode::kUnknownFormat, "format two F99.1", "column 12");
  refuse(ErrorCode::kFormatOfOtherKind, "format two A5", "column 12");
}

TEST_F(DataCommands, SayWhichValuesAreMissing) {
  run("missing two 0; missing town 'Bonn', 'NA'; missing one lowest to 2, 5");
  EXPECT_EQ(variable("two").missing.kind, kOneMissing);
  EXPECT_EQ(variable("town").missing.kind, kTwoMissing);
  EXPECT_EQ(variable("one").missing.kind, kMissingRangeAndOne);
  run("compute x = one");
  EXPECT_THAT(numbers("x"), ElementsAre(IsNan(), IsNan(), 3, 4, IsNan()));
  run("missing one off; missing score -9 to -1");
  EXPECT_EQ(variable("one").missing, MissingValues());
  EXPECT_EQ(variable("score").missing.kind, kMissingRange);
  refuse(ErrorCode::kMissingKindOutOfRange, "missing one 1, 2, 3, 4", "Give up to three values");
  refuse(ErrorCode::kMissingRangeReversed, "missing one 5 to 1", "line 1");
  refuse(ErrorCode::kMissingValueTooLong, "missing town 'longer than 8'", "line 1");
  refuse(ErrorCode::kSyntaxNotValid, "missing town 1", "Expected a value of town, a text in quotes");
}

TEST_F(DataCommands, RenameAndDrop) {
  run("rename one to uno; drop score, two");
  EXPECT_EQ(main().variables.size(), 2U);
  EXPECT_THAT(numbers("uno"), ElementsAre(1, 2, 3, 4, 5));
  refuse(ErrorCode::kNameTaken, "rename uno to town", "column 15");
  run("drop all");
  EXPECT_EQ(main().variables.size(), 0U);
  EXPECT_EQ(main().cases.caseCount(), 0U);
}

// A pass keeps cases and variables in their places.
TEST_F(DataCommands, LeaveADataSetThatIsReadAsItIs) {
  ASSERT_EQ(tell(Command::MakeCaseCursor, "r"), 0);
  for (const char* text : {"compute fresh = 1", "keep where 1", "delete where 0", "drop one", "filter by one",
                           "weight by one", "split by one", "close", "close main"}) {
    refuse(ErrorCode::kDataSetInUse, text, "A case cursor reads the data set");
  }
  run("compute one = 7; label one 'x'; list; frequencies one");
  EXPECT_THAT(numbers("one"), ElementsAre(7, 7, 7, 7, 7));
  ASSERT_EQ(tell(Command::RemoveCaseCursor), 0);
  run("compute fresh = 1");
}

TEST_F(DataCommands, CountAsChangesOfADataStep) {
  ASSERT_EQ(tell(Command::StartDataStep), 0);
  run("list");
  EXPECT_THAT(textsOf(ask(Command::GetDatastepDatasets)), IsEmpty());
  run("compute one = 1");
  EXPECT_THAT(textsOf(ask(Command::GetDatastepDatasets)), ElementsAre("main"));
}

}  // namespace
}  // namespace kova::engine
