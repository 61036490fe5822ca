// Processes: this one and the ones that it starts.
#ifndef KOVADX_PLATFORM_OS_PROCESS_H
#define KOVADX_PLATFORM_OS_PROCESS_H

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/os/byte_pipe.h"
#include "platform/os/error.h"

namespace kova::os {

// The id of this process, the one that pipe names are made of.
std::uint32_t CurrentProcessId();

// What a new process is made from. It gets the standard streams of this one, or those that are named here, and no other
// handle or descriptor.
struct ProcessStart {
  std::string program;                 // A path, or a name that PATH is searched for.
  std::vector<std::string> arguments;  // Without the program itself.

  // In place of the arguments, when it is not empty: one text, which begins with a blank. Where programs take their
  // arguments as one text they get this one; elsewhere it is taken apart as those programs would: at blanks and tabs
  // that are not between double quotes, with '\' before a double quote standing for the quote.
  std::string commandLine;

  std::vector<std::pair<std::string, std::string>> environment;  // Set beside this process's own; "" removes.
  bool endsWithParent = false;  // It is killed when this process ends, however that ends.

  // It works for this process behind the scenes: no window is opened for it, the user's Ctrl-C goes past it, its
  // standard input is empty unless `input` is given, and what it starts is killed when it has ended (as soon as that is
  // waited for) or is terminated.
  bool isApart = false;

  // Ends of pipes that become its standard input, and its standard output and error stream; they stay the caller's, who
  // closes them afterwards. Null: this process's own.
  const BytePipeEnd* input = nullptr;
  const BytePipeEnd* output = nullptr;
};

// One started process. Owns its handle; destruction neither ends nor waits for the process. One thread at a time, save
// for Terminate.
class Process {
 public:
  Process() = default;
  Process(Process&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Process& operator=(Process&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  ~Process();

  // Starts a program. 2 when there is none of that name, 5 when it may not be run, 193 when it is no program, 6 when
  // `input` or `output` holds no end. The calling thread may end before the process does.
  static Error Start(const ProcessStart& start, Process* out);

  std::uint32_t Id() const;

  // Waits for the end, at most that time (kWaitForever of named_pipe.h: no limit). 258 when it still runs. *exitCode is
  // the program's own, or 128 + the signal that ended it.
  Error Wait(std::uint32_t timeoutMs, int* exitCode);

  // Asks the program to end, as Ctrl-C would; a platform without such a request answers 50.
  Error Interrupt();

  // Ends the program at once. 0 also when it has ended already.
  Error Terminate();

  // True when a process was started and not moved away.
  explicit operator bool() const { return handle_ != nullptr; }

 private:
  void* handle_ = nullptr;
};

// Kills this process at once, and what it has started with it when it was started with isApart.
[[noreturn]] void EndWithChildren();

// From now on a write to a pipe that nobody reads any more fails, on every platform; what this process starts keeps the
// platform's way.
void OutliveOutput();

// Has `handler` called, on a thread of its own choosing, when the user asks this program to end (Ctrl-C, SIGINT,
// SIGTERM, a closed console). The handler may only store flags and signal events. Null restores the platform's way.
Error SetEndRequestHandler(void (*handler)());

}  // namespace kova::os

#endif
