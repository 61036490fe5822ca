#include "host/DriveX.h"

#include <algorithm>
#include <atomic>
#include <functional>
#include <new>
#include <thread>

#include "config/XConfigOptions.h"
#include "platform/PlugInSynchEvent.h"
#include "tests/transport/traced_test.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A host that notes what it is asked, and answers what the test tells.
class Host : public StatisticsX {
 public:
  Host() : StatisticsX(true) {}

  int initAnswer = 0;
  int preAnswer = 0;
  int executeAnswer = 0;
  int postAnswer = 0;
  std::function<void()> whileExecuting;
  std::vector<std::string> asked;

 protected:
  int x_init_embedded_x(int argc, char** argv) override {
    std::string text = "init";
    for (int i = 0; i < argc; ++i) text.append(" [").append(argv[i]).append("]");
    asked.push_back(text);
    return initAnswer;
  }
  int x_execute_x(char* syntax) override {
    asked.push_back("execute " + std::string(syntax));
    if (whileExecuting) whileExecuting();
    return executeAnswer;
  }
  int x_stop_embedded_x() override { return 0; }
  int x_pre_action() override {
    asked.emplace_back("pre");
    return preAnswer;
  }
  int x_post_action() override {
    asked.emplace_back("post");
    return postAnswer;
  }
};

class DriveXTest : public kova::TracedTest {
 protected:
  std::vector<std::string> lines_ = {"one", "two"};
  Host host_;
  XConfigOptions options_{"ECHO"};
  DriveX runner_{"ECHO", &host_, &options_};
};

TEST_F(DriveXTest, BeginsIdle) {
  EXPECT_EQ(runner_.XName(), "ECHO");
  EXPECT_EQ(runner_.getIndex(), 0);
  EXPECT_TRUE(runner_.isStopped());
  EXPECT_EQ(runner_.getReturnValue(), 0u);
  runner_.setIndex(3);
  EXPECT_EQ(runner_.getIndex(), 3);
}

struct ArgumentRow {
  const char* language;
  const char* configured;
  const char* init;
};

TEST_F(DriveXTest, TheRuntimeGetsItsArguments) {
  const ArgumentRow rows[] = {
      {"ECHO", "", "init"}, {"R", "", "init [--silent] [--no-save]"}, {"JAVAEXTENSION", "", "init [JavaExtension]"},
      {"r", "", "init"},    {"R", "--one two", "init [--one] [two]"}, {"ECHO", "a", "init [a]"},
  };
  for (const ArgumentRow& row : rows) {
    SCOPED_TRACE(std::string(row.language) + row.configured);
    Host host;
    XConfigOptions options(row.language);
    options.PutOption("ARGS", row.configured);
    DriveX runner(row.language, &host, &options);
    EXPECT_EQ(runner.initializeX(), 0);
    EXPECT_EQ(runner.initializeX(), 0) << "once is enough";
    EXPECT_THAT(host.asked, ElementsAre(row.init));
  }
}

TEST_F(DriveXTest, ARunGoesThroughItsThreeSteps) {
  host_.executeAnswer = 4;
  host_.postAnswer = 5;
  runner_.setSyntax(lines_);
  EXPECT_EQ(runner_.invokeX(), 4);
  EXPECT_THAT(host_.asked, ElementsAre("init", "pre", "execute one\ntwo\n", "post"));
  // The text of the lines is a record of several lines, of which the first has the mark.
  EXPECT_THAT(Traced(), ElementsAre("StatisticsX::init_embedded_x error code : 0.",
                                    "StatisticsX::pre_action error code : 0.", "DriveX PRE ACTION ", "one",
                                    "StatisticsX::execute_x error code : 4.", "DriveX ExecuteXLines  error code : 4.",
                                    "StatisticsX::post_action error code : 5.", "DriveX POST ACTION "));
}

TEST_F(DriveXTest, AnInitialisedHostIsNotStartedAgain) {
  host_.setIntialized(true);
  EXPECT_EQ(runner_.invokeX(), 0);
  EXPECT_THAT(host_.asked, ElementsAre("pre", "execute ", "post")) << "and without lines it has none to run";
}

TEST_F(DriveXTest, AFailedStartIsTheResult) {
  host_.initAnswer = 99114;
  EXPECT_EQ(runner_.invokeX(), 99114);
  EXPECT_THAT(host_.asked, ElementsAre("init"));
}

TEST_F(DriveXTest, AFailedPreActionEndsTheRun) {
  host_.preAnswer = 1;
  EXPECT_EQ(runner_.invokeX(), 1);
  host_.preAnswer = 99104;
  EXPECT_EQ(runner_.invokeX(), 99104);
  EXPECT_THAT(host_.asked, ElementsAre("init", "pre", "pre"));
}

struct PreRow {
  const char* language;
  int answer;
  int result;
};

TEST_F(DriveXTest, PythonsNoHasACodeOfItsOwn) {
  for (const PreRow& row : {PreRow{"PYTHON", 1, 999988}, {"PYTHON", 2, 2}, {"python", 1, 1}, {"PYTHON3", 1, 1}}) {
    SCOPED_TRACE(std::string(row.language) + std::to_string(row.answer));
    DriveX runner(row.language, &host_, &options_);
    host_.setIntialized(true);
    host_.preAnswer = row.answer;
    EXPECT_EQ(runner.invokeX(), row.result);
  }
  EXPECT_THAT(host_.asked, testing::Each("pre"));
}

TEST_F(DriveXTest, RunsOnAThreadOfItsOwn) {
  host_.setIntialized(true);
  host_.executeAnswer = -7;
  PlugInSynchEvent entered(true, false, nullptr);
  PlugInSynchEvent mayEnd(true, false, nullptr);
  host_.whileExecuting = [&] {
    entered.Signal();
    mayEnd.WaitForSignal();
  };
  runner_.setSyntax(lines_);
  ASSERT_EQ(runner_.startX(), 0);
  EXPECT_FALSE(runner_.isStopped());
  entered.WaitForSignal();
  EXPECT_EQ(runner_.startX(), 99116) << "while it runs";
  mayEnd.Signal();
  runner_.endThread();
  EXPECT_TRUE(runner_.isStopped());
  EXPECT_THAT(host_.asked, ElementsAre("pre", "execute one\ntwo\n", "post"));
}

TEST_F(DriveXTest, TheEndOfARunCanBeWaitedFor) {
  runner_.awaitEnd();  // Nothing was started.
  host_.setIntialized(true);
  for (int run = 0; run < 2; ++run) {
    std::atomic<bool> ended = false;
    host_.whileExecuting = [&ended] {
      for (int i = 0; i < 1000; ++i) std::this_thread::yield();
      ended = true;
    };
    ASSERT_EQ(runner_.startX(), 0);
    runner_.awaitEnd();
    EXPECT_TRUE(ended);
    EXPECT_TRUE(runner_.isStopped());
    runner_.awaitEnd();
  }
  EXPECT_EQ(std::count(host_.asked.begin(), host_.asked.end(), "post"), 2);
}

TEST_F(DriveXTest, TheReturnValueIsThatOfTheLastRun) {
  host_.setIntialized(true);
  host_.executeAnswer = 12;
  ASSERT_EQ(runner_.startX(), 0);
  while (!runner_.isStopped()) std::this_thread::yield();
  while (runner_.getReturnValue() == 0) std::this_thread::yield();
  EXPECT_EQ(runner_.getReturnValue(), 12u);
  host_.executeAnswer = 13;
  ASSERT_EQ(runner_.startX(), 0) << "a runner may start again";
  while (runner_.getReturnValue() != 13) std::this_thread::yield();
}

TEST_F(DriveXTest, AThreadThatCanNotStart) {
  kova::fake::fail("LaunchThread", kova::os::kNotEnoughMemory);
  EXPECT_EQ(runner_.startX(), 99116);
  EXPECT_TRUE(runner_.isStopped());
  EXPECT_THAT(host_.asked, IsEmpty());
}

TEST_F(DriveXTest, ARunThatThrowsHasEnded) {
  host_.setIntialized(true);
  host_.whileExecuting = [] { throw std::bad_alloc(); };
  ASSERT_EQ(runner_.startX(), 0);
  while (!runner_.isStopped()) std::this_thread::yield();
}

TEST_F(DriveXTest, DestructionWaitsForTheThread) {
  host_.setIntialized(true);
  std::atomic<bool> ended = false;
  host_.whileExecuting = [&ended] {
    for (int i = 0; i < 1000; ++i) std::this_thread::yield();
    ended = true;
  };
  {
    DriveX runner("ECHO", &host_, &options_);
    ASSERT_EQ(runner.startX(), 0);
  }
  EXPECT_TRUE(ended);
  EXPECT_THAT(host_.asked, ElementsAre("pre", "execute ", "post"));
}

// A runner whose operations note their names.
class Noting : public DriveX {
 public:
  using DriveX::DriveX;
  int initializeX() override { return note("initialize"); }
  int invokeX() override { return note("invoke"); }
  std::vector<std::string> asked;

 protected:
  int runX() override { return note("run"); }
  int ExecuteXLines(std::vector<std::string>& lines) override { return note("lines " + std::to_string(lines.size())); }

 private:
  int note(const std::string& what) {
    asked.push_back(what);
    return 0;
  }
};

// Engines built elsewhere call through the slots, so their order is a part of the interface. The first slots are the
// two of the destructor.
TEST_F(DriveXTest, SlotsStandInTheirOrder) {
  using Simple = int (*)(DriveX*);
  Noting runner("ECHO", &host_, &options_);
  void** const slots = *reinterpret_cast<void***>(static_cast<DriveX*>(&runner));
  for (const int slot : {2, 3, 4}) reinterpret_cast<Simple>(slots[slot])(&runner);
  reinterpret_cast<int (*)(DriveX*, std::vector<std::string>&)>(slots[5])(&runner, lines_);
  EXPECT_THAT(runner.asked, ElementsAre("initialize", "invoke", "run", "lines 2"));
}

}  // namespace
