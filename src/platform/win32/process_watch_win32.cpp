#include "platform/os/process_watch.h"

#include <new>
#include <utility>

#include "platform/win32/system_win32.h"

// Behind the Windows header, whose types it uses.
#include <tlhelp32.h>

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

// Takes over the process, also when it fails.
Error beginWatch(HANDLE process, void** handle) {
  const Watch watch = {process, CreateEventA(nullptr, TRUE, FALSE, nullptr)};
  const Error error = watch.wake == nullptr ? lastError() : kSuccess;
  auto* const kept = error == kSuccess ? new (std::nothrow) Watch(watch) : nullptr;
  if (kept == nullptr) {
    close(watch);
    return error == kSuccess ? kNotEnoughMemory : error;
  }
  *handle = kept;
  return kSuccess;
}

// Null also for one that is not there.
Error open(DWORD processId, DWORD access, HANDLE* process) {
  *process = OpenProcess(access, FALSE, processId);
  // What the system says of an id that nobody has.
  return *process != nullptr || lastError() == ERROR_INVALID_PARAMETER ? kSuccess : lastError();
}

// The id of the process that has started this one; 0 when the system does not tell. It stays when that process ends.
DWORD parentId() {
  const HANDLE all = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
  if (all == INVALID_HANDLE_VALUE) return 0;
  PROCESSENTRY32 entry{};
  entry.dwSize = sizeof(entry);
  DWORD id = 0;
  for (BOOL more = Process32First(all, &entry); more && id == 0; more = Process32Next(all, &entry)) {
    if (entry.th32ProcessID == GetCurrentProcessId()) id = entry.th32ParentProcessID;
  }
  CloseHandle(all);
  return id;
}

// When a process has begun, in a unit that can be compared.
std::uint64_t beganAt(HANDLE process) {
  FILETIME began{};
  FILETIME ignored{};
  GetProcessTimes(process, &began, &ignored, &ignored, &ignored);
  return static_cast<std::uint64_t>(began.dwHighDateTime) << 32 | began.dwLowDateTime;
}

}  // namespace

ProcessWatch::~ProcessWatch() {
  if (handle_ == nullptr) return;
  close(*watchOf(handle_));
  delete watchOf(handle_);
}

Error ProcessWatch::Open(std::uint32_t processId, ProcessWatch* out) {
  HANDLE process = nullptr;
  Error error = open(processId, SYNCHRONIZE, &process);
  ProcessWatch watch;
  if (error == kSuccess) error = beginWatch(process, &watch.handle_);
  if (error == kSuccess) *out = std::move(watch);
  return error;
}

Error ProcessWatch::OpenParent(ProcessWatch* out) {
  HANDLE process = nullptr;
  Error error = open(parentId(), SYNCHRONIZE | PROCESS_QUERY_LIMITED_INFORMATION, &process);
  // The system gives the id of one that has ended to another, which has begun after this process.
  if (process != nullptr && beganAt(process) > beganAt(GetCurrentProcess())) {
    CloseHandle(std::exchange(process, nullptr));
  }
  ProcessWatch watch;
  if (error == kSuccess) error = beginWatch(process, &watch.handle_);
  if (error == kSuccess) *out = std::move(watch);
  return error;
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
