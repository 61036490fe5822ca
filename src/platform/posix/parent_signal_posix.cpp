#include "platform/posix/parent_signal_posix.h"

#include <semaphore.h>
#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <mutex>

namespace kova::os {
namespace {

// One that the program does without, and that means nothing where nobody handles it.
constexpr int kErrand = SIGURG;

// How long the first thread may take. One that holds the signal, or has ended, never comes.
constexpr time_t kPatienceSeconds = 1;

// Never destroyed: a late signal may still arrive.
struct Errand {
  std::mutex mutex;
  sem_t done;

  Errand() { sem_init(&done, 0, 0); }
};

Errand& errand() {
  static Errand* const theErrand = new Errand;
  return *theErrand;
}

// A signal handler may not make a static object.
sem_t* errandDone = nullptr;

void drop() { prctl(PR_SET_PDEATHSIG, 0); }

void onErrand(int) {
  const int before = errno;
  drop();
  sem_post(errandDone);
  errno = before;
}

// The setting belongs to the thread that the program has begun on, which alone can change it.
void dropOnFirstThread() {
  const std::lock_guard<std::mutex> hold(errand().mutex);
  errandDone = &errand().done;
  struct sigaction action = {};
  struct sigaction before = {};
  action.sa_handler = &onErrand;
  action.sa_flags = SA_RESTART;
  if (sigaction(kErrand, &action, &before) != 0) return;
  timespec end = {};
  clock_gettime(CLOCK_MONOTONIC, &end);
  end.tv_sec += kPatienceSeconds;
  if (tgkill(getpid(), getpid(), kErrand) == 0) {
    while (sem_clockwait(&errand().done, CLOCK_MONOTONIC, &end) != 0 && errno == EINTR) {
    }
  }
  sigaction(kErrand, &before, nullptr);
}

}  // namespace

void dropParentSignal() {
  if (gettid() == getpid()) {
    drop();
  } else {
    dropOnFirstThread();
  }
}

}  // namespace kova::os
