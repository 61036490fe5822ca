// How a process is tied to the one that has started it, and to those that it starts, on this platform.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "platform/os/clock.h"
#include "platform/os/named_pipe.h"
#include "platform/os/process.h"
#include "platform/os/process_watch.h"
#include "tests/kit/kit.h"

namespace kova::os {
namespace {

// A client's end of a message pipe.
class Line {
 public:
  explicit Line(const std::string& name) { OpenPipe(name.c_str(), PipeAccess::ReadWrite, WhenTaken::Wait, &end_); }
  Line(const Line&) = delete;
  Line& operator=(const Line&) = delete;
  ~Line() { ClosePipeHandle(end_); }

  bool say(const std::string& text) {
    std::uint32_t written = 0;
    return WriteMessage(end_, text.data(), static_cast<std::uint32_t>(text.size()), &written) == kSuccess;
  }
  std::string hear() {
    char area[100];
    std::uint32_t count = 0;
    const Error error = ReadMessage(end_, area, sizeof area, &count);
    return error == kSuccess ? std::string(area, count) : "error " + std::to_string(error);
  }

 protected:
  Line() = default;

  NativeHandle end_ = nullptr;
};

// The server's end.
class ServerLine : public Line {
 public:
  ServerLine() { EXPECT_EQ(CreateMessagePipe(name_.c_str(), 8192, &end_), kSuccess); }

  const std::string& name() const { return name_; }
  void accept() { AcceptPeer(end_); }
  std::string acceptAndHear() {
    accept();
    return hear();
  }

 private:
  std::string name_ = kit::scratchName();
};

// Says that it is there, and ends when it is told to.
KOVA_KIT_CHILD(stays) {
  Line line(arguments.at(0));
  if (!line.say("here")) return 1;
  line.hear();
  return 0;
}

Process startTied(const std::string& child, const std::vector<std::string>& arguments) {
  ProcessStart start = kit::childStart(child, arguments);
  start.endsWithParent = true;
  Process process;
  EXPECT_EQ(Process::Start(start, &process), kSuccess);
  return process;
}

// Returns when the thread of that number is not even known to the system any more.
void awaitThreadGone(pid_t thread) {
  while (tgkill(getpid(), thread, 0) == 0 || errno != ESRCH) YieldThread();
}

TEST(PosixTies, AProcessTiedToThisOneOutlivesTheThreadThatStartedIt) {
  ServerLine line;
  Process child;
  pid_t thread = 0;
  std::thread([&] {
    thread = gettid();
    child = startTied("stays", {line.name()});
  }).join();
  awaitThreadGone(thread);
  EXPECT_EQ(line.acceptAndHear(), "here");
  EXPECT_EQ(child.Wait(0, nullptr), kWaitTimeout);
  EXPECT_TRUE(line.say("end"));
  EXPECT_EQ(kit::waitForChild(child), 0);
}

KOVA_KIT_CHILD(starts_one_on_a_thread_and_is_killed) {
  pid_t thread = 0;
  std::thread([&] {
    thread = gettid();
    Process child = startTied("stays", {arguments.at(0)});
  }).join();
  awaitThreadGone(thread);
  Line(arguments.at(1)).hear();
  raise(SIGKILL);
  return 0;
}

TEST(PosixTies, AProcessTiedToOneThatIsKilledDiesWithIt) {
  ServerLine line;
  ServerLine starterLine;
  Process starter = kit::startChild("starts_one_on_a_thread_and_is_killed", {line.name(), starterLine.name()});
  EXPECT_EQ(line.acceptAndHear(), "here");
  starterLine.accept();
  EXPECT_TRUE(starterLine.say("go on"));
  EXPECT_EQ(kit::waitForChild(starter), 128 + SIGKILL);
  EXPECT_EQ(line.hear(), "error 109");
}

int threadCount() {
  int count = 0;
  for ([[maybe_unused]] const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) ++count;
  return count;
}

// Threads of this process that let SIGINT in.
int threadsOpenToInterrupts() {
  int count = 0;
  for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
    std::ifstream status(thread.path() / "status");
    for (std::string line; std::getline(status, line);) {
      if (!line.starts_with("SigBlk:")) continue;
      if ((std::stoull(line.substr(7), nullptr, 16) >> (SIGINT - 1) & 1) == 0) ++count;
    }
  }
  return count;
}

// With all that a checker of threads may begin of its own when the first thread is started.
int settledThreadCount() {
  pid_t thread = 0;
  std::thread([&] { thread = gettid(); }).join();
  awaitThreadGone(thread);
  return threadCount();
}

// In a process of its own, since other tests leave threads that are just ending.
KOVA_KIT_CHILD(counts_threads) {
  const int threads = settledThreadCount();
  const int open = threadsOpenToInterrupts();
  Process child = startTied("stays", {arguments.at(0)});
  if (threadCount() != threads + 1) return 1;
  if (threadsOpenToInterrupts() != open) return 2;
  const int code = kit::waitForChild(child);
  while (threadCount() != threads) YieldThread();
  return code == 0 ? 0 : 3;
}

TEST(PosixTies, TheThreadThatStaysWithAProcessTakesNoSignalAndGoesWithIt) {
  ServerLine line;
  Process counting = kit::startChild("counts_threads", {line.name()});
  EXPECT_EQ(line.acceptAndHear(), "here");
  EXPECT_TRUE(line.say("end"));
  EXPECT_EQ(kit::waitForChild(counting), 0);
}

KOVA_KIT_CHILD(fails_to_start_a_tied_one) {
  const int threads = settledThreadCount();
  ProcessStart start;
  start.program = "./no_such_program";
  start.endsWithParent = true;
  Process process;
  const Error error = Process::Start(start, &process);
  while (threadCount() != threads) YieldThread();
  return process ? 100 : static_cast<int>(error);
}

TEST(PosixTies, AFailedStartIsToldAcrossThreads) {
  EXPECT_EQ(kit::runChild("fails_to_start_a_tied_one"), static_cast<int>(kFileNotFound));
}

Error openParentOn(const std::string& thread, ProcessWatch* watch) {
  if (thread == "first") return ProcessWatch::OpenParent(watch);
  Error error = kGeneralFailure;
  std::thread([&] { error = ProcessWatch::OpenParent(watch); }).join();
  return error;
}

KOVA_KIT_CHILD(watches_in_place_of_the_system) {
  Line line(arguments.at(0));
  ProcessWatch watch;
  if (openParentOn(arguments.at(1), &watch) != kSuccess || !line.say("watching")) return 1;
  line.say(watch.Wait() == kSuccess ? "parent gone" : "wait failed");
  line.hear();
  return 0;
}

KOVA_KIT_CHILD(starts_a_watcher) {
  Process watcher = startTied("watches_in_place_of_the_system", arguments);
  return kit::waitForChild(watcher);
}

TEST(PosixTies, AWatchOfTheParentTakesTheSystemsPlace) {
  for (const char* thread : {"first", "other"}) {
    ServerLine line;
    Process starter = kit::startChild("starts_a_watcher", {line.name(), thread});
    EXPECT_EQ(line.acceptAndHear(), "watching");
    EXPECT_EQ(starter.Terminate(), kSuccess);
    EXPECT_EQ(line.hear(), "parent gone") << thread;
    EXPECT_TRUE(line.say("end"));
    EXPECT_EQ(line.hear(), "error 109");
    kit::waitForChild(starter);
  }
}

Process startApart(const std::string& child, const std::vector<std::string>& arguments) {
  ProcessStart start = kit::childStart(child, arguments);
  start.isApart = true;
  Process process;
  EXPECT_EQ(Process::Start(start, &process), kSuccess);
  return process;
}

TEST(PosixTies, OneApartLeadsItsGroup) {
  ServerLine line;
  Process child = startApart("stays", {line.name()});
  EXPECT_EQ(line.acceptAndHear(), "here");
  EXPECT_EQ(getpgid(static_cast<pid_t>(child.Id())), static_cast<pid_t>(child.Id()));
  EXPECT_TRUE(line.say("end"));
  EXPECT_EQ(kit::waitForChild(child), 0);
  Process plain = kit::startChild("tells_whether_it_is_in_the_group", {std::to_string(getpgrp())});
  EXPECT_EQ(kit::waitForChild(plain), 1);
}

KOVA_KIT_CHILD(tells_whether_it_is_in_the_group) { return std::to_string(getpgrp()) == arguments.at(0) ? 1 : 0; }

// Starts one that stays, and ends itself.
KOVA_KIT_CHILD(leaves_one_behind) {
  const Process child = kit::startChild("stays", {arguments.at(0)});
  return child ? 0 : 1;
}

TEST(PosixTies, WhatOneApartLeftIsKilledAlsoWhenNobodyHoldsItAnyMore) {
  ServerLine line;
  pid_t id = 0;
  {
    const Process letGo = startApart("leaves_one_behind", {line.name()});
    id = static_cast<pid_t>(letGo.Id());
  }
  EXPECT_EQ(line.acceptAndHear(), "here");
  siginfo_t info = {};
  ASSERT_EQ(waitid(P_PID, static_cast<id_t>(id), &info, WEXITED | WNOWAIT), 0);
  Process next = kit::startChild("tells_whether_it_is_in_the_group", {"0"});
  EXPECT_EQ(line.hear(), "error 109") << "the next start took the end, and what was left with it";
  EXPECT_EQ(kit::waitForChild(next), 0);
}

KOVA_KIT_CHILD(ends_alone) {
  const Process child = kit::startChild("stays", {arguments.at(0)});
  Line(arguments.at(1)).hear();
  EndWithChildren();
}

TEST(PosixTies, OneThatLeadsNoGroupEndsItselfAlone) {
  ServerLine line;
  ServerLine starterLine;
  Process starter = kit::startChild("ends_alone", {line.name(), starterLine.name()});
  EXPECT_EQ(line.acceptAndHear(), "here");
  starterLine.accept();
  EXPECT_TRUE(starterLine.say("go on"));
  EXPECT_EQ(kit::waitForChild(starter), 128 + SIGKILL);
  EXPECT_TRUE(line.say("still there")) << "and this program too";
  EXPECT_EQ(line.hear(), "error 109");
}

}  // namespace
}  // namespace kova::os
