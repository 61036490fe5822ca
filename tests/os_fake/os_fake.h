// The in-memory backend of the seam, and how a test directs it: pipes between the threads of one process, a virtual
// clock, an environment of its own, scripted programs, and any call told to fail.
//
// One state for the whole process; a test calls reset() before it begins and leaves no thread or handle behind. Every
// function may be called on any thread.
#ifndef KOVADX_TESTS_OS_FAKE_OS_FAKE_H
#define KOVADX_TESTS_OS_FAKE_OS_FAKE_H

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/os/error.h"
#include "platform/os/process.h"

namespace kova::fake {

// Forgets all that was scripted and logged, sets the clock back, empties the environment and the program table. Open
// handles stay valid.
void reset();

// ---- Calls. A function is named as in the seam's headers ("ReadMessage"), a member with its class ("Process::Start").

// Has the function fail from its `after`-th next call on (0: the very next), `count` times (~0u: for ever). A call that
// fails does nothing else. A function without a result code then gives what it gives for nothing: null, false, empty.
void fail(const char* function, os::Error error, unsigned after = 0, unsigned count = 1);

// How often the function has been called since reset, failed calls included.
unsigned callCount(const char* function);

// Every call since reset, in order: the function's name, and after a blank its first text argument where it has one.
// TickUs (which TickMs calls), YieldThread, LocalTime and TryEnterLock are counted but not listed; CurrentThreadId,
// CurrentProcessId, NativePath, ErrorText, EnterLock and LeaveLock are neither, and never fail.
std::vector<std::string> calls();

// ---- The clock. Nobody sleeps: SleepMs adds its time and returns. YieldThread adds a microsecond, to the ticks alone.
// A wait with a time limit ends when advanceMs has passed that time, or after the patience (real milliseconds, 200
// after reset); then the limit is added to the virtual time at once.

// The virtual time slept, waited out and advanced since reset.
std::uint64_t elapsedMs();

void advanceMs(std::uint64_t milliseconds);

void setPatienceMs(std::uint32_t realMilliseconds);

// ---- Pipes.

// Cuts every present connection of that name, as if the other side's process had died: both ends read what has been
// written, then 109, and write 232.
void losePeer(const char* pipeName);

// The next read that finds a message gives at most that many bytes of it (234, the rest stays).
void shortNextRead(std::uint32_t bytes);

// How many pipe ends of that name are open, server and client ends alike; of all names, and of byte pipes too, when it
// is null.
unsigned openPipeEnds(const char* pipeName = nullptr);

// ---- Sockets. Every call is listed with the address, the backlog, the version or the size that it was given; Await is
// only counted. A stream takes in 64 KiB before its reader reads.

// The platform's own number of a failure, which is not the error number: for the trace.
constexpr std::int32_t kSocketNumberOffset = 70000;
std::int32_t socketNumber(os::Error error);

// The version that StartSockets gives from now on; 2.2 after reset.
void setSocketVersion(std::uint16_t version);

// Receives give at most that many bytes from now on; 0 after reset: no limit.
void limitReceives(std::uint32_t bytes);

// The next send takes at most that many bytes.
void shortNextSend(std::uint32_t bytes);

// A stream whose writer has closed is at its end from now on as if that had broken off: reading gives 10054.
void breakEndedStreams();

// How many sockets are open.
unsigned openSockets();

// ---- Programs. Process::Start finds only what was added here; names are compared with '\' and '/' alike.

struct Program {
  int exitCode = 0;
  // How long it runs in virtual time; kWaitForever of named_pipe.h: until it is ended.
  std::uint32_t runsForMs = 0;
  // When set, it runs on a thread of its own instead, and its result is the exit code. It sees the test's memory, but
  // has a process id, an environment and standard streams of its own, as have the threads that it starts. A terminated
  // one stops at its next call of the seam, or of readInput, readInputLine and writeOutput. It gets what it was started
  // with, save that a command line is already taken apart into the arguments.
  std::function<int(const os::ProcessStart&)> body;
  // What Process::Start gives instead of starting it.
  os::Error startError = os::kSuccess;
  // What Process::Interrupt gives; when 0 the handler is called that the body has set, else the program ends with 130.
  os::Error interruptError = os::kSuccess;
};
void registerProgram(const std::string& name, Program program);
void registerProgram(const std::string& name, int exitCode);
void registerProgram(const std::string& name, std::function<int(const os::ProcessStart&)> body);

// What was started, in order. The pipe ends that were named may be gone by now.
std::vector<os::ProcessStart> startedPrograms();

// ---- Standard streams of programs: called by a body, or by a thread that it has started, for its own program. A
// program that was told of no ends has those of the program that has started it; the test itself has none. Its ends are
// closed when it ends, and what reads or writes at the other side is woken. A console that answers line by line is
//
//   registerProgram("console", [](const os::ProcessStart&) {
//     writeOutput("> ");
//     while (const auto line = readInputLine()) writeOutput("you said " + *line + "\n> ");
//     return 0;
//   });

// What has come, at most that many bytes; waits for the first. Empty at the end of the input, or without one.
std::string readInput(std::size_t most = 4096);

// The next line, without its line break; waits for it. Nothing at the end of the input; what is left there without a
// line break is a line too.
std::optional<std::string> readInputLine();

// Writes all of it, and waits while the pipe is full. False when nobody reads it any more; without an output it is
// lost.
bool writeOutput(const std::string& bytes);

// BytePipeEnd::Read gives at most that many bytes from now on; 0 after reset: no limit. A pipe takes in 64 KiB before
// its reader reads.
void limitByteReads(std::uint32_t bytes);

// EndWithChildren and ProcessWatch::OpenParent belong to a program that a test has started. Called by the test itself,
// OpenParent finds that its parent has ended, and the thread that calls EndWithChildren stands still for ever.

// Ends a running program as if by itself. False when no such program runs.
bool endProgram(std::uint32_t processId, int exitCode);

// Does what the user's Ctrl-C does: calls the handler of SetEndRequestHandler on this thread. False when there is none.
bool requestEnd();

// ---- Files.

// While it is told so, every copy of a file waits before it begins.
void holdCopies(bool hold);

// ---- Libraries. LoadSharedLibrary finds only what was added here; paths are compared with '\' and '/' alike, and one
// without a "." in its last component gets ".dll".

struct Library {
  std::map<std::string, void*> symbols;
  std::function<void()> onLoad;  // Called by each load that works.
  // What LoadSharedLibrary gives instead of loading it.
  os::Error loadError = os::kSuccess;
};
void registerLibrary(const std::string& path, Library library);

// How many handles of libraries are held.
unsigned loadedLibraries();

// ---- This process.

void setProcessId(std::uint32_t processId);  // 0x1234 after reset.
void setProgramPath(const std::string& path);
void setModulePath(const std::string& path);

}  // namespace kova::fake

#endif
