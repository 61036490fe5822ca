// What scripted programs read and write, and how they are tied to the one that started them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>
#include <vector>

#include "platform/os/named_pipe.h"
#include "platform/os/process.h"
#include "platform/os/process_watch.h"
#include "tests/os_fake/os_fake.h"

namespace kova::fake {
namespace {

using testing::ElementsAre;

class FakeStreams : public testing::Test {
 protected:
  FakeStreams() {
    reset();
    EXPECT_EQ(os::BytePipeEnd::Create(&childsInput_, &input_), os::kSuccess);
    EXPECT_EQ(os::BytePipeEnd::Create(&output_, &childsOutput_), os::kSuccess);
  }

  // Starts a program with the pipes and keeps none of its ends.
  void start(std::function<int(const os::ProcessStart&)> body) {
    registerProgram("console", std::move(body));
    os::ProcessStart what;
    what.program = "console";
    what.isApart = true;
    what.input = &childsInput_;
    what.output = &childsOutput_;
    ASSERT_EQ(os::Process::Start(what, &process_), os::kSuccess);
    close(childsInput_);
    close(childsOutput_);
  }

  static void close(os::BytePipeEnd& end) { os::BytePipeEnd closing = std::move(end); }

  os::Error send(const std::string& bytes) {
    return input_.Write(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
  }

  // One read.
  std::string receive() {
    char area[100];
    std::uint32_t count = 0;
    const os::Error error = output_.Read(area, sizeof area, &count);
    return error == os::kSuccess ? std::string(area, count) : "error " + std::to_string(error);
  }

  // Reads until exactly that text has come, or something else.
  void expect(const std::string& expected) {
    std::string text;
    while (text.size() < expected.size() && expected.starts_with(text)) text += receive();
    EXPECT_EQ(text, expected);
  }

  int waitForEnd() {
    int code = -1;
    EXPECT_EQ(process_.Wait(os::kWaitForever, &code), os::kSuccess);
    return code;
  }

  os::BytePipeEnd childsInput_;
  os::BytePipeEnd input_;
  os::BytePipeEnd output_;
  os::BytePipeEnd childsOutput_;
  os::Process process_;
};

TEST_F(FakeStreams, AConsoleAnswersLineByLine) {
  start([](const os::ProcessStart&) {
    writeOutput("> ");
    while (const auto line = readInputLine()) writeOutput("you said " + *line + "\n> ");
    return 4;
  });
  expect("> ");
  EXPECT_EQ(send("one\n"), os::kSuccess);
  expect("you said one\n> ");
  EXPECT_EQ(send("two\nthr"), os::kSuccess);
  EXPECT_EQ(send("ee"), os::kSuccess);
  close(input_);
  EXPECT_EQ(waitForEnd(), 4);
  expect("you said two\n> you said three\n> ");
  EXPECT_EQ(receive(), "error 109") << "what it wrote was read after its end";
}

TEST_F(FakeStreams, ReadsAreLimitedAsTold) {
  start([](const os::ProcessStart&) {
    writeOutput("abcdefg");
    return 0;
  });
  EXPECT_EQ(waitForEnd(), 0);
  limitByteReads(3);
  EXPECT_EQ(receive(), "abc");
  EXPECT_EQ(receive(), "def");
  limitByteReads(0);
  EXPECT_EQ(receive(), "g");
  EXPECT_EQ(receive(), "error 109");
}

TEST_F(FakeStreams, EmptyLinesAreLines) {
  start([](const os::ProcessStart&) {
    int count = 0;
    while (readInputLine()) ++count;
    return count;
  });
  EXPECT_EQ(send("\n\nx"), os::kSuccess);
  close(input_);
  EXPECT_EQ(waitForEnd(), 3);
}

TEST_F(FakeStreams, InputComesInPieces) {
  std::vector<std::string> pieces;
  start([&](const os::ProcessStart&) {
    for (std::string piece = readInput(2); !piece.empty(); piece = readInput(2)) pieces.push_back(piece);
    return 0;
  });
  EXPECT_EQ(send("abcde"), os::kSuccess);
  close(input_);
  EXPECT_EQ(waitForEnd(), 0);
  EXPECT_THAT(pieces, ElementsAre("ab", "cd", "e"));
}

TEST_F(FakeStreams, CallsFailAsScripted) {
  fail("BytePipeEnd::Create", os::kNotEnoughMemory);
  fail("BytePipeEnd::Read", os::kGeneralFailure);
  fail("BytePipeEnd::Write", os::kNoData);
  os::BytePipeEnd reader;
  os::BytePipeEnd writer;
  EXPECT_EQ(os::BytePipeEnd::Create(&reader, &writer), os::kNotEnoughMemory);
  EXPECT_FALSE(reader);
  EXPECT_EQ(send("x"), os::kNoData);
  EXPECT_EQ(receive(), "error 31");
  EXPECT_EQ(send("y"), os::kSuccess);
  char byte = 0;
  std::uint32_t count = 0;
  EXPECT_EQ(childsInput_.Read(&byte, 1, &count), os::kSuccess);
  EXPECT_EQ(byte, 'y') << "a call that fails does nothing else";
}

TEST_F(FakeStreams, ATerminatedProgramLosesItsStreams) {
  start([](const os::ProcessStart&) {
    readInput();
    return 0;
  });
  EXPECT_EQ(process_.Terminate(), os::kSuccess);
  EXPECT_EQ(receive(), "error 109");
  EXPECT_EQ(send("x"), os::kNoData);
  EXPECT_EQ(waitForEnd(), 137);
}

TEST_F(FakeStreams, AWriterIsKeptUntilThereIsRoom) {
  std::atomic<bool> written{false};
  start([&](const os::ProcessStart&) {
    written = writeOutput(std::string(100000, 'x'));
    return 0;
  });
  std::size_t size = 0;
  for (std::string part = receive(); part[0] == 'x'; part = receive()) size += part.size();
  EXPECT_EQ(size, 100000u);
  EXPECT_TRUE(written);
  EXPECT_EQ(waitForEnd(), 0);
}

TEST_F(FakeStreams, NobodyReadsAnyMore) {
  start([](const os::ProcessStart&) {
    while (writeOutput("x")) readInput();
    return 8;
  });
  EXPECT_EQ(receive(), "x");
  close(output_);
  EXPECT_EQ(send("go on"), os::kSuccess);
  EXPECT_EQ(waitForEnd(), 8);
}

TEST_F(FakeStreams, WithoutPipesTheInputIsEmptyAndTheOutputLost) {
  registerProgram("alone", [](const os::ProcessStart&) {
    return readInput().empty() && !readInputLine() && writeOutput("lost") ? 1 : 0;
  });
  os::ProcessStart what;
  what.program = "alone";
  ASSERT_EQ(os::Process::Start(what, &process_), os::kSuccess);
  EXPECT_EQ(waitForEnd(), 1);
}

TEST_F(FakeStreams, EndsThatAProgramMadeGoWithIt) {
  const unsigned before = openPipeEnds();
  EXPECT_EQ(before, 4u) << "byte pipes are counted with the others";
  start([](const os::ProcessStart&) {
    os::BytePipeEnd reader;
    os::BytePipeEnd writer;
    os::BytePipeEnd::Create(&reader, &writer);
    writeOutput("made");
    readInput();
    return 0;
  });
  expect("made");
  EXPECT_EQ(openPipeEnds(), before - 2 + 2);
  EXPECT_EQ(process_.Terminate(), os::kSuccess);
  waitForEnd();
  EXPECT_EQ(openPipeEnds(), before - 2);
}

TEST_F(FakeStreams, ACommandLineIsTakenApart) {
  std::vector<std::string> arguments;
  registerProgram("child", [&](const os::ProcessStart& started) {
    arguments = started.arguments;
    return 0;
  });
  os::ProcessStart what;
  what.program = "child";
  what.commandLine = R"( -x "two words")";
  ASSERT_EQ(os::Process::Start(what, &process_), os::kSuccess);
  EXPECT_EQ(waitForEnd(), 0);
  EXPECT_THAT(arguments, ElementsAre("-x", "two words"));
  ASSERT_EQ(startedPrograms().size(), 1u);
  EXPECT_EQ(startedPrograms()[0].commandLine, what.commandLine);
  EXPECT_TRUE(startedPrograms()[0].arguments.empty()) << "as it was told";
}

TEST_F(FakeStreams, WhatAProgramApartStartsEndsWithIt) {
  registerProgram("grandchild", {.exitCode = 0, .runsForMs = os::kWaitForever, .body = {}});
  std::atomic<std::uint32_t> grandchild{0};
  start([&](const os::ProcessStart&) {
    os::ProcessStart what;
    what.program = "grandchild";
    os::Process process;
    EXPECT_EQ(os::Process::Start(what, &process), os::kSuccess);
    grandchild = process.Id();
    os::EndWithChildren();
    return 0;
  });
  EXPECT_EQ(waitForEnd(), 137);
  EXPECT_NE(grandchild, 0u);
  EXPECT_FALSE(endProgram(grandchild, 0)) << "it has ended already";
}

TEST_F(FakeStreams, AProgramCanWatchWhoStartedItInPlaceOfEndingWithIt) {
  registerProgram("watcher", [](const os::ProcessStart&) {
    os::ProcessWatch watch;
    if (os::ProcessWatch::OpenParent(&watch) != os::kSuccess) return 1;
    writeOutput("watching.");
    writeOutput(watch.Wait() == os::kSuccess ? "seen." : "not seen.");
    return 0;
  });
  registerProgram("starter", [](const os::ProcessStart&) {
    os::ProcessStart what;
    what.program = "watcher";
    what.endsWithParent = true;
    os::Process process;
    EXPECT_EQ(os::Process::Start(what, &process), os::kSuccess);
    readInput();
    return 0;
  });
  os::ProcessStart what;
  what.program = "starter";
  what.input = &childsInput_;
  what.output = &childsOutput_;
  ASSERT_EQ(os::Process::Start(what, &process_), os::kSuccess);
  close(childsOutput_);
  // A program has the streams of the one that has started it.
  expect("watching.");
  EXPECT_EQ(process_.Terminate(), os::kSuccess);
  EXPECT_EQ(waitForEnd(), 137);
  expect("seen.");
  EXPECT_EQ(receive(), "error 109");
}

TEST_F(FakeStreams, NobodyHasStartedTheTest) {
  os::ProcessWatch watch;
  ASSERT_EQ(os::ProcessWatch::OpenParent(&watch), os::kSuccess);
  EXPECT_EQ(watch.Wait(), os::kSuccess);
}

}  // namespace
}  // namespace kova::fake
