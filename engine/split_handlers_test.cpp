#include "engine/split_handlers.h"

#include "engine/request_kit.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using SplitRequests = RequestTest;

TEST_F(SplitRequests, TellTheVariables) {
  EXPECT_THAT(textsOf(ask(Command::GetSplitVariableNames)), ElementsAre("town"));
  state_.ofProcedure = &other();
  const CleXDSmb none = ask(Command::GetSplitVariableNames);
  EXPECT_EQ(none.GetErrorCode(), 0);
  EXPECT_THAT(textsOf(none), IsEmpty());
}

TEST_F(SplitRequests, TellWhereTheFirstGroupEnds) {
  EXPECT_EQ(ask(Command::GetSplitEndIndex).FirstLong(), 5) << "all towns are blank";
  main().cases.setText(3, 1, "Bremen");
  EXPECT_EQ(ask(Command::GetSplitEndIndex).FirstLong(), 3);
  main().split = {"town", "one"};
  main().cases.setNumber(0, 2, 1.0);
  EXPECT_EQ(ask(Command::GetSplitEndIndex).FirstLong(), 1);
  main().split.clear();
  EXPECT_EQ(ask(Command::GetSplitEndIndex).FirstLong(), 5);
}

TEST_F(SplitRequests, WithoutCasesThereIsNoGroup) {
  main().cases = CaseStore({0, 12, 0, 0});
  EXPECT_EQ(ask(Command::GetSplitEndIndex).FirstLong(), 0);
}

TEST_F(SplitRequests, NeedADataSet) {
  state_.active = nullptr;
  EXPECT_EQ(tell(Command::GetSplitVariableNames), 98004);
  EXPECT_EQ(tell(Command::GetSplitEndIndex), 98004);
}

}  // namespace
}  // namespace kova::engine
