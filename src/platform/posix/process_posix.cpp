#include "platform/os/process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <mutex>
#include <vector>

#include "platform/posix/descriptor_posix.h"
#include "platform/posix/error_posix.h"
#include "platform/posix/ignored_signal_posix.h"
#include "platform/posix/monotonic_posix.h"
#include "platform/posix/program_image_posix.h"

namespace kova::os {
namespace {

constexpr int kSignalBase = 128;
constexpr int kNotStarted = 127;

// A process is known by its descriptor: a number may be another process's by the time it is used, a descriptor never.
struct Child {
  pid_t id;
  Descriptor descriptor;
  bool ended = false;
  int exitCode = 0;
};

// By number, because the C library's header for these two can not be used from C++ everywhere.
int openProcess(pid_t id) { return static_cast<int>(syscall(SYS_pidfd_open, id, 0)); }

int signalProcess(int descriptor, int number) {
  return static_cast<int>(syscall(SYS_pidfd_send_signal, descriptor, number, nullptr, 0));
}

// Takes the end of a process, if it has come. 258 when it still runs.
Error collect(int descriptor, int* exitCode) {
  siginfo_t info = {};
  if (waitid(P_PIDFD, static_cast<id_t>(descriptor), &info, WEXITED | WNOHANG) != 0) return lastError();
  if (info.si_pid == 0) return kWaitTimeout;
  *exitCode = info.si_code == CLD_EXITED ? info.si_status : kSignalBase + info.si_status;
  return kSuccess;
}

// Processes that were let go while they ran: looked after now and then, so that their ends do not pile up.
class Abandoned {
 public:
  void add(Descriptor process) {
    const std::lock_guard<std::mutex> hold(mutex_);
    processes_.push_back(std::move(process));
  }
  void collectEnded() {
    const std::lock_guard<std::mutex> hold(mutex_);
    int ignored = 0;
    std::erase_if(processes_,
                  [&](const Descriptor& process) { return collect(process.get(), &ignored) != kWaitTimeout; });
  }

 private:
  std::mutex mutex_;
  std::vector<Descriptor> processes_;
};

Abandoned& abandoned() {
  static Abandoned* const theAbandoned = new Abandoned;
  return *theAbandoned;
}

// A program may be started with the ends of its children ignored. The system then forgets their exit codes.
void keepExitCodes() {
  struct sigaction present = {};
  if (sigaction(SIGCHLD, nullptr, &present) != 0) return;
  if (present.sa_handler != SIG_IGN && (present.sa_flags & SA_NOCLDWAIT) == 0) return;
  if (present.sa_handler == SIG_IGN) present.sa_handler = SIG_DFL;
  present.sa_flags &= ~SA_NOCLDWAIT;
  sigaction(SIGCHLD, &present, nullptr);
}

// All signals wait while a process is forked: a handler of this program must not run in the child.
class SignalsHeld {
 public:
  SignalsHeld() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  SignalsHeld(const SignalsHeld&) = delete;
  SignalsHeld& operator=(const SignalsHeld&) = delete;

 private:
  sigset_t before_;
};

// The child starts with every signal at its default and none held, save for those that are to stay ignored.
void resetSignals() {
  struct sigaction plain = {};
  plain.sa_handler = SIG_DFL;
  for (int number = 1; number < NSIG; ++number) {
    struct sigaction present = {};
    if (sigaction(number, nullptr, &present) == 0 && staysIgnored(number, present)) continue;
    sigaction(number, &plain, nullptr);
  }
  sigset_t none;
  sigemptyset(&none);
  pthread_sigmask(SIG_SETMASK, &none, nullptr);
}

void closeOnExecAbove2() {
  if (close_range(3, ~0U, CLOSE_RANGE_CLOEXEC) == 0) return;
  const int limit = static_cast<int>(sysconf(_SC_OPEN_MAX));
  for (int number = 3; number < limit; ++number) fcntl(number, F_SETFD, FD_CLOEXEC);
}

// The forked child up to the program's first instruction. Only calls that are safe after a fork.
[[noreturn]] void becomeProgram(const ProgramImage& image, bool endsWithParent, pid_t parent, int report) {
  if (endsWithParent) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // The parent may have ended before the call above; then nobody would tell.
    if (getppid() != parent) _exit(kNotStarted);
  }
  resetSignals();
  closeOnExecAbove2();
  const int failure = image.execute();
  const ssize_t ignored = write(report, &failure, sizeof failure);
  static_cast<void>(ignored);
  _exit(kNotStarted);
}

// What the child tells about its exec: nothing (the descriptor closes with it) when that worked.
Error readReport(int report) {
  int failure = 0;
  ssize_t count = 0;
  do {
    count = read(report, &failure, sizeof failure);
  } while (count < 0 && errno == EINTR);
  if (count != sizeof failure) return kSuccess;
  return errorOfErrno(failure);
}

void reap(pid_t id) {
  while (waitpid(id, nullptr, 0) < 0 && errno == EINTR) {
  }
}

Child* childOf(void* handle) { return static_cast<Child*>(handle); }

Error sendSignal(void* handle, int number) {
  if (handle == nullptr) return kInvalidHandle;
  return signalProcess(childOf(handle)->descriptor.get(), number) == 0 ? kSuccess : lastError();
}

}  // namespace

std::uint32_t CurrentProcessId() { return static_cast<std::uint32_t>(getpid()); }

Process::~Process() {
  if (handle_ == nullptr) return;
  Child* const child = childOf(handle_);
  int ignored = 0;
  if (!child->ended && collect(child->descriptor.get(), &ignored) == kWaitTimeout) {
    abandoned().add(std::move(child->descriptor));
  }
  delete child;
}

Error Process::Start(const ProcessStart& start, Process* out) {
  abandoned().collectEnded();
  keepExitCodes();
  const ProgramImage image(start);
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return lastError();
  const Descriptor reportIn(ends[0]);
  Descriptor reportOut(ends[1]);
  const pid_t parent = getpid();
  pid_t id = -1;
  {
    const SignalsHeld signals;
    id = fork();
    if (id == 0) becomeProgram(image, start.endsWithParent, parent, reportOut.get());
  }
  if (id < 0) return errno == EAGAIN ? kNotEnoughMemory : lastError();
  reportOut.reset();
  Error error = readReport(reportIn.get());
  Descriptor descriptor(error == kSuccess ? openProcess(id) : -1);
  if (error == kSuccess && !descriptor) {
    error = lastError();
    kill(id, SIGKILL);
  }
  if (error != kSuccess) {
    reap(id);
    return error;
  }
  *out = Process();
  out->handle_ = new Child{id, std::move(descriptor)};
  return kSuccess;
}

std::uint32_t Process::Id() const { return handle_ == nullptr ? 0 : static_cast<std::uint32_t>(childOf(handle_)->id); }

Error Process::Wait(std::uint32_t timeoutMs, int* exitCode) {
  if (handle_ == nullptr) return kInvalidHandle;
  Child* const child = childOf(handle_);
  if (!child->ended) {
    const TimeLeft left(timeoutMs);
    pollfd entry = {child->descriptor.get(), POLLIN, 0};
    Error error = kWaitTimeout;
    // The descriptor may be ready a moment before the end can be collected.
    for (int ready = 1; error == kWaitTimeout && ready != 0;) {
      ready = poll(&entry, 1, left.forPoll());
      if (ready < 0 && errno != EINTR) return lastError();
      error = collect(child->descriptor.get(), &child->exitCode);
    }
    if (error != kSuccess) return error;
    child->ended = true;
  }
  if (exitCode != nullptr) *exitCode = child->exitCode;
  return kSuccess;
}

Error Process::Interrupt() { return sendSignal(handle_, SIGINT); }

Error Process::Terminate() {
  const Error error = sendSignal(handle_, SIGKILL);
  // No such process: it has ended and was waited for.
  return error == errorOfErrno(ESRCH) ? kSuccess : error;
}

}  // namespace kova::os
