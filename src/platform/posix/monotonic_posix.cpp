#include "platform/posix/monotonic_posix.h"

#include <time.h>

#include <algorithm>
#include <cerrno>
#include <climits>

#include "platform/os/clock.h"

namespace kova::os {

Monitor::Monitor() {
  pthread_condattr_t attributes;
  pthread_condattr_init(&attributes);
  pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
  pthread_cond_init(&condition_, &attributes);
  pthread_condattr_destroy(&attributes);
  pthread_mutex_init(&mutex_, nullptr);
}

Monitor::~Monitor() {
  pthread_cond_destroy(&condition_);
  pthread_mutex_destroy(&mutex_);
}

timespec Monitor::deadline(std::uint32_t timeoutMs) {
  const std::uint64_t end = TickUs() + std::uint64_t{timeoutMs} * 1000;
  timespec result = {};
  result.tv_sec = static_cast<time_t>(end / 1000000);
  result.tv_nsec = static_cast<long>(end % 1000000) * 1000;
  return result;
}

bool Monitor::wait(std::uint32_t timeoutMs, const timespec& end) {
  if (timeoutMs == kNoLimit) return pthread_cond_wait(&condition_, &mutex_) == 0;
  return pthread_cond_timedwait(&condition_, &mutex_, &end) != ETIMEDOUT;
}

TimeLeft::TimeLeft(std::uint32_t timeoutMs) : timeoutMs_(timeoutMs), endMs_(TickMs() + timeoutMs) {}

std::uint32_t TimeLeft::milliseconds() const {
  if (timeoutMs_ == kNoLimit || timeoutMs_ == 0) return timeoutMs_;
  const std::uint64_t present = TickMs();
  return present >= endMs_ ? 0 : static_cast<std::uint32_t>(endMs_ - present);
}

int TimeLeft::forPoll() const {
  if (timeoutMs_ == kNoLimit) return -1;
  return static_cast<int>(std::min<std::uint32_t>(milliseconds(), INT_MAX));
}

}  // namespace kova::os
