#include "tests/os_fake/fake_kernel.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <deque>
#include <thread>

#include "tests/os_fake/os_fake.h"

namespace kova::fake {

Kernel& kernel() {
  static Kernel* const theKernel = new Kernel;
  return *theKernel;
}

namespace {

// A plain pointer: on Windows a thread's memory may be given back before what lies in it is destroyed.
thread_local const std::shared_ptr<ThreadState>* threadState = nullptr;

std::shared_ptr<ThreadState> newThreadState(std::shared_ptr<ProcessState> process) {
  static std::atomic<std::uint32_t> lastId{0};
  auto state = std::make_shared<ThreadState>();
  state->id = ++lastId;
  state->process = std::move(process);
  return state;
}

// For threads that were not launched here, whose end nobody tells of.
const std::shared_ptr<ThreadState>& keep(std::shared_ptr<ThreadState> state) {
  static std::mutex mutex;
  static auto* const kept = new std::deque<std::shared_ptr<ThreadState>>;
  const std::lock_guard<std::mutex> lock(mutex);
  return kept->emplace_back(std::move(state));
}

std::optional<os::Error> scriptedFailure(const std::string& function, unsigned callNumber) {
  for (const FailureRule& rule : kernel().rules) {
    if (rule.function == function && callNumber >= rule.from && callNumber < rule.to) return rule.error;
  }
  return std::nullopt;
}

}  // namespace

const std::shared_ptr<ThreadState>& currentThread() {
  if (!threadState) threadState = &keep(newThreadState(ownProcess()));
  return *threadState;
}

const std::shared_ptr<ProcessState>& ownProcess() {
  static const auto* const theProcess = new std::shared_ptr<ProcessState>(std::make_shared<ProcessState>());
  return *theProcess;
}

std::shared_ptr<ThreadState> launch(std::shared_ptr<ProcessState> process, std::function<std::uint32_t()> body) {
  auto state = newThreadState(std::move(process));
  std::thread([state, body = std::move(body)] {
    threadState = &state;
    const std::uint32_t exitCode = body();
    const std::lock_guard<std::mutex> lock(kernel().mutex);
    state->exitCode = state->killed ? kKilledExitCode : exitCode;
    state->ended = true;
    Call::notify();
  }).detach();
  kernel().threads.push_back(state);
  return state;
}

void kill(ThreadState& thread) {
  thread.killed = true;
  Call::notify();
}

void killThreadsOf(const ProcessState& process) {
  auto& threads = kernel().threads;
  std::erase_if(threads, [](const std::weak_ptr<ThreadState>& thread) { return thread.expired(); });
  for (const std::weak_ptr<ThreadState>& weak : threads) {
    const std::shared_ptr<ThreadState> thread = weak.lock();
    if (thread && thread->process.get() == &process && thread != currentThread()) kill(*thread);
  }
}

Call::Call(const char* function, const char* text, Logged logged) : lock_(kernel().mutex) {
  parkIfKilled();
  const unsigned callNumber = kernel().counts[function]++;
  if (logged == Logged::Yes) kernel().log.push_back(text ? std::string(function) + " " + text : std::string(function));
  failure_ = scriptedFailure(function, callNumber);
}

void Call::wait(const std::function<bool()>& condition) {
  const ThreadState& self = *currentThread();
  kernel().changed.wait(lock_, [&] { return self.killed || condition(); });
  parkIfKilled();
}

bool Call::waitFor(std::uint32_t limitMs, const std::function<bool()>& condition) {
  if (limitMs == kNoLimit) {
    wait(condition);
    return true;
  }
  const bool met = waitLimited(limitMs, condition);
  parkIfKilled();
  return met;
}

bool Call::waitLimited(std::uint32_t limitMs, const std::function<bool()>& condition) {
  Kernel& k = kernel();
  const ThreadState& self = *currentThread();
  const std::uint64_t advancedBefore = k.advancedMs;
  const auto advancedOver = [&] { return k.advancedMs - advancedBefore >= limitMs; };
  const auto patience = std::chrono::milliseconds(std::min(limitMs, k.patienceMs));
  const bool woken = k.changed.wait_until(lock_, std::chrono::system_clock::now() + patience,
                                          [&] { return self.killed || condition() || advancedOver(); });
  if (condition()) return true;
  if (!woken) k.sleptMs += limitMs;
  return false;
}

void Call::parkIfKilled() {
  ThreadState& self = *currentThread();
  if (!self.killed) return;
  self.exitCode = kKilledExitCode;
  self.ended = true;
  notify();
  for (;;) kernel().changed.wait(lock_);
}

void reset() {
  Kernel& k = kernel();
  const std::lock_guard<std::mutex> lock(k.mutex);
  k.rules.clear();
  k.counts.clear();
  k.log.clear();
  k.sleptMs = k.advancedMs = k.yieldedUs = 0;
  k.patienceMs = 200;
  resetBytePipes();
  resetFiles();
  resetLibraries();
  resetPipes();
  resetProcesses();
  resetSockets();
}

void fail(const char* function, os::Error error, unsigned after, unsigned count) {
  Kernel& k = kernel();
  const std::lock_guard<std::mutex> lock(k.mutex);
  const std::uint64_t from = std::uint64_t{k.counts[function]} + after;
  const std::uint64_t to = count == ~0u ? ~std::uint64_t{0} : from + count;
  k.rules.push_back({function, from, to, error});
}

unsigned callCount(const char* function) {
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  return kernel().counts[function];
}

std::vector<std::string> calls() {
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  return kernel().log;
}

}  // namespace kova::fake
