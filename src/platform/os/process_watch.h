// Waiting for the end of a process that may be somebody else's child.
#ifndef KOVADX_PLATFORM_OS_PROCESS_WATCH_H
#define KOVADX_PLATFORM_OS_PROCESS_WATCH_H

#include <cstdint>
#include <utility>

#include "platform/os/error.h"

namespace kova::os {

// Sees the end of one process and takes nothing from those who wait for its exit code. Owns what it needs of the
// system. One thread waits; Cancel may be called on any other.
class ProcessWatch {
 public:
  ProcessWatch() = default;
  ProcessWatch(ProcessWatch&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  ProcessWatch& operator=(ProcessWatch&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ProcessWatch(const ProcessWatch&) = delete;
  ProcessWatch& operator=(const ProcessWatch&) = delete;
  ~ProcessWatch();

  // Begins to watch the process of that id. One that is not there counts as ended. The system gives the id to another
  // process some time after its own has ended, so it must be the id of a process that lives, or of a child that nobody
  // has collected yet. 5 when the process may not be watched.
  static Error Open(std::uint32_t processId, ProcessWatch* out);

  // Begins to watch the process that has started this one, in place of the system: where this one was started with
  // endsWithParent and the platform lets it choose, it is not killed any more when that process ends, but learns it
  // here. A parent that has gone already counts as ended.
  static Error OpenParent(ProcessWatch* out);

  // Waits until the process has ended: 0. 995 once cancelled.
  Error Wait();

  // Ends the wait, and every later one, of a process that still runs.
  Error Cancel();

  // True when a process is watched.
  explicit operator bool() const { return handle_ != nullptr; }

 private:
  void* handle_ = nullptr;
};

}  // namespace kova::os

#endif
