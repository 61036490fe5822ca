#include "platform/os/process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <memory>

#include "platform/posix/byte_pipe_posix.h"
#include "platform/posix/child_posix.h"
#include "platform/posix/error_posix.h"
#include "platform/posix/monotonic_posix.h"
#include "platform/posix/spawn_posix.h"

namespace kova::os {
namespace {

// A program may be started with the ends of its children ignored. The system then forgets their exit codes.
void keepExitCodes() {
  struct sigaction present = {};
  if (sigaction(SIGCHLD, nullptr, &present) != 0) return;
  if (present.sa_handler != SIG_IGN && (present.sa_flags & SA_NOCLDWAIT) == 0) return;
  if (present.sa_handler == SIG_IGN) present.sa_handler = SIG_DFL;
  present.sa_flags &= ~SA_NOCLDWAIT;
  sigaction(SIGCHLD, &present, nullptr);
}

Child* childOf(void* handle) { return static_cast<Child*>(handle); }

// The streams of a child, as descriptors; -1 for this process's own.
struct Streams {
  int input = -1;
  int output = -1;
  Descriptor nothing;  // What a child reads that is apart and given no input.
};

Error openNothing(const ProcessStart& start, Streams* streams) {
  if (!start.isApart || start.input != nullptr) return kSuccess;
  streams->nothing = Descriptor(open("/dev/null", O_RDONLY | O_CLOEXEC));
  streams->input = streams->nothing.get();
  return streams->nothing ? kSuccess : lastError();
}

}  // namespace

std::uint32_t CurrentProcessId() { return static_cast<std::uint32_t>(getpid()); }

Process::~Process() {
  if (handle_ == nullptr) return;
  std::unique_ptr<Child> child(childOf(handle_));
  int ignored = 0;
  if (child->collect(&ignored) == kWaitTimeout) abandonChild(std::move(child));
}

Error Process::Start(const ProcessStart& start, Process* out) {
  collectAbandoned();
  keepExitCodes();
  Streams streams;
  if (start.input != nullptr) streams.input = descriptorOfBytePipe(start.input->handle_);
  if (start.output != nullptr) streams.output = descriptorOfBytePipe(start.output->handle_);
  if ((start.input != nullptr && !*start.input) || (start.output != nullptr && !*start.output)) return kInvalidHandle;
  Error error = openNothing(start, &streams);
  if (error != kSuccess) return error;
  const ProgramImage image(start);
  Spawned spawned;
  error = spawn({image, start.endsWithParent, start.isApart, streams.input, streams.output}, &spawned);
  if (error != kSuccess) return error;
  *out = Process();
  out->handle_ = new Child(spawned.id, std::move(spawned.descriptor), start.isApart);
  return kSuccess;
}

std::uint32_t Process::Id() const {
  return handle_ == nullptr ? 0 : static_cast<std::uint32_t>(childOf(handle_)->id());
}

Error Process::Wait(std::uint32_t timeoutMs, int* exitCode) {
  if (handle_ == nullptr) return kInvalidHandle;
  const TimeLeft left(timeoutMs);
  pollfd entry = {childOf(handle_)->descriptor(), POLLIN, 0};
  int code = 0;
  Error error = kWaitTimeout;
  // The descriptor may be ready a moment before the end can be collected.
  for (int ready = 1; error == kWaitTimeout && ready != 0;) {
    ready = poll(&entry, 1, left.forPoll());
    if (ready < 0 && errno != EINTR) return lastError();
    error = childOf(handle_)->collect(&code);
  }
  if (error == kSuccess && exitCode != nullptr) *exitCode = code;
  return error;
}

Error Process::Interrupt() { return handle_ == nullptr ? kInvalidHandle : childOf(handle_)->signal(SIGINT); }

Error Process::Terminate() { return handle_ == nullptr ? kInvalidHandle : childOf(handle_)->terminate(); }

void EndWithChildren() {
  kill(getpgrp() == getpid() ? 0 : getpid(), SIGKILL);
  for (;;) pause();
}

void OutliveOutput() { signal(SIGPIPE, SIG_IGN); }

}  // namespace kova::os
