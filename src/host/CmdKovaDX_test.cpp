// The runner that other threads hand their lines to, and that meeting itself.
#include "host/CmdKovaDX.h"

#include <atomic>
#include <memory>
#include <new>
#include <thread>

#include "host/CreateLanguageX.h"
#include "host/XManager.h"
#include "host/client_functions.h"
#include "host/sync_syntax.h"
#include "tests/host/configured_test.h"

namespace {

using kova::fakeRuntime;
using testing::ElementsAre;
using testing::IsEmpty;

class CmdKovaDXTest : public kova::ConfiguredTest {
 protected:
  CmdKovaDXTest() { Initialise(); }

  std::unique_ptr<CmdKovaDX> Make(const std::string& language) {
    return std::unique_ptr<CmdKovaDX>(CreateCmdKovaDX(language, true));
  }
};

TEST_F(CmdKovaDXTest, StartsTheRuntimeWithAllThatItNeeds) {
  const auto runner = Make("ECHO");
  EXPECT_EQ(runner->initializeX(), 0);
  EXPECT_EQ(runner->initializeX(), 0) << "once is enough";
  EXPECT_THAT(fakeRuntime().asked, ElementsAre("callback", "init one two", "output"));
  EXPECT_EQ(fakeRuntime().callback, kova::clientFunctions().callbackTable);
  EXPECT_NE(fakeRuntime().callback, nullptr);
  EXPECT_EQ(fakeRuntime().output, kova::clientFunctions().postKovaOutput);
}

TEST_F(CmdKovaDXTest, EveryStartGetsTheSameTable) {
  const auto runner = Make("ECHO");
  runner->initializeX();
  void* const first = fakeRuntime().callback;
  fakeRuntime().callback = nullptr;
  GetXManager()->getStatisticsX("ECHO")->stop_embedded_x();
  runner->initializeX();
  EXPECT_EQ(fakeRuntime().callback, first);
}

TEST_F(CmdKovaDXTest, AFailedStartGetsNoOutputFunction) {
  const auto runner = Make("ECHO");
  fakeRuntime().answers["init"] = 9;
  EXPECT_EQ(runner->initializeX(), 9);
  EXPECT_THAT(fakeRuntime().asked, ElementsAre("callback", "init one two"));
}

TEST_F(CmdKovaDXTest, RDrivesItself) {
  const auto runner = Make("R");
  EXPECT_EQ(runner->initializeX(), 0);
  EXPECT_THAT(fakeRuntime().asked, ElementsAre("callback", "output"));
  EXPECT_TRUE(GetXManager()->getStatisticsX("R")->isR());
}

TEST_F(CmdKovaDXTest, AStoppedLoopMayBeginAgain) {
  const auto runner = Make("ECHO");
  ASSERT_EQ(runner->initializeX(), 0);
  for (int turn = 0; turn < 2; ++turn) {
    int result = -1;
    std::thread serving([&] { result = runner->invokeX(); });
    std::vector<std::string> lines = {"line " + std::to_string(turn)};
    fakeRuntime().answers["execute"] = 50 + turn;
    EXPECT_EQ(GRunSyncSyntax(lines), 50 + turn);
    EXPECT_EQ(GStopSyncSyntax(), 0);
    serving.join();
    EXPECT_EQ(result, 0);
  }
  EXPECT_THAT(fakeRuntime().asked, ElementsAre("callback", "init one two", "output", "pre", "execute line 0\n", "post",
                                               "pre", "execute line 1\n", "post"));
}

TEST_F(CmdKovaDXTest, TheUseFlagIsOffAtFirst) {
  EXPECT_FALSE(GGetUseSyncDx());
  GSetUseSyncDx(true);
  EXPECT_TRUE(GGetUseSyncDx());
  GSetUseSyncDx(false);
  EXPECT_FALSE(GGetUseSyncDx());
}

TEST(SyncSyntax, EveryCallerGetsItsOwnResult) {
  constexpr int kCallers = 8;
  constexpr int kRounds = 200;
  std::thread serving(
      [] { kova::serveSyncSyntax([](std::vector<std::string>& lines) { return std::stoi(lines.at(0)); }); });
  std::vector<std::thread> callers;
  std::atomic<int> wrong = 0;
  for (int caller = 0; caller < kCallers; ++caller) {
    callers.emplace_back([caller, &wrong] {
      for (int round = 0; round < kRounds; ++round) {
        const int number = caller * kRounds + round;
        std::vector<std::string> lines = {std::to_string(number)};
        if (GRunSyncSyntax(lines) != number) ++wrong;
      }
    });
  }
  for (std::thread& caller : callers) caller.join();
  EXPECT_EQ(GStopSyncSyntax(), 0);
  serving.join();
  EXPECT_EQ(wrong, 0);
}

TEST(SyncSyntax, ARunThatThrowsIsAnswered) {
  std::thread serving([] { kova::serveSyncSyntax([](std::vector<std::string>&) -> int { throw std::bad_alloc(); }); });
  std::vector<std::string> lines;
  EXPECT_EQ(GRunSyncSyntax(lines), 8);
  EXPECT_EQ(GStopSyncSyntax(), 0);
  serving.join();
}

TEST(SyncSyntax, TheCallersListIsItsOwn) {
  std::thread serving([] {
    kova::serveSyncSyntax([](std::vector<std::string>& lines) {
      lines.clear();
      return -5;
    });
  });
  std::vector<std::string> lines = {"kept"};
  EXPECT_EQ(GRunSyncSyntax(lines), -5);
  EXPECT_THAT(lines, ElementsAre("kept"));
  GStopSyncSyntax();
  serving.join();
}

// Two who stop, two loops: each wish ends one loop, however close they come.
TEST(SyncSyntax, NoWishToStopIsLost) {
  for (int round = 0; round < 200; ++round) {
    std::thread first([] { GStopSyncSyntax(); });
    std::thread second([] { GStopSyncSyntax(); });
    for (int loop = 0; loop < 2; ++loop) {
      kova::serveSyncSyntax([](std::vector<std::string>&) {
        ADD_FAILURE() << "nobody handed lines over";
        return 0;
      });
    }
    first.join();
    second.join();
  }
}

}  // namespace
