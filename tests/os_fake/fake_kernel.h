// What the parts of the in-memory backend share: one lock, one condition, the script of failures, the clock.
#ifndef KOVADX_TESTS_OS_FAKE_FAKE_KERNEL_H
#define KOVADX_TESTS_OS_FAKE_FAKE_KERNEL_H

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/os/error.h"

namespace kova::fake {

constexpr std::uint32_t kNoLimit = 0xFFFFFFFF;
constexpr std::uint32_t kKilledExitCode = 0xFFFFFFFF;

struct ByteFlow;

// What belongs to one process: the test's own, or a program that runs as a function on a thread.
struct ProcessState {
  std::uint32_t id = 0x1234;
  std::map<std::string, std::string> environment;
  void (*endRequestHandler)() = nullptr;
  std::uint32_t group = 0;          // The id of the program with whose end it is killed; 0: of none.
  std::shared_ptr<ByteFlow> input;  // Its standard streams; null: at its end, and read by nobody.
  std::shared_ptr<ByteFlow> output;
};

// What is known of one thread; shared by its handle and the thread itself.
struct ThreadState {
  std::shared_ptr<ProcessState> process;
  std::uint32_t id = 0;
  bool ended = false;
  bool killed = false;  // It stands still, and counts as ended, from its next call of the seam on.
  std::uint32_t exitCode = 0;
};

// Calls number `from` to `to` - 1 of a function fail.
struct FailureRule {
  std::string function;
  std::uint64_t from;
  std::uint64_t to;
  os::Error error;
};

// The state that is not one part's own. Its members are guarded by `mutex`; whoever changes something that another
// thread may wait for notifies `changed`. It is never destroyed, since killed threads stay parked in it.
struct Kernel {
  std::mutex mutex;
  std::condition_variable changed;

  std::vector<std::weak_ptr<ThreadState>> threads;

  std::vector<FailureRule> rules;
  std::map<std::string, unsigned> counts;
  std::vector<std::string> log;

  std::uint64_t sleptMs = 0;
  std::uint64_t advancedMs = 0;
  std::uint64_t yieldedUs = 0;
  std::uint32_t patienceMs = 200;

  std::uint64_t nowMs() const { return sleptMs + advancedMs; }
};

Kernel& kernel();

// The calling thread's own state, made at its first use.
const std::shared_ptr<ThreadState>& currentThread();

// The process that the test itself is.
const std::shared_ptr<ProcessState>& ownProcess();

// Runs body on a new thread of that process; the state's ended and exitCode are set when it returns. Called with the
// kernel locked.
std::shared_ptr<ThreadState> launch(std::shared_ptr<ProcessState> process, std::function<std::uint32_t()> body);

// Kills a thread, or all threads of a process but the calling one. Called with the kernel locked.
void kill(ThreadState& thread);
void killThreadsOf(const ProcessState& process);

enum class Logged { Yes, CountOnly };

// One call of the seam: holds the kernel's lock for its life, counts and logs the call and looks up its scripted
// failure. A killed thread never leaves the constructor.
class Call {
 public:
  explicit Call(const char* function, Logged logged = Logged::Yes) : Call(function, nullptr, logged) {}
  Call(const char* function, const char* text, Logged logged = Logged::Yes);

  // With what the script wants this call to fail; nothing when it should work.
  const std::optional<os::Error>& failure() const { return failure_; }

  // Waits until the condition holds. A thread that is killed meanwhile does not return.
  void wait(const std::function<bool()>& condition);

  // The same with a limit in virtual time; false when it ran out.
  bool waitFor(std::uint32_t limitMs, const std::function<bool()>& condition);

  // Tells every waiting thread to look again.
  static void notify() { kernel().changed.notify_all(); }

 private:
  void parkIfKilled();
  bool waitLimited(std::uint32_t limitMs, const std::function<bool()>& condition);

  std::unique_lock<std::mutex> lock_;
  std::optional<os::Error> failure_;
};

// Closes the pipe ends that an ended program has left open. Called with the kernel locked.
void closePipesOf(const ProcessState& process);

// The same for its sockets, and for its byte pipes and standard streams.
void closeSocketsOf(const ProcessState& process);
void closeBytePipesOf(ProcessState& process);

// How many byte pipe ends are open. Called with the kernel locked.
unsigned openBytePipeEnds();

// What reset() has each part do, under the lock.
void resetBytePipes();
void resetFiles();
void resetLibraries();
void resetPipes();
void resetProcesses();
void resetSockets();

}  // namespace kova::fake

#endif
