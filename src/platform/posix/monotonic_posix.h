// Waits of mutexes and condition variables on the clock that nobody sets.
#ifndef KOVADX_PLATFORM_POSIX_MONOTONIC_POSIX_H
#define KOVADX_PLATFORM_POSIX_MONOTONIC_POSIX_H

#include <pthread.h>

#include <cstdint>

namespace kova::os {

constexpr std::uint32_t kNoLimit = 0xFFFFFFFF;

// A mutex with a condition. Plain pthread calls, because the standard library's wait may not be left by a cancelled
// thread.
class Monitor {
 public:
  Monitor();
  ~Monitor();
  Monitor(const Monitor&) = delete;
  Monitor& operator=(const Monitor&) = delete;

  // Holds the mutex for a scope.
  class Hold {
   public:
    explicit Hold(Monitor& monitor) : monitor_(monitor) { pthread_mutex_lock(&monitor_.mutex_); }
    ~Hold() { pthread_mutex_unlock(&monitor_.mutex_); }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

   private:
    Monitor& monitor_;
  };

  void wakeOne() { pthread_cond_signal(&condition_); }
  void wakeAll() { pthread_cond_broadcast(&condition_); }

  // Waits, with the mutex held, until ready() is true; false when the time is up before.
  template <typename Ready>
  bool waitFor(std::uint32_t timeoutMs, Ready ready) {
    const timespec end = deadline(timeoutMs);
    while (!ready()) {
      if (timeoutMs == 0 || !wait(timeoutMs, end)) return ready();
    }
    return true;
  }

 private:
  static timespec deadline(std::uint32_t timeoutMs);
  bool wait(std::uint32_t timeoutMs, const timespec& end);

  pthread_mutex_t mutex_;
  pthread_cond_t condition_;
};

// What is left of a time limit: for calls that are begun again, after a signal say.
class TimeLeft {
 public:
  explicit TimeLeft(std::uint32_t timeoutMs);
  // As poll() takes it: milliseconds, -1 without limit.
  int forPoll() const;
  std::uint32_t milliseconds() const;

 private:
  std::uint32_t timeoutMs_;
  std::uint64_t endMs_;
};

}  // namespace kova::os

#endif
