#include "platform/posix/spawn_posix.h"

#include <fcntl.h>
#include <pthread.h>
#include <semaphore.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "platform/posix/child_posix.h"
#include "platform/posix/error_posix.h"
#include "platform/posix/ignored_signal_posix.h"

namespace kova::os {
namespace {

constexpr int kNotStarted = 127;
constexpr int kFirstPlain = 3;  // Below it are the standard streams.

// All signals wait while it lives: a handler of this program must not run in the forked child, nor on a thread that
// begins meanwhile.
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
  if (close_range(kFirstPlain, ~0U, CLOSE_RANGE_CLOEXEC) == 0) return;
  const int limit = static_cast<int>(sysconf(_SC_OPEN_MAX));
  for (int number = kFirstPlain; number < limit; ++number) fcntl(number, F_SETFD, FD_CLOEXEC);
}

// Where a descriptor has the number of a standard stream, because this process has closed that stream, another number
// for the same. -1 stays.
int aboveStreams(int number) {
  return number < 0 || number >= kFirstPlain ? number : fcntl(number, F_DUPFD_CLOEXEC, kFirstPlain);
}

// False, and errno, when it fails.
bool takeStreams(const Birth& birth) {
  const int input = aboveStreams(birth.input);
  const int output = aboveStreams(birth.output);
  if ((input < 0) != (birth.input < 0) || (output < 0) != (birth.output < 0)) return false;
  if (input >= 0 && dup2(input, STDIN_FILENO) < 0) return false;
  return output < 0 || (dup2(output, STDOUT_FILENO) >= 0 && dup2(output, STDERR_FILENO) >= 0);
}

// The forked child up to the program's first instruction, or to the errno that keeps it from there. Only calls that are
// safe after a fork.
int becomeProgram(const Birth& birth, pid_t parent) {
  if (birth.endsWithParent) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // The parent may have ended before the call above; then nobody would tell.
    if (getppid() != parent) _exit(kNotStarted);
  }
  if (birth.leadsGroup && setpgid(0, 0) != 0) return errno;
  if (!takeStreams(birth)) return errno;
  resetSignals();
  closeOnExecAbove2();
  return birth.image.execute();
}

[[noreturn]] void runChild(const Birth& birth, pid_t parent, int report) {
  const int failure = becomeProgram(birth, parent);
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

Error spawnHere(const Birth& birth, Spawned* out) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return lastError();
  const Descriptor reportIn(ends[0]);
  Descriptor reportOut(ends[1]);
  // The child puts its streams over the first three numbers.
  if (reportOut.get() < kFirstPlain) reportOut = Descriptor(aboveStreams(reportOut.get()));
  if (!reportOut) return lastError();
  const pid_t parent = getpid();
  pid_t id = -1;
  {
    const SignalsHeld signals;
    id = fork();
    if (id == 0) runChild(birth, parent, reportOut.get());
  }
  if (id < 0) return errno == EAGAIN ? kNotEnoughMemory : lastError();
  reportOut.reset();
  Error error = readReport(reportIn.get());
  Descriptor descriptor = error == kSuccess ? openProcess(id) : Descriptor();
  if (error == kSuccess && !descriptor) {
    error = lastError();
    kill(id, SIGKILL);
  }
  if (error != kSuccess) {
    reap(id);
    return error;
  }
  *out = Spawned{id, std::move(descriptor)};
  return kSuccess;
}

// What the thread that asks for such a process and the one that stays with it share until the process is there.
struct Order {
  const Birth& birth;
  Spawned* out;
  Error error = kSuccess;
  sem_t done;
};

// Leaves the end of the process to whoever collects it, and ends too when that has happened.
void awaitEnd(pid_t id) {
  siginfo_t info = {};
  while (waitid(P_PID, static_cast<id_t>(id), &info, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
  }
}

// It owns nothing and knows nothing but a number from the moment on at which the process is there, so that it can stand
// in its wait while this program ends around it.
void* spawnAndStay(void* argument) {
  auto* const order = static_cast<Order*>(argument);
  order->error = spawnHere(order->birth, order->out);
  const bool started = order->error == kSuccess;
  const pid_t id = order->out->id;
  sem_post(&order->done);
  if (started) awaitEnd(id);
  return nullptr;
}

Error launchDetached(void* (*body)(void*), void* argument) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
  pthread_t thread = {};
  int result = 0;
  {
    const SignalsHeld signals;
    result = pthread_create(&thread, &attributes, body, argument);
  }
  pthread_attr_destroy(&attributes);
  return result == EAGAIN ? kNotEnoughMemory : errorOfErrno(result);
}

Error spawnOnThreadOfItsOwn(const Birth& birth, Spawned* out) {
  Order order{.birth = birth, .out = out, .done = {}};
  sem_init(&order.done, 0, 0);
  // The order lies on this thread's stack: the thread may not be cancelled away from it.
  int before = 0;
  pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before);
  Error error = launchDetached(&spawnAndStay, &order);
  if (error == kSuccess) {
    while (sem_wait(&order.done) != 0) {
    }
    error = order.error;
  }
  pthread_setcancelstate(before, nullptr);
  sem_destroy(&order.done);
  return error;
}

}  // namespace

Error spawn(const Birth& birth, Spawned* out) {
  return birth.endsWithParent ? spawnOnThreadOfItsOwn(birth, out) : spawnHere(birth, out);
}

}  // namespace kova::os
