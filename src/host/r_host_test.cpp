// The host of R: a console, typed to and read.
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/os/environment.h"
#include "tests/host/child_test.h"
#include "tests/host/fake_r.h"

namespace {

namespace os = kova::os;

using kova::FakeR;
using kova::OpenHost;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kR = "C:\\R\\bin\\x64\\Rterm.exe";
const std::string kGone(1, FakeR::kLast);

class RHost : public kova::ChildTest {
 protected:
  RHost() { options_.PutOption("HOME", "C:\\R"); }

  // Starts R and forgets what that took.
  void begin(FakeR::Answer answer = nullptr, int exitCode = 0) {
    r_.provide(kR, std::move(answer), exitCode);
    ASSERT_EQ(start(host_, {"--silent", "--no-save"}), 0);
    r_.statements.clear();
    Traced();
  }

  FakeR r_;
  XConfigOptions options_{"R"};
  OpenHost host_{&options_, 1, true};
};

TEST_F(RHost, AStartAndAStop) {
  r_.provide(kR, nullptr, 4);
  EXPECT_EQ(start(host_, {"--silent", "--no-save"}), 0);
  EXPECT_THAT(r_.statements,
              ElementsAre("library(kovastatistics)", "initRProcess('LOCAL', 'T:\\\\tmp\\\\', '1a2b', 'R')"));
  EXPECT_THAT(hostsTraces(),
              ElementsAre("start_x_process result error code : 0.", "StatisticsX::init_embedded_x error code : 0."));
  EXPECT_EQ(kova::fake::elapsedMs(), 500u);
  EXPECT_TRUE(host_.isXProcessActive());
  EXPECT_EQ(host_.stop_embedded_x(), 0);
  EXPECT_EQ(r_.statements.back(), "q()");
  EXPECT_THAT(hostsTraces(), ElementsAre("StatisticsX::stop_embedded_x error code : 0."));
  EXPECT_EQ(host_.childExitCode(0), 4);
  EXPECT_EQ(kova::fake::callCount("Process::Terminate"), 0u);
  EXPECT_FALSE(host_.isR()) << "that is for a console that drives itself";
}

TEST_F(RHost, TheConsoleHasStreamsOfItsOwn) {
  begin();
  const os::ProcessStart start = kova::fake::startedPrograms().at(0);
  EXPECT_EQ(start.program, kR);
  EXPECT_EQ(start.commandLine, " --silent --no-save");
  EXPECT_NE(start.input, nullptr);
  EXPECT_NE(start.output, nullptr);
  EXPECT_TRUE(start.isApart);
  EXPECT_TRUE(start.endsWithParent);
  EXPECT_EQ(kova::fake::openPipeEnds(), 2u) << "this side's";
}

TEST_F(RHost, ArgumentsArePassedAsTheyAre) {
  kova::fake::registerProgram(kR, 0);
  EXPECT_NE(start(host_, {"one two", "\"three\""}), 0);
  EXPECT_EQ(kova::fake::startedPrograms().at(0).commandLine, " one two \"three\"");
}

TEST_F(RHost, WithoutArgumentsThereIsNoCommandLine) {
  r_.provide(kR);
  EXPECT_EQ(start(host_), 0);
  EXPECT_EQ(kova::fake::startedPrograms().at(0).commandLine, "");
}

TEST_F(RHost, TheModeIsTold) {
  kova::fake::setProgramPath("/opt/kova/engine.exe");
  const char* const modes[] = {"REMOTE", "LOCAL", "engine.exe"};
  for (int mode = 0; mode < 3; ++mode) {
    r_.provide(kR);
    OpenHost host(&options_, mode, true);
    ASSERT_EQ(start(host), 0);
    EXPECT_EQ(r_.statements.back(), std::string("initRProcess('") + modes[mode] + "', 'T:\\\\tmp\\\\', '1a2b', 'R')");
  }
}

TEST_F(RHost, AFolderWithAQuoteInItsName) {
  GetXPipeManager()->setPipePath("T:\\o'b");
  r_.provide(kR);
  EXPECT_EQ(start(host_), 0);
  EXPECT_EQ(r_.statements.back(), "initRProcess('LOCAL', 'T:\\\\o\\'b', '1a2b', 'R')");
}

TEST_F(RHost, TheEnvironmentIsRs) {
  begin();
  EXPECT_EQ(os::GetEnvironment("R_HOME"), "C:\\R");
}

// ---- Starts that fail

TEST_F(RHost, AProgramThatIsNotThere) {
  EXPECT_EQ(start(host_), 99107);
  EXPECT_THAT(hostsTraces(), ElementsAre("start_x_process result error code : 99107.",
                                         "StatisticsX::init_embedded_x error code : 99107."));
  EXPECT_EQ(kova::fake::openPipeEnds(), 0u);
}

TEST_F(RHost, AProgramThatEndsAtOnce) {
  kova::fake::Program brief;
  brief.exitCode = 2;
  brief.runsForMs = 400;
  kova::fake::registerProgram(kR, brief);
  EXPECT_EQ(start(host_), 99107);
  EXPECT_EQ(host_.childExitCode(0), 2);
}

TEST_F(RHost, PipesThatCanNotBeMade) {
  for (const unsigned which : {0u, 1u}) {
    r_.provide(kR);
    kova::fake::fail("BytePipeEnd::Create", os::kNotEnoughMemory, which);
    EXPECT_NE(start(host_), 0);
    EXPECT_FALSE(host_.isIntialized());
    EXPECT_EQ(kova::fake::openPipeEnds(), 0u);
    EXPECT_EQ(host_.childProcessId(), 0u);
  }
}

TEST_F(RHost, AConsoleThatEndsDuringTheSetUp) {
  for (const char* statement : {"library(kovastatistics)", "initRProcess('LOCAL', 'T:\\\\tmp\\\\', '1a2b', 'R')"}) {
    SCOPED_TRACE(statement);
    r_.provide(
        kR, [statement](const std::string& line) { return line == statement ? "Error: no\n" + kGone : "> "; }, 3);
    Traced();
    EXPECT_EQ(start(host_), 99104);
    EXPECT_THAT(hostsTraces(), ElementsAre("start_x_process result error code : 99104.",
                                           "StatisticsX::init_embedded_x error code : 99104."));
    EXPECT_EQ(host_.childExitCode(0), 3) << "the end of its own, not that of the host";
  }
  EXPECT_EQ(host_.lastConsoleOutput(), "Error: no\n");
}

TEST_F(RHost, APackageThatCanNotBeLoadedShowsInTheNextStatement) {
  r_.provide(kR, [](const std::string&) { return "Error: there is no such package\n> "; });
  EXPECT_EQ(start(host_), 0);
  EXPECT_EQ(r_.statements.size(), 2u);
}

// ---- Runs

TEST_F(RHost, ARunIsFramedByTheTwoActions) {
  begin();
  EXPECT_EQ(host_.pre_action(), 0);
  EXPECT_EQ(execute(host_, "x <- 1\n"), 0);
  EXPECT_EQ(host_.post_action(), 0);
  EXPECT_THAT(r_.statements, ElementsAre("prekova()", "x <- 1", "postkova()"));
  EXPECT_THAT(hostsTraces(),
              ElementsAre("StatisticsX::pre_action error code : 0.", "StatisticsX::execute_x error code : 0.",
                          "StatisticsX::post_action error code : 0."));
}

struct LinesRow {
  const char* syntax;
  std::vector<std::string> statements;
};

TEST_F(RHost, LinesAreSentOneByOne) {
  begin();
  const LinesRow rows[] = {
      {"a\nb\nc\n", {"a", "b", "c"}},
      {"a\nb\nc", {"a", "b"}},
      {"a\n\nb\n", {"a", "", "b"}},
      {"no line feed", {}},
      {"", {}},
      {"\n", {""}},
      {"a\r\nb\n", {"a\r", "b"}},
  };
  for (const LinesRow& row : rows) {
    SCOPED_TRACE(row.syntax);
    r_.statements.clear();
    EXPECT_EQ(execute(host_, row.syntax), 0);
    EXPECT_THAT(r_.statements, testing::ElementsAreArray(row.statements));
  }
  r_.statements.clear();
  EXPECT_EQ(host_.execute_x(nullptr), 0);
  EXPECT_THAT(r_.statements, IsEmpty());
}

TEST_F(RHost, ALineWaitsForThePromptOfTheOneBefore) {
  bool isPrompting = true;
  begin([&isPrompting](const std::string&) {
    EXPECT_TRUE(isPrompting);
    isPrompting = false;
    std::string text(100000, 'x');
    isPrompting = true;
    return text + "\n> ";
  });
  EXPECT_EQ(execute(host_, "a\nb\nc\n"), 0);
  EXPECT_EQ(host_.lastConsoleOutput().size(), 4096u);
}

TEST_F(RHost, TheResultIsThatOfTheLastLinesPipes) {
  begin([](const std::string& line) { return line == "stop()" ? kGone : "> "; });
  EXPECT_EQ(execute(host_, "a\nstop()\n"), 99104);
  EXPECT_EQ(execute(host_, "b\nc\n"), 99104) << "all lines are tried";
  EXPECT_EQ(host_.pre_action(), 99104);
  EXPECT_EQ(host_.post_action(), 99104);
  EXPECT_THAT(r_.statements, ElementsAre("a", "stop()"));
  EXPECT_EQ(execute(host_, "no line feed"), 0);
}

TEST_F(RHost, AnOpenStatementIsEndedBeforeThePostAction) {
  begin([](const std::string& line) { return line == "f(" ? "+ " : "> "; });
  EXPECT_EQ(execute(host_, "f(\n"), 0);
  EXPECT_EQ(host_.post_action(), 0);
  EXPECT_THAT(r_.statements, ElementsAre("f(", "END", "postkova()"));
  r_.statements.clear();
  EXPECT_EQ(execute(host_, "x\n"), 0);
  EXPECT_EQ(host_.post_action(), 0);
  EXPECT_THAT(r_.statements, ElementsAre("x", "postkova()")) << "it is not open any more";
}

TEST_F(RHost, AnOpenStatementThatCanNotBeEndedIsTheResult) {
  begin([](const std::string& line) { return line == "END" ? kGone : std::string("+ "); });
  EXPECT_EQ(execute(host_, "f(\n"), 0);
  EXPECT_EQ(host_.post_action(), 99104);
  EXPECT_THAT(r_.statements, ElementsAre("f(", "END"));
}

// ---- Stops

TEST_F(RHost, TheDebuggerIsLeftFirst) {
  int quits = 0;
  begin([&quits](const std::string& line) -> std::string {
    if (line == "browser()") return "Called from: top level\nBrowse[1]> ";
    if (line == "Q") return ++quits < 3 ? "Browse[1]> " : "> ";
    return "> ";
  });
  EXPECT_EQ(execute(host_, "browser()\n"), 0);
  EXPECT_EQ(host_.stop_embedded_x(), 0);
  EXPECT_THAT(r_.statements, ElementsAre("browser()", "Q", "Q", "Q", "q()"));
}

TEST_F(RHost, ADebuggerThatHasBeenLeftIsNotLeftAgain) {
  begin([](const std::string& line) -> std::string { return line == "browser()" ? "Browse[1]> " : "> "; });
  EXPECT_EQ(execute(host_, "browser()\nc\n"), 0);
  EXPECT_EQ(host_.stop_embedded_x(), 0);
  EXPECT_THAT(r_.statements, ElementsAre("browser()", "c", "q()"));
}

TEST_F(RHost, AConsoleThatEndsInTheDebugger) {
  begin([](const std::string& line) { return line == "Q" ? kGone : std::string("Browse[1]> "); }, 5);
  EXPECT_EQ(execute(host_, "browser()\n"), 0);
  EXPECT_EQ(host_.stop_embedded_x(), 99104);
  EXPECT_THAT(r_.statements, ElementsAre("browser()", "Q"));
  EXPECT_EQ(host_.childExitCode(0), 5);
}

TEST_F(RHost, AConsoleThatHasEnded) {
  begin();
  ASSERT_TRUE(kova::fake::endProgram(host_.childProcessId(), 6));
  while (host_.isXProcessActive()) std::this_thread::yield();
  EXPECT_EQ(host_.pre_action(), 99104);
  EXPECT_EQ(host_.stop_embedded_x(), 99104);
  EXPECT_EQ(host_.childExitCode(0), 6);
  EXPECT_EQ(kova::fake::openPipeEnds(), 0u);
}

// What it still prints is read: it could not end otherwise.
TEST_F(RHost, AConsoleThatSaysMuchAtItsEnd) {
  kova::fake::registerProgram(kR, [](const os::ProcessStart&) {
    kova::fake::writeOutput("> ");
    while (const auto line = kova::fake::readInputLine()) {
      if (*line == "q()") break;
      kova::fake::writeOutput("> ");
    }
    kova::fake::writeOutput(std::string(300000, 'z') + "> ");
    return 0;
  });
  ASSERT_EQ(start(host_), 0);
  EXPECT_EQ(host_.stop_embedded_x(), 0);
}

TEST_F(RHost, AStopOfAHostThatWasNeverStarted) {
  EXPECT_EQ(host_.stop_embedded_x(), 0);
  EXPECT_EQ(host_.x_stop_embedded_x(), 99104);
  EXPECT_EQ(kova::fake::callCount("Process::Terminate"), 0u);
}

TEST_F(RHost, DestructionStops) {
  r_.provide(kR);
  {
    OutpStatisticsX host(&options_, 1, true);
    ASSERT_EQ(start(host), 0);
  }
  EXPECT_EQ(r_.statements.back(), "q()");
}

TEST_F(RHost, AConsoleMayBeStartedAgain) {
  for (int life = 0; life < 3; ++life) {
    begin([](const std::string& line) { return line == "f(" ? "+ " : "> "; });
    EXPECT_EQ(execute(host_, "f(\n"), 0);
    EXPECT_EQ(host_.stop_embedded_x(), 0);
    EXPECT_THAT(r_.statements, ElementsAre("f(", "q()"));
  }
  begin();
  EXPECT_EQ(host_.post_action(), 0);
  EXPECT_THAT(r_.statements, ElementsAre("postkova()")) << "the open statement was the other console's";
}

// Another console than the first takes its place; the first one is not left behind.
TEST_F(RHost, ASecondStartOfAConsoleThatDrivesItself) {
  begin();
  const unsigned int first = host_.childProcessId();
  host_.setR(true);
  EXPECT_EQ(start(host_), 0);
  EXPECT_NE(host_.childProcessId(), first);
  EXPECT_FALSE(kova::fake::endProgram(first, 0));
  EXPECT_EQ(host_.stop_embedded_x(), 0);
}

}  // namespace
