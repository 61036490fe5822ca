// The runs of a host whose child is the program "startx", played by a scripted one.
#include <atomic>
#include <functional>
#include <memory>
#include <thread>

#include "platform/PlugInSynchEvent.h"
#include "tests/host/child_test.h"
#include "tests/host/fake_startx.h"
#include "transport/XPipes.h"

namespace {

namespace os = kova::os;

using kova::FakeStartx;
using kova::OpenHost;
using testing::AnyOf;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr const char* kStartx = "C:\\kova\\startx.exe";
constexpr int kSetUp = DXCmdDispatcher::kSetupDXRun;
constexpr int kExit = DXCmdDispatcher::kExitDxRun;

class StartxRuns : public kova::ChildTest {
 protected:
  // Starts a child that runs every text so.
  void begin(FakeStartx::Execute execute = nullptr) {
    kova::fake::registerProgram(kStartx,
                                [execute](const os::ProcessStart&) { return FakeStartx("ECHO", execute).serve(); });
    ASSERT_EQ(start(host_), 0);
    Traced();
  }

  // Starts a child that ends after `last`; what comes before it is the first test alone.
  void beginEndingAfter(std::function<void(FakeStartx&)> last) {
    kova::fake::registerProgram(kStartx, [last](const os::ProcessStart&) {
      FakeStartx child("ECHO");
      child.connect();
      child.step();
      last(child);
      return 7;
    });
    ASSERT_EQ(start(host_), 0);
    Traced();
  }

  void awaitChildsEnd() {
    while (host_.isXProcessActive()) std::this_thread::yield();
  }

  // One level with one run; the three results.
  std::vector<int> run(const std::string& syntax) {
    DriveX* const runner = raise("ECHO", host_, options_);
    const int before = host_.pre_action();
    const int code = execute(host_, syntax);
    const int after = host_.post_action();
    lower(runner);
    return {before, code, after};
  }

  XConfigOptions options_{"ECHO"};
  OpenHost host_{&options_, 1, true};
};

TEST_F(StartxRuns, OneRun) {
  std::string got;
  begin([&got](const std::string& syntax) {
    got = syntax;
    return 33;
  });
  EXPECT_THAT(run("one\ntwo\n"), ElementsAre(0, 33, 0));
  EXPECT_EQ(got, "one\ntwo\n");
  EXPECT_THAT(hostsTraces(),
              ElementsAre("setup_x_run cmdDispatcher sendCmd error code : 0.",
                          "StatisticsX::pre_action error code : 0.", "x_execute_x SendData syntaxPipe error code : 0.",
                          "x_execute_x ReceiveData syntaxResultPipe error code : 33.",
                          "StatisticsX::execute_x error code : 33.", "exit_x_run cmdDispatcher sendCmd error code : 0.",
                          "StatisticsX::post_action error code : 0."));
}

TEST_F(StartxRuns, LaterRunsUseTheSamePipes) {
  std::atomic<int> runs = 0;
  begin([&runs](const std::string&) { return ++runs; });
  EXPECT_THAT(run("x"), ElementsAre(0, 1, 0));
  Traced();
  EXPECT_THAT(run("x"), ElementsAre(0, 2, 0));
  EXPECT_THAT(
      hostsTraces(),
      ElementsAre("setup_x_run syntaxResultPipe has CreatePipe", "setup_x_run cmdDispatcher sendCmd error code : 0.",
                  "StatisticsX::pre_action error code : 0.", "x_execute_x SendData syntaxPipe error code : 0.",
                  "x_execute_x ReceiveData syntaxResultPipe error code : 2.", "StatisticsX::execute_x error code : 2.",
                  "exit_x_run cmdDispatcher sendCmd error code : 0.", "StatisticsX::post_action error code : 0."));
  EXPECT_THAT(run("x"), ElementsAre(0, 3, 0));
}

TEST_F(StartxRuns, WithoutATextAnEmptyOneIsSent) {
  std::string got = "?";
  begin([&got](const std::string& syntax) {
    got = syntax;
    return 0;
  });
  DriveX* const runner = raise("ECHO", host_, options_);
  ASSERT_EQ(host_.pre_action(), 0);
  EXPECT_EQ(host_.execute_x(nullptr), 0);
  EXPECT_EQ(host_.post_action(), 0);
  lower(runner);
  EXPECT_EQ(got, "");
}

TEST_F(StartxRuns, ALongTextArrivesWhole) {
  const std::string text(100000, 'x');
  std::string got;
  begin([&got](const std::string& syntax) {
    got = syntax;
    return 0;
  });
  EXPECT_THAT(run(text), ElementsAre(0, 0, 0));
  EXPECT_TRUE(got == text);
}

// The outer run's child asks for a nested one before it ends: commands and pipes of the two never mix.
TEST_F(StartxRuns, ANestedRun) {
  PlugInSynchEvent outerRuns(true, false, nullptr);
  kova::fake::registerProgram(kStartx, [&outerRuns](const os::ProcessStart&) {
    FakeStartx* self = nullptr;
    FakeStartx child("ECHO", [&](const std::string& syntax) {
      if (syntax == "inner") return 2;
      outerRuns.Signal();
      self->serveUntil(kExit);
      return 1;
    });
    self = &child;
    return child.serve();
  });
  ASSERT_EQ(start(host_), 0);
  for (int round = 0; round < 2; ++round) {
    outerRuns.Unsignal();
    DriveX* const outer = raise("ECHO", host_, options_);
    EXPECT_EQ(outer->getIndex(), 0);
    ASSERT_EQ(host_.pre_action(), 0);
    std::thread hostThread([this] { EXPECT_EQ(execute(host_, "outer"), 1); });
    outerRuns.WaitForSignal();
    DriveX* const nested = raise("ECHO", host_, options_);
    EXPECT_EQ(nested->getIndex(), 1);
    EXPECT_EQ(host_.pre_action(), 0);
    EXPECT_EQ(execute(host_, "inner"), 2);
    EXPECT_EQ(host_.post_action(), 0);
    lower(nested);
    hostThread.join();
    EXPECT_EQ(host_.post_action(), 0);
    lower(outer);
  }
}

TEST_F(StartxRuns, AChildMayBeStartedAgain) {
  for (int life = 0; life < 3; ++life) {
    SCOPED_TRACE(life);
    begin([life](const std::string&) { return life; });
    EXPECT_THAT(run("x"), ElementsAre(0, life, 0));
    EXPECT_THAT(run("x"), ElementsAre(0, life, 0));
    EXPECT_EQ(host_.stop_embedded_x(), 0);
  }
}

TEST_F(StartxRuns, AChildMayBeStartedAgainWithinALevel) {
  DriveX* const runner = raise("ECHO", host_, options_);
  for (int life = 0; life < 3; ++life) {
    SCOPED_TRACE(life);
    begin([life](const std::string&) { return life; });
    ASSERT_EQ(host_.pre_action(), 0);
    EXPECT_EQ(execute(host_, "x"), life);
    EXPECT_EQ(host_.post_action(), 0);
    EXPECT_EQ(host_.stop_embedded_x(), 0);
  }
  lower(runner);
}

// The child's own channel and monitors, as the real program uses them.
TEST_F(StartxRuns, WithTheRealEndOfTheControlChannel) {
  class Visitor : public DXCmdDispatcherVisitor {
   public:
    int cmdDispatcher(DXCmdDispatcher::CmdKey key, const std::vector<std::string>&) override {
      keys.push_back(key);
      return key == DXCmdDispatcher::kTestCmdst ? 0 : 70;
    }
    std::vector<int> keys;
  };
  std::vector<int> keys;
  kova::fake::registerProgram(kStartx, [&keys](const os::ProcessStart&) {
    DXCmdDispatcher dispatcher("\\\\.\\pipe\\1a2bECHO", true);
    Visitor visitor;
    EXPECT_THAT(dispatcher.connectPeer(), AnyOf(0, 535));
    EXPECT_EQ(dispatcher.receiveCmd(&visitor), 0);
    keys = visitor.keys;
    return 0;
  });
  ASSERT_EQ(start(host_), 0);
  DriveX* const runner = raise("ECHO", host_, options_);
  EXPECT_EQ(host_.pre_action(), 70) << "the answer is the result";
  EXPECT_EQ(host_.post_action(), 70);
  lower(runner);
  EXPECT_EQ(host_.stop_embedded_x(), 0);
  EXPECT_THAT(keys, ElementsAre(DXCmdDispatcher::kTestCmdst, kSetUp, kExit, DXCmdDispatcher::kStopDX));
}

// ---- Runs that fail

TEST_F(StartxRuns, BeforeTheStartNothingIsSent) {
  EXPECT_EQ(host_.pre_action(), 99115);
  EXPECT_EQ(execute(host_, "x"), 99115);
  EXPECT_EQ(host_.post_action(), 99115);
}

TEST_F(StartxRuns, WithoutALevelThereAreNoPipes) {
  begin();
  EXPECT_EQ(host_.pre_action(), 99104);
  EXPECT_EQ(execute(host_, "x"), 99104);
  EXPECT_THAT(hostsTraces(),
              ElementsAre("StatisticsX::pre_action error code : 99104.", "StatisticsX::execute_x error code : 99104."));
}

TEST_F(StartxRuns, AResultPipeThatCanNotBeMade) {
  begin();
  DriveX* const runner = raise("ECHO", host_, options_);
  kova::fake::fail("CreateMessagePipe", os::kAccessDenied);
  EXPECT_EQ(host_.pre_action(), 99104);
  EXPECT_THAT(hostsTraces(), ElementsAre("setup_x_run syntaxResultPipe CreatePipe error code : 99104.",
                                         "StatisticsX::pre_action error code : 99104."));
  lower(runner);
}

TEST_F(StartxRuns, ASetUpThatIsRefusedIsNotWaitedFor) {
  beginEndingAfter([](FakeStartx& child) {
    EXPECT_EQ(child.command(), kSetUp);
    child.answer(99104);
    child.serveUntil(DXCmdDispatcher::kStopDX);
  });
  DriveX* const runner = raise("ECHO", host_, options_);
  EXPECT_EQ(host_.pre_action(), 99104);
  EXPECT_THAT(hostsTraces(), ElementsAre("setup_x_run cmdDispatcher sendCmd error code : 99104.",
                                         "StatisticsX::pre_action error code : 99104."));
  EXPECT_EQ(host_.post_action(), 0) << "the engine may clear the runner away";
  lower(runner);
}

TEST_F(StartxRuns, ReadinessWithACodeIsTheResult) {
  beginEndingAfter([](FakeStartx& child) {
    child.command();
    child.raise();
    child.answer();
    child.tell(42);
    child.serveUntil(DXCmdDispatcher::kStopDX);
  });
  DriveX* const runner = raise("ECHO", host_, options_);
  EXPECT_EQ(host_.pre_action(), 42);
  lower(runner);
}

struct EndRow {
  const char* label;
  std::function<void(FakeStartx&)> last;
  std::vector<int> results;  // Of the set-up, the run, the exit and the stop.
};

void takeSetUp(FakeStartx& child) {
  child.command();
  child.raise();
  child.answer();
}

void becomeReady(FakeStartx& child) {
  takeSetUp(child);
  child.tell(0);
}

TEST_F(StartxRuns, AChildThatEndsOnTheWayIsNotWaitedFor) {
  const EndRow rows[] = {
      {"with the set-up in its hands", [](FakeStartx& child) { child.command(); }, {109}},
      {"before it is ready", takeSetUp, {109}},
      {"with the syntax in its hands",
       [](FakeStartx& child) {
         becomeReady(child);
         child.syntax();
       },
       {0, 109}},
      {"when it has told the result",
       [](FakeStartx& child) {
         becomeReady(child);
         child.syntax();
         child.tell(5);
       },
       {0, 5}},
      {"with the exit in its hands",
       [](FakeStartx& child) {
         becomeReady(child);
         child.syntax();
         child.tell(5);
         child.command();
       },
       {0, 5, 109}},
  };
  for (const EndRow& row : rows) {
    SCOPED_TRACE(row.label);
    beginEndingAfter(row.last);
    DriveX* const runner = raise("ECHO", host_, options_);
    std::vector<int> results = {host_.pre_action()};
    if (row.results.size() > 1) results.push_back(execute(host_, "x"));
    if (row.results.size() > 2) results.push_back(host_.post_action());
    EXPECT_THAT(results, ElementsAreArray(row.results));
    awaitChildsEnd();
    EXPECT_EQ(execute(host_, "late"), 99104) << "and nothing is sent to nobody";
    EXPECT_EQ(host_.post_action(), 99104);
    lower(runner);
    EXPECT_EQ(host_.stop_embedded_x(), 0);
    EXPECT_EQ(host_.childExitCode(0), 7);
  }
}

TEST_F(StartxRuns, AChildThatEndsBetweenTwoStepsShowsAtTheNext) {
  beginEndingAfter(becomeReady);
  DriveX* const runner = raise("ECHO", host_, options_);
  EXPECT_EQ(host_.pre_action(), 0);
  awaitChildsEnd();
  EXPECT_EQ(execute(host_, "x"), 99104);
  EXPECT_THAT(hostsTraces(), testing::Contains("x_execute_x SendData syntaxPipe error code : 99104."));
  EXPECT_EQ(host_.pre_action(), 99104);
  lower(runner);
}

// A killed process can not take away its own pipes.
TEST_F(StartxRuns, WhatAChildHasLeftIsTakenAway) {
  const auto sweeps = [] {
    std::vector<std::string> names;
    for (const std::string& call : kova::fake::calls()) {
      if (call.starts_with("SweepStalePipes 1a2bECHO0")) names.push_back(call.substr(16));
    }
    return names;
  };
  begin();
  EXPECT_THAT(run("x"), ElementsAre(0, 0, 0));
  EXPECT_THAT(sweeps(), IsEmpty()) << "a child that lives sees to its own";
  DriveX* const runner = raise("ECHO", host_, options_);
  ASSERT_TRUE(kova::fake::endProgram(host_.childProcessId(), 137));
  awaitChildsEnd();
  host_.post_action();
  EXPECT_THAT(sweeps(), ElementsAre("1a2bECHO0syntax", "1a2bECHO0xdapiresult"));
  lower(runner);
  host_.stop_embedded_x();
  EXPECT_EQ(sweeps().size(), 4u) << "between runs too";
}

// A failed run is not the end of the host: the next child finds no trace of it.
TEST_F(StartxRuns, AfterAChildThatHasEndedTheNextOneRuns) {
  beginEndingAfter(takeSetUp);
  DriveX* const failing = raise("ECHO", host_, options_);
  EXPECT_EQ(host_.pre_action(), 109);
  lower(failing);
  host_.stop_embedded_x();
  begin([](const std::string&) { return 12; });
  EXPECT_THAT(run("x"), ElementsAre(0, 12, 0));
}

}  // namespace
