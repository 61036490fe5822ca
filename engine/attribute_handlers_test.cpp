#include "engine/attribute_handlers.h"

#include "engine/request_kit.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;

using AttributeRequests = RequestTest;

TEST_F(AttributeRequests, TellThoseOfAVariable) {
  const CleXDSmb names = ask(Command::GetVarAttributeNames, 0);
  EXPECT_EQ(names.FirstLong(), 2);
  EXPECT_THAT(textsOf(names), ElementsAre("unit", "codes"));
  const CleXDSmb values = ask(Command::GetVarAttributes, 0, "CODES");
  EXPECT_EQ(values.FirstLong(), 3);
  EXPECT_THAT(textsOf(values), ElementsAre("a", "b", ""));
  EXPECT_THAT(textsOf(ask(Command::GetVarAttributesInProcDS, 0, "unit")), ElementsAre("points"));
  EXPECT_THAT(textsOf(ask(Command::GetVarAttributesInDS, "main", 0, "unit")), ElementsAre("points"));
  const CleXDSmb none = ask(Command::GetVarAttributeNames, 1);
  EXPECT_EQ(none.GetErrorCode(), 0);
  EXPECT_EQ(none.FirstLong(), 0);
}

TEST_F(AttributeRequests, TellThoseOfADataSet) {
  for (const CleXDSmb& names :
       {ask(Command::GetDataFileAttributeNames), ask(Command::GetDataFileAttributeNamesInProcDS),
        ask(Command::GetDataFileAttributeNamesInDS, "main")}) {
    EXPECT_EQ(names.FirstLong(), 1);
    EXPECT_THAT(textsOf(names), ElementsAre("Survey"));
  }
  for (const CleXDSmb& values :
       {ask(Command::GetDataFileAttributes, "survey"), ask(Command::GetDataFileAttributesInProcDS, "survey"),
        ask(Command::GetDataFileAttributesInDS, "main", "survey")}) {
    EXPECT_EQ(values.FirstLong(), 2);
    EXPECT_THAT(textsOf(values), ElementsAre("2024", "second wave"));
  }
  EXPECT_EQ(ask(Command::GetDataFileAttributeNamesInDS, "other").FirstLong(), 0);
}

TEST_F(AttributeRequests, AVariablesAttributeIsSetValueByValue) {
  EXPECT_EQ(tell(Command::SetVarAttributes, "Score", "Codes", "A", 0), 0);
  EXPECT_EQ(tell(Command::SetVarAttributes, "score", "codes", "d", 3), 0) << "one behind the last";
  EXPECT_THAT(textsOf(ask(Command::GetVarAttributes, 0, "codes")), ElementsAre("A", "b", "", "d"));
  EXPECT_EQ(tell(Command::SetVarAttributes, "town", "new", "first", 0), 0);
  EXPECT_THAT(textsOf(ask(Command::GetVarAttributes, 1, "new")), ElementsAre("first"));
  expectRefused(ErrorCode::kAttributePositionOutOfRange, Command::SetVarAttributes, "score", "codes", "x", 5);
  expectRefused(ErrorCode::kAttributePositionOutOfRange, Command::SetVarAttributes, "score", "codes", "x", -1);
  expectRefused(ErrorCode::kAttributePositionOutOfRange, Command::SetVarAttributes, "town", "other", "x", 1);
  expectRefused(ErrorCode::kAttributePositionOutOfRange, Command::SetVarAttributes, "town", "other", "x", 2147483647);
}

TEST_F(AttributeRequests, AVariablesAttributeIsSetWholeAndTakenAway) {
  EXPECT_EQ(tell(Command::SetVarAttributesInDS, "main", 0, "UNIT", Texts{"m", "km"}), 0);
  EXPECT_THAT(textsOf(ask(Command::GetVarAttributeNames, 0)), ElementsAre("unit", "codes")) << "it keeps its name";
  EXPECT_THAT(textsOf(ask(Command::GetVarAttributes, 0, "unit")), ElementsAre("m", "km"));
  EXPECT_EQ(tell(Command::DelVarAttributesInDS, "main", 0, "Unit"), 0);
  EXPECT_THAT(textsOf(ask(Command::GetVarAttributeNames, 0)), ElementsAre("codes"));
  expectRefused(ErrorCode::kNoSuchAttribute, Command::DelVarAttributesInDS, "main", 0, "unit");
  expectRefused(ErrorCode::kNoSuchAttribute, Command::GetVarAttributes, 0, "unit");
  expectRefused(ErrorCode::kNoSuchAttribute, Command::GetVarAttributesInDS, "main", 0, "");
}

TEST_F(AttributeRequests, ADataSetsAttributeIsSetWholeAndTakenAway) {
  EXPECT_EQ(tell(Command::SetDataFileAttributesInDS, "other", "Made.by", Texts{""}), 0);
  EXPECT_THAT(textsOf(ask(Command::GetDataFileAttributesInDS, "other", "made.BY")), ElementsAre(""));
  EXPECT_EQ(tell(Command::DelDataFileAttributesInDS, "other", "made.by"), 0);
  expectRefused(ErrorCode::kNoSuchAttribute, Command::DelDataFileAttributesInDS, "other", "made.by");
  expectRefused(ErrorCode::kNoSuchAttribute, Command::GetDataFileAttributes, "made.by");
}

TEST_F(AttributeRequests, NamesThatBreakTheRulesAreRefused) {
  struct Row {
    std::string name;
    ErrorCode code;
  };
  const Row rows[] = {
      {"", ErrorCode::kNameEmpty},          {std::string(65, 'a'), ErrorCode::kNameTooManyBytes},
      {"$a", ErrorCode::kNameBadStart},     {"a b", ErrorCode::kNameBadCharacter},
      {"a.", ErrorCode::kNameEndsInPeriod},
  };
  for (const Row& row : rows) {
    expectRefused(row.code, Command::SetVarAttributes, "score", row.name, "x", 0);
    expectRefused(row.code, Command::SetVarAttributesInDS, "main", 0, row.name, Texts{"x"});
    expectRefused(row.code, Command::SetDataFileAttributesInDS, "main", row.name, Texts{"x"});
  }
}

TEST_F(AttributeRequests, AnAttributeHasAtLeastOneValue) {
  expectRefused(ErrorCode::kAttributeWithoutValue, Command::SetVarAttributesInDS, "main", 0, "unit", Texts{});
  expectRefused(ErrorCode::kAttributeWithoutValue, Command::SetDataFileAttributesInDS, "main", "survey", Texts{});
}

}  // namespace
}  // namespace kova::engine
