// What processes are on this platform beyond the seam's contract.
#include "platform/os/process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <string>

#include "platform/os/clock.h"
#include "platform/os/environment.h"
#include "platform/os/named_pipe.h"
#include "platform/posix/descriptor_posix.h"
#include "tests/kit/kit.h"

namespace kova::os {
namespace {

void writeFile(const std::string& path, const char* text, mode_t mode) {
  std::FILE* file = std::fopen(path.c_str(), "w");
  ASSERT_NE(file, nullptr);
  std::fputs(text, file);
  std::fclose(file);
  ASSERT_EQ(chmod(path.c_str(), mode), 0);
}

Error start(const std::string& program, Process* process) {
  ProcessStart what;
  what.program = program;
  return Process::Start(what, process);
}

// Sets PATH for a scope.
class PathScope {
 public:
  explicit PathScope(const std::string& path) : before_(GetEnvironment("PATH").value_or("")) {
    SetEnvironment("PATH", path);
  }
  PathScope(const PathScope&) = delete;
  PathScope& operator=(const PathScope&) = delete;
  ~PathScope() { SetEnvironment("PATH", before_); }

 private:
  std::string before_;
};

TEST(PosixProcess, AScriptRuns) {
  const std::string script = kit::scratchPath("script");
  writeFile(script, "#!/bin/sh\nexit 12\n", 0755);
  Process process;
  ASSERT_EQ(start(script, &process), kSuccess);
  EXPECT_EQ(kit::waitForChild(process), 12);
  unlink(script.c_str());
}

TEST(PosixProcess, AFileThatMayNotBeRunGives5) {
  const std::string script = kit::scratchPath("script");
  writeFile(script, "#!/bin/sh\nexit 12\n", 0644);
  Process process;
  EXPECT_EQ(start(script, &process), kAccessDenied);
  EXPECT_EQ(start(kit::scratchFolder(), &process), kAccessDenied);
  EXPECT_FALSE(process);
  unlink(script.c_str());
}

TEST(PosixProcess, AFileBelowAFileIsNotThere) {
  const std::string script = kit::scratchPath("script");
  writeFile(script, "#!/bin/sh\nexit 12\n", 0755);
  Process process;
  EXPECT_EQ(start(script + "/below", &process), kFileNotFound);
  unlink(script.c_str());
}

TEST(PosixProcess, AScriptForAnAbsentInterpreterGives2) {
  const std::string script = kit::scratchPath("script");
  writeFile(script, "#!/no/such/interpreter\n", 0755);
  Process process;
  EXPECT_EQ(start(script, &process), kFileNotFound);
  unlink(script.c_str());
}

TEST(PosixProcess, ANameIsLookedForAlongThePath) {
  const std::string first = kit::scratchPath("first");
  const std::string second = kit::scratchPath("second");
  mkdir(first.c_str(), 0700);
  mkdir(second.c_str(), 0700);
  writeFile(first + "/kova_here", "#!/bin/sh\nexit 1\n", 0644);
  writeFile(second + "/kova_here", "#!/bin/sh\nexit 2\n", 0755);
  {
    const PathScope path("/no/such/folder:" + first + ":" + second);
    Process process;
    ASSERT_EQ(start("kova_here", &process), kSuccess);
    EXPECT_EQ(kit::waitForChild(process), 2) << "a file that may not be run does not hide a later one";
  }
  {
    const PathScope path(first);
    Process process;
    EXPECT_EQ(start("kova_here", &process), kAccessDenied);
  }
  for (const std::string& folder : {first, second}) {
    unlink((folder + "/kova_here").c_str());
    rmdir(folder.c_str());
  }
}

TEST(PosixProcess, BackslashesInAPathAreTurned) {
  Process process;
  ASSERT_EQ(start("\\bin\\true", &process), kSuccess);
  EXPECT_EQ(kit::waitForChild(process), 0);
}

KOVA_KIT_CHILD(counts_descriptors) { return kit::openHandleCount(); }

TEST(PosixProcess, AChildHasTheStandardStreamsAlone) {
  // One that somebody else's code left open for children.
  const Descriptor inheritable(::open("/dev/null", O_RDONLY));
  EXPECT_EQ(kit::runChild("counts_descriptors"), 3);
}

KOVA_KIT_CHILD(tells_signals) {
  sigset_t held;
  sigprocmask(SIG_BLOCK, nullptr, &held);
  struct sigaction action = {};
  sigaction(SIGPIPE, nullptr, &action);
  return (sigismember(&held, SIGINT) != 0 ? 1 : 0) + (action.sa_handler != SIG_DFL ? 2 : 0);
}

TEST(PosixProcess, AChildBeginsWithPlainSignals) {
  sigset_t interrupt;
  sigset_t before;
  sigemptyset(&interrupt);
  sigaddset(&interrupt, SIGINT);
  pthread_sigmask(SIG_BLOCK, &interrupt, &before);
  void (*const pipeBefore)(int) = signal(SIGPIPE, SIG_IGN);
  EXPECT_EQ(kit::runChild("tells_signals"), 0);
  signal(SIGPIPE, pipeBefore);
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

// Its own writes fail then, and what it starts is as before.
KOVA_KIT_CHILD(outlives_its_output) {
  OutliveOutput();
  int ends[2];
  if (pipe(ends) != 0) return 100;
  close(ends[0]);
  if (write(ends[1], "x", 1) != -1 || errno != EPIPE) return 101;
  close(ends[1]);
  return kit::runChild("tells_signals");
}

TEST(PosixProcess, AProgramMayOutliveItsOutput) { EXPECT_EQ(kit::runChild("outlives_its_output"), 0); }

constexpr int kMayBeIgnored[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGPIPE};

constexpr int kHangUpBit = 1;
constexpr int kInterruptBit = 2;
constexpr int kQuitBit = 4;

// Tells which of them it ignores, a bit each.
KOVA_KIT_CHILD(tells_ignored) {
  int ignored = 0;
  int bit = 1;
  for (const int number : kMayBeIgnored) {
    struct sigaction present = {};
    sigaction(number, nullptr, &present);
    if (present.sa_handler == SIG_IGN) ignored |= bit;
    bit *= 2;
  }
  return ignored;
}

// As a shell starts what it runs in the background, and nohup anything.
KOVA_KIT_CHILD(starts_while_ignoring) {
  for (const int number : kMayBeIgnored) signal(number, SIG_IGN);
  return kit::runChild("tells_ignored");
}

TEST(PosixProcess, WhatABackgroundProgramIgnoresItsChildrenIgnoreToo) {
  EXPECT_EQ(kit::runChild("starts_while_ignoring"), kHangUpBit + kInterruptBit + kQuitBit);
}

std::atomic<bool> endRequested{false};

KOVA_KIT_CHILD(takes_requests_while_ignoring) {
  signal(SIGINT, SIG_IGN);
  signal(SIGHUP, SIG_IGN);
  if (SetEndRequestHandler([] { endRequested = true; }) != kSuccess) return 100;
  const int ignored = kit::runChild("tells_ignored");
  raise(SIGTERM);
  while (!endRequested) YieldThread();
  return ignored;
}

TEST(PosixProcess, ARequestThatIsIgnoredStaysSo) {
  EXPECT_EQ(kit::runChild("takes_requests_while_ignoring"), kHangUpBit + kInterruptBit);
}

KOVA_KIT_CHILD(takes_requests_while_holding) {
  sigset_t all;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, nullptr);
  if (SetEndRequestHandler([] { endRequested = true; }) != kSuccess) return 1;
  NativeHandle pipe = nullptr;
  if (OpenPipe(arguments.at(0).c_str(), PipeAccess::ReadWrite, WhenTaken::Wait, &pipe) != kSuccess) return 2;
  while (!endRequested) YieldThread();
  ClosePipeHandle(pipe);
  return 33;
}

TEST(PosixProcess, ARequestReachesAProgramThatWasStartedWithSignalsHeld) {
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    const std::string name = kit::scratchName();
    NativeHandle server = nullptr;
    ASSERT_EQ(CreateMessagePipe(name.c_str(), 8192, &server), kSuccess);
    Process child = kit::startChild("takes_requests_while_holding", {name});
    AcceptPeer(server);
    ASSERT_EQ(kill(static_cast<pid_t>(child.Id()), number), 0);
    EXPECT_EQ(kit::waitForChild(child), 33) << number;
    ClosePipeHandle(server);
  }
}

KOVA_KIT_CHILD(starts_while_ignoring_ends) {
  signal(SIGCHLD, SIG_IGN);
  return kit::runChild("exits_plainly");
}

KOVA_KIT_CHILD(starts_while_forgetting_ends) {
  struct sigaction forgetting = {};
  forgetting.sa_handler = [](int) {};
  forgetting.sa_flags = SA_NOCLDWAIT;
  sigaction(SIGCHLD, &forgetting, nullptr);
  const int code = kit::runChild("exits_plainly");
  sigaction(SIGCHLD, nullptr, &forgetting);
  return forgetting.sa_handler == SIG_DFL ? 100 : code;
}

TEST(PosixProcess, TheEndIsKnownWhereEndsOfChildrenAreIgnored) {
  EXPECT_EQ(kit::runChild("starts_while_ignoring_ends"), 3);
  EXPECT_EQ(kit::runChild("starts_while_forgetting_ends"), 3);
}

KOVA_KIT_CHILD(ends_by_signal) {
  raise(std::stoi(arguments.at(0)));
  return 0;
}

TEST(PosixProcess, AnEndBySignalIs128AndItsNumber) {
  EXPECT_EQ(kit::runChild("ends_by_signal", {std::to_string(SIGTERM)}), 128 + SIGTERM);
  EXPECT_EQ(kit::runChild("ends_by_signal", {std::to_string(SIGKILL)}), 128 + SIGKILL);
}

KOVA_KIT_CHILD(exits_plainly) { return 3; }

TEST(PosixProcess, NoStrangerIsWaitedFor) {
  const pid_t stranger = fork();
  if (stranger == 0) _exit(5);
  EXPECT_EQ(kit::runChild("exits_plainly"), 3);
  int status = 0;
  EXPECT_EQ(waitpid(stranger, &status, 0), stranger);
  EXPECT_EQ(WEXITSTATUS(status), 5);
}

KOVA_KIT_CHILD(waits_for_pipe_end) {
  NativeHandle pipe = nullptr;
  if (OpenPipe(arguments.at(0).c_str(), PipeAccess::ReadWrite, WhenTaken::Wait, &pipe) != kSuccess) return 1;
  char area = 0;
  std::uint32_t count = 0;
  ReadMessage(pipe, &area, 1, &count);
  return 0;
}

TEST(PosixProcess, OneThatWasLetGoIsWaitedForLater) {
  const std::string name = kit::scratchName();
  NativeHandle server = nullptr;
  ASSERT_EQ(CreateMessagePipe(name.c_str(), 8192, &server), kSuccess);
  pid_t id = 0;
  {
    const Process letGo = kit::startChild("waits_for_pipe_end", {name});
    id = static_cast<pid_t>(letGo.Id());
  }
  AcceptPeer(server);
  ClosePipeHandle(server);
  siginfo_t info = {};
  ASSERT_EQ(waitid(P_PID, static_cast<id_t>(id), &info, WEXITED | WNOWAIT), 0);
  EXPECT_EQ(kit::runChild("exits_plainly"), 3);
  EXPECT_EQ(waitid(P_PID, static_cast<id_t>(id), &info, WEXITED | WNOHANG), -1) << "the next start took its end";
}

}  // namespace
}  // namespace kova::os
