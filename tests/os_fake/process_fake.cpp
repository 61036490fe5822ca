// Programs are scripted: each runs for a stretch of virtual time, until it is ended, or as a function on a thread.
#include "platform/os/process.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <memory>

#include "platform/os/process_watch.h"
#include "platform/posix/command_line_posix.h"
#include "tests/os_fake/byte_flow_fake.h"
#include "tests/os_fake/fake_kernel.h"
#include "tests/os_fake/os_fake.h"

namespace kova::os {

using fake::Call;
using fake::kernel;
using fake::Logged;

namespace {

constexpr int kKilled = 128 + 9;
constexpr int kInterrupted = 128 + 2;
constexpr std::uint64_t kNever = ~std::uint64_t{0};

struct RunningProgram {
  fake::Program program;
  std::uint64_t endsAtMs = kNever;
  bool ended = false;
  int exitCode = 0;
  std::shared_ptr<fake::ThreadState> thread;
  std::shared_ptr<fake::ProcessState> process;
  std::shared_ptr<fake::ProcessState> parent;
  bool endsWithParent = false;
};

using Shared = std::shared_ptr<RunningProgram>;

// The pipes that a start names.
struct Streams {
  std::shared_ptr<fake::ByteFlow> input;
  std::shared_ptr<fake::ByteFlow> output;
};

struct Programs {
  std::map<std::string, fake::Program> table;
  std::vector<ProcessStart> starts;
  std::vector<Shared> running;
  std::uint32_t lastId = 0x2000;
};

Programs& programs() {
  static Programs* const thePrograms = new Programs;
  return *thePrograms;
}

std::string key(const std::string& name) {
  std::string result = name;
  std::replace(result.begin(), result.end(), '\\', '/');
  return result;
}

void end(RunningProgram& running, int exitCode) {
  if (running.ended) return;
  running.ended = true;
  running.exitCode = exitCode;
  fake::killThreadsOf(*running.process);
  fake::closePipesOf(*running.process);
  fake::closeSocketsOf(*running.process);
  fake::closeBytePipesOf(*running.process);
  Call::notify();
  for (const Shared& other : std::vector<Shared>(programs().running)) {
    const bool goesToo = other->process->group == running.process->id;
    if (goesToo || (other->endsWithParent && other->parent == running.process)) end(*other, kKilled);
  }
}

void lookAtClock(RunningProgram& running) {
  if (kernel().nowMs() >= running.endsAtMs) end(running, running.program.exitCode);
}

// A program that was ended from outside has gone when its thread stands still.
bool hasGone(const RunningProgram& running) { return running.ended && (!running.thread || running.thread->ended); }

// What a watch points to: a program, or the test itself, which never ends, or nothing, which has ended.
struct Watch {
  Shared running;
  bool isTest = false;
  bool cancelled = false;
};

Shared runningOf(std::uint32_t processId) {
  const auto& all = programs().running;
  const auto found =
      std::find_if(all.begin(), all.end(), [&](const Shared& running) { return running->process->id == processId; });
  return found == all.end() ? nullptr : *found;
}

bool hasEnded(const Watch& watch) {
  if (!watch.running) return !watch.isTest;
  lookAtClock(*watch.running);
  return hasGone(*watch.running);
}

Shared sharedOf(void* handle) { return *static_cast<Shared*>(handle); }

void setAll(std::map<std::string, std::string>& environment,
            const std::vector<std::pair<std::string, std::string>>& changes) {
  for (const auto& [name, value] : changes) {
    if (value.empty()) {
      environment.erase(name);
    } else {
      environment[name] = value;
    }
  }
}

// What a new program is as a process: like the one that starts it, but for what it is told.
std::shared_ptr<fake::ProcessState> processFor(const ProcessStart& start, const Streams& streams) {
  const fake::ProcessState& parent = *fake::currentThread()->process;
  auto process = std::make_shared<fake::ProcessState>();
  process->id = ++programs().lastId;
  process->environment = parent.environment;
  process->group = start.isApart ? process->id : parent.group;
  setAll(process->environment, start.environment);
  fake::giveStreams(*process, start.input || start.isApart ? streams.input : parent.input,
                    start.output ? streams.output : parent.output);
  return process;
}

// Lets a program of that kind run; called with the kernel locked.
Shared run(const fake::Program& program, ProcessStart start, const Streams& streams) {
  auto running = std::make_shared<RunningProgram>();
  running->process = processFor(start, streams);
  running->parent = fake::currentThread()->process;
  running->endsWithParent = start.endsWithParent;
  running->program = program;
  if (!start.commandLine.empty()) start.arguments = splitCommandLine(start.commandLine);
  if (program.body) {
    running->thread = fake::launch(running->process, [running, start] {
      const int exitCode = running->program.body(start);
      const std::lock_guard<std::mutex> lock(kernel().mutex);
      end(*running, exitCode);
      return std::uint32_t{0};
    });
  } else if (program.runsForMs != fake::kNoLimit) {
    running->endsAtMs = kernel().nowMs() + program.runsForMs;
  }
  programs().running.push_back(running);
  return running;
}

// Waits in virtual time for a program whose end is known: the time until then passes at once.
bool passTimeUntilEnd(RunningProgram& running, std::uint32_t timeoutMs) {
  lookAtClock(running);
  if (running.ended) return true;
  const std::uint64_t left = running.endsAtMs - kernel().nowMs();
  const std::uint64_t passed = timeoutMs == fake::kNoLimit ? left : std::min<std::uint64_t>(left, timeoutMs);
  kernel().sleptMs += passed;
  lookAtClock(running);
  Call::notify();
  return running.ended;
}

}  // namespace

std::uint32_t CurrentProcessId() {
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  return fake::currentThread()->process->id;
}

Process::~Process() {
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  delete static_cast<Shared*>(handle_);
}

Error Process::Start(const ProcessStart& start, Process* out) {
  Process started;
  {
    const Call call("Process::Start", start.program.c_str());
    if (call.failure()) return *call.failure();
    const auto found = programs().table.find(key(start.program));
    if (found == programs().table.end()) return kFileNotFound;
    if (found->second.startError) return found->second.startError;
    Streams streams;
    if (start.input) streams.input = fake::flowOf(start.input->handle_);
    if (start.output) streams.output = fake::flowOf(start.output->handle_);
    if ((start.input && !streams.input) || (start.output && !streams.output)) return kInvalidHandle;
    programs().starts.push_back(start);
    started.handle_ = new Shared(run(found->second, start, streams));
  }
  *out = std::move(started);
  return kSuccess;
}

std::uint32_t Process::Id() const {
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  return handle_ ? sharedOf(handle_)->process->id : 0;
}

Error Process::Wait(std::uint32_t timeoutMs, int* exitCode) {
  Call call("Process::Wait");
  if (call.failure()) return *call.failure();
  if (!handle_) return kInvalidHandle;
  const Shared running = sharedOf(handle_);
  const bool ended = running->endsAtMs != kNever ? passTimeUntilEnd(*running, timeoutMs)
                                                 : call.waitFor(timeoutMs, [&] { return hasGone(*running); });
  if (!ended) return kWaitTimeout;
  if (exitCode) *exitCode = running->exitCode;
  return kSuccess;
}

Error Process::Interrupt() {
  void (*handler)() = nullptr;
  {
    const Call call("Process::Interrupt");
    if (call.failure()) return *call.failure();
    if (!handle_) return kInvalidHandle;
    const Shared running = sharedOf(handle_);
    lookAtClock(*running);
    if (running->program.interruptError) return running->program.interruptError;
    if (!running->ended) handler = running->process->endRequestHandler;
    if (!handler) end(*running, kInterrupted);
  }
  if (handler) handler();
  return kSuccess;
}

Error Process::Terminate() {
  const Call call("Process::Terminate");
  if (call.failure()) return *call.failure();
  if (!handle_) return kInvalidHandle;
  const Shared running = sharedOf(handle_);
  lookAtClock(*running);
  end(*running, kKilled);
  return kSuccess;
}

ProcessWatch::~ProcessWatch() {
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  delete static_cast<Watch*>(handle_);
}

Error ProcessWatch::Open(std::uint32_t processId, ProcessWatch* out) {
  ProcessWatch opened;
  {
    const Call call("ProcessWatch::Open");
    if (call.failure()) return *call.failure();
    opened.handle_ = new Watch{runningOf(processId), processId == fake::ownProcess()->id};
  }
  *out = std::move(opened);
  return kSuccess;
}

Error ProcessWatch::OpenParent(ProcessWatch* out) {
  ProcessWatch opened;
  {
    const Call call("ProcessWatch::OpenParent");
    if (call.failure()) return *call.failure();
    const Shared own = runningOf(fake::currentThread()->process->id);
    Watch watch;
    if (own) {
      own->endsWithParent = false;
      watch = {runningOf(own->parent->id), own->parent == fake::ownProcess()};
    }
    opened.handle_ = new Watch(watch);
  }
  *out = std::move(opened);
  return kSuccess;
}

Error ProcessWatch::Wait() {
  Call call("ProcessWatch::Wait");
  if (call.failure()) return *call.failure();
  if (!handle_) return kInvalidHandle;
  Watch* const watch = static_cast<Watch*>(handle_);
  call.wait([&] { return watch->cancelled || hasEnded(*watch); });
  return hasEnded(*watch) ? kSuccess : kOperationAborted;
}

Error ProcessWatch::Cancel() {
  const Call call("ProcessWatch::Cancel");
  if (call.failure()) return *call.failure();
  if (!handle_) return kInvalidHandle;
  static_cast<Watch*>(handle_)->cancelled = true;
  Call::notify();
  return kSuccess;
}

void EndWithChildren() {
  {
    const Call call("EndWithChildren");
    const Shared own = runningOf(fake::currentThread()->process->id);
    if (own) end(*own, kKilled);
    fake::kill(*fake::currentThread());
  }
  // A killed thread goes no further than this.
  const Call never("EndWithChildren", Logged::CountOnly);
  std::abort();
}

void OutliveOutput() { const Call call("OutliveOutput"); }

Error SetEndRequestHandler(void (*handler)()) {
  const Call call("SetEndRequestHandler");
  if (call.failure()) return *call.failure();
  fake::currentThread()->process->endRequestHandler = handler;
  return kSuccess;
}

}  // namespace kova::os

namespace kova::fake {

void registerProgram(const std::string& name, Program program) {
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  os::programs().table[os::key(name)] = std::move(program);
}

void registerProgram(const std::string& name, int exitCode) {
  Program program;
  program.exitCode = exitCode;
  registerProgram(name, std::move(program));
}

void registerProgram(const std::string& name, std::function<int(const os::ProcessStart&)> body) {
  Program program;
  program.body = std::move(body);
  registerProgram(name, std::move(program));
}

std::vector<os::ProcessStart> startedPrograms() {
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  return os::programs().starts;
}

bool endProgram(std::uint32_t processId, int exitCode) {
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  for (const os::Shared& running : os::programs().running) {
    lookAtClock(*running);
    if (running->process->id != processId || running->ended) continue;
    os::end(*running, exitCode);
    return true;
  }
  return false;
}

bool requestEnd() {
  void (*handler)() = nullptr;
  {
    const std::lock_guard<std::mutex> lock(kernel().mutex);
    handler = ownProcess()->endRequestHandler;
  }
  if (handler) handler();
  return handler != nullptr;
}

void setProcessId(std::uint32_t processId) {
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  ownProcess()->id = processId;
}

void resetProcesses() {
  os::Programs& all = os::programs();
  all.table.clear();
  all.starts.clear();
  all.running.clear();
  *ownProcess() = ProcessState{};
}

}  // namespace kova::fake
