// What counts as a prompt, however the bytes come.
#include "host/r_console.h"

#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/os/process.h"
#include "tests/transport/traced_test.h"
#include "transport/watched_wait.h"

namespace {

namespace os = kova::os;

class RConsoleTest : public kova::TracedTest {
 protected:
  // Starts a program at the child's ends.
  void begin(std::function<int()> body) {
    kova::fake::registerProgram("R", [body](const os::ProcessStart&) { return body(); });
    ASSERT_EQ(console_.open(), os::kSuccess);
    os::ProcessStart start;
    start.program = "R";
    start.isApart = true;
    start.input = console_.childInput();
    start.output = console_.childOutput();
    ASSERT_EQ(os::Process::Start(start, &process_), os::kSuccess);
    console_.closeChildEnds();
  }

  // One that prints each of the pieces once the one before has been read, and then waits for its input's end.
  void beginPrinting(std::vector<std::string> pieces) {
    const unsigned reads = kova::fake::callCount("BytePipeEnd::Read");
    begin([pieces, reads] {
      unsigned next = reads;
      for (const std::string& piece : pieces) {
        while (kova::fake::callCount("BytePipeEnd::Read") <= next) std::this_thread::yield();
        ++next;
        kova::fake::writeOutput(piece);
      }
      while (!kova::fake::readInput().empty()) {
      }
      return 0;
    });
  }

  void end() {
    console_.close();
    EXPECT_EQ(process_.Wait(0xFFFFFFFF, nullptr), os::kSuccess);
  }

  kova::RConsole console_;
  os::Process process_;
};

struct PromptRow {
  const char* label;
  std::vector<std::string> pieces;
  bool inBrowser;
  bool inContinuation;
};

TEST_F(RConsoleTest, Prompts) {
  const std::string most(4095, 'x');
  const PromptRow rows[] = {
      {"a plain one", {"> "}, false, false},
      {"behind output", {"[1] 2\n> "}, false, false},
      {"in two pieces", {">", " "}, false, false},
      {"in many pieces", {"[1]", " 2", "\n", ">", " "}, false, false},
      {"the rest of a statement", {"+ "}, false, true},
      {"the rest of a statement, in two pieces", {"\n+", " "}, false, true},
      {"the debugger", {"Browse[1]> "}, true, false},
      {"the debugger behind output", {"debug: x\nBrowse[2]> "}, true, false},
      {"the debugger, cut", {"Browse[", "1]> "}, true, false},
      {"the debugger, cut in its prompt", {"Browse[1]>", " "}, true, false},
      {"the debugger, ten levels down", {"Browse[12]> "}, false, false},
      {"the debugger, before other output", {"Browse[1]> x\n> "}, false, false},
      {"a part of the debugger's", {"rowse[1]> "}, false, false},
      {"exactly one chunk", {std::string(4094, 'x') + "> "}, false, false},
      {"one byte more than a chunk", {most + "> "}, false, false},
      {"more than two chunks", {most + most + most + "> "}, false, false},
      {"what looks like one within the output", {"a > b\nx+ y\n> "}, false, false},
  };
  for (const PromptRow& row : rows) {
    SCOPED_TRACE(row.label);
    beginPrinting(row.pieces);
    EXPECT_EQ(console_.awaitPrompt(nullptr), 0);
    EXPECT_EQ(console_.isInBrowser(), row.inBrowser);
    EXPECT_EQ(console_.isInContinuation(), row.inContinuation);
    end();
  }
}

TEST_F(RConsoleTest, PromptsThatComeByteByByte) {
  const PromptRow rows[] = {
      {"a plain one", {"[1] 2\n> "}, false, false},
      {"the rest of a statement", {"text\n+ "}, false, true},
      {"the debugger", {"debug: x\nBrowse[1]> "}, true, false},
      {"a long output", {std::string(4095, 'x') + "> "}, false, false},
  };
  kova::fake::limitByteReads(1);
  for (const PromptRow& row : rows) {
    SCOPED_TRACE(row.label);
    beginPrinting(row.pieces);
    EXPECT_EQ(console_.awaitPrompt(nullptr), 0);
    EXPECT_EQ(console_.isInBrowser(), row.inBrowser);
    EXPECT_EQ(console_.isInContinuation(), row.inContinuation);
    end();
  }
}

TEST_F(RConsoleTest, APromptChangesOnlyWhatItTellsOf) {
  std::vector<std::string> prompts = {"Browse[1]> ", "+ ", "+ ", "> ", "Browse[1]> ", "x> "};
  begin([prompts] {
    for (const std::string& prompt : prompts) {
      kova::fake::writeOutput(prompt);
      if (!kova::fake::readInputLine()) break;
    }
    return 0;
  });
  const bool browser[] = {true, true, true, false, true, false};
  const bool continuation[] = {false, true, true, false, false, false};
  for (std::size_t i = 0; i < prompts.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(console_.awaitPrompt(nullptr), 0);
    EXPECT_EQ(console_.isInBrowser(), browser[i]);
    EXPECT_EQ(console_.isInContinuation(), continuation[i]);
    EXPECT_EQ(console_.write("x\n"), 0);
  }
  end();
}

TEST_F(RConsoleTest, AConsoleThatEndsIsTold) {
  begin([] {
    kova::fake::writeOutput("Error: no\n");
    return 0;
  });
  EXPECT_EQ(console_.awaitPrompt(nullptr), 99104);
  EXPECT_EQ(console_.lastOutput(), "Error: no\n");
  EXPECT_EQ(console_.write("x\n"), 99104);
  EXPECT_EQ(console_.awaitPrompt(nullptr), 99104);
  EXPECT_EQ(console_.lastOutput(), "Error: no\n") << "the statement came too late for it";
  end();
}

TEST_F(RConsoleTest, WithoutPipesNothingWorks) {
  EXPECT_EQ(console_.write("x\n"), 99104);
  EXPECT_EQ(console_.awaitPrompt(nullptr), 99104);
  console_.drain(nullptr);
  for (const unsigned which : {0u, 1u}) {
    kova::fake::fail("BytePipeEnd::Create", os::kNotEnoughMemory, which);
    EXPECT_EQ(console_.open(), os::kNotEnoughMemory);
    EXPECT_EQ(console_.awaitPrompt(nullptr), 99104);
    console_.closeChildEnds();
    console_.close();
  }
}

TEST_F(RConsoleTest, TheLastOutputBeginsWithAStatement) {
  begin([] {
    kova::fake::writeOutput("hello\n> ");
    kova::fake::readInputLine();
    kova::fake::writeOutput("> ");
    kova::fake::readInputLine();
    kova::fake::writeOutput(std::string(5000, 'y') + "\n> ");
    kova::fake::readInputLine();
    return 0;
  });
  EXPECT_EQ(console_.lastOutput(), "");
  console_.awaitPrompt(nullptr);
  EXPECT_EQ(console_.lastOutput(), "hello\n> ");
  console_.write("x\n");
  EXPECT_EQ(console_.lastOutput(), "");
  console_.awaitPrompt(nullptr);
  EXPECT_EQ(console_.lastOutput(), "> ");
  console_.write("x\n");
  console_.awaitPrompt(nullptr);
  EXPECT_EQ(console_.lastOutput(), std::string(4093, 'y') + "\n> ") << "no more than the end is kept";
  end();
}

TEST_F(RConsoleTest, APromptIsNotWaitedForBeyondTheProcess) {
  begin([] {
    kova::fake::writeOutput("x\n");
    while (!kova::fake::readInput().empty()) {
    }
    return 0;
  });
  kova::PeerWatch watch(process_.Id());
  std::thread user([this] { EXPECT_TRUE(kova::fake::endProgram(process_.Id(), 1)); });
  EXPECT_EQ(console_.awaitPrompt(&watch), 99104);
  user.join();
  console_.drain(&watch);
  end();
}

TEST_F(RConsoleTest, WhatIsLeftIsReadUntilTheEnd) {
  begin([] {
    kova::fake::writeOutput("> ");
    kova::fake::readInputLine();
    // More than the pipe takes in, so that it ends only when somebody reads.
    kova::fake::writeOutput(std::string(200000, 'z') + "> ");
    return 0;
  });
  console_.awaitPrompt(nullptr);
  console_.write("q()\n");
  console_.drain(nullptr);
  end();
}

TEST_F(RConsoleTest, ASecondOpeningBeginsAnew) {
  beginPrinting({"Browse[1]> "});
  ASSERT_EQ(console_.awaitPrompt(nullptr), 0);
  const unsigned ends = kova::fake::openPipeEnds();
  os::Process first = std::move(process_);
  begin([] { return 0; });
  EXPECT_FALSE(console_.isInBrowser());
  EXPECT_EQ(console_.lastOutput(), "");
  EXPECT_EQ(kova::fake::openPipeEnds(), ends);
  EXPECT_EQ(first.Wait(0xFFFFFFFF, nullptr), os::kSuccess) << "its input has ended";
  end();
}

}  // namespace
