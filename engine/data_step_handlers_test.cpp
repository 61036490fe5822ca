// Within a data step cases and variables are inserted, deleted and moved, and whole cases are read and written.
#include "engine/data_step_handlers.h"

#include <cmath>
#include <cstring>
#include <limits>

#include "engine/engine.h"
#include "engine/request_kit.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kLeast = std::numeric_limits<int>::min();
constexpr int kMost = std::numeric_limits<int>::max();

std::string bytesOf(double value) {
  std::string bytes(sizeof value, '\0');
  std::memcpy(bytes.data(), &value, sizeof value);
  return bytes;
}

std::string padded(std::string text, std::size_t size) {
  text.resize(size, ' ');
  return text;
}

// The bytes of a case of "main".
std::string caseOfMain(double score, const std::string& town, double one, double two) {
  return bytesOf(score) + padded(town, 16) + bytesOf(one) + bytesOf(two);
}

class DataSteps : public RequestTest {
 protected:
  DataSteps() {
    for (int i = 0; i < 5; ++i) main().cases.setNumber(static_cast<std::size_t>(i), 0, i);
    EXPECT_EQ(tell(Command::StartDataStep), 0);
  }

  Texts touched() { return textsOf(ask(Command::GetDatastepDatasets)); }

  Texts names() {
    Texts names;
    for (const Variable& variable : main().variables) names.push_back(variable.name);
    return names;
  }

  std::vector<double> scores() {
    std::vector<double> scores;
    const std::size_t column = main().variables.find("score").value();
    for (std::size_t i = 0; i < main().cases.caseCount(); ++i) scores.push_back(main().cases.number(i, column));
    return scores;
  }
};

TEST_F(DataSteps, AreStartedAndEnded) {
  expectRefused(ErrorCode::kDataStepRunning, Command::StartDataStep);
  EXPECT_EQ(tell(Command::EndDataStep), 0);
  expectRefused(ErrorCode::kNoDataStep, Command::EndDataStep);
  EXPECT_EQ(tell(Command::StartDataStep), 0);
}

TEST_F(DataSteps, WithoutOneNothingIsRearranged) {
  EXPECT_EQ(tell(Command::EndDataStep), 0);
  const Bytes block{caseOfMain(1, "", 1, 1)};
  expectRefused(ErrorCode::kNoDataStep, Command::InsertVariable, "main", 0, "new", 0);
  expectRefused(ErrorCode::kNoDataStep, Command::DeleteVariable, "main", 0);
  expectRefused(ErrorCode::kNoDataStep, Command::MoveVariables, "main", 0, 1);
  expectRefused(ErrorCode::kNoDataStep, Command::InsertCase, "main", 0);
  expectRefused(ErrorCode::kNoDataStep, Command::DeleteCase, "main", 0);
  expectRefused(ErrorCode::kNoDataStep, Command::SetCaseValue, "main", 0, 0, block);
  expectRefused(ErrorCode::kNoDataStep, Command::SetCasePartValue, "main", 0, 0, 0, 4, 0, block);
  EXPECT_EQ(tell(Command::GetCaseValue, "main", 0, 0), 0) << "a look needs no data step";
}

TEST_F(DataSteps, TellWhichDataSetsTheyTouched) {
  EXPECT_THAT(touched(), IsEmpty());
  EXPECT_EQ(tell(Command::GetCaseValue, "Other", 0, 0), 0);
  EXPECT_EQ(tell(Command::InsertCase, "main", 0), 0);
  EXPECT_EQ(tell(Command::InsertCase, "other", 0), 0);
  EXPECT_THAT(touched(), ElementsAre("Other", "main"));
  EXPECT_EQ(tell(Command::SetDatasetName, "Other", "Another"), 0);
  EXPECT_THAT(touched(), ElementsAre("Another", "main"));
  EXPECT_EQ(tell(Command::CloseDataset, "Another"), 0);
  EXPECT_THAT(touched(), ElementsAre("main"));
  EXPECT_EQ(tell(Command::EndDataStep), 0);
  EXPECT_THAT(touched(), IsEmpty());
  EXPECT_EQ(tell(Command::StartDataStep), 0);
  EXPECT_THAT(touched(), IsEmpty()) << "each begins anew";
}

TEST_F(DataSteps, EveryReadingAndChangingCommandTouches) {
  const auto expectTouch = [this](int code, const char* what) {
    EXPECT_EQ(code, 0) << what;
    EXPECT_THAT(touched(), ElementsAre("main")) << what;
    EXPECT_EQ(tell(Command::EndDataStep), 0);
    EXPECT_EQ(tell(Command::StartDataStep), 0);
  };
  expectTouch(tell(Command::InsertVariable, "main", 4, "new", 0), "InsertVariable");
  expectTouch(tell(Command::DeleteVariable, "main", 4), "DeleteVariable");
  expectTouch(tell(Command::MoveVariables, "main", 2, 3), "MoveVariables");
  expectTouch(tell(Command::InsertCase, "main", 0), "InsertCase");
  expectTouch(tell(Command::DeleteCase, "main", 0), "DeleteCase");
  expectTouch(tell(Command::SetVarTypeInDS, "main", 1, 10), "SetVarTypeInDS");
  expectTouch(tell(Command::FetchDatastep, "main", 0, 1), "FetchDatastep");
  expectTouch(tell(Command::GetCaseValue, "main", 0, 0), "GetCaseValue");
  expectTouch(tell(Command::CommitDataSet, dataSet{"main", 0, 0, 0, 1.0, ""}), "CommitDataSet");
  expectTouch(tell(Command::SetCaseValue, "main", 0, 0, Bytes{caseOfMain(1, "", 1, 1)}), "SetCaseValue");
}

TEST_F(DataSteps, InsertVariables) {
  EXPECT_EQ(tell(Command::InsertVariable, "main", 0, "first", 0), 0);
  EXPECT_EQ(tell(Command::InsertVariable, "main", 5, "last", 9), 0);
  EXPECT_EQ(tell(Command::InsertVariable, "*", 2, "Middle", 32767), 0);
  EXPECT_THAT(names(), ElementsAre("first", "score", "Middle", "town", "one", "two", "last"));
  EXPECT_EQ(ask(Command::GetCaseLength, "main").FirstLong(), 40 + 8 + 16 + 32768);
  EXPECT_EQ(main().cases.number(3, 1), 3.0);
  EXPECT_EQ(main().cases.number(3, 0), kSystemMissing);
  EXPECT_EQ(main().cases.text(3, 6), std::string(9, ' '));
  EXPECT_EQ(formatText(variable("first").format), "F8.2");
  EXPECT_EQ(formatText(variable("last").format), "A9");
  EXPECT_EQ(variable("last").alignment, Alignment::kLeft);
  EXPECT_EQ(main().weight, "score");
}

TEST_F(DataSteps, OtherVariablesAreNotInserted) {
  expectRefused(ErrorCode::kNoSuchDataSet, Command::InsertVariable, "nowhere", 0, "new", 0);
  for (const int position : {-1, 5, kLeast, kMost}) {
    expectRefused(ErrorCode::kIndexOutOfRange, Command::InsertVariable, "main", position, "new", 0);
  }
  for (const int type : {-1, 32768, kLeast, kMost}) {
    expectRefused(ErrorCode::kTypeOutOfRange, Command::InsertVariable, "main", 0, "new", type);
  }
  expectRefused(ErrorCode::kNameTaken, Command::InsertVariable, "main", 0, "SCORE", 0);
  expectRefused(ErrorCode::kNameBadStart, Command::InsertVariable, "main", 0, "1st", 0);
  expectRefused(ErrorCode::kNameEmpty, Command::InsertVariable, "main", 0, "", 0);
  expectRefused(ErrorCode::kTextNotUtf8, Command::InsertVariable, "main", 0, "\xFF", 0);
  EXPECT_THAT(touched(), IsEmpty());
}

TEST_F(DataSteps, CasesThatNoMemoryHoldsAreRefused) {
  while (main().cases.caseCount() < 131072) main().cases.appendCase();
  expectRefused(ErrorCode::kOutOfMemory, Command::InsertVariable, "main", 0, "wide", 32767);
}

TEST_F(DataSteps, ADeletedVariableIsTakenOutOfEverything) {
  main().filter = "one";
  EXPECT_EQ(tell(Command::DeleteVariable, "main", 1), 0);
  EXPECT_THAT(names(), ElementsAre("score", "one", "two"));
  EXPECT_THAT(main().split, IsEmpty());
  EXPECT_EQ(main().weight, "score");
  EXPECT_EQ(main().filter, "one");
  EXPECT_EQ(main().responseSets.size(), 1U);
  EXPECT_EQ(tell(Command::DeleteVariable, "main", 0), 0);
  EXPECT_EQ(main().weight, "");
  EXPECT_EQ(tell(Command::DeleteVariable, "main", 0), 0);
  EXPECT_EQ(main().filter, "");
  EXPECT_THAT(main().responseSets, IsEmpty()) << "one variable is no set";
  EXPECT_THAT(names(), ElementsAre("two"));
  EXPECT_EQ(ask(Command::GetRowCount).FirstLong(), 5);
}

TEST_F(DataSteps, AResponseSetKeepsItsOtherVariables) {
  EXPECT_EQ(tell(Command::InsertVariable, "main", 4, "three", 0), 0);
  main().responseSets[0].variables.push_back("three");
  EXPECT_EQ(tell(Command::DeleteVariable, "main", 2), 0);
  ASSERT_EQ(main().responseSets.size(), 1U);
  EXPECT_THAT(main().responseSets[0].variables, ElementsAre("two", "three"));
}

TEST_F(DataSteps, WithTheLastVariableTheCasesGo) {
  EXPECT_EQ(tell(Command::DeleteVariable, "Other", 0), 0);
  EXPECT_EQ(ask(Command::GetCaseCountInDS, "Other").FirstLong(), 0);
  expectRefused(ErrorCode::kNoVariables, Command::InsertCase, "Other", 0);
  expectRefused(ErrorCode::kIndexOutOfRange, Command::DeleteVariable, "Other", 0);
  expectRefused(ErrorCode::kCaseOutOfRange, Command::GetCaseValue, "Other", 0, 0);
  EXPECT_EQ(tell(Command::InsertVariable, "Other", 0, "new", 8), 0);
  EXPECT_EQ(tell(Command::InsertCase, "Other", 0), 0);
  EXPECT_EQ(blockOf(ask(Command::GetCaseValue, "Other", 0, 0)), std::string(8, ' '));
}

TEST_F(DataSteps, VariablesMoveWithTheirValues) {
  EXPECT_EQ(tell(Command::MoveVariables, "main", 0, 3), 0);
  EXPECT_THAT(names(), ElementsAre("town", "one", "two", "score"));
  EXPECT_THAT(scores(), ElementsAre(0, 1, 2, 3, 4));
  EXPECT_EQ(ask(Command::GetVarObsIndex, "main", 3).FirstLong(), 4);
  EXPECT_EQ(tell(Command::MoveVariables, "main", 3, 1), 0);
  EXPECT_THAT(names(), ElementsAre("town", "score", "one", "two"));
  EXPECT_THAT(scores(), ElementsAre(0, 1, 2, 3, 4));
  EXPECT_EQ(tell(Command::MoveVariables, "main", 2, 2), 0);
  EXPECT_THAT(names(), ElementsAre("town", "score", "one", "two"));
}

TEST_F(DataSteps, CasesAreInsertedAndDeletedAnywhere) {
  EXPECT_EQ(tell(Command::InsertCase, "main", 5), 0);
  EXPECT_EQ(tell(Command::InsertCase, "main", 0), 0);
  EXPECT_THAT(scores(), ElementsAre(kSystemMissing, 0, 1, 2, 3, 4, kSystemMissing));
  EXPECT_EQ(tell(Command::DeleteCase, "main", 2), 0);
  EXPECT_EQ(tell(Command::DeleteCase, "main", 5), 0);
  EXPECT_EQ(tell(Command::DeleteCase, "main", 0), 0);
  EXPECT_THAT(scores(), ElementsAre(0, 2, 3, 4));
}

TEST_F(DataSteps, OtherPositionsAreRefused) {
  for (const int position : {-1, 4, kLeast, kMost}) {
    expectRefused(ErrorCode::kIndexOutOfRange, Command::DeleteVariable, "main", position);
    expectRefused(ErrorCode::kIndexOutOfRange, Command::MoveVariables, "main", position, 0);
    expectRefused(ErrorCode::kIndexOutOfRange, Command::MoveVariables, "main", 0, position);
  }
  for (const int position : {-1, 6, kLeast, kMost}) {
    expectRefused(ErrorCode::kCaseOutOfRange, Command::InsertCase, "main", position);
    expectRefused(ErrorCode::kCaseOutOfRange, Command::DeleteCase, "main", position);
  }
  expectRefused(ErrorCode::kCaseOutOfRange, Command::DeleteCase, "main", 5);
  for (const Command command : {Command::DeleteVariable, Command::InsertCase, Command::DeleteCase}) {
    expectRefused(ErrorCode::kNoSuchDataSet, command, "nowhere", 0);
  }
  expectRefused(ErrorCode::kNoSuchDataSet, Command::MoveVariables, "nowhere", 0, 0);
}

TEST_F(DataSteps, ACaseIsReadAndWrittenWhole) {
  main().cases.setText(2, 1, "Bremen");
  EXPECT_EQ(blockOf(ask(Command::GetCaseValue, "main", 2, 0)), caseOfMain(2, "Bremen", kSystemMissing, kSystemMissing));
  const std::string changed = caseOfMain(7.5, "Ulm", kSystemMissing, -0.0);
  EXPECT_EQ(tell(Command::SetCaseValue, "main", 4, 0, Bytes{changed}), 0);
  EXPECT_EQ(blockOf(ask(Command::GetCaseValue, "*", 4, 0)), changed);
  EXPECT_THAT(scores(), ElementsAre(0, 1, 2, 3, 7.5));
}

TEST_F(DataSteps, APartOfACaseIsWritten) {
  EXPECT_EQ(tell(Command::SetCasePartValue, "main", 1, 0, 1, 2, 0, Bytes{padded("Ulm", 16) + bytesOf(6)}), 0);
  EXPECT_EQ(blockOf(ask(Command::GetCaseValue, "main", 1, 0)), caseOfMain(1, "Ulm", 6, kSystemMissing));
  EXPECT_EQ(tell(Command::SetCasePartValue, "main", 1, 0, 3, 1, 0, Bytes{bytesOf(9)}), 0);
  EXPECT_EQ(blockOf(ask(Command::GetCaseValue, "main", 1, 0)), caseOfMain(1, "Ulm", 6, 9));
}

TEST_F(DataSteps, StringsOfAllWidthsAreWritten) {
  for (const int width : {1, 8, 9, 32767}) {
    EXPECT_EQ(tell(Command::SetVarTypeInDS, "Other", 0, width), 0);
    const auto size = static_cast<std::size_t>(ask(Command::GetCaseLength, "Other").FirstLong());
    const std::string block = padded(std::string(static_cast<std::size_t>(width), 'w'), size);
    EXPECT_EQ(tell(Command::SetCaseValue, "Other", 0, 0, Bytes{block}), 0) << width;
    EXPECT_EQ(blockOf(ask(Command::GetCaseValue, "Other", 0, 0)), block) << width;
    expectRefused(ErrorCode::kCaseSizeWrong, Command::SetCaseValue, "Other", 0, 0, Bytes{block + "        "});
    if (size == static_cast<std::size_t>(width)) continue;
    expectRefused(ErrorCode::kValueTooLong, Command::SetCaseValue, "Other", 0, 0, Bytes{std::string(size, 'w')});
  }
}

TEST_F(DataSteps, OtherCasesAreNotRead) {
  expectRefused(ErrorCode::kNoSuchDataSet, Command::GetCaseValue, "nowhere", 0, 0);
  for (const int position : {-1, 5, kLeast, kMost}) {
    expectRefused(ErrorCode::kCaseOutOfRange, Command::GetCaseValue, "main", position, 0);
  }
  expectRefused(ErrorCode::kCaseFlagUnknown, Command::GetCaseValue, "main", 0, 1);
}

TEST_F(DataSteps, OtherCasesAreNotWritten) {
  const Bytes block{caseOfMain(1, "Ulm", 1, 1)};
  expectRefused(ErrorCode::kNoSuchDataSet, Command::SetCaseValue, "nowhere", 0, 0, block);
  for (const int position : {-1, 5, kLeast, kMost}) {
    expectRefused(ErrorCode::kCaseOutOfRange, Command::SetCaseValue, "main", position, 0, block);
  }
  expectRefused(ErrorCode::kCaseFlagUnknown, Command::SetCaseValue, "main", 0, 1, block);
  expectRefused(ErrorCode::kCaseSizeWrong, Command::SetCaseValue, "main", 0, 0, Bytes{block.bytes.substr(8)});
  expectRefused(ErrorCode::kCaseSizeWrong, Command::SetCaseValue, "main", 0, 0, Bytes{"x"});
  struct Row {
    ErrorCode code;
    std::string bytes;
  };
  const Row rows[] = {{ErrorCode::kNumberNotValid, caseOfMain(std::nan(""), "Ulm", 1, 1)},
                      {ErrorCode::kNumberNotValid, caseOfMain(1, "Ulm", 1, HUGE_VAL)},
                      {ErrorCode::kTextNotUtf8, caseOfMain(1, "\xFF", 1, 1)},
                      {ErrorCode::kTextWithNul, caseOfMain(1, std::string("a\0b", 3), 1, 1)},
                      {ErrorCode::kValueTooLong, caseOfMain(1, "Wilhelmshaven", 1, 1)}};
  for (const Row& row : rows) {
    expectRefused(row.code, Command::SetCaseValue, "main", 0, 0, Bytes{row.bytes});
    expectRefused(row.code, Command::SetCasePartValue, "main", 0, 0, 0, 4, 0, Bytes{row.bytes});
  }
  EXPECT_THAT(touched(), IsEmpty());
}

TEST_F(DataSteps, OtherPartsAreNotWritten) {
  const Bytes two{padded("Ulm", 16) + bytesOf(1)};
  for (const int first : {-1, 4, kLeast, kMost}) {
    expectRefused(ErrorCode::kIndexOutOfRange, Command::SetCasePartValue, "main", 0, 0, first, 1, 0, two);
  }
  for (const int count : {-1, 0, 4, kLeast, kMost}) {
    expectRefused(ErrorCode::kIndexOutOfRange, Command::SetCasePartValue, "main", 0, 0, 1, count, 0, two);
  }
  expectRefused(ErrorCode::kCaseFlagUnknown, Command::SetCasePartValue, "main", 0, 0, 1, 2, 1, two);
  expectRefused(ErrorCode::kCaseFlagUnknown, Command::SetCasePartValue, "main", 0, 1, 1, 2, 0, two);
  expectRefused(ErrorCode::kCaseSizeWrong, Command::SetCasePartValue, "main", 0, 0, 0, 2, 0,
                Bytes{two.bytes + two.bytes});
  expectRefused(ErrorCode::kMalformedRequest, Command::SetCasePartValue, "main", 0, 0, 1, two);
  expectRefused(ErrorCode::kMalformedRequest, Command::SetCasePartValue, "main", 0, 0, 1, 2, two);
  expectRefused(ErrorCode::kMalformedRequest, Command::SetCaseValue, "main", 0, 0);
}

TEST_F(DataSteps, WhatACaseCursorReadsKeepsItsPlaces) {
  EXPECT_EQ(tell(Command::MakeCaseCursor, "r"), 0);
  expectRefused(ErrorCode::kDataSetInUse, Command::InsertVariable, "main", 0, "new", 0);
  expectRefused(ErrorCode::kDataSetInUse, Command::DeleteVariable, "main", 0);
  expectRefused(ErrorCode::kDataSetInUse, Command::MoveVariables, "main", 0, 1);
  expectRefused(ErrorCode::kDataSetInUse, Command::InsertCase, "main", 0);
  expectRefused(ErrorCode::kDataSetInUse, Command::DeleteCase, "main", 0);
  expectRefused(ErrorCode::kDataSetInUse, Command::SetVarTypeInDS, "main", 1, 20);
  EXPECT_EQ(tell(Command::InsertCase, "Other", 0), 0) << "the others are free";
  EXPECT_EQ(tell(Command::SetCaseValue, "main", 0, 0, Bytes{caseOfMain(1, "Ulm", 1, 1)}), 0) << "values may change";
  EXPECT_EQ(tell(Command::RemoveCaseCursor), 0);
  EXPECT_EQ(tell(Command::InsertCase, "main", 0), 0);
}

int codeOf(Engine* engine, Command command, int conversation) {
  CleXDSmb request;
  request.SetCommandAction(command);
  CleXDSmb reply;
  engine->perform(request, reply, conversation);
  return reply.GetErrorCode();
}

TEST(DataStepsOfConversations, EndWithTheirProgram) {
  Engine engine;
  EXPECT_EQ(codeOf(&engine, Command::StartDataStep, 1), 0);
  EXPECT_EQ(codeOf(&engine, Command::StartDataStep, 2), 0) << "each has its own";
  engine.leave(1);
  EXPECT_EQ(codeOf(&engine, Command::StartDataStep, 1), 0);
  EXPECT_EQ(codeOf(&engine, Command::StartDataStep, 2), static_cast<int>(ErrorCode::kDataStepRunning));
}

}  // namespace
}  // namespace kova::engine
