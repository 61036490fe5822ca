// One side of the control channel, or of a monitor, is killed at every step; the other one is back within a second,
// with a code. KOVA_KILL_ROUNDS tells how often each step is gone through.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

#include "message/CleXDSmb.h"
#include "platform/os/clock.h"
#include "tests/multiprocess/control_children.h"
#include "tests/transport/exchange_images.h"
#include "transport/DXCmdDispatcher.h"
#include "transport/MonitorThread.h"
#include "transport/message_exchange.h"
#include "transport/watched_wait.h"

namespace {

using kova::imageOfLength;
using kova::isConnected;
using kova::Line;
using kova::PeerWatch;
using kova::Stopwatch;
using kova::WatchedWait;
using Key = DXCmdDispatcher::CmdKey;

constexpr double kSoon = 1.0;

int killRounds() { return kova::roundsOf("KOVA_KILL_ROUNDS", 2); }

void writeBytes(KovaPipe& pipe, const std::string& bytes) {
  pipe.WriteData(bytes.data(), static_cast<int>(bytes.size()), nullptr);
}

// ---- The runtime is killed.

// Comes to a stop inside a command.
class StoppingVisitor : public DXCmdDispatcherVisitor {
 public:
  explicit StoppingVisitor(Line* line) : line_(line) {}
  int cmdDispatcher(Key, const std::vector<std::string>&) override {
    line_->stopHere();
    return 0;
  }

 private:
  Line* line_;
};

// Connects with plain pipes, takes a command and answers it with the bytes, then comes to a stop.
int answerByHand(const std::string& name, Line& line, const std::string& bytes) {
  KovaPipe commands(name + "_s");
  KovaPipe replies(name + "_c");
  commands.CreatePipe();
  if (replies.KOVACreateFile() != 0 || !isConnected(commands.ConnectPipe())) return 2;
  CleXDSmb command;
  if (ReceiveData(&commands, command) != 0) return 3;
  writeBytes(replies, bytes);
  line.stopHere();
  return 4;
}

KOVA_KIT_CHILD(runtime_that_stops_at) {
  const std::string& name = arguments.at(0);
  const std::string& step = arguments.at(2);
  Line line(arguments.at(1));
  if (step == "start") line.stopHere();
  if (step == "opened") {
    KovaPipe commands(name + "_s");
    KovaPipe replies(name + "_c");
    if (commands.CreatePipe() != 0 || replies.KOVACreateFile() != 0) return 2;
    line.stopHere();
  }
  if (step == "reply") return answerByHand(name, line, imageOfLength(20000, 41).substr(0, 8192));
  if (step == "reply header") return answerByHand(name, line, imageOfLength(60, 41).substr(0, 8));
  DXCmdDispatcher runtime(name, true);
  if (step == "made") line.stopHere();
  if (!isConnected(runtime.connectPeer())) return 3;
  if (step == "connected") line.stopHere();
  StoppingVisitor visitor(&line);
  return runtime.receiveCmd(&visitor);
}

struct RuntimeCase {
  const char* label;
  const char* step;
  bool isKilledFirst;  // Before the engine goes this step.
  int connected;
  int answer;
  int otherAnswer = answer;  // Where the kill may come before the command or after it.
};

class KilledRuntime : public testing::TestWithParam<RuntimeCase> {
 protected:
  // The engine's way through the step, while the runtime is killed.
  void goOnce() {
    const std::string name = kova::kit::scratchName();
    Line line;
    DXCmdDispatcher engine(name, false);
    auto child = kova::kit::startChild("runtime_that_stops_at", {name, line.name(), GetParam().step});
    ASSERT_TRUE(static_cast<bool>(child));
    PeerWatch watch(child.Id());
    const WatchedWait wait(&watch, &engine);
    const bool killsInConnect = GetParam().connected != 0;
    int connected = 0;
    if (!killsInConnect) {
      connected = engine.connectPeer();
    }
    Stopwatch sinceKill;
    std::thread killer([&] {
      line.hear();
      sinceKill = Stopwatch();
      child.Terminate();
    });
    if (GetParam().isKilledFirst) awaitEnd(&killer, watch);
    if (killsInConnect) connected = engine.connectPeer();
    const int answer = engine.sendCmd(DXCmdDispatcher::kSetupDXRun);
    if (killer.joinable()) killer.join();
    EXPECT_LT(sinceKill.seconds(), kSoon);
    EXPECT_EQ(connected, GetParam().connected);
    EXPECT_THAT(answer, testing::AnyOf(GetParam().answer, GetParam().otherAnswer));
    kova::kit::waitForChild(child);
  }

  static void awaitEnd(std::thread* killer, const PeerWatch& watch) {
    killer->join();
    while (!watch.hasEnded()) kova::os::SleepMs(1);
  }
};

TEST_P(KilledRuntime, LeavesTheEngineWithACode) {
  for (int round = 0; round < killRounds() && !HasFailure(); ++round) goOnce();
}

const RuntimeCase kRuntimeCases[] = {
    {"beforeItsPipe", "start", false, 109, 99104},      {"beforeItsPipeUnseen", "start", true, 109, 99104},
    {"beforeItConnects", "made", false, 109, 99104},    {"betweenItsTwoSteps", "opened", true, 109, 99104},
    {"beforeACommand", "connected", true, 0, 99104},    {"aroundACommand", "connected", false, 0, 109, 99104},
    {"inACommand", "command", false, 0, 109},           {"inAReply", "reply", false, 0, 41},
    {"inAReplysHeader", "reply header", false, 0, 109},
};
INSTANTIATE_TEST_SUITE_P(At, KilledRuntime, testing::ValuesIn(kRuntimeCases),
                         [](const auto& row) { return std::string(row.param.label); });

// ---- The engine is killed. Both sides are children; the runtime tells the test its codes.

KOVA_KIT_CHILD(engine_that_stops_at) {
  const std::string& name = arguments.at(0);
  const std::string& step = arguments.at(2);
  Line line(arguments.at(1));
  if (step == "start") line.stopHere();
  if (step == "half a command" || step == "made") {
    KovaPipe replies(name + "_c");
    replies.CreatePipe();
    if (step == "made") line.stopHere();
    KovaPipe commands(name + "_s");
    if (!isConnected(replies.ConnectPipe()) || commands.KOVACreateFile() != 0) return 2;
    writeBytes(commands, imageOfLength(20000, 41).substr(0, 8192));
    line.stopHere();
  }
  DXCmdDispatcher engine(name, false);
  if (engine.connectPeer() != 0) return 3;
  if (step == "connected") line.stopHere();
  // The runtime tells when it is inside the command; nobody hears the answer.
  return engine.sendCmd(DXCmdDispatcher::kRunDX);
}

// Lasts until the engine has ended, so that its answer finds nobody.
class LastingVisitor : public DXCmdDispatcherVisitor {
 public:
  LastingVisitor(Line* line, const PeerWatch* engine) : line_(line), engine_(engine) {}
  int cmdDispatcher(Key, const std::vector<std::string>&) override {
    line_->say("inside");
    while (!engine_->hasEnded()) kova::os::SleepMs(1);
    return 0;
  }

 private:
  Line* line_;
  const PeerWatch* engine_;
};

// Tells "<connect's code> <receive's code>", 535 as 0.
KOVA_KIT_CHILD(runtime_that_survives) {
  Line line(arguments.at(1));
  PeerWatch engine(static_cast<std::uint32_t>(std::stoul(arguments.at(2))));
  DXCmdDispatcher runtime(arguments.at(0), true);
  const WatchedWait wait(&engine, &runtime);
  const int connected = runtime.connectPeer();
  LastingVisitor visitor(&line, &engine);
  const int received = isConnected(connected) ? runtime.receiveCmd(&visitor) : 0;
  line.say((isConnected(connected) ? "0 " : std::to_string(connected) + " ") + std::to_string(received));
  return 0;
}

struct EngineCase {
  const char* label;
  const char* step;
  const char* told;
};

class KilledEngine : public testing::TestWithParam<EngineCase> {
 protected:
  void goOnce() {
    const std::string name = kova::kit::scratchName();
    Line engineLine;
    Line runtimeLine;
    auto engine = kova::kit::startChild("engine_that_stops_at", {name, engineLine.name(), GetParam().step});
    ASSERT_TRUE(static_cast<bool>(engine));
    auto runtime =
        kova::kit::startChild("runtime_that_survives", {name, runtimeLine.name(), std::to_string(engine.Id())});
    ASSERT_TRUE(static_cast<bool>(runtime));
    const bool isInside = GetParam().step == std::string("command");
    if (isInside) {
      EXPECT_EQ(runtimeLine.hear(), "inside");
    } else {
      EXPECT_EQ(engineLine.hear(), "here");
    }
    const Stopwatch sinceKill;
    EXPECT_EQ(engine.Terminate(), 0u);
    EXPECT_EQ(runtimeLine.hear(), GetParam().told);
    EXPECT_LT(sinceKill.seconds(), kSoon);
    kova::kit::waitForChild(engine);
    EXPECT_EQ(kova::kit::waitForChild(runtime), 0);
  }
};

TEST_P(KilledEngine, LeavesTheRuntimeWithACode) {
  for (int round = 0; round < killRounds() && !HasFailure(); ++round) goOnce();
}

const EngineCase kEngineCases[] = {
    {"beforeItsPipe", "start", "109 0"},        {"beforeItConnects", "made", "109 0"},
    {"beforeACommand", "connected", "0 99104"}, {"inACommand", "half a command", "0 99104"},
    {"beforeTheReply", "command", "0 99104"},
};
INSTANTIATE_TEST_SUITE_P(At, KilledEngine, testing::ValuesIn(kEngineCases),
                         [](const auto& row) { return std::string(row.param.label); });

// ---- One end of a monitor is killed.

std::atomic<int> callbacks{0};

KOVA_KIT_CHILD(runs_a_monitor) {
  MonitorThread monitor(arguments.at(0), std::stoi(arguments.at(2)));
  Line line(arguments.at(1));
  if (!monitor.Start()) return 2;
  while (!monitor.isPeerAlive()) kova::os::SleepMs(1);
  line.stopHere();
  return 0;
}

class KilledMonitor : public testing::TestWithParam<int> {
 protected:
  // A writer notices at its next word, which is up to a second away.
  void goOnce() {
    const int role = GetParam();
    const std::string name = kova::kit::scratchName();
    Line line;
    callbacks = 0;
    // A writer gives its reader two seconds to be there.
    auto survivor = role == MonitorThread::kReader ? make(name, role) : nullptr;
    auto child = kova::kit::startChild("runs_a_monitor", {name, line.name(), std::to_string(1 - role)});
    ASSERT_TRUE(static_cast<bool>(child));
    if (role == MonitorThread::kWriter) survivor = make(name, role);
    ASSERT_EQ(line.hear(), "here");
    while (!survivor->isPeerAlive()) kova::os::SleepMs(1);
    EXPECT_EQ(child.Terminate(), 0u);
    const Stopwatch sinceKill;
    while (!survivor->isStopped() && sinceKill.seconds() < 3) kova::os::SleepMs(1);
    EXPECT_LT(sinceKill.seconds(), role == MonitorThread::kReader ? kSoon : 1.0 + kSoon);
    EXPECT_FALSE(survivor->isNormalEnd());
    EXPECT_FALSE(survivor->isPeerAlive());
    survivor.reset();
    EXPECT_EQ(callbacks, 1);
    kova::kit::waitForChild(child);
  }

  static std::unique_ptr<MonitorThread> make(const std::string& name, int role) {
    auto monitor = std::make_unique<MonitorThread>(name, role);
    monitor->setEndCallback([](MonitorThread*) { ++callbacks; });
    EXPECT_TRUE(monitor->Start());
    return monitor;
  }
};

TEST_P(KilledMonitor, IsNoticedByTheOtherEnd) {
  for (int round = 0; round < killRounds() && !HasFailure(); ++round) goOnce();
}

INSTANTIATE_TEST_SUITE_P(Survivor, KilledMonitor, testing::Values(MonitorThread::kWriter, MonitorThread::kReader),
                         [](const auto& row) { return row.param == MonitorThread::kReader ? "reader" : "writer"; });

// ---- Nobody is killed, and nobody comes.

TEST(NoPeer, AReaderThatNeverHadAPeerIsGoneAtOnce) {
  auto reader = std::make_unique<MonitorThread>(kova::kit::scratchName(), MonitorThread::kReader);
  ASSERT_TRUE(reader->Start());
  kova::os::SleepMs(20);
  const Stopwatch time;
  reader.reset();
  EXPECT_LT(time.seconds(), kSoon);
}

TEST(NoPeer, ADispatcherThatNeverHadAPeerIsGoneAtOnce) {
  for (const bool isRuntime : {false, true}) {
    auto dispatcher = std::make_unique<DXCmdDispatcher>(kova::kit::scratchName(), isRuntime);
    std::thread waiter([&] { EXPECT_NE(dispatcher->connectPeer(), 0); });
    kova::os::SleepMs(20);
    const Stopwatch time;
    dispatcher->cancel();
    waiter.join();
    dispatcher.reset();
    EXPECT_LT(time.seconds(), kSoon);
  }
}

}  // namespace
