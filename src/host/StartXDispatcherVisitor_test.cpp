// The control commands as a runtime's process carries them out, against the engine's ends of the syntax pipes.
#include "host/StartXDispatcherVisitor.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <thread>

#include "host/CmdKovaDX.h"
#include "host/CreateLanguageX.h"
#include "host/DriveX.h"
#include "host/KovaDX_P.h"
#include "host/XManager.h"
#include "host/client_functions.h"
#include "host/sync_syntax.h"
#include "platform/PlugInSynchEvent.h"
#include "tests/host/configured_test.h"
#include "tests/host/engine_ends.h"
#include "transport/KovaPipe.h"
#include "transport/XPipeManager.h"
#include "transport/XPipeSuit.h"
#include "transport/XPipes.h"

namespace {

using Key = DXCmdDispatcher::CmdKey;
using kova::EngineEnds;
using kova::fakeRuntime;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kLevels[] = {"\\\\.\\pipe\\1234ECHO0", "\\\\.\\pipe\\1234ECHO1"};

class StartXDispatcherVisitorTest : public kova::ConfiguredTest {
 protected:
  StartXDispatcherVisitorTest() {
    Initialise();
    kova::setClientFunctions({});
  }
  ~StartXDispatcherVisitorTest() override { GSetUseSyncDx(false); }

  int command(int key) { return visitor_.cmdDispatcher(static_cast<Key>(key), {}); }

  // What the visitor itself has traced since the last call.
  std::vector<std::string> visitorsTraces() {
    std::vector<std::string> traced = Traced();
    std::erase_if(traced, [](const std::string& line) {
      return !line.starts_with("StartXDispatcherVisitor") && !line.starts_with("kSetupDXRun");
    });
    return traced;
  }

  KovaPipe& syntaxPipe() { return *GetXPipeManager()->getPipeSuit("ECHO")->getXPipes()->GetSyntaxPipe(); }

  // One run of a line, from the set-up that was done to its end.
  static int run(EngineEnds& engine, const std::string& line) {
    EXPECT_EQ(engine.receive(), 0) << "ready";
    engine.send({line});
    return engine.receive();
  }

  StartXDispatcherVisitor visitor_{"ECHO", true};
};

TEST_F(StartXDispatcherVisitorTest, TheTestDoesNothing) {
  EXPECT_EQ(command(DXCmdDispatcher::kTestCmdst), 0);
  EXPECT_EQ(command(0), 0);
  EXPECT_THAT(Traced(),
              ElementsAre("StartXDispatcherVisitor kTestCmdst", "StartXDispatcherVisitor result  error code : 0.",
                          "StartXDispatcherVisitor kTestCmdst", "StartXDispatcherVisitor result  error code : 0."));
  EXPECT_EQ(GetXManager()->getStatisticsX("ECHO"), nullptr);
}

TEST_F(StartXDispatcherVisitorTest, AnUnknownKeyIsRefused) {
  for (const int key : {1, -1, 0x4458C001, 0x4458C006}) EXPECT_EQ(command(key), 99119);
  EXPECT_THAT(Traced(), testing::Each("StartXDispatcherVisitor result  error code : 99119."));
  EXPECT_EQ(GetXManager()->getBackKovaDX(), nullptr);
}

TEST_F(StartXDispatcherVisitorTest, ArgumentsAreNotUsed) {
  EXPECT_EQ(visitor_.cmdDispatcher(DXCmdDispatcher::kTestCmdst, {"one", "two"}), 0);
}

TEST_F(StartXDispatcherVisitorTest, SetUpMakesHostRunnerAndPipeAndStarts) {
  EngineEnds engine(kLevels[0]);
  EXPECT_EQ(command(DXCmdDispatcher::kSetupDXRun), 0);
  EXPECT_THAT(visitorsTraces(), ElementsAre("StartXDispatcherVisitor kSetupDXRun", "kSetupDXRun syntaxPipe Create",
                                            "StartXDispatcherVisitor result  error code : 0."));
  ASSERT_NE(GetXManager()->getStatisticsX("ECHO"), nullptr);
  EXPECT_TRUE(GetXManager()->getStatisticsX("ECHO")->isKovaDrive());
  EXPECT_TRUE(syntaxPipe().IsPipeCreated());
  ASSERT_NE(dynamic_cast<KovaDX_P*>(GetXManager()->getBackKovaDX()), nullptr);
  fakeRuntime().answers["execute"] = 33;
  EXPECT_EQ(run(engine, "x"), 33);
  EXPECT_EQ(command(DXCmdDispatcher::kExitDxRun), 0);
  EXPECT_THAT(visitorsTraces(),
              ElementsAre("StartXDispatcherVisitor kExitDxRun", "StartXDispatcherVisitor result  error code : 0."));
  EXPECT_EQ(GetXManager()->getBackKovaDX(), nullptr);
  EXPECT_EQ(GetXPipeManager()->getPipeSuit("ECHO")->getIndex(), -1);
}

TEST_F(StartXDispatcherVisitorTest, TheHostsFlagIsTheVisitors) {
  EngineEnds engine(kLevels[0]);
  StartXDispatcherVisitor driven("ECHO", false);
  EXPECT_EQ(driven.cmdDispatcher(DXCmdDispatcher::kSetupDXRun, {}), 0);
  EXPECT_FALSE(GetXManager()->getStatisticsX("ECHO")->isKovaDrive());
  EXPECT_EQ(run(engine, "x"), 0);
  command(DXCmdDispatcher::kExitDxRun);
  EXPECT_THAT(fakeRuntime().asked, ElementsAre("callback", "output", "pre", "execute x\n", "post"))
      << "it runs already";
}

TEST_F(StartXDispatcherVisitorTest, ALaterRunFindsThePipeAndTheHost) {
  EngineEnds engine(kLevels[0]);
  command(DXCmdDispatcher::kSetupDXRun);
  EXPECT_EQ(run(engine, "one"), 0);
  command(DXCmdDispatcher::kExitDxRun);
  StatisticsX* const host = GetXManager()->getStatisticsX("ECHO");
  Traced();
  EXPECT_EQ(command(DXCmdDispatcher::kSetupDXRun), 0);
  EXPECT_THAT(visitorsTraces(), ElementsAre("StartXDispatcherVisitor kSetupDXRun", "kSetupDXRun syntaxPipe has Create",
                                            "StartXDispatcherVisitor result  error code : 0."));
  EXPECT_EQ(GetXManager()->getStatisticsX("ECHO"), host);
  EXPECT_EQ(run(engine, "two"), 0);
  command(DXCmdDispatcher::kExitDxRun);
  EXPECT_THAT(fakeRuntime().asked, ElementsAre("callback", "init one two", "output", "pre", "execute one\n", "post",
                                               "output", "pre", "execute two\n", "post"));
}

TEST_F(StartXDispatcherVisitorTest, ANestedSetUpHasASetOfItsOwn) {
  EngineEnds outer(kLevels[0]);
  EngineEnds nested(kLevels[1]);
  command(DXCmdDispatcher::kSetupDXRun);
  EXPECT_EQ(outer.receive(), 0) << "ready: what runs in it may ask for a nested run";
  EXPECT_EQ(command(DXCmdDispatcher::kSetupDXRun), 0);
  EXPECT_EQ(GetXManager()->getBackKovaDX()->getIndex(), 1);
  EXPECT_EQ(run(nested, "inner"), 0);
  EXPECT_EQ(command(DXCmdDispatcher::kExitDxRun), 0);
  EXPECT_EQ(GetXManager()->getBackKovaDX()->getIndex(), 0);
  outer.send({"outer"});
  EXPECT_EQ(outer.receive(), 0);
  EXPECT_EQ(command(DXCmdDispatcher::kExitDxRun), 0);
  EXPECT_EQ(GetXManager()->getBackKovaDX(), nullptr);
}

TEST_F(StartXDispatcherVisitorTest, ARunBeginsEvenWithoutItsPipe) {
  EngineEnds engine(kLevels[0]);
  kova::fake::fail("CreateMessagePipe", 5);
  EXPECT_EQ(command(DXCmdDispatcher::kSetupDXRun), 99104);
  EXPECT_THAT(visitorsTraces(), ElementsAre("StartXDispatcherVisitor kSetupDXRun",
                                            "StartXDispatcherVisitor result  error code : 99104."));
  EXPECT_EQ(engine.receive(), 0) << "it was started";
  EXPECT_EQ(command(DXCmdDispatcher::kExitDxRun), 0) << "and has ended by itself";
  EXPECT_THAT(fakeRuntime().asked, IsEmpty());
}

TEST_F(StartXDispatcherVisitorTest, ALanguageThatIsRefusedHasNoPipe) {
  StartXDispatcherVisitor refused("NONE", true);
  EXPECT_EQ(refused.cmdDispatcher(DXCmdDispatcher::kSetupDXRun, {}), 99104);
  EXPECT_THAT(Traced(), ElementsAre("StartXDispatcherVisitor kSetupDXRun", "Unsupported external language:NONE",
                                    "StartXDispatcherVisitor result  error code : 99104."));
  EXPECT_EQ(GetXManager()->getBackKovaDX(), nullptr);
  EXPECT_EQ(GetXPipeManager()->getPipeSuit("NONE")->getIndex(), -1);
}

TEST_F(StartXDispatcherVisitorTest, BeforeTheProcessIsInitialisedThereIsNothingToUse) {
  FinalizeDXGlobal();
  EXPECT_EQ(command(DXCmdDispatcher::kSetupDXRun), 99104);
  EXPECT_EQ(command(DXCmdDispatcher::kRunDX), 0);
  EXPECT_EQ(command(DXCmdDispatcher::kExitDxRun), 0);
}

TEST_F(StartXDispatcherVisitorTest, RunStartsTheRunnerAtTheBack) {
  EngineEnds engine(kLevels[0]);
  ASSERT_EQ(CreateLanguageX("ECHO", true), 0);
  ASSERT_EQ(syntaxPipe().CreatePipe(), 0);
  Traced();
  EXPECT_EQ(command(DXCmdDispatcher::kRunDX), 0);
  EXPECT_EQ(run(engine, "x"), 0);
  command(DXCmdDispatcher::kExitDxRun);
  EXPECT_THAT(visitorsTraces(),
              ElementsAre("StartXDispatcherVisitor kRunDX", "StartXDispatcherVisitor result  error code : 0.",
                          "StartXDispatcherVisitor kExitDxRun", "StartXDispatcherVisitor result  error code : 0."));
}

TEST_F(StartXDispatcherVisitorTest, WithoutARunnerNothingIsStartedOrEnded) {
  EXPECT_EQ(command(DXCmdDispatcher::kRunDX), 0);
  EXPECT_EQ(command(DXCmdDispatcher::kExitDxRun), 0);
  EXPECT_THAT(visitorsTraces(),
              ElementsAre("StartXDispatcherVisitor kRunDX", "StartXDispatcherVisitor result  error code : 0.",
                          "StartXDispatcherVisitor kExitDxRun", "StartXDispatcherVisitor result  error code : 0."));
  EXPECT_EQ(kova::fake::callCount("LaunchThread"), 0u);
}

TEST_F(StartXDispatcherVisitorTest, ARunnerOfAnotherKindIsLeftAlone) {
  ASSERT_EQ(CreateLanguageX("ECHO", true), 0);
  StatisticsX* const host = GetXManager()->getStatisticsX("ECHO");
  auto* const plain = new DriveX("ECHO", host, nullptr);
  GetXManager()->addKovaDX(plain);
  EXPECT_EQ(command(DXCmdDispatcher::kRunDX), 0);
  EXPECT_EQ(command(DXCmdDispatcher::kExitDxRun), 0);
  EXPECT_EQ(GetXManager()->getBackKovaDX(), plain);
  EXPECT_EQ(kova::fake::callCount("LaunchThread"), 0u);
}

TEST_F(StartXDispatcherVisitorTest, ExitEndsARunnerThatWasNeverStarted) {
  ASSERT_EQ(CreateLanguageX("ECHO", true), 0);
  EXPECT_EQ(command(DXCmdDispatcher::kExitDxRun), 0);
  EXPECT_EQ(GetXManager()->getBackKovaDX(), nullptr);
}

TEST_F(StartXDispatcherVisitorTest, ExitWaitsForARunUnderWay) {
  EngineEnds engine(kLevels[0]);
  PlugInSynchEvent executing(true, false, nullptr);
  std::atomic<bool> mayEnd = false;
  std::atomic<bool> hasEnded = false;
  fakeRuntime().whileExecuting = [&] {
    executing.Signal();
    while (!mayEnd) std::this_thread::yield();
    hasEnded = true;
  };
  command(DXCmdDispatcher::kSetupDXRun);
  engine.receive();
  engine.send({"x"});
  executing.WaitForSignal();
  std::thread control([&] {
    EXPECT_EQ(command(DXCmdDispatcher::kExitDxRun), 0);
    EXPECT_TRUE(hasEnded);
    EXPECT_EQ(GetXManager()->getBackKovaDX(), nullptr);
  });
  mayEnd = true;
  control.join();
  EXPECT_EQ(engine.receive(), 0);
}

// As an engine does that sets a run up, runs it and ends it without a pause.
TEST_F(StartXDispatcherVisitorTest, CommandsMayComeBackToBack) {
  EngineEnds engine(kLevels[0]);
  for (int round = 0; round < 50; ++round) {
    ASSERT_EQ(command(DXCmdDispatcher::kSetupDXRun), 0);
    std::thread other([&engine, round] { EXPECT_EQ(run(engine, "line " + std::to_string(round)), 0); });
    EXPECT_EQ(command(DXCmdDispatcher::kExitDxRun), 0);
    EXPECT_EQ(GetXManager()->getBackKovaDX(), nullptr);
    other.join();
  }
  EXPECT_EQ(fakeRuntime().asked.back(), "post");
  EXPECT_EQ(std::count(fakeRuntime().asked.begin(), fakeRuntime().asked.end(), "pre"), 50);
}

TEST_F(StartXDispatcherVisitorTest, StopDoesNothingOfItsOwnByItself) {
  EXPECT_EQ(command(DXCmdDispatcher::kStopDX), 0);
  EXPECT_THAT(Traced(),
              ElementsAre("StartXDispatcherVisitor kStopDX", "StartXDispatcherVisitor result  error code : 0."));
}

TEST_F(StartXDispatcherVisitorTest, StopEndsTheThreadThatRunsTheSyntax) {
  const std::unique_ptr<CmdKovaDX> driver(CreateCmdKovaDX("ECHO", true));
  ASSERT_EQ(driver->initializeX(), 0);
  GSetUseSyncDx(true);
  std::thread serving([&] { EXPECT_EQ(driver->invokeX(), 0); });
  EngineEnds engine(kLevels[0]);
  command(DXCmdDispatcher::kSetupDXRun);
  EXPECT_EQ(run(engine, "x"), 0);
  command(DXCmdDispatcher::kExitDxRun);
  EXPECT_EQ(command(DXCmdDispatcher::kStopDX), 0);
  serving.join();
  EXPECT_THAT(fakeRuntime().asked,
              ElementsAre("callback", "init one two", "output", "output", "pre", "execute x\n", "post"));
}

}  // namespace
