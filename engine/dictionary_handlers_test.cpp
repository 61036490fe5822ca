// What the commands tell of variables, and how they find the data set and the variable.
#include "engine/request_kit.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;

using DictionaryRequests = RequestTest;

// A command that asks for a variable of the active data set, of the procedure's, and of a named one.
struct ThreeWays {
  Command active;
  Command ofProcedure;
  Command named;
};

constexpr ThreeWays kThreeWays[] = {
    {Command::GetVariableName, Command::GetVariableNameInProcDS, Command::GetVarNameInDS},
    {Command::GetVariableLabel, Command::GetVariableLabelInProcDS, Command::GetVarLabelInDS},
    {Command::GetVariableType, Command::GetVariableTypeInProcDS, Command::GetVarTypeInDS},
    {Command::GetVariableFormat, Command::GetVariableFormatInProcDS, Command::GetVarFormatInDS},
    {Command::GetVariableRole, Command::GetVariableRoleInProcDS, Command::GetVarRoleInDS},
    {Command::GetVarNMissingValues, Command::GetVarNMissingValuesInProcDS, Command::GetVarNMissingValuesInDS},
    {Command::GetVarCMissingValues, Command::GetVarCMissingValuesInProcDS, Command::GetVarCMissingValuesInDS},
    {Command::GetVarAttributeNames, Command::GetVarAttributeNamesInProcDS, Command::GetVarAttributesNameInDS},
};

// The reply as bytes, its command aside.
std::string imageOf(CleXDSmb reply) {
  reply.SetCommandAction(Command::kNone);
  reply.ContructSendData();
  int length = 0;
  const char* bytes = reply.GetSendBuf(length);
  return {bytes, static_cast<std::size_t>(length)};
}

TEST_F(DictionaryRequests, AreTheSameInAllThreeWays) {
  for (const ThreeWays& row : kThreeWays) {
    for (const int position : {0, 1, 2}) {
      const std::string active = imageOf(ask(row.active, position));
      EXPECT_EQ(imageOf(ask(row.ofProcedure, position)), active) << commandName(static_cast<int>(row.active));
      EXPECT_EQ(imageOf(ask(row.named, "MAIN", position)), active) << commandName(static_cast<int>(row.active));
      EXPECT_EQ(imageOf(ask(row.named, "*", position)), active) << commandName(static_cast<int>(row.active));
    }
  }
}

TEST_F(DictionaryRequests, KnowWhichDataSetIsMeant) {
  EXPECT_STREQ(ask(Command::GetVarNameInDS, "other", 0).FirstString(), "elsewhere");
  EXPECT_EQ(ask(Command::GetVarCountInDS, "other").FirstLong(), 1);
  EXPECT_EQ(ask(Command::GetVariableCount).FirstLong(), 4);
  state_.ofProcedure = &other();
  EXPECT_STREQ(ask(Command::GetVariableNameInProcDS, 0).FirstString(), "elsewhere");
  EXPECT_EQ(ask(Command::GetVariableCountInProcDS).FirstLong(), 1);
  EXPECT_STREQ(ask(Command::GetVariableName, 0).FirstString(), "score");
  state_.ofProcedure = nullptr;
  state_.active = &other();
  EXPECT_STREQ(ask(Command::GetVariableName, 0).FirstString(), "elsewhere");
  EXPECT_STREQ(ask(Command::GetVariableNameInProcDS, 0).FirstString(), "elsewhere");
  EXPECT_STREQ(ask(Command::GetVarNameInDS, "*", 0).FirstString(), "elsewhere");
}

TEST_F(DictionaryRequests, SayWhenThereIsNoSuchDataSet) {
  for (const char* name : {"", "mai", "mainn", "main "}) {
    EXPECT_EQ(tell(Command::GetVarCountInDS, name), 98010) << name;
    EXPECT_EQ(tell(Command::GetVarNameInDS, name, 0), 98010) << name;
    EXPECT_EQ(tell(Command::SetVarLabelInDS, name, 0, "x"), 98010) << name;
    EXPECT_EQ(tell(Command::GetDataFileAttributeNamesInDS, name), 98010) << name;
  }
  EXPECT_EQ(tell(Command::GetVarCountInDS, std::string("main\0", 5)), 98013);
  EXPECT_EQ(tell(Command::GetVarCountInDS, "m\xE4in"), 98012);
}

TEST_F(DictionaryRequests, SayWhenNoDataSetIsOpen) {
  state_.active = nullptr;
  for (const ThreeWays& row : kThreeWays) {
    EXPECT_EQ(tell(row.active, 0), 98004) << commandName(static_cast<int>(row.active));
    EXPECT_EQ(tell(row.ofProcedure, 0), 98004) << commandName(static_cast<int>(row.ofProcedure));
    EXPECT_EQ(tell(row.named, "*", 0), 98004) << commandName(static_cast<int>(row.named));
    EXPECT_NE(tell(row.named, "main", 0), 98004) << "it is open, though not active";
  }
  EXPECT_EQ(tell(Command::SetVarLabel, "score", "x"), 98004);
  EXPECT_EQ(tell(Command::GetWeightVar), 98004);
}

TEST_F(DictionaryRequests, RefusePositionsOutOfRange) {
  for (const ThreeWays& row : kThreeWays) {
    for (const int position : {-1, 4, 2147483647, static_cast<int>(0x80000000U)}) {
      EXPECT_EQ(tell(row.active, position), 10) << commandName(static_cast<int>(row.active));
      EXPECT_EQ(tell(row.ofProcedure, position), 10) << commandName(static_cast<int>(row.ofProcedure));
      EXPECT_EQ(tell(row.named, "main", position), 10) << commandName(static_cast<int>(row.named));
    }
    EXPECT_EQ(tell(row.named, "other", 1), 10) << commandName(static_cast<int>(row.named));
  }
}

TEST_F(DictionaryRequests, TellTheKindWhereTheOtherWasAsked) {
  EXPECT_EQ(tell(Command::GetVarNMissingValuesInDS, "main", 1), 24);
  EXPECT_EQ(tell(Command::GetVarCMissingValuesInDS, "main", 0), 24);
  EXPECT_EQ(tell(Command::GetVarNMissingValuesInProcDS, 1), 24);
  EXPECT_EQ(tell(Command::GetVarCMissingValuesInProcDS, 0), 24);
}

TEST_F(DictionaryRequests, TellWhatOnlyNamedDataSetsAreAskedFor) {
  EXPECT_EQ(ask(Command::GetVarAlignmentInDS, "main", 0).FirstLong(), 1);
  EXPECT_EQ(ask(Command::GetVarAlignmentInDS, "main", 1).FirstLong(), 0);
  EXPECT_EQ(ask(Command::GetVarColumnWidthInDS, "main", 0).FirstLong(), 8);
  EXPECT_EQ(ask(Command::GetVarColumnWidthInDS, "main", 1).FirstLong(), 20);
  EXPECT_STREQ(ask(Command::GetVarMeasurementLevelInDS, "main", 0).FirstString(), "scale");
  EXPECT_STREQ(ask(Command::GetVarMeasurementLevelInDS, "main", 1).FirstString(), "nominal");
  EXPECT_STREQ(ask(Command::GetVarMeasurementLevelInDS, "main", 2).FirstString(), "unknown");
}

TEST_F(DictionaryRequests, TellTheNumbersOfFormatsAndLevels) {
  EXPECT_THAT(ask(Command::GetVariableFormatTypeInProcDS, 0).Longs().GetData(), ElementsAre(2, 8, 1));
  EXPECT_EQ(ask(Command::GetVariableMeasurementLevelInProcDS, 0).FirstLong(), 3);
}

TEST_F(DictionaryRequests, TellTheWeight) {
  EXPECT_STREQ(ask(Command::GetWeightVar).FirstString(), "score");
  main().weight.clear();
  const CleXDSmb reply = ask(Command::GetWeightVar);
  EXPECT_EQ(reply.GetErrorCode(), 0);
  EXPECT_EQ(reply.Strings().Size(), 1) << "none is an empty text";
}

TEST_F(DictionaryRequests, NumberTheFaultsOfAName) {
  struct Row {
    std::string name;
    int result;
  };
  const Row rows[] = {{"fine", 0}, {"score", 0}, {"", 1},     {std::string(65, 'x'), 2}, {"9a", 3}, {"a b", 4},
                      {"a...", 5}, {"not", 6},   {"\xFF", 7}, {std::string("a\0", 2), 4}};
  for (const Row& row : rows) {
    const CleXDSmb reply = ask(Command::ValidateVarName, row.name);
    EXPECT_EQ(reply.GetErrorCode(), 0) << row.name;
    EXPECT_EQ(reply.FirstLong(), row.result) << row.name;
  }
  state_.active = nullptr;
  EXPECT_EQ(ask(Command::ValidateVarName, "fine").GetErrorCode(), 0) << "needs no data set";
}

}  // namespace
}  // namespace kova::engine
