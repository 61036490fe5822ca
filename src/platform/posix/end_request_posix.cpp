// The user's request that this program end, carried from a signal handler, where next to nothing may be done, to a
// thread, where the handler of the portable code may lock and wake.
#include <pthread.h>
#include <semaphore.h>
#include <signal.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <mutex>

#include "platform/os/process.h"
#include "platform/posix/error_posix.h"
#include "platform/posix/ignored_signal_posix.h"

namespace kova::os {
namespace {

constexpr int kRequests[] = {SIGINT, SIGTERM, SIGHUP};
constexpr std::size_t kRequestCount = sizeof kRequests / sizeof kRequests[0];

// Never destroyed: a signal may arrive at any time.
struct Requests {
  sem_t arrived;
  std::atomic<void (*)()> handler{nullptr};
  std::mutex mutex;  // Guards what follows.
  bool installed = false;
  pthread_t thread = {};
  struct sigaction before[kRequestCount] = {};

  Requests() { sem_init(&arrived, 0, 0); }
};

Requests& requests() {
  static Requests* const theRequests = new Requests;
  return *theRequests;
}

// Set once before the first handler is installed: a signal handler may not make a static object.
Requests* signalledRequests = nullptr;

void onSignal(int) {
  const int before = errno;
  sem_post(&signalledRequests->arrived);
  errno = before;
}

// The program may have been started with these signals held; then nothing but this thread would ever get them.
void letRequestsIn() {
  sigset_t set;
  sigemptyset(&set);
  for (const int number : kRequests) sigaddset(&set, number);
  pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

void* deliver(void*) {
  letRequestsIn();
  for (;;) {
    while (sem_wait(&requests().arrived) != 0) {
    }
    void (*const handler)() = requests().handler.load();
    if (handler == nullptr) return nullptr;
    handler();
  }
}

Error install(Requests& state) {
  const int result = pthread_create(&state.thread, nullptr, &deliver, nullptr);
  if (result != 0) return errorOfErrno(result);
  signalledRequests = &state;
  struct sigaction action = {};
  action.sa_handler = &onSignal;
  action.sa_flags = SA_RESTART;
  for (std::size_t i = 0; i < kRequestCount; ++i) {
    sigaction(kRequests[i], nullptr, &state.before[i]);
    if (staysIgnored(kRequests[i], state.before[i])) continue;
    sigaction(kRequests[i], &action, nullptr);
  }
  state.installed = true;
  return kSuccess;
}

void remove(Requests& state) {
  for (std::size_t i = 0; i < kRequestCount; ++i) sigaction(kRequests[i], &state.before[i], nullptr);
  // The thread finds no handler and ends.
  sem_post(&state.arrived);
  pthread_join(state.thread, nullptr);
  while (sem_trywait(&state.arrived) == 0) {
  }
  state.installed = false;
}

}  // namespace

Error SetEndRequestHandler(void (*handler)()) {
  Requests& state = requests();
  const std::lock_guard<std::mutex> hold(state.mutex);
  state.handler = handler;
  if (handler != nullptr) return state.installed ? kSuccess : install(state);
  if (state.installed) remove(state);
  return kSuccess;
}

}  // namespace kova::os
