// A driven engine whose program bears the name of a listed language: it runs the blocks that the engine gives back to
// it.
#include <memory>
#include <utility>

#include "host/XManager.h"
#include "tests/api/driven_test.h"
#include "tests/host/engine_ends.h"
#include "transport/DXCmdDispatcher.h"
#include "transport/XPipeManager.h"
#include "transport/XPipeSuit.h"

namespace {

using kova::fakeRuntime;
using kova::kit::Bytes;
using kova::kit::ScriptedEngine;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

constexpr const char* kNotTimely = "Cmd Dispatcher thread can't exit timely.";

class DrivenLanguage : public kova::DrivenTest {
 protected:
  DrivenLanguage() : DrivenTest("ECHO") {
    life_.beforeGreeting = [this] {
      areConnected_ = false;
      commands_ = std::make_unique<DXCmdDispatcher>(base_, false);
    };
    life_.afterGreeting = [this] {
      EXPECT_EQ(commands_->connectPeer(), 0);
      areConnected_ = true;
    };
    // Before the reply: nobody sleeps here, and so nobody waits for the commands' end.
    life_.answers[4] = [this] {
      EXPECT_EQ(tell(DXCmdDispatcher::kStopDX), 0);
      return reply({}, true);
    };
    life_.afterLastCall = [this] { commands_.reset(); };
    life_.answers[0] = [this] { return reply({.error = runBlock("block")}); };
  }

  // The program may call as soon as its own side of the control channel is connected.
  int tell(DXCmdDispatcher::CmdKey command) {
    while (!areConnected_) std::this_thread::yield();
    return commands_->sendCmd(command);
  }

  // As an engine does while it carries out a request of the first level. The block's code.
  int runBlock(const std::string& text) {
    const ScriptedEngine calls(base_ + "1", [](const Bytes&) { return reply({.longs = {1}}); });
    kova::EngineEnds ends(base_ + "1");
    EXPECT_EQ(tell(DXCmdDispatcher::kSetupDXRun), 0);
    EXPECT_EQ(ends.receive(), 0) << "ready";
    ends.send({text});
    const int code = ends.receive();
    EXPECT_EQ(tell(DXCmdDispatcher::kExitDxRun), 0);
    return code;
  }

  // The engine's side of a block that it does not live to see the end of.
  void beginBlock(kova::EngineEnds& ends) {
    tell(DXCmdDispatcher::kSetupDXRun);
    EXPECT_EQ(ends.receive(), 0);
    ends.send({"block"});
  }

  // A life in which nothing is out of order. What a block of the one before takes to end counts here, and not in the
  // time of this world, which passes at once.
  void expectGoodLife() {
    while (GetXManager() != nullptr && !GetXManager()->releaseRunners()) std::this_thread::yield();
    EXPECT_EQ(StartKova(""), 0);
    EXPECT_EQ(Submit("x", 1), 0);
    StopKova();
    EXPECT_THAT(life_.codes(), ElementsAre(0, 1, 1, 2, 4));
  }

  std::unique_ptr<DXCmdDispatcher> commands_;
  std::atomic<bool> areConnected_ = false;
};

TEST_F(DrivenLanguage, RunsTheEnginesBlocksAndStartsNoRuntime) {
  int codeInBlock = -1;
  fakeRuntime().answers["execute"] = 5;
  fakeRuntime().whileExecuting = [&codeInBlock] { codeInBlock = SetMode(1); };
  ASSERT_EQ(StartKova(""), 0);
  EXPECT_TRUE(kova::IsHostCreatedHere());
  XPipeSuit* const suite = GetXPipeManager()->getPipeSuit("ECHO");
  EXPECT_EQ(suite->getIndex(), 0);
  for (int run = 0; run < 3; ++run) {
    fakeRuntime().asked.clear();
    EXPECT_EQ(Submit("x", 1), 5);
    EXPECT_EQ(codeInBlock, 0) << "the block's calls go to a level of their own";
    EXPECT_EQ(suite->getIndex(), 0);
    EXPECT_THAT(fakeRuntime().asked, AllOf(Contains("execute block\n"), Not(Contains(testing::HasSubstr("init")))));
  }
  Traced();
  StopKova();
  EXPECT_THAT(life_.codes(), ElementsAre(0, 0, 0, 1, 1, 2, 4));
  EXPECT_THAT(fakeRuntime().asked, Not(Contains("stop"))) << "the runtime is the process itself";
  EXPECT_THAT(Traced(), AllOf(Contains("StartXDispatcherVisitor kStopDX"), Contains("stopkova")));
}

TEST_F(DrivenLanguage, ABlockDoesNotStopItsEngine) {
  fakeRuntime().whileExecuting = [] { StopKova(); };
  ASSERT_EQ(StartKova(""), 0);
  EXPECT_EQ(Submit("x", 1), 0);
  EXPECT_TRUE(IsBackendReady());
  StopKova();
  EXPECT_THAT(life_.codes(), ElementsAre(0, 1, 1, 1, 2, 4));
}

TEST_F(DrivenLanguage, IsReadyForCommandsBeforeItsStartEnds) {
  ASSERT_EQ(StartKova(""), 0);
  EXPECT_THAT(kova::fake::calls(), Contains("CreateMessagePipe " + base_ + "_s"));
  EXPECT_EQ(kova::fake::openPipeEnds((base_ + "_s").c_str()), 2U);
  EXPECT_EQ(kova::fake::openPipeEnds((base_ + "_c").c_str()), 2U);
  StopKova();
  EXPECT_EQ(kova::fake::openPipeEnds(), 0U);
}

TEST_F(DrivenLanguage, MayBeStartedAgain) {
  for (int life = 0; life < 3; ++life) {
    SCOPED_TRACE(life);
    SetXNameAndSHome("ECHO", home().c_str());
    expectGoodLife();
  }
}

TEST_F(DrivenLanguage, AnEngineThatNeverStopsTheCommandsIsNotWaitedForForEver) {
  ASSERT_EQ(StartKova(""), 0);
  life_.answers.erase(4);
  life_.afterLastCall = [this] {
    awaitCalls("Process::Wait", 2);
    commands_.reset();
  };
  Traced();
  const std::uint64_t before = kova::fake::elapsedMs();
  StopKova();
  EXPECT_GE(kova::fake::elapsedMs() - before, 6000U);
  EXPECT_THAT(Traced(), AllOf(Contains(kNotTimely), Contains("stopkova")));
}

TEST_F(DrivenLanguage, AnEngineMayEndBeforeTheCommandsAreConnected) {
  kova::fake::registerProgram(program(), [this](const kova::os::ProcessStart&) {
    ScriptedEngine calls(base_ + "0", [](const Bytes&) { return death(); });
    const DXCmdDispatcher commands(base_, false);
    EXPECT_EQ(calls.greet(kova::WireImage{}.bytes()), 0);
    awaitCalls("AcceptPeer", 3);  // The last is for the commands.
    return 0;
  });
  EXPECT_EQ(StartKova(""), 0);
  EXPECT_FALSE(IsBackendReady());
  kova::fake::registerProgram(program(), [this](const kova::os::ProcessStart&) { return play(); });
  expectGoodLife();
}

TEST_F(DrivenLanguage, AnEngineThatGreetsWithACodeIsNotConnectedTo) {
  life_.greeting = 98095;
  const auto connects = std::exchange(life_.afterGreeting, nullptr);
  EXPECT_EQ(StartKova(""), 98095);
  life_.greeting = 0;
  life_.afterGreeting = connects;
  expectGoodLife();
}

// The block's calls have no partner then, and nobody has come to their pipe yet.
TEST_F(DrivenLanguage, AnEngineThatDiesDuringABlockEndsItsCalls) {
  std::atomic<int> codeInBlock = -1;
  fakeRuntime().whileExecuting = [&codeInBlock] { codeInBlock = SetMode(1); };
  const auto good = life_.answers[0];
  life_.answers[0] = [this] {
    kova::EngineEnds ends(base_ + "1");
    beginBlock(ends);
    awaitCalls("AcceptPeer", 7);  // The last is that of the block's own call.
    return death();
  };
  ASSERT_EQ(StartKova(""), 0);
  EXPECT_EQ(Submit("x", 1), 109);
  while (codeInBlock == -1) std::this_thread::yield();
  EXPECT_EQ(codeInBlock, 109);
  fakeRuntime().whileExecuting = nullptr;
  life_.answers[0] = good;
  expectGoodLife();
}

// From another thread or from the block itself, which nobody can end.
TEST_F(DrivenLanguage, ThereIsNoStartWhileABlockOfADeadEngineRuns) {
  std::atomic<bool> mayEnd = false;
  std::atomic<int> codeInBlock = -1;
  fakeRuntime().whileExecuting = [&mayEnd, &codeInBlock] {
    codeInBlock = StartKova("");
    while (!mayEnd) std::this_thread::yield();
  };
  const auto good = life_.answers[0];
  life_.answers[0] = [this] {
    kova::EngineEnds ends(base_ + "1");
    beginBlock(ends);
    return death();
  };
  ASSERT_EQ(StartKova(""), 0);
  EXPECT_EQ(Submit("x", 1), 109);
  while (codeInBlock == -1) std::this_thread::yield();
  EXPECT_EQ(codeInBlock, 170);
  fakeRuntime().whileExecuting = nullptr;
  EXPECT_EQ(StartKova(""), 170);
  mayEnd = true;
  life_.answers[0] = good;
  expectGoodLife();
}

TEST_F(DrivenLanguage, AnEngineThatDiesBetweenTheStepsOfABlock) {
  const auto good = life_.answers[0];
  life_.answers[0] = [this] {
    kova::EngineEnds ends(base_ + "1");
    tell(DXCmdDispatcher::kSetupDXRun);
    EXPECT_EQ(ends.receive(), 0);
    return death();
  };
  ASSERT_EQ(StartKova(""), 0);
  EXPECT_EQ(Submit("x", 1), 109);
  life_.answers[0] = good;
  expectGoodLife();
}

}  // namespace
