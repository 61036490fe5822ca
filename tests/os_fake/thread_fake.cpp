// Threads of the standard library. A killed thread stands still at its next call of the seam, for ever.
#include "platform/os/thread.h"

#include <algorithm>

#include "tests/os_fake/fake_kernel.h"

namespace kova::os {

using fake::Call;
using fake::kernel;
using fake::Logged;
using fake::ThreadState;

namespace {

using SharedState = std::shared_ptr<ThreadState>;

// Stands for the calling thread, as the contract of CurrentThreadHandle has it.
char currentThreadMark = 0;

SharedState stateOf(ThreadHandle thread) {
  if (thread == &currentThreadMark) return fake::currentThread();
  return thread ? *static_cast<SharedState*>(thread) : nullptr;
}

}  // namespace

std::uint32_t CurrentThreadId() { return fake::currentThread()->id; }

Error LaunchThread(ThreadBody body, void* argument, ThreadHandle* out) {
  const Call call("LaunchThread");
  if (call.failure()) return *call.failure();
  *out = new SharedState(fake::launch(fake::currentThread()->process, [body, argument] { return body(argument); }));
  return kSuccess;
}

Error CloseThread(ThreadHandle thread) {
  const Call call("CloseThread");
  if (call.failure()) return *call.failure();
  if (!thread) return kInvalidHandle;
  if (thread != &currentThreadMark) delete static_cast<SharedState*>(thread);
  return kSuccess;
}

Error WaitThread(ThreadHandle thread, std::uint32_t timeoutMs, std::uint32_t* exitCode) {
  Call call("WaitThread");
  if (call.failure()) return *call.failure();
  const SharedState state = stateOf(thread);
  if (!state) return kInvalidHandle;
  if (!call.waitFor(timeoutMs, [&] { return state->ended; })) return kWaitTimeout;
  if (exitCode) *exitCode = state->exitCode;
  return kSuccess;
}

Error WaitThreads(const ThreadHandle* threads, std::uint32_t count, std::uint32_t timeoutMs) {
  Call call("WaitThreads");
  if (call.failure()) return *call.failure();
  const auto ended = [](ThreadHandle thread) { return stateOf(thread)->ended; };
  if (std::count(threads, threads + count, nullptr) > 0) return kInvalidHandle;
  const bool inTime = call.waitFor(timeoutMs, [&] { return std::all_of(threads, threads + count, ended); });
  return inTime ? kSuccess : kWaitTimeout;
}

Error KillThread(ThreadHandle thread) {
  Call call("KillThread");
  if (call.failure()) return *call.failure();
  const SharedState state = stateOf(thread);
  if (!state) return kInvalidHandle;
  if (state->ended) return kSuccess;
  fake::kill(*state);
  return kSuccess;
}

Error PauseThread(ThreadHandle) {
  const Call call("PauseThread");
  return call.failure().value_or(kNotSupported);
}

Error ContinueThread(ThreadHandle) {
  const Call call("ContinueThread");
  return call.failure().value_or(kNotSupported);
}

ThreadHandle CurrentThreadHandle() { return &currentThreadMark; }

}  // namespace kova::os
