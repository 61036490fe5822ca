#include "platform/os/process_watch.h"

#include <new>

#include "platform/win32/system_win32.h"

namespace kova::os {
namespace {

struct Watch {
  HANDLE process;  // Null when the process was not there.
  HANDLE wake;     // Set once cancelled.
};

Watch* watchOf(void* handle) { return static_cast<Watch*>(handle); }

void close(const Watch& watch) {
  if (watch.process != nullptr) CloseHandle(watch.process);
  if (watch.wake != nullptr) CloseHandle(watch.wake);
}

}  // namespace

ProcessWatch::~ProcessWatch() {
  if (handle_ == nullptr) return;
  close(*watchOf(handle_));
  delete watchOf(handle_);
}

Error ProcessWatch::Open(std::uint32_t processId, ProcessWatch* out) {
  Watch watch = {OpenProcess(SYNCHRONIZE, FALSE, processId), nullptr};
  // What the system says of an id that nobody has.
  if (watch.process == nullptr && lastError() != ERROR_INVALID_PARAMETER) return lastError();
  watch.wake = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  Error error = watch.wake == nullptr ? lastError() : kSuccess;
  auto* const kept = error == kSuccess ? new (std::nothrow) Watch(watch) : nullptr;
  if (kept == nullptr) {
    close(watch);
    return error == kSuccess ? kNotEnoughMemory : error;
  }
  *out = ProcessWatch();
  out->handle_ = kept;
  return kSuccess;
}

Error ProcessWatch::Wait() {
  if (handle_ == nullptr) return kInvalidHandle;
  const Watch& watch = *watchOf(handle_);
  if (watch.process == nullptr) return kSuccess;
  const HANDLE handles[] = {watch.process, watch.wake};
  const DWORD result = WaitForMultipleObjects(2, handles, FALSE, INFINITE);
  if (result == WAIT_FAILED) return lastError();
  return result == WAIT_OBJECT_0 ? kSuccess : kOperationAborted;
}

Error ProcessWatch::Cancel() {
  return handle_ == nullptr ? kInvalidHandle : resultOf(SetEvent(watchOf(handle_)->wake));
}

}  // namespace kova::os
