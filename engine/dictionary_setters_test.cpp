// What the commands change of variables, and what they refuse without changing anything.
#include <cmath>
#include <limits>

#include "engine/case_store.h"
#include "engine/dictionary_rules.h"
#include "engine/request_kit.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;

using DictionaryChanges = RequestTest;

TEST_F(DictionaryChanges, ALabelIsSetByNameAndReadByPosition) {
  EXPECT_EQ(tell(Command::SetVarLabel, "TOWN", "Where \"they\" <live>"), 0);
  EXPECT_STREQ(ask(Command::GetVariableLabel, 1).FirstString(), "Where \"they\" <live>");
  EXPECT_EQ(tell(Command::SetVarLabelInDS, "other", 0, "\u00E9"), 0);
  EXPECT_STREQ(ask(Command::GetVarLabelInDS, "OTHER", 0).FirstString(), "\u00E9");
  EXPECT_EQ(tell(Command::SetVarLabel, "town", ""), 0);
  EXPECT_EQ(variable("town").label, "");
}

TEST_F(DictionaryChanges, AVariableThatIsNotThereIsRefused) {
  expectRefused(ErrorCode::kNoSuchVariable, Command::SetVarLabel, "scor", "x");
  expectRefused(ErrorCode::kNoSuchVariable, Command::SetVarLabel, "", "x");
  expectRefused(ErrorCode::kNoSuchVariable, Command::SetVarFormat, "elsewhere", 2, 8, 2);
  expectRefused(ErrorCode::kNoSuchVariable, Command::SetVarAttributes, "nobody", "a", "b", 0);
  expectRefused(ErrorCode::kIndexOutOfRange, Command::SetVarLabelInDS, "main", 4, "x");
  expectRefused(ErrorCode::kIndexOutOfRange, Command::SetVarLabelInDS, "main", -1, "x");
}

TEST_F(DictionaryChanges, ATextThatIsNoneIsRefused) {
  const std::string withNul("a\0b", 3);
  expectRefused(ErrorCode::kTextWithNul, Command::SetVarLabel, "score", withNul);
  expectRefused(ErrorCode::kTextNotUtf8, Command::SetVarLabel, "score", "caf\xE9");
  expectRefused(ErrorCode::kTextNotUtf8, Command::SetVarLabel, "sc\xF6re", "x");
  expectRefused(ErrorCode::kTextWithNul, Command::SetVarNameInDS, "main", 0, withNul);
  expectRefused(ErrorCode::kTextNotUtf8, Command::SetVarCValueLabel, "town", "\xFE", "x");
  expectRefused(ErrorCode::kTextNotUtf8, Command::SetVarCMissingValues, "town", 1, "\xFE", "", "");
  expectRefused(ErrorCode::kTextWithNul, Command::SetVarAttributesInDS, "main", 0, "a", Texts{"fine", withNul});
  expectRefused(ErrorCode::kTextNotUtf8, Command::SetMultiResponseSetInDS, "main", "$s", "", 2, "",
                Texts{"one", "tw\xF6"});
}

TEST_F(DictionaryChanges, ANameChangesWhereverItIsUsed) {
  main().filter = "two";
  EXPECT_EQ(tell(Command::SetVarNameInDS, "main", 3, "second"), 0);
  EXPECT_EQ(main().filter, "second");
  EXPECT_EQ(tell(Command::SetVarNameInDS, "main", 0, "points"), 0);
  EXPECT_EQ(tell(Command::SetVarNameInDS, "main", 1, "Place"), 0);
  EXPECT_EQ(tell(Command::SetVarNameInDS, "main", 2, "\u00E4"), 0);
  EXPECT_EQ(main().weight, "points");
  EXPECT_THAT(main().split, ElementsAre("Place"));
  EXPECT_THAT(main().responseSets[0].variables, ElementsAre("\u00E4", "second"));
  EXPECT_EQ(tell(Command::SetVarLabel, "POINTS", "new"), 0);
  EXPECT_EQ(variable("points").label, "new");
  expectRefused(ErrorCode::kNoSuchVariable, Command::SetVarLabel, "score", "old");
}

TEST_F(DictionaryChanges, ANameMayChangeItsCase) {
  EXPECT_EQ(tell(Command::SetVarNameInDS, "main", 0, "SCORE"), 0);
  EXPECT_STREQ(ask(Command::GetVariableName, 0).FirstString(), "SCORE");
  EXPECT_EQ(main().weight, "SCORE");
}

TEST_F(DictionaryChanges, NamesThatBreakTheRulesAreRefused) {
  struct Row {
    std::string name;
    ErrorCode code;
  };
  const Row rows[] = {
      {"Town", ErrorCode::kNameTaken},       {"", ErrorCode::kNameEmpty},
      {"1a", ErrorCode::kNameBadStart},      {std::string(65, 'a'), ErrorCode::kNameTooManyBytes},
      {"a b", ErrorCode::kNameBadCharacter}, {"a.", ErrorCode::kNameEndsInPeriod},
      {"By", ErrorCode::kNameReserved},
  };
  for (const Row& row : rows) expectRefused(row.code, Command::SetVarNameInDS, "main", 0, row.name);
}

TEST_F(DictionaryChanges, AFormatFitsItsVariable) {
  EXPECT_EQ(tell(Command::SetVarFormat, "score", 6, 10, 3), 0);
  EXPECT_STREQ(ask(Command::GetVariableFormat, 0).FirstString(), "PCT10.3");
  EXPECT_EQ(tell(Command::SetVarFormatInDS, "main", 1, 1, 40, 0), 0);
  EXPECT_STREQ(ask(Command::GetVariableFormat, 1).FirstString(), "A40");
  EXPECT_EQ(tell(Command::SetVarFormat, "score", 8, 10, 0), 0);
  EXPECT_EQ(tell(Command::SetVarFormat, "score", 2, 40, 16), 0);
  EXPECT_EQ(tell(Command::SetVarFormat, "score", 2, 1, 0), 0);
}

TEST_F(DictionaryChanges, OtherFormatsAreRefused) {
  struct Row {
    const char* label;
    ErrorCode code;
    const char* name;
    int type;
    int width;
    int decimals;
  };
  const Row rows[] = {
      {"number 0", ErrorCode::kUnknownFormat, "score", 0, 8, 2},
      {"number 11", ErrorCode::kUnknownFormat, "score", 11, 8, 2},
      {"a negative number", ErrorCode::kUnknownFormat, "score", -1, 8, 2},
      {"A for a number", ErrorCode::kFormatOfOtherKind, "score", 1, 8, 0},
      {"F for a string", ErrorCode::kFormatOfOtherKind, "town", 2, 8, 2},
      {"width 0", ErrorCode::kFormatWidthOutOfRange, "score", 2, 0, 0},
      {"width 41", ErrorCode::kFormatWidthOutOfRange, "score", 2, 41, 0},
      {"a negative width", ErrorCode::kFormatWidthOutOfRange, "town", 1, -5, 0},
      {"width 32768", ErrorCode::kFormatWidthOutOfRange, "town", 1, 32768, 0},
      {"negative decimals", ErrorCode::kFormatDecimalsOutOfRange, "score", 2, 8, -1},
      {"17 decimals", ErrorCode::kFormatDecimalsOutOfRange, "score", 2, 40, 17},
      {"as many decimals as the width", ErrorCode::kFormatDecimalsOutOfRange, "score", 2, 8, 8},
      {"decimals of a day", ErrorCode::kFormatDecimalsOutOfRange, "score", 8, 10, 1},
      {"decimals of a text", ErrorCode::kFormatDecimalsOutOfRange, "town", 1, 10, 1},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    expectRefused(row.code, Command::SetVarFormat, row.name, row.type, row.width, row.decimals);
    const int position = std::string(row.name) == "score" ? 0 : 1;
    expectRefused(row.code, Command::SetVarFormatInDS, "main", position, row.type, row.width, row.decimals);
  }
}

TEST_F(DictionaryChanges, LevelsRolesAlignmentsAndColumnWidthsHaveTheirRanges) {
  struct Row {
    Command byName;
    Command byPosition;
    int least;
    int most;
    ErrorCode code;
    Command reader;
  };
  const Row rows[] = {
      {Command::SetVarMeasureLevel, Command::kNone, 0, 3, ErrorCode::kMeasureOutOfRange,
       Command::GetVariableMeasurementLevel},
      {Command::SetVarRole, Command::SetVarRoleInDS, 0, 5, ErrorCode::kRoleOutOfRange, Command::GetVarRoleInDS},
      {Command::SetVarAlignment, Command::SetVarAlignmentInDS, 0, 2, ErrorCode::kAlignmentOutOfRange,
       Command::GetVarAlignmentInDS},
      {Command::kNone, Command::SetVarColumnWidthInDS, 1, 255, ErrorCode::kColumnWidthOutOfRange,
       Command::GetVarColumnWidthInDS},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(commandName(static_cast<int>(row.reader)));
    for (const int value : {row.least, row.most}) {
      if (row.byName != Command::kNone) {
        EXPECT_EQ(tell(row.byName, "town", value), 0);
      }
      if (row.byPosition != Command::kNone) {
        EXPECT_EQ(tell(row.byPosition, "main", 1, value), 0);
        EXPECT_EQ(ask(row.reader, "main", 1).FirstLong(), value);
      } else {
        EXPECT_EQ(ask(row.reader, 1).FirstLong(), value);
      }
    }
    for (const int value : {row.least - 1, row.most + 1, 2147483647, static_cast<int>(0x80000000U)}) {
      if (row.byName != Command::kNone) expectRefused(row.code, row.byName, "town", value);
      if (row.byPosition != Command::kNone) expectRefused(row.code, row.byPosition, "main", 1, value);
    }
  }
}

TEST_F(DictionaryChanges, ALevelOfANamedDataSetIsAWord) {
  for (const char* word : {"nominal", "Ordinal", "SCALE", "unknown"}) {
    EXPECT_EQ(tell(Command::SetVarMeasurementLevelInDS, "main", 1, word), 0) << word;
  }
  EXPECT_EQ(variable("town").measure, Measure::kUnknown);
  for (const char* word : {"", "scal", "interval", "3"}) {
    expectRefused(ErrorCode::kMeasureOutOfRange, Command::SetVarMeasurementLevelInDS, "main", 1, word);
  }
}

TEST_F(DictionaryChanges, MissingNumbersOfEveryKind) {
  struct Row {
    int kind;
    double v1, v2, v3;
  };
  const Row rows[] = {{0, 0, 0, 0},
                      {1, -9, 0, 0},
                      {2, 8, 9, 0},
                      {3, 7, 8, 9},
                      {-2, -5, -1, 0},
                      {-3, 90, 99, -1},
                      {-2, 5, 5, 0},
                      {-2, kLowestNumber, 0, 0},
                      {-2, 100, kHighestNumber, kSystemMissing}};
  for (const Row& row : rows) {
    EXPECT_EQ(tell(Command::SetVarNMissingValues, "score", row.kind, row.v1, row.v2, row.v3), 0) << row.kind;
    EXPECT_EQ(tell(Command::SetVarNMissingValuesInDS, "main", 2, row.kind, row.v1, row.v2, row.v3), 0) << row.kind;
    const CleXDSmb reply = ask(Command::GetVarNMissingValues, 0);
    EXPECT_EQ(reply.FirstLong(), row.kind);
    const double third = row.v3 == kSystemMissing ? 0.0 : row.v3;
    EXPECT_THAT(reply.Doubles().GetData(), ElementsAre(row.v1, row.v2, third));
    EXPECT_TRUE(variable("score").missing == variable("one").missing);
  }
}

TEST_F(DictionaryChanges, OtherMissingNumbersAreRefused) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  struct Row {
    const char* label;
    ErrorCode code;
    int kind;
    double v1, v2, v3;
  };
  const Row rows[] = {
      {"four", ErrorCode::kMissingKindOutOfRange, 4, 1, 2, 3},
      {"-1", ErrorCode::kMissingKindOutOfRange, -1, 1, 2, 3},
      {"-4", ErrorCode::kMissingKindOutOfRange, -4, 1, 2, 3},
      {"a third where there are two", ErrorCode::kMissingValueSurplus, 2, 1, 2, 3},
      {"a third beside a range", ErrorCode::kMissingValueSurplus, -2, 1, 2, 3},
      {"one where there is none", ErrorCode::kMissingValueSurplus, 0, 1, 0, 0},
      {"a range upside down", ErrorCode::kMissingRangeReversed, -2, 2, 1, 0},
      {"a range upside down, and one", ErrorCode::kMissingRangeReversed, -3, 2, 1, 9},
      {"not a number", ErrorCode::kNumberNotValid, 1, std::nan(""), 0, 0},
      {"infinite", ErrorCode::kNumberNotValid, -2, 0, kInfinity, 0},
      {"system-missing", ErrorCode::kNumberNotValid, 1, kSystemMissing, 0, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    expectRefused(row.code, Command::SetVarNMissingValues, "score", row.kind, row.v1, row.v2, row.v3);
    expectRefused(row.code, Command::SetVarNMissingValuesInDS, "main", 0, row.kind, row.v1, row.v2, row.v3);
  }
  expectRefused(ErrorCode::kWrongKind, Command::SetVarNMissingValues, "town", 1, 1.0, 0.0, 0.0);
}

TEST_F(DictionaryChanges, MissingTextsOfEveryKind) {
  EXPECT_EQ(tell(Command::SetVarCMissingValues, "town", 3, "12345678", "b   ", ""), 0);
  const CleXDSmb reply = ask(Command::GetVarCMissingValues, 1);
  EXPECT_EQ(reply.FirstLong(), 3);
  EXPECT_THAT(textsOf(reply), ElementsAre("12345678", "b", ""));
  EXPECT_EQ(tell(Command::SetVarCMissingValuesInDS, "main", 1, 0, "", "", "  "), 0);
  EXPECT_TRUE(variable("town").missing == MissingValues());
}

TEST_F(DictionaryChanges, OtherMissingTextsAreRefused) {
  struct Row {
    const char* label;
    ErrorCode code;
    int kind;
    const char* v1;
    const char* v2;
    const char* v3;
  };
  const Row rows[] = {
      {"four", ErrorCode::kMissingKindOutOfRange, 4, "a", "b", "c"},
      {"a range", ErrorCode::kMissingKindOutOfRange, -2, "a", "b", ""},
      {"a third where there are two", ErrorCode::kMissingValueSurplus, 2, "a", "b", "c"},
      {"nine bytes", ErrorCode::kMissingValueTooLong, 1, "123456789", "", ""},
      {"five characters of two bytes", ErrorCode::kMissingValueTooLong, 1, "\u00E9\u00E9\u00E9\u00E9\u00E9", "", ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    expectRefused(row.code, Command::SetVarCMissingValues, "town", row.kind, row.v1, row.v2, row.v3);
    expectRefused(row.code, Command::SetVarCMissingValuesInDS, "main", 1, row.kind, row.v1, row.v2, row.v3);
  }
  expectRefused(ErrorCode::kWrongKind, Command::SetVarCMissingValues, "score", 1, "a", "", "");
  expectRefused(ErrorCode::kMissingValueTooLong, Command::SetVarCMissingValuesInDS, "other", 0, 1, "abc", "", "");
}

TEST_F(DictionaryChanges, RequestsThatLackItemsAreRefused) {
  expectRefused(ErrorCode::kMalformedRequest, Command::SetVarLabel, "score");
  expectRefused(ErrorCode::kMalformedRequest, Command::SetVarCMissingValues, "town", 2, "a", "b");
  expectRefused(ErrorCode::kMalformedRequest, Command::SetVarAttributesInDS, "main", 0, "a");
}

}  // namespace
}  // namespace kova::engine
