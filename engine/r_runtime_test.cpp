// The real console of R in a process of its own, against the reference engine: lines are typed into it one by one.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>

#include "config/process_values.h"
#include "engine/outer_runtime.h"
#include "engine/serving_test.h"
#include "host/OutpStatisticsX.h"
#include "host/XManager.h"
#include "tests/kit/kit_system.h"
#include "tests/kit/scratch_folder.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr int kPipeFailed = 99104;
constexpr unsigned kEndPatienceMs = 10000;

// One for the process, as its configuration is: that of the build's home folder, and its package.
const std::string& home() {
  static const kit::ScratchFolder folder;
  static const std::string path = [] {
    const std::filesystem::path source = KOVA_HOME_DIR;
    std::filesystem::copy_file(source / "kovadxcfg.ini", std::filesystem::path(folder.path()) / "kovadxcfg.ini");
    std::filesystem::create_directory_symlink(source / "R", std::filesystem::path(folder.path()) / "R");
    return folder.path();
  }();
  return path;
}

class RRuntimeTest : public ServingTest {
 protected:
  RRuntimeTest() : ServingTest(home()) { SetAppMode(1); }

  void SetUp() override {
    runtime_ = std::make_unique<OuterRuntime>("R", Performer());
    ASSERT_EQ(runtime_->start(), 0);
  }

  int Run(std::vector<std::string> lines) { return runtime_->run(std::move(lines)); }

  // Stops R, which must end by itself, with that code.
  void ExpectToStopWith(int exitCode) {
    EXPECT_EQ(runtime_->stop(), 0);
    EXPECT_EQ(runtime_->childEnd().exitCode, exitCode);
  }

  std::unique_ptr<OuterRuntime> runtime_;
};

TEST_F(RRuntimeTest, StatementsAreRunInTheirOrder) {
  EXPECT_EQ(
      Run({"x <- 0", "for (i in 1:3) x <- x * 10 + i", "x", "", "# nothing", "cat(x, 'is it\\n')", "invisible(4)"}), 0);
  EXPECT_THAT(Shown(), ElementsAre("[1] 123", "123 is it"));
  ExpectToStopWith(0);
}

TEST_F(RRuntimeTest, RunsAreOneSession) {
  EXPECT_EQ(Run({"x <- 7"}), 0);
  EXPECT_EQ(Run({}), 0);
  EXPECT_EQ(Run({"x"}), 0);
  EXPECT_THAT(Shown(), ElementsAre("[1] 7"));
}

TEST_F(RRuntimeTest, AnErrorIsShownAndTheNextStatementRuns) {
  EXPECT_EQ(Run({"f <- function() stop('no good')", "f()", "cat('behind\\n')"}), 0);
  EXPECT_THAT(Shown(), ElementsAre("Error in f() : no good", "behind"));
  ExpectToStopWith(1);
}

TEST_F(RRuntimeTest, ASyntaxErrorIsShownAndTheNextStatementRuns) {
  EXPECT_EQ(Run({"x = = 1", "2"}), 0);
  EXPECT_THAT(Shown(), ElementsAre("Error: unexpected '=' in \"x = =\"", "[1] 2"));
}

TEST_F(RRuntimeTest, AStatementOverSeveralLines) {
  EXPECT_EQ(Run({"f <- function(x) {", "  x +", "    1", "}", "f(2)"}), 0);
  EXPECT_THAT(Shown(), ElementsAre("[1] 3"));
}

// The word that ends it makes a syntax error of it, or one more name that is not known.
TEST_F(RRuntimeTest, AnIncompleteStatementIsEndedAndTheSessionGoesOn) {
  EXPECT_EQ(Run({"x <- 5", "x +"}), 0);
  EXPECT_THAT(Shown(), ElementsAre("Error: object 'END' not found"));
  EXPECT_EQ(Run({"x"}), 0);
  EXPECT_THAT(Shown(), ElementsAre("[1] 5"));
  ExpectToStopWith(0);
}

TEST_F(RRuntimeTest, AStatementThatStaysOpenDoesNotHoldTheStopUp) {
  EXPECT_EQ(Run({"{"}), 0);
  EXPECT_EQ(runtime_->stop(), 0);
  EXPECT_TRUE(runtime_->childEnd().exitCode.has_value());
}

TEST_F(RRuntimeTest, TheDebuggerIsLeftByAStop) {
  EXPECT_EQ(Run({"f <- function() { y <- 8; browser(); 9 }", "f()", "y"}), 0);
  EXPECT_THAT(Shown(), ElementsAre("Called from: f()\n[1] 8"));
  ExpectToStopWith(0);
}

TEST_F(RRuntimeTest, ADebuggerInTheDebuggerIsLeftByAStop) {
  EXPECT_EQ(Run({"f <- function() { browser(); 9 }", "f()", "f()"}), 0);
  Shown();
  ExpectToStopWith(0);
}

TEST_F(RRuntimeTest, ADebuggerThatIsLeftInTheRun) {
  EXPECT_EQ(Run({"f <- function() { browser(); 9 }", "f()", "c"}), 0);
  EXPECT_THAT(Shown(), ElementsAre("Called from: f()\n[1] 9"));
  EXPECT_EQ(Run({"10"}), 0);
  EXPECT_THAT(Shown(), ElementsAre("[1] 10"));
}

TEST_F(RRuntimeTest, TwoMegabytes) {
  EXPECT_EQ(Run({"cat(strrep(paste0(strrep('x', 99), '\\n'), 20000))", "cat('behind\\n')"}), 0);
  std::string all;
  for (const std::string& text : Shown()) all += text;
  EXPECT_EQ(std::count(all.begin(), all.end(), 'x'), 20000 * 99);
  EXPECT_THAT(all, testing::EndsWith("behind"));
}

// What another program prints goes to the console itself.
TEST_F(RRuntimeTest, TwoMegabytesInTheConsole) {
  EXPECT_EQ(Run({"system('yes | head -c 2000000')", "cat('behind\\n')"}), 0);
  EXPECT_THAT(Shown(), ElementsAre("behind"));
}

// The prompt behind output of every length that may split it over two reads. A statement whose prompt was missed would
// wait for ever; after one that was taken for done too early, its answer would come too late.
TEST_F(RRuntimeTest, OutputThatFillsTheReadsExactly) {
  for (const int length : {4096, 4097, 8192, 8193}) {
    SCOPED_TRACE(length);
    std::vector<std::string> lines;
    for (int turn = 0; turn < 10; ++turn) {
      lines.push_back("system('head -c " + std::to_string(length - 2) + " /dev/zero | tr \"\\\\0\" x')");
    }
    lines.emplace_back("{ Sys.sleep(0.1); cat('behind\\n') }");
    EXPECT_EQ(Run(lines), 0);
    EXPECT_THAT(Shown(), ElementsAre("behind"));
  }
}

// The first half of what could be a prompt, and the rest of the output some time later.
TEST_F(RRuntimeTest, APromptThatComesInTwoReads) {
  for (const char* half : {">", "+", "Browse[1]>"}) {
    SCOPED_TRACE(half);
    const std::string slow = "system('printf %s \"" + std::string(half) + "\"; sleep 0.2; ";
    EXPECT_EQ(Run({slow + "printf x; sleep 0.2')", "cat('behind\\n')"}), 0);
    EXPECT_THAT(Shown(), ElementsAre("behind"));
    EXPECT_EQ(Run({slow + "true')", "cat('behind\\n')"}), 0);
    EXPECT_THAT(Shown(), ElementsAre("behind"));
  }
  ExpectToStopWith(0);
}

TEST_F(RRuntimeTest, CallsReachTheEngine) {
  EXPECT_EQ(Run({"library(kovastatistics)", "tryCatch(getVariableCount(), kova_error = function(e) e$code)"}), 0);
  EXPECT_THAT(Shown(), ElementsAre("[1] 98004"));
}

TEST_F(RRuntimeTest, RThatQuitsInTheMiddle) {
  bool isReached = false;
  EXPECT_EQ(runtime_->run({"cat('before\\n')", "quit(status = 7)", "cat('behind\\n')"}, &isReached), kPipeFailed);
  EXPECT_TRUE(isReached);
  EXPECT_THAT(Shown(), ElementsAre("before"));
  EXPECT_EQ(runtime_->childEnd(kEndPatienceMs).exitCode, 7);
  EXPECT_EQ(Run({"1"}), kPipeFailed);
  EXPECT_EQ(runtime_->stop(), kPipeFailed);
  EXPECT_EQ(runtime_->childEnd().exitCode, 7);
  EXPECT_EQ(runtime_->start(), 0);
  EXPECT_EQ(Run({"2"}), 0);
  EXPECT_THAT(Shown(), ElementsAre("[1] 2"));
}

TEST_F(RRuntimeTest, RThatIsKilledInTheMiddle) {
  onSubmit_ = [](const std::string&) {
    auto* const host = dynamic_cast<OutpStatisticsX*>(GetXManager()->getStatisticsX("R"));
    EXPECT_TRUE(host != nullptr && kit::killProcess(host->childProcessId()));
    return 0;
  };
  EXPECT_EQ(Run({"{ system('echo last words'); submit('x') }"}), kPipeFailed);
  EXPECT_EQ(runtime_->childEnd(kEndPatienceMs).exitCode, 137);
  EXPECT_EQ(runtime_->childEnd().lastOutput, "last words\n");
  EXPECT_EQ(runtime_->stop(), kPipeFailed);
  EXPECT_EQ(runtime_->childEnd().lastOutput, "last words\n");
}

TEST_F(RRuntimeTest, StartsAgainAfterAStop) {
  for (int turn = 0; turn < 3; ++turn) {
    EXPECT_EQ(runtime_->start(), 0);
    EXPECT_EQ(Run({"exists('x')", "x <- 1"}), 0);
    EXPECT_THAT(Shown(), ElementsAre("[1] FALSE"));
    ExpectToStopWith(0);
    EXPECT_EQ(Run({"x"}), 99115);
  }
}

// A home folder whose package can not be loaded: the set-up goes through, and no run would do anything.
TEST_F(RRuntimeTest, APackageThatIsNotThere) {
  EXPECT_EQ(runtime_->stop(), 0);
  const std::filesystem::path packages = std::filesystem::path(home()) / "R";
  std::filesystem::remove(packages);
  EXPECT_EQ(runtime_->start(), kPipeFailed);
  std::filesystem::create_directory_symlink(std::filesystem::path(KOVA_HOME_DIR) / "R", packages);
  EXPECT_EQ(runtime_->childEnd().exitCode, 3);
  EXPECT_THAT(runtime_->childEnd().lastOutput, HasSubstr("kovastatistics"));
  EXPECT_EQ(runtime_->start(), 0);
  EXPECT_EQ(Run({"1"}), 0);
  EXPECT_THAT(Shown(), ElementsAre("[1] 1"));
}

}  // namespace
}  // namespace kova::engine
