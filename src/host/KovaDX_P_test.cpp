// The runner of a runtime's own process against an engine on other threads, over the in-memory pipes.
#include "host/KovaDX_P.h"

#include <atomic>
#include <memory>
#include <optional>
#include <thread>

#include "config/KovaDXConfigReader.h"
#include "host/CmdKovaDX.h"
#include "host/CreateLanguageX.h"
#include "host/XManager.h"
#include "host/client_functions.h"
#include "host/sync_syntax.h"
#include "tests/host/configured_test.h"
#include "tests/host/engine_ends.h"
#include "transport/KovaPipe.h"
#include "transport/XPipeManager.h"
#include "transport/XPipeSuit.h"
#include "transport/XPipes.h"

namespace {

using kova::EngineEnds;
using kova::fakeRuntime;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

std::atomic<int> stopsOfApi = 0;
int stopApi() {
  ++stopsOfApi;
  return 21;
}
int postOutput(const char*, int) { return 0; }
int theTable = 0;

class KovaDX_PTest : public kova::ConfiguredTest {
 protected:
  KovaDX_PTest() {
    Initialise();
    kova::setClientFunctions({&stopApi, &postOutput, &theTable});
    stopsOfApi = 0;
  }
  ~KovaDX_PTest() override {
    engine_.reset();
    GSetUseSyncDx(false);
  }

  // What kSetupDXRun does, for a language of the configuration.
  KovaDX_P* SetUp(const std::string& language = "ECHO") {
    EXPECT_EQ(CreateLanguageX(language, true), 0);
    auto* const runner = dynamic_cast<KovaDX_P*>(GetXManager()->getBackKovaDX());
    const std::string base = "\\\\.\\pipe\\1234" + language + std::to_string(runner->getIndex());
    engine_ = std::make_unique<EngineEnds>(base);
    KovaPipe& syntax = *GetXPipeManager()->getPipeSuit(language)->getXPipes()->GetSyntaxPipe();
    EXPECT_EQ(syntax.CreatePipe(), 0);
    EXPECT_EQ(syntax.DisconnectPipe(), 0);
    Traced();
    return runner;
  }

  void WaitForEnd(KovaDX_P* runner) { runner->endThread(); }

  std::unique_ptr<EngineEnds> engine_;
};

TEST_F(KovaDX_PTest, OneRunFromReadinessToResult) {
  KovaDX_P* const runner = SetUp();
  fakeRuntime().answers["execute"] = 33;
  ASSERT_EQ(runner->startX(), 0);
  EXPECT_EQ(engine_->receive(), 0) << "ready";
  engine_->send({"one", "", "two"});
  EXPECT_EQ(engine_->receive(), 33);
  while (!runner->isStopped()) std::this_thread::yield();
  EXPECT_EQ(runner->getReturnValue(), 0u) << "that of the pipes";
  EXPECT_THAT(fakeRuntime().asked,
              ElementsAre("callback", "init one two", "output", "pre", "execute one\n\ntwo\n", "post"));
  EXPECT_EQ(fakeRuntime().callback, &theTable);
  EXPECT_EQ(fakeRuntime().output, &postOutput);
  EXPECT_EQ(stopsOfApi, 1);
  EXPECT_THAT(Traced(), Contains("StopReceiveXdApiThread error code : 21."));
}

TEST_F(KovaDX_PTest, TheNextRunFindsARunningRuntime) {
  for (int run = 0; run < 2; ++run) {
    KovaDX_P* const runner = SetUp();
    ASSERT_EQ(runner->startX(), 0);
    engine_->receive();
    engine_->send({"x"});
    EXPECT_EQ(engine_->receive(), 0);
    WaitForEnd(runner);
    GetXPipeManager()->getPipeSuit("ECHO")->getXPipes()->GetSyntaxPipe()->ClosePipe();
    GetXPipeManager()->getPipeSuit("ECHO")->getXPipes()->GetSyntaxResultPipe()->ClosePipe();
    GetXManager()->destoryKovaDX(runner);
    engine_.reset();
  }
  EXPECT_THAT(fakeRuntime().asked, ElementsAre("callback", "init one two", "output", "pre", "execute x\n", "post",
                                               "output", "pre", "execute x\n", "post"));
}

// The engine opens the pipe before the runner waits for it, or afterwards: either way the run is good.
TEST_F(KovaDX_PTest, AnEngineThatIsFasterIsWelcome) {
  for (int run = 0; run < 200; ++run) {
    KovaDX_P* const runner = SetUp();
    if (run % 2 == 0) engine_->open();
    ASSERT_EQ(runner->startX(), 0);
    engine_->receive();
    engine_->send({"x"});
    ASSERT_EQ(engine_->receive(), 0) << run;
    WaitForEnd(runner);
    GetXManager()->destoryKovaDX(runner);
    GetXPipeManager()->removePipeSuit("ECHO");
    engine_.reset();
  }
  EXPECT_EQ(stopsOfApi, 200);
}

TEST_F(KovaDX_PTest, AFailedStartIsTheResult) {
  KovaDX_P* const runner = SetUp();
  fakeRuntime().answers["init"] = 99114;
  ASSERT_EQ(runner->startX(), 0);
  engine_->receive();
  engine_->send({"x"});
  EXPECT_EQ(engine_->receive(), 99114);
  WaitForEnd(runner);
  EXPECT_THAT(fakeRuntime().asked, ElementsAre("callback", "init one two"));
  EXPECT_EQ(stopsOfApi, 1) << "a failing run ends so too";
}

TEST_F(KovaDX_PTest, RStartsNothing) {
  KovaDX_P* const runner = SetUp("R");
  ASSERT_EQ(runner->startX(), 0);
  engine_->receive();
  engine_->send({"x"});
  EXPECT_EQ(engine_->receive(), 0);
  WaitForEnd(runner);
  EXPECT_THAT(fakeRuntime().asked, ElementsAre("callback", "output", "pre", "execute x\n", "post"));
}

TEST_F(KovaDX_PTest, InitRIsForRAlone) {
  KovaDX_P* const echo = SetUp();
  EXPECT_EQ(echo->initR(), 0);
  EXPECT_FALSE(GetXManager()->getStatisticsX("ECHO")->isIntialized());
  EXPECT_THAT(fakeRuntime().asked, IsEmpty());
  KovaDX_P* const r = SetUp("R");
  EXPECT_EQ(r->initR(), 0);
  EXPECT_TRUE(GetXManager()->getStatisticsX("R")->isIntialized());
  EXPECT_TRUE(GetXManager()->getStatisticsX("R")->isR());
  EXPECT_THAT(fakeRuntime().asked, ElementsAre("callback", "output"));
}

TEST_F(KovaDX_PTest, WithoutAReaderOfTheReadinessItEnds) {
  KovaDX_P* const runner = SetUp();
  engine_.reset();
  ASSERT_EQ(runner->startX(), 0);
  WaitForEnd(runner);
  EXPECT_TRUE(runner->isStopped());
  EXPECT_THAT(fakeRuntime().asked, IsEmpty());
  EXPECT_EQ(stopsOfApi, 0);
}

TEST_F(KovaDX_PTest, AnIndexBeyondTheSuiteHasNoPipes) {
  KovaDX_P* const runner = SetUp();
  for (const int index : {1, -1}) {
    runner->setIndex(index);
    ASSERT_EQ(runner->startX(), 0);
    while (!runner->isStopped() || runner->getReturnValue() == 0) std::this_thread::yield();
    EXPECT_EQ(runner->getReturnValue(), 99104u);
  }
}

TEST_F(KovaDX_PTest, ASyntaxMessageWithoutTextsIsNotAnswered) {
  KovaDX_P* const runner = SetUp();
  ASSERT_EQ(runner->startX(), 0);
  engine_->receive();
  engine_->send({});
  while (!runner->isStopped()) std::this_thread::yield();
  WaitForEnd(runner);
  GetXPipeManager()->getPipeSuit("ECHO")->getXPipes()->GetSyntaxResultPipe()->ClosePipe();
  EXPECT_EQ(engine_->receive(), 109) << "nothing came before the end";
  EXPECT_EQ(stopsOfApi, 0);
}

TEST_F(KovaDX_PTest, AnEngineThatLeavesEndsTheRun) {
  KovaDX_P* const runner = SetUp();
  ASSERT_EQ(runner->startX(), 0);
  engine_->receive();
  engine_->open();
  engine_->leave();
  while (!runner->isStopped() || runner->getReturnValue() == 0) std::this_thread::yield();
  EXPECT_EQ(runner->getReturnValue(), 109u);
  EXPECT_THAT(fakeRuntime().asked, IsEmpty());
}

TEST_F(KovaDX_PTest, ARunnerThatNobodyConnectsToEndsWithTheRegistry) {
  for (int level = 0; level < 2; ++level) {
    KovaDX_P* const runner = SetUp();
    ASSERT_EQ(runner->startX(), 0);
    EXPECT_EQ(engine_->receive(), 0);
    EXPECT_FALSE(runner->isStopped());
  }
  GetXManager()->cleanup();
  EXPECT_EQ(GetXManager()->getBackKovaDX(), nullptr);
}

TEST_F(KovaDX_PTest, ItCountsAsRunningFromItsStart) {
  for (int round = 0; round < 50; ++round) {
    KovaDX_P* const runner = SetUp();
    ASSERT_EQ(runner->startX(), 0);
    // What kExitDxRun does: an engine that has set a run up gives it syntax before it ends it.
    ASSERT_FALSE(runner->isStopped());
    engine_->send({"x"});
    while (!runner->isStopped()) std::this_thread::yield();
    GetXManager()->destoryKovaDX(runner);
    GetXPipeManager()->removePipeSuit("ECHO");
    engine_.reset();
  }
}

// The threads of a process that runs its syntax on one thread: the runner's hands over, the other one runs.
class SyncRun : public KovaDX_PTest {
 protected:
  void StartServing() {
    driver_.reset(CreateCmdKovaDX("ECHO", true));
    ASSERT_EQ(driver_->initializeX(), 0);
    GSetUseSyncDx(true);
    server_ = std::thread([this] {
      serverId_ = std::this_thread::get_id();
      driver_->invokeX();
    });
  }
  void StopServing() {
    EXPECT_EQ(GStopSyncSyntax(), 0);
    server_.join();
  }

  std::unique_ptr<CmdKovaDX> driver_;
  std::thread server_;
  std::thread::id serverId_;
};

TEST_F(SyncRun, TheFirstLevelRunsOnTheDrivingThread) {
  StartServing();
  KovaDX_P* const runner = SetUp();
  std::thread::id executedOn;
  fakeRuntime().whileExecuting = [&executedOn] { executedOn = std::this_thread::get_id(); };
  fakeRuntime().answers["execute"] = 44;
  ASSERT_EQ(runner->startX(), 0);
  engine_->receive();
  engine_->send({"x"});
  EXPECT_EQ(engine_->receive(), 44);
  WaitForEnd(runner);
  StopServing();
  EXPECT_EQ(executedOn, serverId_);
}

TEST_F(SyncRun, ANestedRunStaysOnItsOwnThread) {
  StartServing();
  GetXPipeManager()->getPipeSuit("ECHO")->increaseIndex();
  KovaDX_P* const runner = SetUp();
  EXPECT_EQ(runner->getIndex(), 1);
  std::thread::id executedOn;
  fakeRuntime().whileExecuting = [&executedOn] { executedOn = std::this_thread::get_id(); };
  ASSERT_EQ(runner->startX(), 0);
  engine_->receive();
  engine_->send({"x"});
  EXPECT_EQ(engine_->receive(), 0);
  WaitForEnd(runner);
  StopServing();
  EXPECT_NE(executedOn, serverId_);
  EXPECT_NE(executedOn, std::thread::id());
}

}  // namespace
