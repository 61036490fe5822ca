#include "platform/os/process_watch.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

#include "platform/posix/descriptor_posix.h"
#include "platform/posix/error_posix.h"

namespace kova::os {
namespace {

struct Watch {
  Descriptor process;  // Readable once the process has ended; none when it was not there.
  Descriptor wake;     // Readable once cancelled.
};

Watch* watchOf(void* handle) { return static_cast<Watch*>(handle); }

}  // namespace

ProcessWatch::~ProcessWatch() { delete watchOf(handle_); }

Error ProcessWatch::Open(std::uint32_t processId, ProcessWatch* out) {
  // By number, because the C library's header for it can not be used from C++ everywhere.
  Descriptor process(static_cast<int>(syscall(SYS_pidfd_open, static_cast<pid_t>(processId), 0)));
  if (!process && errno != ESRCH) return lastError();
  Descriptor wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
  if (!wake) return lastError();
  return orNoMemory([&] {
    *out = ProcessWatch();
    out->handle_ = new Watch{std::move(process), std::move(wake)};
    return kSuccess;
  });
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
