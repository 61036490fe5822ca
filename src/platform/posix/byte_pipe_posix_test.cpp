// What byte pipes are on this platform beyond the seam's contract.
#include "platform/os/byte_pipe.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <cstdint>
#include <ctime>
#include <string>

#include "platform/os/process.h"
#include "tests/kit/kit.h"

namespace kova::os {
namespace {

class PosixBytePipe : public testing::Test {
 protected:
  PosixBytePipe() {
    EXPECT_EQ(BytePipeEnd::Create(&reader_, &writer_), kSuccess);
    sigemptyset(&pipeSignal_);
    sigaddset(&pipeSignal_, SIGPIPE);
    pthread_sigmask(SIG_UNBLOCK, &pipeSignal_, &before_);
  }
  ~PosixBytePipe() override { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

  void closeReader() { BytePipeEnd closing = std::move(reader_); }

  static bool isPending() {
    sigset_t pending;
    sigpending(&pending);
    return sigismember(&pending, SIGPIPE) == 1;
  }
  static bool isHeld() {
    sigset_t held;
    pthread_sigmask(SIG_BLOCK, nullptr, &held);
    return sigismember(&held, SIGPIPE) == 1;
  }

  BytePipeEnd reader_;
  BytePipeEnd writer_;
  sigset_t pipeSignal_;
  sigset_t before_;
};

TEST_F(PosixBytePipe, AWriteWithoutAReaderRaisesNoSignal) {
  closeReader();
  // Without care the signal would end this program here.
  EXPECT_EQ(writer_.Write("x", 1), kNoData);
  EXPECT_FALSE(isPending());
  EXPECT_FALSE(isHeld()) << "the thread lets the signal in as before";
}

TEST_F(PosixBytePipe, AHeldSignalIsNotLeftPending) {
  pthread_sigmask(SIG_BLOCK, &pipeSignal_, nullptr);
  closeReader();
  EXPECT_EQ(writer_.Write("x", 1), kNoData);
  EXPECT_FALSE(isPending());
  EXPECT_TRUE(isHeld());
}

TEST_F(PosixBytePipe, ASignalThatWasPendingBeforeStaysSo) {
  pthread_sigmask(SIG_BLOCK, &pipeSignal_, nullptr);
  pthread_kill(pthread_self(), SIGPIPE);
  closeReader();
  EXPECT_EQ(writer_.Write("x", 1), kNoData);
  EXPECT_TRUE(isPending());
  const timespec noTime = {};
  EXPECT_EQ(sigtimedwait(&pipeSignal_, nullptr, &noTime), SIGPIPE);
}

bool readsByte(int number, char expected) {
  char byte = 0;
  return read(number, &byte, 1) == 1 && byte == expected;
}

KOVA_KIT_CHILD(answers_by_descriptors) {
  if (!readsByte(STDIN_FILENO, '?')) return 1;
  if (write(STDOUT_FILENO, "out ", 4) != 4) return 2;
  return write(STDERR_FILENO, "err", 3) == 3 && kit::openHandleCount() == 3 ? 0 : 3;
}

// Has the ends of its pipes, and what Start makes for itself, at the numbers of the standard streams.
KOVA_KIT_CHILD(starts_without_streams) {
  for (const int number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) close(number);
  BytePipeEnd output;
  BytePipeEnd childsOutput;
  BytePipeEnd input;
  BytePipeEnd childsInput;
  const bool outputFirst = arguments.at(0) == "output";
  if (outputFirst && BytePipeEnd::Create(&output, &childsOutput) != kSuccess) return 10;
  if (BytePipeEnd::Create(&childsInput, &input) != kSuccess) return 11;
  if (!outputFirst && BytePipeEnd::Create(&output, &childsOutput) != kSuccess) return 12;
  ProcessStart start = kit::childStart("answers_by_descriptors");
  start.input = &childsInput;
  start.output = &childsOutput;
  Process child;
  if (Process::Start(start, &child) != kSuccess) return 13;
  BytePipeEnd(std::move(childsOutput));
  if (input.Write("?", 1) != kSuccess) return 14;
  std::string answer;
  char area[8];
  std::uint32_t count = 0;
  while (output.Read(area, sizeof area, &count) == kSuccess) answer.append(area, count);
  const int code = kit::waitForChild(child);
  return code != 0 || answer == "out err" ? code : 15;
}

TEST_F(PosixBytePipe, EndsMayHaveTheNumbersOfStandardStreams) {
  for (const char* first : {"output", "input"}) EXPECT_EQ(kit::runChild("starts_without_streams", {first}), 0) << first;
}

// The report of a failed start travels by a descriptor too.
KOVA_KIT_CHILD(fails_to_start_without_streams) {
  for (const int number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) close(number);
  ProcessStart start;
  start.program = "./no_such_program";
  start.isApart = true;
  Process child;
  return static_cast<int>(Process::Start(start, &child));
}

TEST_F(PosixBytePipe, AFailureIsToldWithoutStandardStreams) {
  EXPECT_EQ(kit::runChild("fails_to_start_without_streams"), 2);
}

}  // namespace
}  // namespace kova::os
