// The virtual clock.
#include "platform/os/clock.h"

#include <chrono>
#include <thread>

#include "tests/os_fake/fake_kernel.h"
#include "tests/os_fake/os_fake.h"

namespace kova::os {

using fake::Call;
using fake::kernel;
using fake::Logged;

namespace {

// What the calendar shows at the virtual time 0: Tuesday, 2 January 2024, 03:04:05.
constexpr std::chrono::sys_seconds kStart = std::chrono::sys_days{std::chrono::year{2024} / 1 / 2} +
                                            std::chrono::hours{3} + std::chrono::minutes{4} + std::chrono::seconds{5};

std::tm brokenDown(std::chrono::sys_seconds moment) {
  const auto day = std::chrono::floor<std::chrono::days>(moment);
  const std::chrono::year_month_day date{day};
  const std::chrono::hh_mm_ss time{moment - day};
  std::tm result{};
  result.tm_sec = static_cast<int>(time.seconds().count());
  result.tm_min = static_cast<int>(time.minutes().count());
  result.tm_hour = static_cast<int>(time.hours().count());
  result.tm_mday = static_cast<int>(static_cast<unsigned>(date.day()));
  result.tm_mon = static_cast<int>(static_cast<unsigned>(date.month())) - 1;
  result.tm_year = static_cast<int>(date.year()) - 1900;
  result.tm_wday = static_cast<int>(std::chrono::weekday{day}.c_encoding());
  result.tm_yday = static_cast<int>((day - std::chrono::sys_days{date.year() / 1 / 1}).count());
  return result;
}

}  // namespace

void SleepMs(std::uint32_t milliseconds) {
  {
    const Call call("SleepMs");
    kernel().sleptMs += milliseconds;
    // A program's end is a matter of virtual time too.
    Call::notify();
  }
  std::this_thread::yield();
}

std::uint64_t TickMs() { return TickUs() / 1000; }

std::uint64_t TickUs() {
  const Call call("TickUs", Logged::CountOnly);
  return kernel().nowMs() * 1000 + kernel().yieldedUs;
}

void YieldThread() {
  {
    const Call call("YieldThread", Logged::CountOnly);
    ++kernel().yieldedUs;
  }
  std::this_thread::yield();
}

std::tm LocalTime() {
  const Call call("LocalTime", Logged::CountOnly);
  return brokenDown(kStart + std::chrono::floor<std::chrono::seconds>(std::chrono::milliseconds{kernel().nowMs()}));
}

}  // namespace kova::os

namespace kova::fake {

std::uint64_t elapsedMs() {
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  return kernel().nowMs();
}

void advanceMs(std::uint64_t milliseconds) {
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  kernel().advancedMs += milliseconds;
  Call::notify();
}

void setPatienceMs(std::uint32_t realMilliseconds) {
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  kernel().patienceMs = realMilliseconds;
}

}  // namespace kova::fake
