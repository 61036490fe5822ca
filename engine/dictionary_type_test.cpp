// What becomes of a variable that gets another type.
#include "engine/request_kit.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;

using TypeChanges = RequestTest;

TEST_F(TypeChanges, AWiderTextKeepsEverything) {
  main().cases.setText(0, 1, "Bremen");
  EXPECT_EQ(tell(Command::SetVarTypeInDS, "main", 1, 20), 0);
  EXPECT_EQ(ask(Command::GetVariableType, 1).FirstLong(), 20);
  EXPECT_STREQ(ask(Command::GetVariableFormat, 1).FirstString(), "A20") << "the format was as wide as the variable";
  EXPECT_EQ(main().cases.text(0, 1), "Bremen              ");
  EXPECT_EQ(variable("town").textLabels.size(), 2U);
  EXPECT_EQ(variable("town").missing.kind, 2);
}

TEST_F(TypeChanges, ANarrowerTextLosesWhatDoesNotFit) {
  main().cases.setText(0, 1, "Bremen");
  main().variables.change(1).textLabels.push_back({"Bremen", "the town"});
  EXPECT_EQ(tell(Command::SetVarFormat, "town", 1, 30, 0), 0);
  EXPECT_EQ(tell(Command::SetVarTypeInDS, "main", 1, 1), 0);
  EXPECT_EQ(main().cases.text(0, 1), "B");
  EXPECT_STREQ(ask(Command::GetVariableFormat, 1).FirstString(), "A30") << "it was chosen";
  EXPECT_EQ(variable("town").textLabels.size(), 2U) << "\"B\" and \"\" fit";
  EXPECT_EQ(variable("town").missing.kind, 1);
  EXPECT_THAT(variable("town").missing.texts, ElementsAre("?", "", ""));
}

TEST_F(TypeChanges, AnotherKindBeginsAnew) {
  main().cases.setText(0, 1, "12");
  EXPECT_EQ(tell(Command::SetVarTypeInDS, "main", 1, 0), 0);
  const Variable& town = variable("town");
  EXPECT_TRUE(town.isNumeric());
  EXPECT_EQ(formatText(town.format), "F8.2");
  EXPECT_EQ(town.alignment, Alignment::kRight);
  EXPECT_EQ(town.missing.kind, 0);
  EXPECT_TRUE(town.textLabels.empty());
  EXPECT_EQ(main().cases.number(0, 1), kSystemMissing);
  EXPECT_EQ(main().cases.number(0, 3), kSystemMissing) << "what stands behind it moved along";
  main().weight.clear();
  EXPECT_EQ(tell(Command::SetVarTypeInDS, "main", 0, 5), 0);
  const Variable& score = variable("score");
  EXPECT_EQ(formatText(score.format), "A5");
  EXPECT_EQ(score.measure, Measure::kNominal) << "a text is no amount";
  EXPECT_EQ(score.label, "Score");
  EXPECT_EQ(score.attributes.size(), 2U);
  EXPECT_TRUE(score.numberLabels.empty());
  EXPECT_EQ(main().cases.text(0, 0), "     ");
}

TEST_F(TypeChanges, TheSameTypeChangesNothing) {
  const DataSet before = main();
  EXPECT_EQ(tell(Command::SetVarTypeInDS, "main", 0, 0), 0);
  EXPECT_EQ(tell(Command::SetVarTypeInDS, "main", 1, 12), 0);
  EXPECT_TRUE(before == main());
}

TEST_F(TypeChanges, CasesThatNoMemoryHoldsAreRefused) {
  while (main().cases.caseCount() < 131072) main().cases.appendCase();
  expectRefused(ErrorCode::kOutOfMemory, Command::SetVarTypeInDS, "main", 1, 32767);
}

TEST_F(TypeChanges, ATextIsCutBehindAWholeCharacter) {
  main().cases.setText(0, 1, "K\u00F6ln");
  EXPECT_EQ(tell(Command::SetVarTypeInDS, "main", 1, 2), 0);
  EXPECT_EQ(main().cases.text(0, 1), "K ");
}

TEST_F(TypeChanges, OtherTypesAreRefused) {
  for (const int type : {-1, 32768, 2147483647, static_cast<int>(0x80000000U)}) {
    expectRefused(ErrorCode::kTypeOutOfRange, Command::SetVarTypeInDS, "main", 1, type);
  }
  expectRefused(ErrorCode::kVariableInUse, Command::SetVarTypeInDS, "main", 0, 8);
  expectRefused(ErrorCode::kVariableInUse, Command::SetVarTypeInDS, "main", 2, 8);
  EXPECT_EQ(tell(Command::DelMultiResponseSetInDS, "main", "$both"), 0);
  main().filter = "two";
  expectRefused(ErrorCode::kVariableInUse, Command::SetVarTypeInDS, "main", 3, 8);
  EXPECT_EQ(tell(Command::SetVarTypeInDS, "main", 2, 32767), 0);
}

}  // namespace
}  // namespace kova::engine
