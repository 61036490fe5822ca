#include "platform/os/process_watch.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>

#include "platform/posix/child_posix.h"
#include "platform/posix/descriptor_posix.h"
#include "platform/posix/error_posix.h"
#include "platform/posix/parent_signal_posix.h"

namespace kova::os {
namespace {

struct Watch {
  Descriptor process;  // Readable once the process has ended; none when it was not there.
  Descriptor wake;     // Readable once cancelled.
};

Watch* watchOf(void* handle) { return static_cast<Watch*>(handle); }

Error beginWatch(Descriptor process, void** handle) {
  Descriptor wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
  if (!wake) return lastError();
  return orNoMemory([&] {
    *handle = new Watch{std::move(process), std::move(wake)};
    return kSuccess;
  });
}

}  // namespace

ProcessWatch::~ProcessWatch() { delete watchOf(handle_); }

Error ProcessWatch::Open(std::uint32_t processId, ProcessWatch* out) {
  Descriptor process = openProcess(static_cast<pid_t>(processId));
  if (!process && errno != ESRCH) return lastError();
  ProcessWatch watch;
  const Error error = beginWatch(std::move(process), &watch.handle_);
  if (error == kSuccess) *out = std::move(watch);
  return error;
}

Error ProcessWatch::OpenParent(ProcessWatch* out) {
  const pid_t parent = getppid();
  Descriptor process = openProcess(parent);
  if (!process && errno != ESRCH) return lastError();
  // It may have ended before it was opened, and its number may be another's by then.
  if (getppid() != parent) process = Descriptor();
  ProcessWatch watch;
  const Error error = beginWatch(std::move(process), &watch.handle_);
  if (error != kSuccess) return error;
  dropParentSignal();
  *out = std::move(watch);
  return kSuccess;
}

Error ProcessWatch::Wait() {
  if (handle_ == nullptr) return kInvalidHandle;
  const Watch& watch = *watchOf(handle_);
  if (!watch.process) return kSuccess;
  pollfd entries[] = {{watch.process.get(), POLLIN, 0}, {watch.wake.get(), POLLIN, 0}};
  while (poll(entries, 2, -1) < 0) {
    if (errno != EINTR) return lastError();
  }
  return entries[0].revents != 0 ? kSuccess : kOperationAborted;
}

Error ProcessWatch::Cancel() {
  if (handle_ == nullptr) return kInvalidHandle;
  return eventfd_write(watchOf(handle_)->wake.get(), 1) == 0 ? kSuccess : lastError();
}

}  // namespace kova::os
