#include "engine/response_set_handlers.h"

#include "engine/request_kit.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using ResponseSetRequests = RequestTest;

constexpr int kDichotomies = 1;
constexpr int kCategories = 2;

TEST_F(ResponseSetRequests, TellASetInAllThreeWays) {
  for (const CleXDSmb& names : {ask(Command::GetMultiResponseSetNames), ask(Command::GetMultiResponseSetNamesInProcDS),
                                ask(Command::GetMultiResponseSetNamesInDS, "main")}) {
    EXPECT_THAT(textsOf(names), ElementsAre("$both"));
  }
  for (const CleXDSmb& set :
       {ask(Command::GetMultiResponseSet, "$BOTH"), ask(Command::GetMultiResponseSetInProcDS, "$both"),
        ask(Command::GetMultiResponseSetInDS, "main", "$both")}) {
    EXPECT_EQ(set.FirstLong(), kDichotomies);
    EXPECT_THAT(textsOf(set), ElementsAre("Both", "1", "one", "two"));
  }
  const CleXDSmb none = ask(Command::GetMultiResponseSetNamesInDS, "other");
  EXPECT_EQ(none.GetErrorCode(), 0);
  EXPECT_THAT(textsOf(none), IsEmpty());
}

TEST_F(ResponseSetRequests, ASetIsAddedReplacedAndTakenAway) {
  EXPECT_EQ(
      tell(Command::SetMultiResponseSetInDS, "main", "$answers", "", kCategories, "", Texts{"TWO", "score", "one"}), 0);
  EXPECT_THAT(textsOf(ask(Command::GetMultiResponseSetNames)), ElementsAre("$both", "$answers"));
  EXPECT_THAT(textsOf(ask(Command::GetMultiResponseSet, "$answers")), ElementsAre("", "", "two", "score", "one"));
  EXPECT_EQ(tell(Command::SetMultiResponseSetInDS, "main", "$Both", "New", kDichotomies, "-2.5", Texts{"two", "one"}),
            0);
  EXPECT_THAT(textsOf(ask(Command::GetMultiResponseSetNames)), ElementsAre("$Both", "$answers"));
  EXPECT_THAT(textsOf(ask(Command::GetMultiResponseSet, "$both")), ElementsAre("New", "-2.5", "two", "one"));
  EXPECT_EQ(tell(Command::DelMultiResponseSetInDS, "main", "$ANSWERS"), 0);
  EXPECT_THAT(textsOf(ask(Command::GetMultiResponseSetNames)), ElementsAre("$Both"));
}

TEST_F(ResponseSetRequests, TextsAreCountedToo) {
  main().weight.clear();
  EXPECT_EQ(tell(Command::DelMultiResponseSetInDS, "main", "$both"), 0);
  EXPECT_EQ(tell(Command::SetVarTypeInDS, "main", 2, 3), 0);
  EXPECT_EQ(tell(Command::SetMultiResponseSetInDS, "main", "$texts", "", kDichotomies, "yes", Texts{"town", "one"}), 0);
  expectRefused(ErrorCode::kCountedValueNotValid, Command::SetMultiResponseSetInDS, "main", "$texts", "", kDichotomies,
                "yess", Texts{"town", "one"});
  EXPECT_EQ(tell(Command::SetVarTypeInDS, "main", 2, 20), 0) << "a variable of a set may change its width";
  expectRefused(ErrorCode::kVariableInUse, Command::SetVarTypeInDS, "main", 2, 2);
  expectRefused(ErrorCode::kVariableInUse, Command::SetVarTypeInDS, "main", 2, 0);
  EXPECT_EQ(tell(Command::SetVarTypeInDS, "main", 2, 3), 0) << "the counted value still fits";
}

TEST_F(ResponseSetRequests, OtherSetsAreRefused) {
  struct Row {
    const char* label;
    ErrorCode code;
    const char* name;
    int kind;
    const char* counted;
    Texts variables;
  };
  const Row rows[] = {
      {"no name", ErrorCode::kNameEmpty, "", kCategories, "", {"one", "two"}},
      {"no dollar sign", ErrorCode::kNameBadStart, "set", kCategories, "", {"one", "two"}},
      {"a blank in the name", ErrorCode::kNameBadCharacter, "$a b", kCategories, "", {"one", "two"}},
      {"kind 0", ErrorCode::kResponseSetKindOutOfRange, "$s", 0, "1", {"one", "two"}},
      {"kind 3", ErrorCode::kResponseSetKindOutOfRange, "$s", 3, "1", {"one", "two"}},
      {"no variables", ErrorCode::kResponseSetTooSmall, "$s", kCategories, "", {}},
      {"one variable", ErrorCode::kResponseSetTooSmall, "$s", kCategories, "", {"one"}},
      {"an unknown variable", ErrorCode::kNoSuchVariable, "$s", kCategories, "", {"one", "three"}},
      {"a variable twice", ErrorCode::kResponseSetVariableTwice, "$s", kCategories, "", {"one", "two", "ONE"}},
      {"both kinds of variables", ErrorCode::kResponseSetKindsMixed, "$s", kCategories, "", {"one", "town"}},
      {"a counted value of categories", ErrorCode::kCountedValueNotValid, "$s", kCategories, "1", {"one", "two"}},
      {"no counted value", ErrorCode::kCountedValueNotValid, "$s", kDichotomies, "", {"one", "two"}},
      {"a text among numbers", ErrorCode::kCountedValueNotValid, "$s", kDichotomies, "yes", {"one", "two"}},
      {"half a number", ErrorCode::kCountedValueNotValid, "$s", kDichotomies, "1x", {"one", "two"}},
      {"no number", ErrorCode::kCountedValueNotValid, "$s", kDichotomies, "nan", {"one", "two"}},
      {"the system-missing number",
       ErrorCode::kCountedValueNotValid,
       "$s",
       kDichotomies,
       "-1.7976931348623157e308",
       {"one", "two"}},
      {"in place of another", ErrorCode::kNoSuchVariable, "$both", kCategories, "", {"one", "three"}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    expectRefused(row.code, Command::SetMultiResponseSetInDS, "main", row.name, "label", row.kind, row.counted,
                  row.variables);
  }
}

TEST_F(ResponseSetRequests, ASetThatIsNotThereIsRefused) {
  expectRefused(ErrorCode::kNoSuchResponseSet, Command::DelMultiResponseSetInDS, "main", "both");
  expectRefused(ErrorCode::kNoSuchResponseSet, Command::GetMultiResponseSet, "");
  expectRefused(ErrorCode::kNoSuchResponseSet, Command::GetMultiResponseSetInDS, "other", "$both");
}

}  // namespace
}  // namespace kova::engine
