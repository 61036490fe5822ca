// The first call of a process whose language the configuration lists: it makes a host for nested runs.
#include "api/kovadx.h"
#include "api/pipe_selection.h"
#include "host/KovaDX_P.h"
#include "host/XManager.h"
#include "tests/api/client_test.h"
#include "tests/host/configured_test.h"
#include "transport/XPipeManager.h"
#include "transport/XPipeSuit.h"

namespace {

using kova::IsHostCreatedHere;
using kova::SelectPipes;

class LanguageSelection : public kova::ConfiguredTest {
 protected:
  ~LanguageSelection() override { SetXNameAndSHome(nullptr, nullptr); }

  int IndexOf(const std::string& name) { return GetXPipeManager()->getPipeSuit(name)->getIndex(); }
};

TEST_F(LanguageSelection, AListedLanguageGetsAHostThatStartsNothing) {
  SetXNameAndSHome("ECHO", home().c_str());
  ASSERT_TRUE(SelectPipes());
  EXPECT_TRUE(IsHostCreatedHere());
  EXPECT_EQ(IndexOf("ECHO"), 0) << "raised by the runner";
  StatisticsX* const host = GetXManager()->getStatisticsX("ECHO");
  ASSERT_NE(host, nullptr);
  EXPECT_FALSE(host->isKovaDrive()) << "the runtime is the process itself";
  ASSERT_NE(dynamic_cast<KovaDX_P*>(GetXManager()->getBackKovaDX()), nullptr);
  FinalizeDXGlobal();
  EXPECT_THAT(kova::fakeRuntime().asked, testing::IsEmpty());
}

TEST_F(LanguageSelection, AHostThatCanNotLoadItsLibraryCountsToo) {
  SetXNameAndSHome("BARE", home().c_str());
  ASSERT_TRUE(SelectPipes());
  EXPECT_TRUE(IsHostCreatedHere());
  EXPECT_EQ(IndexOf("BARE"), 0);
}

TEST_F(LanguageSelection, AnotherLanguageGetsPipesAlone) {
  SetXNameAndSHome("OTHER", home().c_str());
  ASSERT_TRUE(SelectPipes());
  EXPECT_FALSE(IsHostCreatedHere());
  EXPECT_EQ(IndexOf("OTHER"), 0);
  EXPECT_EQ(GetXManager()->getStatisticsX("OTHER"), nullptr);
  EXPECT_EQ(GetXManager()->getBackKovaDX(), nullptr);
}

TEST_F(LanguageSelection, ALevelThatARunHasRaisedIsTakenAsItIs) {
  Initialise();
  GetXPipeManager()->getPipeSuit("ECHO")->increaseIndex();
  SetXNameAndSHome("ECHO", "");
  ASSERT_TRUE(SelectPipes());
  EXPECT_EQ(GetXManager()->getBackKovaDX(), nullptr);
  EXPECT_EQ(IndexOf("ECHO"), 0);
}

}  // namespace
