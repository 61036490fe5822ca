#include "host/CmdReceiveThread.h"

#include <memory>
#include <thread>

#include "config/process_values.h"
#include "host/XManager.h"
#include "host/client_functions.h"
#include "tests/host/configured_test.h"
#include "tests/host/engine_ends.h"
#include "transport/DXCmdDispatcher.h"

namespace {

using kova::fakeRuntime;
using testing::AnyOf;
using testing::Contains;
using testing::ElementsAre;

const std::string kName = "\\\\.\\pipe\\1234ECHO";

class CmdReceiveThreadTest : public kova::ConfiguredTest {
 protected:
  CmdReceiveThreadTest() {
    Initialise();
    kova::setClientFunctions({});
    SetXName("echo");
  }

  // As both sides do before the commands begin.
  static void connect(DXCmdDispatcher& runtime, DXCmdDispatcher& engine) {
    std::thread other([&runtime] { EXPECT_THAT(runtime.connectPeer(), AnyOf(0, 535)); });
    EXPECT_EQ(engine.connectPeer(), 0);
    other.join();
  }

  DXCmdDispatcher runtime_{kName, true};
  DXCmdDispatcher engine_{kName, false};
};

TEST_F(CmdReceiveThreadTest, ReceivesUntilItIsStopped) {
  connect(runtime_, engine_);
  CmdReceiveThread thread(&runtime_);
  EXPECT_FALSE(thread.isRunning());
  ASSERT_EQ(thread.receive(), 0);
  EXPECT_TRUE(thread.isRunning());
  EXPECT_EQ(engine_.sendCmd(DXCmdDispatcher::kTestCmdst), 0);
  EXPECT_EQ(engine_.sendCmd(static_cast<DXCmdDispatcher::CmdKey>(7)), 99119);
  EXPECT_TRUE(thread.isRunning());
  EXPECT_EQ(engine_.sendCmd(DXCmdDispatcher::kStopDX), 0);
  while (thread.isRunning()) std::this_thread::yield();
  while (thread.HasThread()) std::this_thread::yield();
  EXPECT_EQ(thread.GetReturnValue(), 0u);
  EXPECT_THAT(Traced(), Contains("StartXDispatcherVisitor kStopDX"));
}

TEST_F(CmdReceiveThreadTest, RunsBlocksOfTheProcessesOwnLanguageAndStartsNothing) {
  connect(runtime_, engine_);
  CmdReceiveThread thread(&runtime_);
  ASSERT_EQ(thread.receive(), 0);
  kova::EngineEnds ends(kName + "0");
  ASSERT_EQ(engine_.sendCmd(DXCmdDispatcher::kSetupDXRun), 0);
  EXPECT_EQ(ends.receive(), 0) << "ready";
  ends.send({"x"});
  EXPECT_EQ(ends.receive(), 0);
  EXPECT_EQ(engine_.sendCmd(DXCmdDispatcher::kExitDxRun), 0);
  EXPECT_EQ(engine_.sendCmd(DXCmdDispatcher::kStopDX), 0);
  while (thread.isRunning()) std::this_thread::yield();
  EXPECT_FALSE(GetXManager()->getStatisticsX("ECHO")->isKovaDrive());
  EXPECT_THAT(fakeRuntime().asked, ElementsAre("callback", "output", "pre", "execute x\n", "post"));
}

TEST_F(CmdReceiveThreadTest, CountsAsRunningFromItsStart) {
  for (int round = 0; round < 50; ++round) {
    const std::string name = kName + std::to_string(round);
    DXCmdDispatcher runtime(name, true);
    DXCmdDispatcher engine(name, false);
    connect(runtime, engine);
    CmdReceiveThread thread(&runtime);
    ASSERT_EQ(thread.receive(), 0);
    ASSERT_TRUE(thread.isRunning()) << round;
  }
}

TEST_F(CmdReceiveThreadTest, EndsWithAnEngineThatLeaves) {
  auto engine = std::make_unique<DXCmdDispatcher>(kName + "B", false);
  DXCmdDispatcher runtime(kName + "B", true);
  connect(runtime, *engine);
  CmdReceiveThread thread(&runtime);
  ASSERT_EQ(thread.receive(), 0);
  engine.reset();
  while (thread.isRunning()) std::this_thread::yield();
}

TEST_F(CmdReceiveThreadTest, DestructionEndsItsWait) {
  connect(runtime_, engine_);
  {
    CmdReceiveThread thread(&runtime_);
    ASSERT_EQ(thread.receive(), 0);
    EXPECT_EQ(engine_.sendCmd(DXCmdDispatcher::kTestCmdst), 0);
    EXPECT_TRUE(thread.isRunning());
  }
}

TEST_F(CmdReceiveThreadTest, OneThatNeverReceivedGoes) { const CmdReceiveThread thread(&runtime_); }

TEST_F(CmdReceiveThreadTest, AThreadThatCanNotBeStarted) {
  CmdReceiveThread thread(&runtime_);
  kova::fake::fail("LaunchThread", kova::os::kNotEnoughMemory);
  EXPECT_EQ(thread.receive(), 8);
  EXPECT_FALSE(thread.isRunning());
}

}  // namespace
