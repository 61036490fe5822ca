// The console of R and a Java extension as runtimes of an engine for Windows: the library starts the relays that bear
// their names, and these reach the real programs (relay.cpp). The folder KOVA_RELAY_HOME is the home folder, prepared
// by relay_test.py, which starts this program.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "config/process_values.h"
#include "engine/outer_runtime.h"
#include "engine/serving_test.h"
#include "engine/text_file.h"
#include "host/OutpStatisticsX.h"
#include "host/XManager.h"
#include "message/JavaExtensionSmb.h"
#include "platform/os/environment.h"
#include "tests/kit/kit.h"
#include "tests/kit/kit_system.h"
#include "trace/DxTracer.h"
#include "transport/JavaPlugInSocket.h"
#include "transport/XPipeManager.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr unsigned kPatienceMs = 20000;

// A host is stopped once more when it goes.
constexpr const char* kStopped = "StatisticsX::stop_embedded_x error code : 0.";

std::string home() { return os::GetEnvironment("KOVA_RELAY_HOME").value_or(""); }

// Text mode has put one before each line feed.
std::string withoutReturns(std::string text) {
  std::erase(text, '\r');
  return text;
}

// A program that is put aside for as long as this lives.
class Missing {
 public:
  explicit Missing(std::string path) : path_(std::move(path)) { std::filesystem::rename(path_, path_ + ".aside"); }
  Missing(const Missing&) = delete;
  Missing& operator=(const Missing&) = delete;
  ~Missing() { std::filesystem::rename(path_ + ".aside", path_); }

 private:
  std::string path_;
};

class RelayTest : public ServingTest {
 protected:
  explicit RelayTest(std::string language) : ServingTest(home()), language_(std::move(language)) {
    SetAppMode(1);
    tracer_.open(tracePath_);
    SetDxTracer(&tracer_);
    runtime_ = std::make_unique<OuterRuntime>(language_, Performer());
  }
  ~RelayTest() override {
    runtime_.reset();
    SetDxTracer(before_);
  }

  OutpStatisticsX* host() const { return dynamic_cast<OutpStatisticsX*>(GetXManager()->getStatisticsX(language_)); }

  // What the host of the runtime has traced.
  std::vector<std::string> traced() const {
    std::vector<std::string> found;
    std::istringstream records(readTextFile(tracePath_));
    for (std::string record; std::getline(records, record);) {
      const std::size_t begin = record.find(">>");
      if (begin == std::string::npos) continue;
      const std::string message = withoutReturns(record.substr(begin + 2));
      for (const char* label : {"start_x_process", "stat_", "StatisticsX::", "x_execute_x"}) {
        if (message.starts_with(label)) found.push_back(message);
      }
    }
    return found;
  }

  std::string language_;
  std::string tracePath_ = kit::scratchPath("relay_trace");
  DxTracer tracer_;
  DxTracer* const before_ = GetDxTracer();
  std::unique_ptr<OuterRuntime> runtime_;
};

// ---- R

class RelayedR : public RelayTest {
 protected:
  RelayedR() : RelayTest("R") {}

  // What the console answers to a statement, its prompt too.
  std::string ask(std::string statement) {
    EXPECT_EQ(host()->execute_x((statement + "\n").data()), 0);
    return withoutReturns(host()->lastConsoleOutput());
  }
};

TEST_F(RelayedR, AStartRunsAndAStop) {
  ASSERT_EQ(runtime_->start(), 0);
  EXPECT_TRUE(host()->isXProcessActive());
  EXPECT_EQ(runtime_->run({"x <- 1", "y <- x + 1"}), 0);
  EXPECT_EQ(ask("cat(y, 'is kept\\n')"), "2 is kept\n> ");
  EXPECT_EQ(runtime_->run({"x <- y"}), 0);
  EXPECT_EQ(runtime_->stop(), 0);
  EXPECT_EQ(runtime_->childEnd().exitCode, 0);
  const std::string executed = "StatisticsX::execute_x error code : 0.";
  const std::string before = "StatisticsX::pre_action error code : 0.";
  const std::string behind = "StatisticsX::post_action error code : 0.";
  EXPECT_THAT(traced(),
              ElementsAre("start_x_process result error code : 0.", "StatisticsX::init_embedded_x error code : 0.",
                          executed, before, executed, behind, executed, before, executed, behind, kStopped, kStopped))
      << "the first statement is the engine's own";
}

TEST_F(RelayedR, WhatItIsTold) {
  ASSERT_EQ(runtime_->start(), 0);
  const std::string packages = home() + "\\R\\rpackage";
  const std::array<std::pair<const char*, std::string>, 4> rows = {{
      {"KOVA_HOME", home()},
      {"R_HOME", home() + "\\machine"},
      {"KOVA_R_LIBS", packages},
      {"KOVADXTEMP", GetXPipeManager()->getPipePath()},
  }};
  for (const auto& [name, value] : rows) {
    EXPECT_EQ(ask("cat(Sys.getenv('TOLD_" + std::string(name) + "'), '\\n', sep = '')"), value + "\n> ") << name;
  }
  // What this process has had before stands behind it; it takes over what it makes for a start.
  EXPECT_THAT(ask("cat(Sys.getenv('TOLD_R_LIBS_USER'), ';', sep = '')"), StartsWith(packages + ";"));
  EXPECT_THAT(ask("cat(Sys.getenv('TOLD_PATH'), '\\n')"), StartsWith(home() + "\\machine\\bin\\x64;"));
  EXPECT_EQ(ask("cat(told()[c(1, 3, 4)], '\\n')"), "LOCAL " + GetXPipeManager()->getPipePid() + " R \n> ");
  EXPECT_EQ(ask("cat(told()[2] == Sys.getenv('TOLD_KOVADXTEMP'), '\\n')"), "TRUE \n> ");
}

TEST_F(RelayedR, AStopAndAnotherStart) {
  for (int life = 0; life < 2; ++life) {
    ASSERT_EQ(runtime_->start(), 0);
    EXPECT_EQ(ask("cat(exists('life'), '\\n')"), "FALSE \n> ");
    EXPECT_EQ(runtime_->run({"life <- 1"}), 0);
    EXPECT_EQ(runtime_->stop(), 0);
  }
}

TEST_F(RelayedR, AnErrorIsShownAndEndsNothing) {
  ASSERT_EQ(runtime_->start(), 0);
  EXPECT_EQ(ask("stop('no good')"), "Error: no good\n> ");
  EXPECT_EQ(ask("message('to the error stream')"), "to the error stream\n> ");
  EXPECT_EQ(runtime_->run({"stop('no good')", "behind <- 1"}), 0);
  EXPECT_EQ(ask("cat(behind, '\\n')"), "1 \n> ");
}

TEST_F(RelayedR, AnIncompleteStatementIsEnded) {
  ASSERT_EQ(runtime_->start(), 0);
  EXPECT_EQ(host()->pre_action(), 0);
  EXPECT_EQ(ask("x <- 1 +"), "+ ");
  EXPECT_EQ(host()->post_action(), 0);
  EXPECT_EQ(ask("cat(exists('x'), '\\n')"), "FALSE \n> ") << "its end was no number";
  EXPECT_EQ(runtime_->run({"y <- list(1,"}), 0);
  EXPECT_EQ(ask("cat('goes on\\n')"), "goes on\n> ") << "its end and the next statement made a syntax error of it";
}

TEST_F(RelayedR, TheDebuggerIsLeftByTheStop) {
  ASSERT_EQ(runtime_->start(), 0);
  EXPECT_THAT(ask("f <- function() { browser(); 5 }; f()"), testing::EndsWith("Browse[1]> "));
  EXPECT_EQ(ask("cat(1 + 1, '\\n')"), "2 \nBrowse[1]> ");
  EXPECT_EQ(runtime_->stop(), 0);
  EXPECT_EQ(runtime_->childEnd().exitCode, 0);
}

TEST_F(RelayedR, MuchOutput) {
  ASSERT_EQ(runtime_->start(), 0);
  EXPECT_EQ(runtime_->run({"cat(strrep('x', 2e6), '\\n')", "cat(strrep('y\\n', 100000))"}), 0);
  EXPECT_EQ(ask("cat(strrep('z', 5000), '\\n', sep = '')"), std::string(4092, 'z') + "\n> ") << "its end";
  EXPECT_EQ(ask("cat('still here\\n')"), "still here\n> ");
}

TEST_F(RelayedR, AStatementThatEndsIt) {
  ASSERT_EQ(runtime_->start(), 0);
  EXPECT_EQ(runtime_->run({"cat('last words\\n'); quit(status = 7)"}), 99104);
  EXPECT_EQ(runtime_->childEnd(kPatienceMs).exitCode, 7);
  EXPECT_THAT(runtime_->childEnd().lastOutput, HasSubstr("last words"));
  EXPECT_EQ(runtime_->stop(), 99104);
  EXPECT_EQ(runtime_->start(), 0);
}

TEST_F(RelayedR, AConsoleThatIsKilled) {
  ASSERT_EQ(runtime_->start(), 0);
  EXPECT_EQ(runtime_->run({"tools::pskill(Sys.getpid(), 9)"}), 99104);
  EXPECT_EQ(runtime_->childEnd(kPatienceMs).exitCode, 137);
  EXPECT_EQ(runtime_->stop(), 99104);
  EXPECT_EQ(runtime_->childEnd().exitCode, 137);
  EXPECT_EQ(runtime_->start(), 0);
}

TEST_F(RelayedR, AProcessThatIsKilledInAStatement) {
  ASSERT_EQ(runtime_->start(), 0);
  const std::uint32_t child = host()->childProcessId();
  std::thread user([child] { EXPECT_TRUE(kit::killProcess(child)); });
  EXPECT_EQ(runtime_->run({"Sys.sleep(600)"}), 99104);
  user.join();
  EXPECT_EQ(runtime_->childEnd(kPatienceMs).exitCode, 137);
}

TEST_F(RelayedR, ASetUpThatIsRefused) {
  os::SetEnvironment("KOVA_RELAY_ORDER", "refuse");
  EXPECT_EQ(runtime_->start(), 99104);
  os::SetEnvironment("KOVA_RELAY_ORDER", "");
  EXPECT_EQ(runtime_->childEnd().exitCode, 3);
  EXPECT_THAT(runtime_->childEnd().lastOutput, HasSubstr("kovastatistics: refused"));
}

TEST_F(RelayedR, AProgramThatIsNotThere) {
  const Missing r(home() + "\\machine\\bin\\x64\\Rterm.exe");
  EXPECT_EQ(runtime_->start(), 99107);
  EXPECT_THAT(traced(), ElementsAre("start_x_process result error code : 99107.",
                                    "StatisticsX::init_embedded_x error code : 99107.", kStopped));
}

// ---- Java

class RelayedJava : public RelayTest {
 protected:
  RelayedJava() : RelayTest("JAVAEXTENSION") {}
  ~RelayedJava() override {
    JavaExtensionSmb().SetDataLen(0);
    JavaExtensionSmb().CleanUp();
  }

  // The request to run a command of the prepared ones.
  static void prepare(const std::string& command, std::vector<std::string> arguments = {}) {
    arguments.insert(arguments.begin(),
                     {GetXPipeManager()->getPipePath(), GetXPipeManager()->getPipePid(), "JAVAEXTENSION"});
    std::string bytes(sizeof(std::uint32_t), '\0');
    for (const std::string& text : arguments) bytes.append(text).push_back('\0');
    for (std::size_t i = 0; i < sizeof(std::uint32_t); ++i) bytes[i] = static_cast<char>(bytes.size() >> (8 * i));
    JavaExtensionSmb record;
    record.SetExtensionPath(home() + "\\commands");
    record.SetCommandName(command);
    record.SetDataLen(static_cast<int>(bytes.size()));
    record.SetSendBuf(bytes.data());
  }
};

TEST_F(RelayedJava, HowACommandEnds) {
  const struct {
    const char* command;
    int exitCode;
  } rows[] = {{"Silent", 0}, {"Exits", 7}, {"Throws", 1}, {"Dies", 137}, {"Absent", 2}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.command);
    prepare(row.command);
    ASSERT_EQ(runtime_->start(), 0);
    EXPECT_EQ(runtime_->run({}), 0);
    EXPECT_EQ(runtime_->childEnd().exitCode, row.exitCode);
    EXPECT_EQ(runtime_->stop(), 0);
    EXPECT_EQ(runtime_->childEnd().exitCode, row.exitCode);
  }
}

TEST_F(RelayedJava, WhatIsTraced) {
  prepare("Silent");
  ASSERT_EQ(runtime_->start(), 0);
  EXPECT_EQ(runtime_->run({}), 0);
  EXPECT_EQ(runtime_->stop(), 0);
  EXPECT_THAT(
      traced(),
      ElementsAre("stat_start_java result error code : 0.", "StatisticsX::init_embedded_x error code : 0.",
                  "StatisticsX::pre_action error code : 0.", "x_execute_x SendData syntaxSocket error code : 0.",
                  "StatisticsX::execute_x error code : 0.", "StatisticsX::post_action error code : 0.",
                  "stat_stop_x: x process has already exited ", kStopped, kStopped));
}

TEST_F(RelayedJava, ALongRecordComesWhole) {
  constexpr int kCount = 200000;
  std::vector<std::string> arguments = {std::to_string(kCount)};
  for (int i = 0; i < kCount; ++i) arguments.push_back(std::to_string(i) + "\xc3\xbc");
  prepare("Checks", arguments);
  ASSERT_EQ(runtime_->start(), 0);
  EXPECT_EQ(runtime_->run({}), 0);
  EXPECT_EQ(runtime_->childEnd().exitCode, 0);
}

TEST_F(RelayedJava, AProcessThatIsKilledInItsCommand) {
  prepare("Sleeps");
  ASSERT_EQ(runtime_->start(), 0);
  const std::uint32_t child = host()->childProcessId();
  std::thread user([child] { EXPECT_TRUE(kit::killProcess(child)); });
  EXPECT_EQ(runtime_->run({}), 0);
  user.join();
  EXPECT_EQ(runtime_->childEnd().exitCode, 137);
  EXPECT_EQ(runtime_->stop(), 0);
}

TEST_F(RelayedJava, AStopBeforeTheRecordEndsIt) {
  prepare("Silent");
  ASSERT_EQ(runtime_->start(), 0);
  EXPECT_EQ(runtime_->stop(), 99104) << "nobody takes commands there";
  EXPECT_EQ(runtime_->childEnd().exitCode, 2);
}

TEST_F(RelayedJava, AProgramThatIsNotThere) {
  const Missing java(home() + "\\JRE\\bin\\java.exe");
  prepare("Silent");
  EXPECT_EQ(runtime_->start(), 99123);
  EXPECT_THAT(traced(), ElementsAre("stat_start_java result error code : 99123.",
                                    "StatisticsX::init_embedded_x error code : 99123.", kStopped));
}

}  // namespace
}  // namespace kova::engine
