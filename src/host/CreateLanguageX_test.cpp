#include "host/CreateLanguageX.h"

#include <memory>

#include "host/CmdKovaDX.h"
#include "host/KovaDX_P.h"
#include "host/XManager.h"
#include "tests/host/configured_test.h"
#include "transport/XPipeManager.h"
#include "transport/XPipeSuit.h"

namespace {

using kova::fakeRuntime;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

using CreateLanguageXTest = kova::ConfiguredTest;

TEST_F(CreateLanguageXTest, BeforeTheProcessIsInitialisedNothingHappens) {
  EXPECT_EQ(CreateLanguageX("ECHO", true), 1);
  EXPECT_EQ(CreateCmdKovaDX("ECHO", true), nullptr);
  EXPECT_EQ(CreateLanguageX("NONE", true), 1);
  EXPECT_EQ(GetXManager(), nullptr);
  EXPECT_THAT(Traced(), IsEmpty());
}

TEST_F(CreateLanguageXTest, ALanguageThatIsNotListedIsRefused) {
  Initialise();
  EXPECT_EQ(CreateLanguageX("echo", true), 99120);
  EXPECT_EQ(CreateCmdKovaDX("NONE", true), nullptr);
  EXPECT_THAT(Traced(), ElementsAre("Unsupported external language:echo", "Unsupported external language:NONE"));
  EXPECT_EQ(GetXManager()->getStatisticsX("echo"), nullptr);
  EXPECT_EQ(GetXManager()->getBackKovaDX(), nullptr);
  EXPECT_EQ(GetXPipeManager()->getPipeSuit("echo")->getIndex(), -1) << "nothing is raised";
}

TEST_F(CreateLanguageXTest, MakesHostAndRunner) {
  Initialise();
  EXPECT_EQ(CreateLanguageX("ECHO", true), 0);
  StatisticsX* const host = GetXManager()->getStatisticsX("ECHO");
  ASSERT_NE(host, nullptr);
  EXPECT_TRUE(host->isKovaDrive());
  EXPECT_FALSE(host->isIntialized());
  DriveX* const runner = GetXManager()->getBackKovaDX();
  ASSERT_NE(dynamic_cast<KovaDX_P*>(runner), nullptr);
  EXPECT_EQ(runner->XName(), "ECHO");
  EXPECT_EQ(runner->getIndex(), 0);
  EXPECT_EQ(GetXPipeManager()->getPipeSuit("ECHO")->getIndex(), 0);
  EXPECT_THAT(fakeRuntime().asked, IsEmpty());
}

TEST_F(CreateLanguageXTest, TheHostIsMadeOnceAndKeepsItsFlag) {
  Initialise();
  CreateLanguageX("ECHO", false);
  StatisticsX* const host = GetXManager()->getStatisticsX("ECHO");
  DriveX* const first = GetXManager()->getBackKovaDX();
  EXPECT_EQ(CreateLanguageX("ECHO", true), 0);
  EXPECT_EQ(GetXManager()->getStatisticsX("ECHO"), host);
  EXPECT_FALSE(host->isKovaDrive());
  EXPECT_NE(GetXManager()->getBackKovaDX(), first);
  EXPECT_EQ(GetXManager()->getBackKovaDX()->getIndex(), 1);
}

// Another kind of host than it would make itself.
class OwnHost : public StatisticsX {
 public:
  OwnHost() : StatisticsX(true) {}

 protected:
  int x_init_embedded_x(int, char**) override { return 0; }
  int x_execute_x(char*) override { return 0; }
  int x_stop_embedded_x() override { return 0; }
  int x_pre_action() override { return 61; }
  int x_post_action() override { return 0; }
};

TEST_F(CreateLanguageXTest, AHostThatIsThereIsTakenWhateverItIs) {
  Initialise();
  GetXManager()->addStatisticsX("ECHO", new OwnHost);
  const std::unique_ptr<CmdKovaDX> runner(CreateCmdKovaDX("ECHO", true));
  ASSERT_EQ(runner->initializeX(), 0);
  EXPECT_EQ(GetXManager()->getStatisticsX("ECHO")->pre_action(), 61);
  EXPECT_THAT(fakeRuntime().asked, IsEmpty());
}

TEST_F(CreateLanguageXTest, ALibraryThatCanNotBeLoadedShowsLater) {
  Initialise();
  kova::fake::registerLibrary(home() + "/fakert", {{}, {}, kova::os::kAccessDenied});
  EXPECT_EQ(CreateLanguageX("ECHO", true), 0);
  EXPECT_EQ(GetXManager()->getStatisticsX("ECHO")->init_embedded_x(0, nullptr), 99114);
  EXPECT_EQ(CreateLanguageX("BARE", true), 0);
  EXPECT_EQ(GetXManager()->getStatisticsX("BARE")->init_embedded_x(0, nullptr), 99118);
  EXPECT_EQ(CreateLanguageX("JAVAEXTENSION", true), 0) << "supported whatever the configuration says";
}

TEST_F(CreateLanguageXTest, ACommandRunnerIsItsCallersOwn) {
  Initialise();
  const std::unique_ptr<CmdKovaDX> runner(CreateCmdKovaDX("ECHO", true));
  ASSERT_NE(runner, nullptr);
  EXPECT_EQ(runner->XName(), "ECHO");
  EXPECT_EQ(GetXManager()->getBackKovaDX(), nullptr);
  EXPECT_EQ(GetXPipeManager()->getPipeSuit("ECHO")->getIndex(), -1);
  StatisticsX* const host = GetXManager()->getStatisticsX("ECHO");
  ASSERT_NE(host, nullptr);
  CreateLanguageX("ECHO", false);
  EXPECT_EQ(GetXManager()->getStatisticsX("ECHO"), host) << "one host a language";
  EXPECT_TRUE(host->isKovaDrive());
}

TEST_F(CreateLanguageXTest, LevelsAreNamedByTheirIndex) {
  Initialise();
  for (const int level : {0, 1}) {
    EXPECT_EQ(CreateLanguageX("ECHO", true), 0);
    EXPECT_THAT(Traced(), Contains("xdapi:\\\\.\\pipe\\1234ECHO" + std::to_string(level) + "xdapi"));
  }
  GetXManager()->destoryKovaDX(GetXManager()->getBackKovaDX());
  GetXManager()->destoryKovaDX(GetXManager()->getBackKovaDX());
  for (const int level : {0, 1}) {
    CreateLanguageX("ECHO", true);
    EXPECT_EQ(GetXManager()->getBackKovaDX()->getIndex(), level) << "as before";
  }
}

}  // namespace
