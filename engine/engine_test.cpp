// What the engine answers to each command, asked with messages as a client sends them.
#include "engine/engine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "engine/data_package.h"
#include "engine/error_codes.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;

DataSet smallDataSet() {
  Variable number;
  number.name = "score";
  number.label = "Score";
  number.format = {FormatType::kF, 8, 1};
  number.measure = Measure::kScale;
  number.role = Role::kTarget;
  number.missing = {kMissingRangeAndOne, {-9.0, -1.0, 99.0}, {}};
  number.numberLabels = {{1.0, "low"}, {2.0, "high"}};
  Variable text;
  text.name = "town";
  text.width = 12;
  text.format = {FormatType::kA, 12, 0};
  text.measure = Measure::kNominal;
  text.missing = {kTwoMissing, {}, {"NA", "?", ""}};
  text.textLabels = {{"B", "Bremen"}, {"", "none"}};
  DataSet dataSet;
  dataSet.variables = {number, text};
  dataSet.cases = CaseStore({0, 12});
  for (int i = 0; i < 5; ++i) dataSet.cases.appendCase();
  return dataSet;
}

class EngineTest : public testing::Test {
 protected:
  EngineTest() { engine_.open(smallDataSet()); }

  // The reply to a command with one long item.
  CleXDSmb ask(Command command, int position) {
    CleXDSmb request;
    request.SetLong(position);
    return send(command, request);
  }

  CleXDSmb ask(Command command) {
    CleXDSmb request;
    return send(command, request);
  }

  CleXDSmb send(Command command, CleXDSmb& request) {
    request.SetCommandAction(command);
    CleXDSmb reply;
    engine_.perform(request, reply);
    EXPECT_EQ(reply.GetCommandAction(), command);
    return reply;
  }

  Engine engine_;
};

TEST_F(EngineTest, IsReady) { EXPECT_EQ(ask(Command::IsBackendReady).FirstLong(), 1); }

TEST_F(EngineTest, CountsVariablesAndCases) {
  EXPECT_EQ(ask(Command::GetVariableCount).FirstLong(), 2);
  EXPECT_EQ(ask(Command::GetRowCount).FirstLong(), 5);
}

TEST_F(EngineTest, TellsTexts) {
  EXPECT_STREQ(ask(Command::GetVariableName, 0).FirstString(), "score");
  EXPECT_STREQ(ask(Command::GetVariableLabel, 0).FirstString(), "Score");
  EXPECT_STREQ(ask(Command::GetVariableFormat, 0).FirstString(), "F8.1");
  const CleXDSmb label = ask(Command::GetVariableLabel, 1);
  EXPECT_EQ(label.Strings().Size(), 1) << "an empty label is a text too";
}

TEST_F(EngineTest, TellsNumbers) {
  EXPECT_EQ(ask(Command::GetVariableType, 0).FirstLong(), 0);
  EXPECT_EQ(ask(Command::GetVariableType, 1).FirstLong(), 12);
  EXPECT_EQ(ask(Command::GetVariableMeasurementLevel, 0).FirstLong(), 3);
  EXPECT_EQ(ask(Command::GetVariableMeasurementLevel, 1).FirstLong(), 1);
  EXPECT_EQ(ask(Command::GetVariableRole, 0).FirstLong(), 1);
  EXPECT_EQ(ask(Command::GetVariableRole, 1).FirstLong(), 0);
  EXPECT_THAT(ask(Command::GetVariableFormatType, 0).GetLongData().GetData(), ElementsAre(2, 8, 1));
  EXPECT_THAT(ask(Command::GetVariableFormatType, 1).GetLongData().GetData(), ElementsAre(1, 12, 0));
}

TEST_F(EngineTest, TellsMissingValues) {
  const CleXDSmb numbers = ask(Command::GetVarNMissingValues, 0);
  EXPECT_EQ(numbers.FirstLong(), -3);
  EXPECT_THAT(numbers.GetDoubleData().GetData(), ElementsAre(-9.0, -1.0, 99.0));
  const CleXDSmb texts = ask(Command::GetVarCMissingValues, 1);
  EXPECT_EQ(texts.FirstLong(), 2);
  EXPECT_THAT(texts.GetStringData().GetData(), ElementsAre("NA", "?", ""));
}

TEST_F(EngineTest, TellsValueLabels) {
  const CleXDSmb numbers = ask(Command::GetNValueLabels, 0);
  EXPECT_EQ(numbers.FirstLong(), 2);
  EXPECT_THAT(numbers.GetDoubleData().GetData(), ElementsAre(1.0, 2.0));
  EXPECT_THAT(numbers.GetStringData().GetData(), ElementsAre("low", "high"));
  const CleXDSmb texts = ask(Command::GetCValueLabels, 1);
  EXPECT_EQ(texts.FirstLong(), 2);
  ASSERT_EQ(texts.StringArrays().size(), 2U);
  EXPECT_THAT(texts.StringArrays()[0].GetData(), ElementsAre("B", ""));
  EXPECT_THAT(texts.StringArrays()[1].GetData(), ElementsAre("Bremen", "none"));
}

TEST_F(EngineTest, TellsTheSystemMissingValue) {
  const double value = ask(Command::GetSystemMissingValue).FirstDouble();
  unsigned char bytes[8];
  std::memcpy(bytes, &value, sizeof value);
  EXPECT_THAT(bytes, ElementsAre(0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xEF, 0xFF));
}

TEST_F(EngineTest, CarriesOutSubmittedSyntax) {
  CleXDSmb broken;
  broken.SetString("compute x = 1;\0 more", 20);
  EXPECT_EQ(send(Command::Submit, broken).GetErrorCode(), 98013);
  EXPECT_EQ(ask(Command::GetVariableCount).FirstLong(), 2);
  CleXDSmb whole;
  whole.SetString("compute x = 1;\n");
  EXPECT_EQ(send(Command::Submit, whole).GetErrorCode(), 0);
  EXPECT_EQ(ask(Command::GetVariableCount).FirstLong(), 3);
}

constexpr Command kVariableCommands[] = {
    Command::GetVariableName,   Command::GetVariableLabel,      Command::GetVariableType,
    Command::GetVariableFormat, Command::GetVariableFormatType, Command::GetVariableMeasurementLevel,
    Command::GetVariableRole,   Command::GetVarNMissingValues,  Command::GetVarCMissingValues,
    Command::GetNValueLabels,   Command::GetCValueLabels,
};

TEST_F(EngineTest, RefusesPositionsOutOfRange) {
  for (const Command command : kVariableCommands) {
    for (const int position : {-1, 2, 2147483647, static_cast<int>(0x80000000U)}) {
      const CleXDSmb reply = ask(command, position);
      EXPECT_EQ(reply.GetErrorCode(), 10) << commandName(static_cast<int>(command)) << " " << position;
      EXPECT_EQ(reply.Longs().Size() + reply.Strings().Size() + reply.Doubles().Size(), 0);
    }
  }
}

TEST_F(EngineTest, RefusesTheWrongKind) {
  EXPECT_EQ(ask(Command::GetVarNMissingValues, 1).GetErrorCode(), 24);
  EXPECT_EQ(ask(Command::GetVarCMissingValues, 0).GetErrorCode(), 24);
  EXPECT_EQ(ask(Command::GetNValueLabels, 1).GetErrorCode(), 24);
  EXPECT_EQ(ask(Command::GetCValueLabels, 0).GetErrorCode(), 24);
}

TEST_F(EngineTest, RefusesRequestsThatLackItems) {
  for (const Command command : kVariableCommands) {
    EXPECT_EQ(ask(command).GetErrorCode(), 98003) << commandName(static_cast<int>(command));
  }
  EXPECT_EQ(ask(Command::Submit).GetErrorCode(), 98003);
}

TEST_F(EngineTest, TellsUnknownFromUnansweredCommands) {
  for (const int code : {-2147483647, -1, 3, 17, 90, 183, 250, 251, 2147483647}) {
    EXPECT_EQ(ask(static_cast<Command>(code)).GetErrorCode(), 98001) << code;
  }
  EXPECT_EQ(ask(Command::StopKova).GetErrorCode(), 98002);
}

TEST(EngineWithoutData, SaysSo) {
  Engine engine;
  for (const Command command : {Command::GetVariableCount, Command::GetRowCount, Command::GetVariableName}) {
    CleXDSmb request;
    CleXDSmb reply;
    request.SetCommandAction(command);
    request.SetLong(0);
    engine.perform(request, reply);
    EXPECT_EQ(reply.GetErrorCode(), 98004) << commandName(static_cast<int>(command));
  }
}

}  // namespace
}  // namespace kova::engine
