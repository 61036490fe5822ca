#include "platform/os/clock.h"

#include <sched.h>
#include <time.h>

#include <cerrno>

namespace kova::os {
namespace {

constexpr long kNanosecondsPerSecond = 1000000000;

timespec now() {
  timespec time = {};
  clock_gettime(CLOCK_MONOTONIC, &time);
  return time;
}

}  // namespace

void SleepMs(std::uint32_t milliseconds) {
  timespec end = now();
  end.tv_sec += milliseconds / 1000;
  end.tv_nsec += static_cast<long>(milliseconds % 1000) * 1000000;
  if (end.tv_nsec >= kNanosecondsPerSecond) {
    ++end.tv_sec;
    end.tv_nsec -= kNanosecondsPerSecond;
  }
  // A signal does not shorten the sleep.
  while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &end, nullptr) == EINTR) {
  }
}

std::uint64_t TickMs() { return TickUs() / 1000; }

std::uint64_t TickUs() {
  const timespec time = now();
  return static_cast<std::uint64_t>(time.tv_sec) * 1000000 + static_cast<std::uint64_t>(time.tv_nsec) / 1000;
}

void YieldThread() { sched_yield(); }

std::tm LocalTime() {
  const std::time_t seconds = std::time(nullptr);
  std::tm result = {};
  localtime_r(&seconds, &result);
  return result;
}

}  // namespace kova::os
