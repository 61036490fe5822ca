// The beginning of a process that the engine has started as a runtime.
#include <string>
#include <thread>
#include <vector>

#include "api/client_state.h"
#include "api/kovadx.h"
#include "config/process_values.h"
#include "host/StatisticsX.h"
#include "host/XManager.h"
#include "host/sync_syntax.h"
#include "platform/os/environment.h"
#include "tests/api/client_test.h"
#include "tests/host/configured_test.h"
#include "transport/XPipeManager.h"
#include "transport/XPipeSuit.h"

namespace {

using kova::fakeRuntime;
using testing::ElementsAre;
using testing::IsEmpty;

class RuntimeProcess : public kova::ConfiguredTest {
 protected:
  RuntimeProcess() { kova::os::SetEnvironment("KOVA_HOME", home()); }
  ~RuntimeProcess() override {
    SetKovaRunning(false);
    GSetUseSyncDx(false);
    kova::StoredIdentity() = {};
  }
};

TEST_F(RuntimeProcess, SetsUpWhatItIsToldAndStartsTheRuntimeOnce) {
  SetKOVAHOME("other");
  InitXProcess("LOCAL", "t\\", "1234", "ECHO", "fifth");
  EXPECT_TRUE(IsDXGlobalInit());
  EXPECT_EQ(GetXName(), "ECHO");
  EXPECT_EQ(GetKOVAHOME(), home());
  EXPECT_EQ(GetXPipeManager()->getPipeSuit("ECHO")->getPipeNamePrefix(), "\\\\.\\pipe\\1234ECHO");
  EXPECT_EQ(GetXPipeManager()->getPipeSuit("ECHO")->getIndex(), -1) << "runs raise it";
  EXPECT_TRUE(kova::IsEngineRunning());
  EXPECT_EQ(kova::StoredIdentity().reserved, "fifth");
  EXPECT_TRUE(GetXManager()->getStatisticsX("ECHO")->isIntialized());
  EXPECT_THAT(fakeRuntime().asked, ElementsAre("callback", "init one two", "output"));
}

TEST_F(RuntimeProcess, TheModeTellsWhereTheEngineIs) {
  const struct {
    const char* label;
    const char* mode;
    int expected;
  } rows[] = {
      {"local", "LOCAL", 1},
      {"other case", "Local", 0},
      {"five other letters", "OTHER", 0},
      {"remote", "REMOTE", 0},
      {"nothing", "", 0},
      {"null", nullptr, 0},
      {"the engine's program", "kovaengine", 1},
      {"it, within a name", "x-kovaengine.exe", 1},
      {"not quite it", "kovaengin.exe", 0},
  };
  for (const auto& row : rows) {
    InitXProcess(row.mode, "t\\", "1234", "OTHER", "");
    EXPECT_EQ(GetAppMode(), row.expected) << row.label;
    FinalizeDXGlobal();
  }
}

TEST_F(RuntimeProcess, NullsAndAHomeThatNobodyHasSetAreEmpty) {
  kova::os::SetEnvironment("KOVA_HOME", "");
  InitXProcess(nullptr, nullptr, nullptr, nullptr, nullptr);
  EXPECT_TRUE(IsDXGlobalInit());
  EXPECT_EQ(GetXName(), "UNNAMEDX");
  EXPECT_TRUE(kova::IsEngineRunning());
  EXPECT_THAT(fakeRuntime().asked, IsEmpty());
}

TEST_F(RuntimeProcess, RIsReadyWithoutAStart) {
  InitXProcess("LOCAL", "t\\", "1234", "R", "");
  const StatisticsX* const host = GetXManager()->getStatisticsX("R");
  ASSERT_NE(host, nullptr);
  EXPECT_TRUE(host->isIntialized() && host->isR());
  EXPECT_THAT(fakeRuntime().asked, ElementsAre("callback", "output"));
}

TEST_F(RuntimeProcess, ALanguageThatIsNotListedHasNoHost) {
  InitXProcess("LOCAL", "t\\", "1234", "OTHER", "");
  EXPECT_EQ(GetXManager()->getStatisticsX("OTHER"), nullptr);
  EXPECT_TRUE(kova::IsEngineRunning());
}

TEST_F(RuntimeProcess, TheCallingThreadRunsWhatIsHandedOver) {
  GSetUseSyncDx(true);
  std::thread::id ranOn;
  fakeRuntime().whileExecuting = [&] { ranOn = std::this_thread::get_id(); };
  std::thread::id caller;
  std::thread process([&] {
    caller = std::this_thread::get_id();
    InitXProcess("LOCAL", "t\\", "1234", "ECHO", "");
  });
  std::vector<std::string> lines = {"a"};
  EXPECT_EQ(GRunSyncSyntax(lines), 0);
  EXPECT_EQ(ranOn, caller);
  EXPECT_EQ(GStopSyncSyntax(), 0);
  process.join();
}

TEST_F(RuntimeProcess, ARuntimeThatDoesNotStartTakesNothingOver) {
  GSetUseSyncDx(true);
  fakeRuntime().answers["init"] = 7;
  InitXProcess("LOCAL", "t\\", "1234", "ECHO", "");
  EXPECT_FALSE(GGetUseSyncDx());
  EXPECT_FALSE(GetXManager()->getStatisticsX("ECHO")->isIntialized());
}

}  // namespace
