#include "platform/os/process.h"

#include <array>
#include <atomic>
#include <memory>
#include <new>

#include "platform/os/file.h"
#include "platform/win32/byte_pipe_win32.h"
#include "platform/win32/command_line_win32.h"
#include "platform/win32/system_win32.h"

namespace kova::os {
namespace {

// What a program that was ended by force or by the user's request leaves as its exit code, as on other platforms.
constexpr UINT kKilledExitCode = 128 + 9;
constexpr int kInterruptedExitCode = 128 + 2;
constexpr DWORD kControlCExit = 0xC000013A;

// How long a console that is being closed is kept waiting, so that the program can end by itself.
constexpr DWORD kCloseGraceMs = 5000;

struct Child {
  HANDLE process;
  DWORD id;
  HANDLE job;  // What it starts is in it too, when it is apart; else null.
};

Child* childOf(void* handle) { return static_cast<Child*>(handle); }

// What a child's standard streams are made of.
struct Sources {
  HANDLE input;
  HANDLE output;
  HANDLE errors;
};

// The standard streams that a child gets: copies that can be inherited, closed here when the child has them.
class StandardStreams {
 public:
  explicit StandardStreams(const Sources& sources) {
    copy(sources.input, 0);
    copy(sources.output, 1);
    copy(sources.errors, 2);
  }
  StandardStreams(const StandardStreams&) = delete;
  StandardStreams& operator=(const StandardStreams&) = delete;
  ~StandardStreams() {
    for (DWORD i = 0; i < count_; ++i) CloseHandle(list_[i]);
  }

  HANDLE operator[](std::size_t stream) const { return streams_[stream]; }
  HANDLE* list() { return list_.data(); }
  DWORD count() const { return count_; }

 private:
  void copy(HANDLE source, std::size_t stream) {
    if (source == nullptr || source == INVALID_HANDLE_VALUE) return;
    const HANDLE self = GetCurrentProcess();
    if (!DuplicateHandle(self, source, self, &streams_[stream], 0, TRUE, DUPLICATE_SAME_ACCESS)) return;
    list_[count_++] = streams_[stream];
  }

  std::array<HANDLE, 3> streams_{};
  std::array<HANDLE, 3> list_{};
  DWORD count_ = 0;
};

// A file that is empty, for as long as it is read.
class EmptyInput {
 public:
  EmptyInput()
      : handle_(
            CreateFileA("NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr)) {}
  EmptyInput(const EmptyInput&) = delete;
  EmptyInput& operator=(const EmptyInput&) = delete;
  ~EmptyInput() {
    if (handle_ != INVALID_HANDLE_VALUE) CloseHandle(handle_);
  }
  HANDLE get() const { return handle_; }

 private:
  HANDLE handle_;
};

// The job whose processes end with this one: its only handle stays open until the system closes it then.
HANDLE jobThatEndsWithUs() {
  static const HANDLE job = [] {
    const HANDLE made = CreateJobObjectA(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(made, JobObjectExtendedLimitInformation, &limits, sizeof(limits));
    return made;
  }();
  return job;
}

// What a child is born with: the streams' handles and no other, and the job that ends it with this process. A child
// that were put into the job afterwards would outlive a parent that is killed just before.
class BirthAttributes {
 public:
  BirthAttributes() {
    SIZE_T size = 0;
    InitializeProcThreadAttributeList(nullptr, kMost, 0, &size);
    memory_ = std::make_unique<char[]>(size);
    const auto list = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory_.get());
    if (InitializeProcThreadAttributeList(list, kMost, 0, &size)) list_ = list;
  }
  BirthAttributes(const BirthAttributes&) = delete;
  BirthAttributes& operator=(const BirthAttributes&) = delete;
  ~BirthAttributes() {
    if (list_ != nullptr) DeleteProcThreadAttributeList(list_);
  }

  // The handles must live until the child is there.
  Error add(DWORD_PTR kind, HANDLE* handles, DWORD count) {
    if (count == 0) return kSuccess;
    if (list_ == nullptr) return kNotEnoughMemory;
    return resultOf(UpdateProcThreadAttribute(list_, 0, kind, handles, count * sizeof(HANDLE), nullptr, nullptr));
  }
  LPPROC_THREAD_ATTRIBUTE_LIST get() const { return list_; }

 private:
  static constexpr DWORD kMost = 2;

  std::unique_ptr<char[]> memory_;
  LPPROC_THREAD_ATTRIBUTE_LIST list_ = nullptr;
};

// The jobs that a child is born into; each one lies in the one before it.
class Jobs {
 public:
  Jobs(bool endsWithParent, HANDLE own) {
    if (endsWithParent) list_[count_++] = jobThatEndsWithUs();
    if (own != nullptr) list_[count_++] = own;
  }
  HANDLE* list() { return list_.data(); }
  DWORD count() const { return count_; }

 private:
  std::array<HANDLE, 2> list_{};
  DWORD count_ = 0;
};

// The system looks for the program itself in a line that begins with its name.
struct Line {
  std::string application;
  std::string text;

  explicit Line(const ProcessStart& start) {
    const std::string program = NativePath(start.program);
    application = start.commandLine.empty() ? std::string() : programFile(program);
    text = start.commandLine.empty() ? commandLine(program, start.arguments) : start.commandLine;
  }
  const char* applicationOrNull() const { return application.empty() ? nullptr : application.c_str(); }
};

Error create(const ProcessStart& start, const Sources& sources, HANDLE job, PROCESS_INFORMATION* created) {
  StandardStreams streams(sources);
  Jobs jobs(start.endsWithParent, job);
  BirthAttributes attributes;
  Error error = attributes.add(PROC_THREAD_ATTRIBUTE_HANDLE_LIST, streams.list(), streams.count());
  if (error == kSuccess) error = attributes.add(PROC_THREAD_ATTRIBUTE_JOB_LIST, jobs.list(), jobs.count());
  if (error != kSuccess) return error;
  STARTUPINFOEXA startup{};
  startup.StartupInfo.cb = sizeof(startup);
  // A program that is talked to over its streams is given no window of its own to talk in.
  const bool isTalkedTo = start.input != nullptr || start.output != nullptr;
  startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES | (isTalkedTo ? STARTF_USESHOWWINDOW : 0);
  startup.StartupInfo.wShowWindow = SW_HIDE;
  startup.StartupInfo.hStdInput = streams[0];
  startup.StartupInfo.hStdOutput = streams[1];
  startup.StartupInfo.hStdError = streams[2];
  startup.lpAttributeList = attributes.get();
  Line line(start);
  std::wstring environment = environmentBlock(start.environment);
  const DWORD window = start.isApart ? CREATE_NO_WINDOW : 0;
  const DWORD flags = CREATE_UNICODE_ENVIRONMENT | EXTENDED_STARTUPINFO_PRESENT | window;
  return resultOf(CreateProcessA(line.applicationOrNull(), line.text.data(), nullptr, nullptr, streams.count() != 0,
                                 flags, environment.data(), nullptr, &startup.StartupInfo, created));
}

Error createWithJob(const ProcessStart& start, const Sources& sources, PROCESS_INFORMATION* created, HANDLE* job) {
  if (start.isApart) {
    *job = CreateJobObjectA(nullptr, nullptr);
    if (*job == nullptr) return lastError();
  }
  const Error error = create(start, sources, *job, created);
  if (error && *job != nullptr) CloseHandle(*job);
  return error;
}

// What is left in a job when the process that it was made for has ended.
void endJob(const Child& child) {
  if (child.job != nullptr) TerminateJobObject(child.job, kKilledExitCode);
}

bool hasEnded(const Child& child) { return WaitForSingleObject(child.process, 0) == WAIT_OBJECT_0; }

std::atomic<void (*)()> endRequestHandler{nullptr};

BOOL WINAPI onConsoleControl(DWORD event) {
  void (*const handler)() = endRequestHandler;
  if (handler == nullptr) return FALSE;
  handler();
  // A closed console ends the program as soon as this returns.
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) Sleep(kCloseGraceMs);
  return TRUE;
}

}  // namespace

std::uint32_t CurrentProcessId() { return GetCurrentProcessId(); }

Process::~Process() {
  if (handle_ == nullptr) return;
  Child* const child = childOf(handle_);
  if (hasEnded(*child)) endJob(*child);
  if (child->job != nullptr) CloseHandle(child->job);
  CloseHandle(child->process);
  delete child;
}

Error Process::Start(const ProcessStart& start, Process* out) {
  if ((start.input != nullptr && !*start.input) || (start.output != nullptr && !*start.output)) return kInvalidHandle;
  const EmptyInput empty;
  Sources sources = {start.isApart ? empty.get() : GetStdHandle(STD_INPUT_HANDLE), GetStdHandle(STD_OUTPUT_HANDLE),
                     GetStdHandle(STD_ERROR_HANDLE)};
  if (start.input != nullptr) sources.input = systemHandleOfBytePipe(start.input->handle_);
  if (start.output != nullptr) sources.output = sources.errors = systemHandleOfBytePipe(start.output->handle_);
  PROCESS_INFORMATION created{};
  HANDLE job = nullptr;
  const Error notCreated = createWithJob(start, sources, &created, &job);
  if (notCreated) return notCreated == ERROR_PATH_NOT_FOUND ? kFileNotFound : notCreated;
  Process process;
  process.handle_ = new (std::nothrow) Child{created.hProcess, created.dwProcessId, job};
  CloseHandle(created.hThread);
  if (!process) {
    TerminateProcess(created.hProcess, kKilledExitCode);
    CloseHandle(created.hProcess);
    if (job != nullptr) CloseHandle(job);
    return kNotEnoughMemory;
  }
  *out = std::move(process);
  return kSuccess;
}

std::uint32_t Process::Id() const { return handle_ == nullptr ? 0 : childOf(handle_)->id; }

Error Process::Wait(std::uint32_t timeoutMs, int* exitCode) {
  if (handle_ == nullptr) return kInvalidHandle;
  // The wait alone tells whether it still runs: a program may well end with the code that stands for "still active".
  const DWORD result = WaitForSingleObject(childOf(handle_)->process, timeoutMs);
  if (result != WAIT_OBJECT_0) return result == WAIT_FAILED ? lastError() : kWaitTimeout;
  endJob(*childOf(handle_));
  DWORD code = 0;
  if (!GetExitCodeProcess(childOf(handle_)->process, &code)) return lastError();
  if (exitCode != nullptr) *exitCode = code == kControlCExit ? kInterruptedExitCode : static_cast<int>(code);
  return kSuccess;
}

// Ctrl-C reaches only processes that share the console, and then this one too.
Error Process::Interrupt() { return handle_ == nullptr ? kInvalidHandle : kNotSupported; }

Error Process::Terminate() {
  if (handle_ == nullptr) return kInvalidHandle;
  const Child& child = *childOf(handle_);
  const Error error = resultOf(TerminateProcess(child.process, kKilledExitCode));
  endJob(child);
  return error == kSuccess || hasEnded(child) ? kSuccess : error;
}

// What it has started is ended by the one who waits for it, or with that one.
void EndWithChildren() {
  TerminateProcess(GetCurrentProcess(), kKilledExitCode);
  for (;;) Sleep(INFINITE);
}

// It never does anything else here.
void OutliveOutput() {}

Error SetEndRequestHandler(void (*handler)()) {
  const bool had = endRequestHandler.exchange(handler) != nullptr;
  if (had == (handler != nullptr)) return kSuccess;
  return resultOf(SetConsoleCtrlHandler(onConsoleControl, handler != nullptr));
}

}  // namespace kova::os
