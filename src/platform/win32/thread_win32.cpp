#include "platform/os/thread.h"

#include <algorithm>
#include <memory>
#include <new>

#include "platform/os/clock.h"
#include "platform/win32/system_win32.h"

namespace kova::os {
namespace {

constexpr DWORD kKilledExitCode = 0xFFFFFFFF;

struct Launch {
  ThreadBody body;
  void* argument;
};

DWORD WINAPI runThread(void* argument) {
  const std::unique_ptr<Launch> launch(static_cast<Launch*>(argument));
  return launch->body(launch->argument);
}

// What of a time limit is left at this moment.
DWORD timeLeft(std::uint32_t timeoutMs, std::uint64_t startMs) {
  if (timeoutMs == INFINITE) return INFINITE;
  const std::uint64_t passed = TickMs() - startMs;
  return passed >= timeoutMs ? 0 : static_cast<DWORD>(timeoutMs - passed);
}

}  // namespace

std::uint32_t CurrentThreadId() { return GetCurrentThreadId(); }

Error LaunchThread(ThreadBody body, void* argument, ThreadHandle* out) {
  std::unique_ptr<Launch> launch(new (std::nothrow) Launch{body, argument});
  if (!launch) return kNotEnoughMemory;
  const HANDLE thread = CreateThread(nullptr, 0, runThread, launch.get(), 0, nullptr);
  if (thread == nullptr) return lastError();
  static_cast<void>(launch.release());  // The thread's own from here on.
  *out = thread;
  return kSuccess;
}

Error CloseThread(ThreadHandle thread) {
  if (thread == CurrentThreadHandle()) return kSuccess;
  return resultOf(CloseHandle(thread));
}

Error WaitThread(ThreadHandle thread, std::uint32_t timeoutMs, std::uint32_t* exitCode) {
  const DWORD result = WaitForSingleObject(thread, timeoutMs);
  if (result != WAIT_OBJECT_0) return result == WAIT_FAILED ? lastError() : kWaitTimeout;
  DWORD code = 0;
  if (!GetExitCodeThread(thread, &code)) return lastError();
  if (exitCode != nullptr) *exitCode = code;
  return kSuccess;
}

Error WaitThreads(const ThreadHandle* threads, std::uint32_t count, std::uint32_t timeoutMs) {
  const std::uint64_t start = TickMs();
  for (std::uint32_t done = 0; done < count;) {
    // The system waits for so many at once; all have ended when each group has.
    const DWORD group = std::min<DWORD>(count - done, MAXIMUM_WAIT_OBJECTS);
    const DWORD result = WaitForMultipleObjects(group, threads + done, TRUE, timeLeft(timeoutMs, start));
    if (result == WAIT_FAILED) return lastError();
    if (result == WAIT_TIMEOUT) return kWaitTimeout;
    done += group;
  }
  return kSuccess;
}

Error KillThread(ThreadHandle thread) {
  // A thread that has ended keeps its own exit code.
  if (WaitForSingleObject(thread, 0) == WAIT_OBJECT_0) return kSuccess;
  return resultOf(TerminateThread(thread, kKilledExitCode));
}

Error PauseThread(ThreadHandle thread) { return resultOf(SuspendThread(thread) != static_cast<DWORD>(-1)); }

Error ContinueThread(ThreadHandle thread) { return resultOf(ResumeThread(thread) != static_cast<DWORD>(-1)); }

ThreadHandle CurrentThreadHandle() { return GetCurrentThread(); }

}  // namespace kova::os
