// An engine's and a runtime's process on their control channel and with their monitors. The test is the engine.
#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include "platform/os/clock.h"
#include "tests/multiprocess/control_children.h"
#include "transport/DXCmdDispatcher.h"
#include "transport/MonitorThread.h"
#include "transport/XPipeManager.h"
#include "transport/XPipeSuit.h"
#include "transport/stale_pipe.h"

namespace {

using kova::isConnected;
using kova::Line;
using kova::Stopwatch;
using Key = DXCmdDispatcher::CmdKey;

constexpr const char* kLanguage = "PYTHON";

// A process-id text for pipe names that nobody else uses.
std::string scratchPid() {
  const std::string name = kova::kit::scratchName();
  return name.substr(name.find_last_of('\\') + 1);
}

// Answers each command with how many arguments it has.
class CountingVisitor : public DXCmdDispatcherVisitor {
 public:
  int cmdDispatcher(Key, const std::vector<std::string>& args) override { return static_cast<int>(args.size()); }
};

// Goes the way of a runtime's process again and again: makes its side, connects, answers until it is stopped.
KOVA_KIT_CHILD(connects_again_and_again) {
  Line line(arguments.at(1));
  while (line.hear() == "go") {
    DXCmdDispatcher runtime(arguments.at(0), true);
    line.say("made");
    CountingVisitor visitor;
    if (!isConnected(runtime.connectPeer())) return 2;
    if (runtime.receiveCmd(&visitor) != 0) return 3;
    line.say("done");
  }
  return 0;
}

// One connect: the side that arrives first has made its pipe, and waits or tries, before the other one begins.
void connectOnce(const std::string& name, Line& line, bool isEngineFirst) {
  std::unique_ptr<DXCmdDispatcher> engine;
  if (isEngineFirst) engine = std::make_unique<DXCmdDispatcher>(name, false);
  line.say("go");
  if (!isEngineFirst) {
    ASSERT_EQ(line.hear(), "made");
    engine = std::make_unique<DXCmdDispatcher>(name, false);
  }
  ASSERT_EQ(engine->connectPeer(), 0);
  ASSERT_EQ(engine->sendCmd(DXCmdDispatcher::kTestCmdst), 0);
  ASSERT_EQ(engine->sendCmd(DXCmdDispatcher::kStopDX), 0);
  if (isEngineFirst) {
    ASSERT_EQ(line.hear(), "made");
  }
  ASSERT_EQ(line.hear(), "done");
}

TEST(ControlChannel, ConnectsInBothOrdersOfArrival) {
  const std::string name = kova::kit::scratchName();
  Line line;
  auto child = kova::kit::startChild("connects_again_and_again", {name, line.name()});
  ASSERT_TRUE(static_cast<bool>(child));
  const int rounds = kova::roundsOf("KOVA_CONNECT_ROUNDS", 200);
  for (int round = 0; round < rounds && !HasFatalFailure(); ++round) connectOnce(name, line, round % 2 == 0);
  line.say("end");
  EXPECT_EQ(kova::kit::waitForChild(child), 0);
}

// Answers 77 to kRunDX once its monitor hears the engine; 1 otherwise.
class RuntimeVisitor : public CountingVisitor {
 public:
  explicit RuntimeVisitor(const MonitorThread* engine) : engine_(engine) {}
  int cmdDispatcher(Key key, const std::vector<std::string>& args) override {
    if (key == DXCmdDispatcher::kRunDX) return engine_->isPeerAlive() ? 77 : 1;
    if (key == DXCmdDispatcher::kExitDxRun) return engine_->isStopped() ? 78 : 1;
    return CountingVisitor::cmdDispatcher(key, args);
  }

 private:
  const MonitorThread* engine_;
};

// A runtime's process with all that its suite has.
KOVA_KIT_CHILD(is_a_runtime) {
  XPipeManager manager("", arguments.at(0));
  XPipeSuit* const suit = manager.getPipeSuit(kLanguage);
  const MonitorThread* const engine = suit->startMonitor(true, nullptr);
  suit->startMonitor(false, nullptr);
  DXCmdDispatcher* const dispatcher = suit->getCmdDispatcher(true);
  if (!isConnected(dispatcher->connectPeer())) return 2;
  RuntimeVisitor visitor(engine);
  if (dispatcher->receiveCmd(&visitor) != 0) return 3;
  return engine->isNormalEnd() && !engine->isPeerAlive() ? 0 : 4;
}

// Sends a command again, 10 ms apart, until it is answered so; false after a long time.
bool isAnswered(DXCmdDispatcher* engine, Key key, int answer) {
  for (const Stopwatch time; time.seconds() < 20;) {
    if (engine->sendCmd(key) == answer) return true;
    kova::os::SleepMs(10);
  }
  return false;
}

TEST(EngineAndRuntime, ExchangeAllCommandsAndWordsOfLife) {
  XPipeManager manager("", scratchPid());
  XPipeSuit* const suit = manager.getPipeSuit(kLanguage);
  MonitorThread fromRuntime(suit->getPipeNamePrefix() + "C2P", MonitorThread::kReader);
  ASSERT_TRUE(fromRuntime.Start());
  auto child = kova::kit::startChild("is_a_runtime", {manager.getPipePid()});
  ASSERT_TRUE(static_cast<bool>(child));
  DXCmdDispatcher* const dispatcher = suit->getCmdDispatcher(false);
  ASSERT_EQ(dispatcher->connectPeer(), 0);
  EXPECT_EQ(dispatcher->sendCmd(DXCmdDispatcher::kTestCmdst), 0);
  EXPECT_EQ(dispatcher->sendCmd(DXCmdDispatcher::kRunDX), 1) << "not heard yet";
  MonitorThread toRuntime(suit->getPipeNamePrefix() + "P2C", MonitorThread::kWriter);
  ASSERT_TRUE(toRuntime.Start());
  EXPECT_EQ(dispatcher->sendCmd(DXCmdDispatcher::kSetupDXRun, {"one", "two", ""}), 3);
  EXPECT_TRUE(isAnswered(dispatcher, DXCmdDispatcher::kRunDX, 77)) << "heard";
  EXPECT_EQ(dispatcher->sendCmd(DXCmdDispatcher::kExitDxRun), 1) << "still heard";
  for (const Stopwatch time; !fromRuntime.isPeerAlive() && time.seconds() < 20;) kova::os::SleepMs(1);
  EXPECT_TRUE(fromRuntime.isPeerAlive());
  toRuntime.stop();
  EXPECT_TRUE(isAnswered(dispatcher, DXCmdDispatcher::kExitDxRun, 78)) << "goodbye";
  EXPECT_EQ(dispatcher->sendCmd(DXCmdDispatcher::kStopDX), 0);
  EXPECT_EQ(kova::kit::waitForChild(child), 0);
  while (!fromRuntime.isStopped()) kova::os::SleepMs(1);
  EXPECT_TRUE(fromRuntime.isNormalEnd()) << "goodbye";
  EXPECT_FALSE(fromRuntime.isPeerAlive());
}

KOVA_KIT_CHILD(answers_until_stopped) {
  DXCmdDispatcher runtime(arguments.at(0), true);
  CountingVisitor visitor;
  if (!isConnected(runtime.connectPeer())) return 2;
  return runtime.receiveCmd(&visitor);
}

TEST(ControlChannel, TenThousandCommandsInARow) {
  const std::string name = kova::kit::scratchName();
  DXCmdDispatcher engine(name, false);
  auto child = kova::kit::startChild("answers_until_stopped", {name});
  ASSERT_TRUE(static_cast<bool>(child));
  ASSERT_EQ(engine.connectPeer(), 0);
  const std::vector<std::string> args(3, "argument");
  int wrong = 0;
  for (int i = 0; i < 10000; ++i) wrong += engine.sendCmd(DXCmdDispatcher::kSetupDXRun, args) == 3 ? 0 : 1;
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(engine.sendCmd(DXCmdDispatcher::kStopDX), 0);
  EXPECT_EQ(kova::kit::waitForChild(child), 0);
}

// A runtime by hand that writes one byte a second into both of its pipes, to whoever reads them.
KOVA_KIT_CHILD(writes_a_byte_a_second) {
  KovaPipe commands(arguments.at(0) + "_s");
  KovaPipe replies(arguments.at(0) + "_c");
  KovaPipe words(arguments.at(1));
  commands.CreatePipe();
  if (replies.KOVACreateFile() != 0 || words.KOVACreateFile() != 0) return 2;
  while (words.WriteData("\1", 1, nullptr) == 0 && replies.WriteData("\1", 1, nullptr) == 0) kova::os::SleepMs(1000);
  return 0;
}

TEST(SlowPeer, HoldsNobodyUp) {
  const std::string name = kova::kit::scratchName();
  auto reader = std::make_unique<MonitorThread>(kova::kit::scratchName(), MonitorThread::kReader);
  ASSERT_TRUE(reader->Start());
  auto engine = std::make_unique<DXCmdDispatcher>(name, false);
  const std::string words = "\\\\.\\pipe\\" + scratchPid();
  MonitorThread second(words, MonitorThread::kReader);
  ASSERT_TRUE(second.Start());
  auto child = kova::kit::startChild("writes_a_byte_a_second", {name, words});
  ASSERT_TRUE(static_cast<bool>(child));
  ASSERT_EQ(engine->connectPeer(), 0);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(engine->sendCmd(DXCmdDispatcher::kTestCmdst), 13) << "no message";
  EXPECT_FALSE(second.isPeerAlive()) << "no word";
  EXPECT_FALSE(second.isStopped());
  std::thread sender([&] { EXPECT_NE(engine->sendCmd(DXCmdDispatcher::kTestCmdst), 0); });
  const Stopwatch time;
  engine->cancel();
  sender.join();
  engine.reset();
  reader.reset();
  second.stop();
  EXPECT_LT(time.seconds(), 1.0);
  EXPECT_EQ(child.Terminate(), 0u);
  kova::kit::waitForChild(child);
  kova::removeStalePipe(name + "_s");
}

}  // namespace
