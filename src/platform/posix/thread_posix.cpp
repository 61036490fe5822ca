#include "platform/os/thread.h"

#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

#include "platform/os/clock.h"
#include "platform/posix/error_posix.h"
#include "platform/posix/monotonic_posix.h"

namespace kova::os {
namespace {

constexpr std::uint32_t kKilledCode = 0xFFFFFFFF;

// Shared by the handle and the thread itself; the last of the two frees it.
struct Thread {
  Thread(ThreadBody threadBody, void* bodyArgument) : body(threadBody), argument(bodyArgument) {}

  const ThreadBody body;
  void* const argument;
  pthread_t id = {};
  Monitor monitor;        // Guards what follows.
  bool released = false;  // Joined or detached.
  // Atomic besides: a checker of threads does not see the mutex of a thread that was cancelled inside a system call.
  std::atomic<bool> ended{false};  // Set by the thread as its last deed.
  std::atomic<std::uint32_t> exitCode{kKilledCode};
  std::atomic<int> owners{2};

  void drop() {
    if (owners.fetch_sub(1) == 1) delete this;
  }
};

// Tells the waiters that the thread has ended, also when a cancelled thread unwinds past its body.
class EndMark {
 public:
  explicit EndMark(Thread* thread) : thread_(thread) {}
  EndMark(const EndMark&) = delete;
  EndMark& operator=(const EndMark&) = delete;
  ~EndMark() {
    {
      const Monitor::Hold hold(thread_->monitor);
      thread_->exitCode = code_;
      thread_->ended = true;
      thread_->monitor.wakeAll();
    }
    thread_->drop();
  }
  void setCode(std::uint32_t code) { code_ = code; }

 private:
  Thread* thread_;
  std::uint32_t code_ = kKilledCode;
};

// Catches nothing: a cancelled thread unwinds, and that must not be held up.
void* threadMain(void* argument) {
  auto* const thread = static_cast<Thread*>(argument);
  EndMark mark(thread);
  mark.setCode(thread->body(thread->argument));
  return nullptr;
}

// What stands for the calling thread: an address that no other handle has.
char currentThreadMark;

bool isCurrentThreadHandle(ThreadHandle thread) { return thread == &currentThreadMark; }

// The calling thread waits for its own end: no end comes, so only the time can.
Error waitForOneself(std::uint32_t timeoutMs) {
  if (timeoutMs == kNoLimit) return kPossibleDeadlock;
  SleepMs(timeoutMs);
  return kWaitTimeout;
}

}  // namespace

std::uint32_t CurrentThreadId() { return static_cast<std::uint32_t>(gettid()); }

Error LaunchThread(ThreadBody body, void* argument, ThreadHandle* out) {
  auto* const thread = new Thread(body, argument);
  const int result = pthread_create(&thread->id, nullptr, &threadMain, thread);
  if (result != 0) {
    delete thread;
    return result == EAGAIN ? kNotEnoughMemory : errorOfErrno(result);
  }
  *out = thread;
  return kSuccess;
}

Error CloseThread(ThreadHandle handle) {
  if (handle == nullptr) return kInvalidHandle;
  if (isCurrentThreadHandle(handle)) return kSuccess;
  auto* const thread = static_cast<Thread*>(handle);
  {
    const Monitor::Hold hold(thread->monitor);
    if (!thread->released) {
      if (thread->ended) {
        pthread_join(thread->id, nullptr);
      } else {
        pthread_detach(thread->id);
      }
    }
    thread->released = true;
  }
  thread->drop();
  return kSuccess;
}

Error WaitThread(ThreadHandle handle, std::uint32_t timeoutMs, std::uint32_t* exitCode) {
  if (handle == nullptr) return kInvalidHandle;
  if (isCurrentThreadHandle(handle)) return waitForOneself(timeoutMs);
  auto* const thread = static_cast<Thread*>(handle);
  const Monitor::Hold hold(thread->monitor);
  if (!thread->monitor.waitFor(timeoutMs, [thread] { return thread->ended.load(); })) return kWaitTimeout;
  if (!thread->released) {
    // Its thread-local objects are gone too, once this returns.
    pthread_join(thread->id, nullptr);
    thread->released = true;
  }
  if (exitCode != nullptr) *exitCode = thread->exitCode;
  return kSuccess;
}

Error WaitThreads(const ThreadHandle* threads, std::uint32_t count, std::uint32_t timeoutMs) {
  const TimeLeft left(timeoutMs);
  for (std::uint32_t i = 0; i < count; ++i) {
    const Error error = WaitThread(threads[i], left.milliseconds(), nullptr);
    if (error != kSuccess) return error;
  }
  return kSuccess;
}

Error KillThread(ThreadHandle handle) {
  if (handle == nullptr) return kInvalidHandle;
  if (isCurrentThreadHandle(handle)) return kNotSupported;
  auto* const thread = static_cast<Thread*>(handle);
  const Monitor::Hold hold(thread->monitor);
  if (thread->ended) return kSuccess;
  return errorOfErrno(pthread_cancel(thread->id));
}

Error PauseThread(ThreadHandle) { return kNotSupported; }

Error ContinueThread(ThreadHandle) { return kNotSupported; }

ThreadHandle CurrentThreadHandle() { return &currentThreadMark; }

}  // namespace kova::os
