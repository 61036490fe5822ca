// The host of a process of its own: how the program "startx" is started and stopped, and what holds for every child.
// What R and Java do differently has tests of its own, and so have the runs.
#include "host/OutpStatisticsX.h"

#include <atomic>
#include <memory>
#include <thread>

#include "host/child_programs.h"
#include "platform/os/environment.h"
#include "tests/host/child_test.h"
#include "tests/host/fake_startx.h"
#include "transport/MonitorThread.h"

namespace {

namespace os = kova::os;

using kova::FakeStartx;
using kova::OpenHost;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kStartx = "C:\\kova\\startx.exe";
constexpr std::uint32_t kForEver = 0xFFFFFFFF;

class OutpStatisticsXTest : public kova::ChildTest {
 protected:
  OutpStatisticsXTest() { options_.PutOption("HOME", "C:\\echo"); }

  // A child that answers everything, until it is stopped.
  static void provideStartx(const std::string& language = "ECHO", const char* program = kStartx) {
    kova::fake::registerProgram(program, [language](const os::ProcessStart&) { return FakeStartx(language).serve(); });
  }

  static os::ProcessStart onlyStart() {
    const auto starts = kova::fake::startedPrograms();
    EXPECT_EQ(starts.size(), 1u);
    return starts.empty() ? os::ProcessStart() : starts.front();
  }

  // Returns when the engine waits for a child.
  void awaitEnginesWait() const {
    while (kova::fake::callCount("AcceptPeer") == acceptsBefore_) std::this_thread::yield();
  }

  unsigned acceptsBefore_ = 0;
  XConfigOptions options_{"ECHO"};
};

TEST_F(OutpStatisticsXTest, BeginsWithoutAChild) {
  OutpStatisticsX host(&options_, 7, true);
  EXPECT_TRUE(host.isKovaDrive());
  EXPECT_EQ(host.getAppMode(), 7);
  host.setAppMode(1);
  EXPECT_EQ(host.getAppMode(), 1);
  EXPECT_FALSE(host.isXProcessActive());
  EXPECT_EQ(host.childProcessId(), 0u);
  EXPECT_EQ(host.childExitCode(0), std::nullopt);
  EXPECT_EQ(host.lastConsoleOutput(), "");
  EXPECT_THAT(kova::fake::startedPrograms(), IsEmpty());
}

TEST_F(OutpStatisticsXTest, AStartAndAStop) {
  provideStartx();
  OutpStatisticsX host(&options_, 1, true);
  EXPECT_EQ(start(host), 0);
  EXPECT_TRUE(host.isXProcessActive());
  EXPECT_NE(host.childProcessId(), 0u);
  EXPECT_EQ(host.childExitCode(0), std::nullopt);
  EXPECT_EQ(kova::fake::elapsedMs(), 500u);
  EXPECT_THAT(hostsTraces(),
              ElementsAre("stat_start_x result error code : 0.", "StatisticsX::init_embedded_x error code : 0."));
  EXPECT_EQ(host.stop_embedded_x(), 0);
  EXPECT_THAT(hostsTraces(), ElementsAre("stat_stop_x cmdDispatcher sendCmd error code : 0.",
                                         "StatisticsX::stop_embedded_x error code : 0."));
  EXPECT_FALSE(host.isXProcessActive());
  EXPECT_EQ(host.childProcessId(), 0u);
  EXPECT_EQ(host.childExitCode(0), 0);
  EXPECT_EQ(kova::fake::callCount("Process::Terminate"), 0u);
}

TEST_F(OutpStatisticsXTest, TheChildIsTiedToThisProcess) {
  provideStartx();
  OutpStatisticsX host(&options_, 1, true);
  ASSERT_EQ(start(host), 0);
  EXPECT_EQ(onlyStart().program, kStartx);
  EXPECT_TRUE(onlyStart().endsWithParent);
  EXPECT_TRUE(onlyStart().isApart);
  EXPECT_EQ(onlyStart().input, nullptr);
  EXPECT_EQ(onlyStart().output, nullptr);
}

struct LineRow {
  const char* language;
  const char* home;
  const char* folder;
  int mode;
  const char* line;
};

TEST_F(OutpStatisticsXTest, TheCommandLineIsAsStated) {
  const LineRow rows[] = {
      {"ECHO", "C:\\echo", "T:\\tmp\\", 1, " LOCAL T:\\tmp\\ 1a2b ECHO"},
      {"ECHO", "C:\\echo", "T:\\my tmp\\", 0, " REMOTE \"T:\\my tmp\\\\\" 1a2b ECHO"},
      {"PYTHON", "C:\\Py", "T:\\my tmp", 1, " LOCAL \"T:\\my tmp\" 1a2b PYTHON \"C:\\Py\""},
      {"PYTHON3", "C:\\my Py", "T:\\tmp\\", 1, " LOCAL T:\\tmp\\ 1a2b PYTHON3 \"C:\\my Py\""},
      {"python", "C:\\Py", "T:\\tmp\\", 1, " LOCAL T:\\tmp\\ 1a2b python"},
      {"PYTHON", "", "T:\\tmp\\", 2, " engine.exe T:\\tmp\\ 1a2b PYTHON \"\""},
      {"ECHO", "", "T:\\tmp\\", -1, " engine.exe T:\\tmp\\ 1a2b ECHO"},
      {"ECHO", "", "", 1, " LOCAL \"\" 1a2b ECHO"},
  };
  for (const LineRow& row : rows) {
    SCOPED_TRACE(row.line);
    kova::fake::reset();
    kova::fake::setProgramPath("/opt/kova/engine.exe");
    kova::fake::registerProgram(kStartx, 0);
    GetXPipeManager()->setPipePath(row.folder);
    XConfigOptions options(row.language);
    options.PutOption("HOME", row.home);
    OutpStatisticsX host(&options, row.mode, true);
    EXPECT_EQ(start(host), 99107);
    EXPECT_EQ(onlyStart().commandLine, row.line);
    EXPECT_THAT(onlyStart().arguments, IsEmpty());
  }
}

TEST_F(OutpStatisticsXTest, AProgramFor32BitsHasAnotherName) {
  options_.PutOption("WORK_ON_32", "true");
  provideStartx("ECHO", "C:\\kova\\startx32.exe");
  OutpStatisticsX host(&options_, 1, true);
  EXPECT_EQ(start(host), 0);
  EXPECT_EQ(onlyStart().program, "C:\\kova\\startx32.exe");
}

TEST_F(OutpStatisticsXTest, ArgumentsAreNotPassedToStartx) {
  provideStartx();
  OutpStatisticsX host(&options_, 1, true);
  EXPECT_EQ(start(host, {"one", "javaextension"}), 0);
  EXPECT_EQ(onlyStart().commandLine, " LOCAL T:\\tmp\\ 1a2b ECHO");
}

TEST_F(OutpStatisticsXTest, TheEnvironmentIsSetHereAndInherited) {
  options_.PutOption("OWN_NAME", "own value");
  os::SetEnvironment("KOVAEX_EXTENSIONS_PATH", "stays");
  std::string seen;
  kova::fake::registerProgram(kStartx, [&seen](const os::ProcessStart&) {
    for (const char* name : {"OWN_NAME", "KOVA_HOME", "KOVADXTEMP", "KOVA_EXTENSIONS_PATH", "KOVAEX_EXTENSIONS_PATH"}) {
      seen += os::GetEnvironment(name).value_or("(none)") + "|";
    }
    return FakeStartx("ECHO").serve();
  });
  OutpStatisticsX host(&options_, 1, true);
  ASSERT_EQ(start(host), 0);
  EXPECT_EQ(seen, "own value|C:\\kova|T:\\tmp\\|(none)|stays|");
  EXPECT_EQ(os::GetEnvironment("OWN_NAME"), "own value");
}

// ---- Starts that fail

TEST_F(OutpStatisticsXTest, AProgramThatIsNotThere) {
  OutpStatisticsX host(&options_, 1, true);
  EXPECT_EQ(start(host), 99107);
  EXPECT_FALSE(host.isIntialized());
  EXPECT_THAT(hostsTraces(), ElementsAre("StatisticsX::init_embedded_x error code : 99107."));
  EXPECT_EQ(host.childExitCode(0), std::nullopt);
  EXPECT_EQ(kova::fake::callCount("Process::Terminate"), 0u);
}

TEST_F(OutpStatisticsXTest, AProgramThatMayNotBeRun) {
  kova::fake::Program refused;
  refused.startError = os::kAccessDenied;
  kova::fake::registerProgram(kStartx, refused);
  OutpStatisticsX host(&options_, 1, true);
  EXPECT_EQ(start(host), 99107);
}

TEST_F(OutpStatisticsXTest, AProgramThatEndsAtOnce) {
  kova::fake::Program brief;
  brief.exitCode = 3;
  brief.runsForMs = 400;
  kova::fake::registerProgram(kStartx, brief);
  OutpStatisticsX host(&options_, 1, true);
  EXPECT_EQ(start(host), 99107);
  EXPECT_EQ(host.childExitCode(0), 3);
  EXPECT_EQ(host.childProcessId(), 0u);
}

TEST_F(OutpStatisticsXTest, BeforeTheProcessIsInitialisedThereAreNoPipes) {
  provideStartx();
  FinalizeDXGlobal();
  OutpStatisticsX host(&options_, 1, true);
  EXPECT_EQ(start(host), 99104);
  EXPECT_THAT(kova::fake::startedPrograms(), IsEmpty());
}

struct EarlyEndRow {
  const char* label;
  std::function<void()> before;  // What the child still does.
  std::vector<int> results;      // Two where the test is repeated, or not, as the process takes its time to end.
};

TEST_F(OutpStatisticsXTest, AChildThatEndsBeforeItAnswers) {
  const EarlyEndRow rows[] = {
      {"before it connects", [this] { awaitEnginesWait(); }, {99104}},
      {"with its own pipe made",
       [this] {
         const FakeStartx child("ECHO");
         awaitEnginesWait();
       },
       {99104, 109}},
      {"once connected", [] { FakeStartx("ECHO").connect(); }, {99104, 109}},
      {"with the command in its hands",
       [] {
         FakeStartx child("ECHO");
         child.connect();
         child.command();
       },
       {99104, 109}},
  };
  for (const EarlyEndRow& row : rows) {
    SCOPED_TRACE(row.label);
    kova::fake::setPatienceMs(1);
    kova::fake::registerProgram(kStartx, [&row](const os::ProcessStart&) {
      row.before();
      return 5;
    });
    Traced();
    OutpStatisticsX host(&options_, 1, true);
    acceptsBefore_ = kova::fake::callCount("AcceptPeer");
    const int result = start(host);
    EXPECT_THAT(row.results, Contains(result));
    EXPECT_THAT(hostsTraces(), Contains("stat_start_x result error code : " + std::to_string(result) + "."));
    EXPECT_FALSE(host.isIntialized());
    EXPECT_EQ(host.childExitCode(0), 5);
  }
}

// It lives for ever, and nobody in it connects: the wait lasts as long as it lives.
TEST_F(OutpStatisticsXTest, AChildThatNeverConnects) {
  kova::fake::Program silent;
  silent.runsForMs = kForEver;
  kova::fake::registerProgram(kStartx, silent);
  OutpStatisticsX host(&options_, 1, true);
  std::thread user([this, &host] {
    awaitEnginesWait();
    EXPECT_TRUE(kova::fake::endProgram(host.childProcessId(), 9));
  });
  EXPECT_EQ(start(host), 99104);
  user.join();
  EXPECT_EQ(host.childExitCode(0), 9);
}

TEST_F(OutpStatisticsXTest, TheTestIsRepeatedUntilItIsAnsweredWell) {
  std::atomic<int> tests = 0;
  kova::fake::registerProgram(kStartx, [&tests](const os::ProcessStart&) {
    FakeStartx child("ECHO");
    child.connect();
    while (tests < 4 && child.command() == DXCmdDispatcher::kTestCmdst) child.answer(++tests < 4 ? 5 : 0);
    child.serveUntil(DXCmdDispatcher::kStopDX);
    return 0;
  });
  OutpStatisticsX host(&options_, 1, true);
  EXPECT_EQ(start(host), 0);
  EXPECT_EQ(tests, 4);
  EXPECT_EQ(kova::fake::elapsedMs(), 500u + 3 * 100u);
}

TEST_F(OutpStatisticsXTest, ItIsRepeatedAHundredTimesAtMost) {
  std::atomic<int> tests = 0;
  kova::fake::registerProgram(kStartx, [&tests](const os::ProcessStart&) {
    FakeStartx child("ECHO");
    child.connect();
    while (child.command() == DXCmdDispatcher::kTestCmdst) {
      ++tests;
      child.answer(5);
    }
    return 0;
  });
  OutpStatisticsX host(&options_, 1, true);
  EXPECT_EQ(start(host), 5);
  EXPECT_EQ(tests, 100);
  EXPECT_EQ(kova::fake::elapsedMs(), 500u + 99 * 100u);
  EXPECT_THAT(hostsTraces(),
              ElementsAre("stat_start_x result error code : 5.", "StatisticsX::init_embedded_x error code : 5."));
  EXPECT_EQ(host.childProcessId(), 0u) << "it is not left behind";
  EXPECT_EQ(kova::fake::callCount("Process::Terminate"), 1u);
}

TEST_F(OutpStatisticsXTest, AStartThatFailedMayBeRepeated) {
  kova::fake::registerProgram(kStartx, [](const os::ProcessStart&) {
    FakeStartx("ECHO").connect();
    return 1;
  });
  OutpStatisticsX host(&options_, 1, true);
  EXPECT_NE(start(host), 0);
  provideStartx();
  EXPECT_EQ(start(host), 0);
  EXPECT_EQ(host.stop_embedded_x(), 0);
  EXPECT_EQ(host.childExitCode(0), 0);
}

TEST_F(OutpStatisticsXTest, ASecondStartLeavesOneChildAlone) {
  provideStartx();
  OutpStatisticsX host(&options_, 1, true);
  ASSERT_EQ(start(host), 0);
  const unsigned int first = host.childProcessId();
  EXPECT_EQ(start(host), 0) << "it is initialised";
  EXPECT_EQ(host.childProcessId(), first);
  host.setR(true);
  EXPECT_EQ(start(host), 0) << "it is initialised again";
  EXPECT_NE(host.childProcessId(), first);
  EXPECT_FALSE(kova::fake::endProgram(first, 0)) << "the first child has gone";
}

// ---- Stops

TEST_F(OutpStatisticsXTest, DestructionStops) {
  std::atomic<bool> wasStopped = false;
  kova::fake::registerProgram(kStartx, [&wasStopped](const os::ProcessStart&) {
    FakeStartx("ECHO").serve();
    wasStopped = true;
    return 0;
  });
  {
    OutpStatisticsX host(&options_, 1, true);
    ASSERT_EQ(start(host), 0);
  }
  EXPECT_TRUE(wasStopped);
}

TEST_F(OutpStatisticsXTest, AStopOfAHostThatWasNeverStarted) {
  OpenHost host(&options_, 1, true);
  EXPECT_EQ(host.stop_embedded_x(), 0);
  EXPECT_THAT(hostsTraces(), ElementsAre("StatisticsX::stop_embedded_x error code : 0."));
  EXPECT_EQ(host.x_stop_embedded_x(), 0);
  EXPECT_THAT(hostsTraces(), ElementsAre("stat_stop_x: x process has already exited "));
  EXPECT_EQ(kova::fake::callCount("Process::Terminate"), 0u);
}

TEST_F(OutpStatisticsXTest, AChildThatHasEndedIsNotAsked) {
  provideStartx();
  OutpStatisticsX host(&options_, 1, true);
  ASSERT_EQ(start(host), 0);
  Traced();
  ASSERT_TRUE(kova::fake::endProgram(host.childProcessId(), 4));
  while (host.isXProcessActive()) std::this_thread::yield();
  EXPECT_EQ(host.childExitCode(0), 4);
  EXPECT_EQ(host.stop_embedded_x(), 0);
  EXPECT_THAT(hostsTraces(), ElementsAre("stat_stop_x: x process has already exited ",
                                         "StatisticsX::stop_embedded_x error code : 0."));
  EXPECT_EQ(host.childExitCode(0), 4) << "it is still known";
}

TEST_F(OutpStatisticsXTest, AChildThatEndsWithoutAnAnswer) {
  kova::fake::registerProgram(kStartx, [](const os::ProcessStart&) {
    FakeStartx child("ECHO");
    child.connect();
    child.step();
    child.command();
    return 0;
  });
  OutpStatisticsX host(&options_, 1, true);
  ASSERT_EQ(start(host), 0);
  Traced();
  EXPECT_EQ(host.stop_embedded_x(), 109);
  EXPECT_FALSE(host.isIntialized()) << "whatever the stop gave";
  EXPECT_THAT(hostsTraces(), ElementsAre("stat_stop_x cmdDispatcher sendCmd error code : 109.",
                                         "StatisticsX::stop_embedded_x error code : 109."));
}

TEST_F(OutpStatisticsXTest, AChildThatEndsLateIsWaitedFor) {
  std::atomic<bool> hasEnded = false;
  kova::fake::registerProgram(kStartx, [&hasEnded](const os::ProcessStart&) {
    FakeStartx("ECHO").serve();
    for (int i = 0; i < 1000; ++i) std::this_thread::yield();
    hasEnded = true;
    return 6;
  });
  OutpStatisticsX host(&options_, 1, true);
  ASSERT_EQ(start(host), 0);
  EXPECT_EQ(host.stop_embedded_x(), 0);
  EXPECT_TRUE(hasEnded);
  EXPECT_EQ(host.childExitCode(0), 6);
  EXPECT_EQ(kova::fake::callCount("Process::Terminate"), 0u);
}

TEST_F(OutpStatisticsXTest, OnlyAWaitThatFailsEndsTheChildByForce) {
  kova::fake::registerProgram(kStartx, [](const os::ProcessStart&) {
    FakeStartx child("ECHO");
    child.connect();
    child.serveUntil(DXCmdDispatcher::kStopDX);
    child.serveUntil(DXCmdDispatcher::kStopDX);  // Nobody asks twice.
    return 0;
  });
  OutpStatisticsX host(&options_, 1, true);
  ASSERT_EQ(start(host), 0);
  kova::fake::fail("Process::Wait", os::kAccessDenied, 1);
  EXPECT_EQ(host.stop_embedded_x(), 0);
  EXPECT_EQ(kova::fake::callCount("Process::Terminate"), 1u);
  EXPECT_EQ(host.childProcessId(), 0u);
}

TEST_F(OutpStatisticsXTest, AStopStopsTheMonitorsOfTheSuite) {
  provideStartx();
  OutpStatisticsX host(&options_, 1, true);
  ASSERT_EQ(start(host), 0);
  XPipeSuit& suite = *GetXPipeManager()->getPipeSuit("ECHO");
  MonitorThread reader(suite.getPipeNamePrefix() + "C2P", MonitorThread::kReader);
  reader.Start();
  for (const bool parentToChild : {true, false}) {
    suite.startMonitor(parentToChild, nullptr);
    while (suite.getMonitor(parentToChild)->isStopped()) std::this_thread::yield();
  }
  host.stop_embedded_x();
  EXPECT_TRUE(suite.getMonitor(true)->isStopped());
  EXPECT_TRUE(suite.getMonitor(false)->isStopped());
}

TEST_F(OutpStatisticsXTest, ItNeedsNeitherLockNorCallbacks) {
  OutpStatisticsX host(&options_, 1, true);
  EXPECT_EQ(host.get_library_lock(), 0);
  EXPECT_FALSE(host.hasLock());
  EXPECT_EQ(host.release_library_lock(), 0);
  host.setup_dxcallback(this);
  host.set_post_kova_output(nullptr);
  EXPECT_THAT(Traced(), ElementsAre("StatisticsX::setup_dxcallback", "StatisticsX::x_set_post_kova_output"));
}

// ---- Another program drives the engine: its runtime runs already.

TEST_F(OutpStatisticsXTest, WithoutDrivingNothingIsStartedOrStopped) {
  provideStartx();
  {
    OutpStatisticsX host(&options_, 1, false);
    EXPECT_TRUE(host.isXProcessActive());
    EXPECT_EQ(start(host), 0);
    EXPECT_TRUE(host.isIntialized());
    EXPECT_EQ(host.childProcessId(), 0u);
    EXPECT_EQ(host.stop_embedded_x(), 0);
    EXPECT_EQ(start(host), 0);
  }
  EXPECT_THAT(kova::fake::startedPrograms(), IsEmpty());
  EXPECT_THAT(hostsTraces(), testing::Each(testing::StartsWith("StatisticsX::")));
}

TEST_F(OutpStatisticsXTest, WithoutDrivingRunsGoOverThePipesThatAreThere) {
  std::vector<int> keys;
  std::thread driver([&keys] {
    FakeStartx program("ECHO", [](const std::string& syntax) { return static_cast<int>(syntax.size()); });
    program.connect();
    for (int key = program.step(); key != 0; key = program.step()) keys.push_back(key);
  });
  EXPECT_EQ(GetXPipeManager()->getPipeSuit("ECHO")->getCmdDispatcher(false)->connectPeer(), 0);
  {
    OutpStatisticsX host(&options_, 1, false);
    ASSERT_EQ(start(host), 0);
    DriveX* const runner = raise("ECHO", host, options_);
    EXPECT_EQ(host.pre_action(), 0);
    EXPECT_EQ(execute(host, "four"), 4);
    EXPECT_EQ(host.post_action(), 0);
    lower(runner);
    EXPECT_EQ(host.stop_embedded_x(), 0);
  }
  GetXPipeManager()->removePipeSuit("ECHO");
  driver.join();
  EXPECT_THAT(keys, ElementsAre(DXCmdDispatcher::kSetupDXRun, DXCmdDispatcher::kExitDxRun)) << "and no stop";
}

}  // namespace
