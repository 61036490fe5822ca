#include "platform/os/process.h"

#include <array>
#include <atomic>
#include <memory>
#include <new>

#include "platform/os/file.h"
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
};

Child* childOf(void* handle) { return static_cast<Child*>(handle); }

// The standard streams that a child gets: copies that can be inherited, closed here when the child has them.
class StandardStreams {
 public:
  StandardStreams() {
    constexpr std::array<DWORD, 3> kStreams = {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};
    for (std::size_t i = 0; i < kStreams.size(); ++i) copy(GetStdHandle(kStreams[i]), i);
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
    if (list_ == nullptr) return kNotEnoughMemory;
    return resultOf(UpdateProcThreadAttribute(list_, 0, kind, handles, count * sizeof(HANDLE), nullptr, nullptr));
  }
  LPPROC_THREAD_ATTRIBUTE_LIST get() const { return list_; }

 private:
  static constexpr DWORD kMost = 2;

  std::unique_ptr<char[]> memory_;
  LPPROC_THREAD_ATTRIBUTE_LIST list_ = nullptr;
};

Error create(const ProcessStart& start, PROCESS_INFORMATION* created) {
  StandardStreams streams;
  HANDLE job = start.endsWithParent ? jobThatEndsWithUs() : nullptr;
  BirthAttributes attributes;
  const bool inherits = streams.count() != 0;
  Error error = kSuccess;
  if (inherits) error = attributes.add(PROC_THREAD_ATTRIBUTE_HANDLE_LIST, streams.list(), streams.count());
  if (error == kSuccess && start.endsWithParent) error = attributes.add(PROC_THREAD_ATTRIBUTE_JOB_LIST, &job, 1);
  if (error != kSuccess) return error;
  STARTUPINFOEXA startup{};
  startup.StartupInfo.cb = sizeof(startup);
  startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
  startup.StartupInfo.hStdInput = streams[0];
  startup.StartupInfo.hStdOutput = streams[1];
  startup.StartupInfo.hStdError = streams[2];
  startup.lpAttributeList = attributes.get();
  std::string line = commandLine(NativePath(start.program), start.arguments);
  std::wstring environment = environmentBlock(start.environment);
  const DWORD flags = CREATE_UNICODE_ENVIRONMENT | EXTENDED_STARTUPINFO_PRESENT;
  return resultOf(CreateProcessA(nullptr, line.data(), nullptr, nullptr, inherits, flags, environment.data(), nullptr,
                                 &startup.StartupInfo, created));
}

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
  CloseHandle(childOf(handle_)->process);
  delete childOf(handle_);
}

Error Process::Start(const ProcessStart& start, Process* out) {
  PROCESS_INFORMATION created{};
  const Error notCreated = create(start, &created);
  if (notCreated) return notCreated == ERROR_PATH_NOT_FOUND ? kFileNotFound : notCreated;
  Process process;
  process.handle_ = new (std::nothrow) Child{created.hProcess, created.dwProcessId};
  CloseHandle(created.hThread);
  if (!process) {
    TerminateProcess(created.hProcess, kKilledExitCode);
    CloseHandle(created.hProcess);
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
  DWORD code = 0;
  if (!GetExitCodeProcess(childOf(handle_)->process, &code)) return lastError();
  if (exitCode != nullptr) *exitCode = code == kControlCExit ? kInterruptedExitCode : static_cast<int>(code);
  return kSuccess;
}

// Ctrl-C reaches only processes that share the console, and then this one too.
Error Process::Interrupt() { return handle_ == nullptr ? kInvalidHandle : kNotSupported; }

Error Process::Terminate() {
  if (handle_ == nullptr) return kInvalidHandle;
  const HANDLE process = childOf(handle_)->process;
  if (TerminateProcess(process, kKilledExitCode)) return kSuccess;
  const Error error = lastError();
  return WaitForSingleObject(process, 0) == WAIT_OBJECT_0 ? kSuccess : error;
}

Error SetEndRequestHandler(void (*handler)()) {
  const bool had = endRequestHandler.exchange(handler) != nullptr;
  if (had == (handler != nullptr)) return kSuccess;
  return resultOf(SetConsoleCtrlHandler(onConsoleControl, handler != nullptr));
}

}  // namespace kova::os
