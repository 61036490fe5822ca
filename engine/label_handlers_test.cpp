#include "engine/label_handlers.h"

#include <cmath>

#include "engine/case_store.h"
#include "engine/request_kit.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;

using LabelRequests = RequestTest;

TEST_F(LabelRequests, TellTheLabelsOfANamedDataSet) {
  const CleXDSmb numbers = ask(Command::GetVarNValueLabelInDS, "main", 0);
  EXPECT_EQ(numbers.FirstLong(), 2);
  EXPECT_THAT(numbers.Doubles().GetData(), ElementsAre(1.0, 2.0));
  EXPECT_THAT(textsOf(numbers), ElementsAre("low", "high"));
  const CleXDSmb texts = ask(Command::GetVarCValueLabelInDS, "main", 1);
  EXPECT_EQ(texts.FirstLong(), 2);
  ASSERT_EQ(texts.StringArrays().size(), 2U);
  EXPECT_THAT(texts.StringArrays()[0].GetData(), ElementsAre("B", ""));
  EXPECT_THAT(texts.StringArrays()[1].GetData(), ElementsAre("Bremen", "none"));
}

TEST_F(LabelRequests, AVariableWithoutLabelsHasNone) {
  const CleXDSmb reply = ask(Command::GetNValueLabels, 2);
  EXPECT_EQ(reply.GetErrorCode(), 0);
  EXPECT_EQ(reply.Longs().Size(), 1);
  EXPECT_EQ(reply.FirstLong(), 0);
  EXPECT_EQ(reply.Doubles().Size(), 0);
}

TEST_F(LabelRequests, ANumbersLabelIsAddedReplacedAndTakenAway) {
  EXPECT_EQ(tell(Command::SetVarNValueLabel, "SCORE", 3.0, "highest"), 0);
  EXPECT_EQ(tell(Command::SetVarNValueLabelInDS, "main", 0, 1.0, "lowest"), 0);
  EXPECT_THAT(textsOf(ask(Command::GetNValueLabels, 0)), ElementsAre("lowest", "high", "highest"));
  EXPECT_EQ(tell(Command::DelVarNValueLabelInDS, "main", 0, 2.0), 0);
  EXPECT_THAT(ask(Command::GetNValueLabels, 0).Doubles().GetData(), ElementsAre(1.0, 3.0));
  EXPECT_EQ(tell(Command::DelVarValueLabelInDS, "main", 0), 0);
  EXPECT_EQ(ask(Command::GetNValueLabels, 0).FirstLong(), 0);
  EXPECT_EQ(tell(Command::DelVarValueLabelInDS, "main", 0), 0) << "there is nothing to take away, and none is left";
}

TEST_F(LabelRequests, ATextsLabelIsAddedReplacedAndTakenAway) {
  EXPECT_EQ(tell(Command::SetVarCValueLabel, "town", "HH", "Hamburg"), 0);
  EXPECT_EQ(tell(Command::SetVarCValueLabelInDS, "main", 1, "B   ", "Berlin"), 0) << "blanks at the end mean nothing";
  const CleXDSmb reply = ask(Command::GetCValueLabels, 1);
  EXPECT_THAT(reply.StringArrays()[0].GetData(), ElementsAre("B", "", "HH"));
  EXPECT_THAT(reply.StringArrays()[1].GetData(), ElementsAre("Berlin", "none", "Hamburg"));
  EXPECT_EQ(tell(Command::DelVarCValueLabelInDS, "main", 1, "HH "), 0);
  EXPECT_EQ(tell(Command::DelVarCValueLabelInDS, "main", 1, ""), 0);
  EXPECT_EQ(ask(Command::GetCValueLabels, 1).FirstLong(), 1);
}

TEST_F(LabelRequests, ATextAsLongAsItsVariableMayHaveALabel) {
  EXPECT_EQ(tell(Command::SetVarCValueLabel, "town", "123456789012", "x"), 0);
  EXPECT_EQ(tell(Command::SetVarCValueLabel, "town", "123456789012    ", "y"), 0);
  EXPECT_EQ(ask(Command::GetCValueLabels, 1).FirstLong(), 3);
  expectRefused(ErrorCode::kValueTooLong, Command::SetVarCValueLabel, "town", "1234567890123", "x");
  expectRefused(ErrorCode::kValueTooLong, Command::SetVarCValueLabelInDS, "other", 0, "abc", "x");
}

TEST_F(LabelRequests, ValuesOfTheOtherKindAreRefused) {
  expectRefused(ErrorCode::kWrongKind, Command::SetVarNValueLabel, "town", 1.0, "x");
  expectRefused(ErrorCode::kWrongKind, Command::SetVarNValueLabelInDS, "main", 1, 1.0, "x");
  expectRefused(ErrorCode::kWrongKind, Command::SetVarCValueLabel, "score", "1", "x");
  expectRefused(ErrorCode::kWrongKind, Command::SetVarCValueLabelInDS, "main", 0, "1", "x");
  expectRefused(ErrorCode::kWrongKind, Command::DelVarNValueLabelInDS, "main", 1, 1.0);
  expectRefused(ErrorCode::kWrongKind, Command::DelVarCValueLabelInDS, "main", 0, "1");
  expectRefused(ErrorCode::kWrongKind, Command::GetVarNValueLabelInDS, "main", 1);
  expectRefused(ErrorCode::kWrongKind, Command::GetVarCValueLabelInDS, "main", 0);
}

TEST_F(LabelRequests, NumbersThatAreNoValueAreRefused) {
  for (const double number : {std::nan(""), HUGE_VAL, -HUGE_VAL, kSystemMissing}) {
    expectRefused(ErrorCode::kNumberNotValid, Command::SetVarNValueLabel, "score", number, "x");
    expectRefused(ErrorCode::kNumberNotValid, Command::SetVarNValueLabelInDS, "main", 0, number, "x");
  }
}

TEST_F(LabelRequests, LabelsThatAreNotThereCanNotBeTakenAway) {
  expectRefused(ErrorCode::kNoSuchValueLabel, Command::DelVarNValueLabelInDS, "main", 0, 7.0);
  expectRefused(ErrorCode::kNoSuchValueLabel, Command::DelVarNValueLabelInDS, "main", 0, std::nan(""));
  expectRefused(ErrorCode::kNoSuchValueLabel, Command::DelVarCValueLabelInDS, "main", 1, "b");
}

TEST_F(LabelRequests, ThereMayBeTenThousand) {
  for (int i = 0; i < 10000; ++i) {
    ASSERT_EQ(tell(Command::SetVarNValueLabel, "one", static_cast<double>(i), std::to_string(i)), 0);
  }
  const CleXDSmb reply = ask(Command::GetNValueLabels, 2);
  EXPECT_EQ(reply.FirstLong(), 10000);
  EXPECT_EQ(reply.Strings()[9999], "9999");
}

}  // namespace
}  // namespace kova::engine
