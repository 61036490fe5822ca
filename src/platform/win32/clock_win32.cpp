#include "platform/os/clock.h"

#include <algorithm>

#include "platform/win32/system_win32.h"

namespace kova::os {

void SleepMs(std::uint32_t milliseconds) {
  // The system's sleep may end within the tick before the time is over.
  const std::uint64_t end = TickMs() + milliseconds;
  std::uint64_t left = milliseconds;
  do {
    Sleep(static_cast<DWORD>(std::min<std::uint64_t>(left, INFINITE - 1)));
    const std::uint64_t now = TickMs();
    left = now < end ? end - now : 0;
  } while (left > 0);
}

std::uint64_t TickMs() { return TickUs() / 1000; }

std::uint64_t TickUs() {
  static const std::uint64_t frequency = [] {
    LARGE_INTEGER value;
    QueryPerformanceFrequency(&value);
    return static_cast<std::uint64_t>(value.QuadPart);
  }();
  LARGE_INTEGER counter;
  QueryPerformanceCounter(&counter);
  const auto count = static_cast<std::uint64_t>(counter.QuadPart);
  return count / frequency * 1000000 + count % frequency * 1000000 / frequency;
}

void YieldThread() { SwitchToThread(); }

std::tm LocalTime() {
  const std::time_t now = std::time(nullptr);
  std::tm result{};
  localtime_s(&result, &now);
  return result;
}

}  // namespace kova::os
