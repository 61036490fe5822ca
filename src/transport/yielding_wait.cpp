#include "transport/yielding_wait.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cstring>
#include <optional>
#include <string>

#include "platform/os/clock.h"
#include "platform/os/environment.h"

namespace kova {
namespace {

std::uint32_t limitFromEnvironment() {
  const std::optional<std::string> text = os::GetEnvironment("KOVA_YIELD_US");
  return ParseYieldLimit(text ? text->c_str() : nullptr);
}

std::atomic<std::uint32_t>& limit() {
  static std::atomic<std::uint32_t> value{limitFromEnvironment()};
  return value;
}

struct Looks {
  os::Error result = os::kNoData;
  bool yielded = false;
  std::uint64_t longestYieldUs = 0;
};

// Looks for a message until the limit is over.
Looks lookForMessage(os::NativeHandle pipe, void* buffer, std::uint32_t size, std::uint32_t* read,
                     std::uint32_t limitUs) {
  Looks looks;
  const std::uint64_t start = os::TickUs();
  std::uint64_t before = start;
  for (;;) {
    looks.result = os::TryReadMessage(pipe, buffer, size, read);
    if (looks.result != os::kNoData && !looks.yielded) return looks;
    const std::uint64_t now = os::TickUs();
    if (looks.yielded) looks.longestYieldUs = std::max(looks.longestYieldUs, now - before);
    if (looks.result != os::kNoData || now - start >= limitUs) return looks;
    before = now;
    looks.yielded = true;
    os::YieldThread();
  }
}

}  // namespace

std::uint32_t ParseYieldLimit(const char* text) {
  if (text == nullptr || *text == '\0') return os::GoodLookUs();
  const char* end = text + std::strlen(text);
  std::uint32_t value = 0;
  const auto [stop, result] = std::from_chars(text, end, value);
  if (stop != end || result == std::errc::invalid_argument) return os::GoodLookUs();
  return result == std::errc::result_out_of_range ? kLargestYieldUs : std::min(value, kLargestYieldUs);
}

std::uint32_t YieldLimitUs() { return limit().load(std::memory_order_relaxed); }

void SetYieldLimitUs(std::uint32_t microseconds) {
  limit().store(std::min(microseconds, kLargestYieldUs), std::memory_order_relaxed);
}

bool YieldPacer::mayLook() {
  const std::uint32_t left = waitsToBlock_.load(std::memory_order_relaxed);
  if (left != 0) waitsToBlock_.store(left - 1, std::memory_order_relaxed);
  return left == 0;
}

void YieldPacer::noteYield(std::uint64_t microseconds) {
  const std::uint32_t pause = pause_.load(std::memory_order_relaxed);
  if (microseconds > kLongYieldUs) {
    waitsToBlock_.store(pause, std::memory_order_relaxed);
    pause_.store(std::min(2 * pause, kLongestPause), std::memory_order_relaxed);
  } else if (pause > kFirstPause) {
    pause_.store(pause - 1, std::memory_order_relaxed);
  }
}

os::Error ReadMessageYielding(os::NativeHandle pipe, void* buffer, std::uint32_t size, std::uint32_t* read) {
  static YieldPacer pacer;
  const std::uint32_t limitUs = YieldLimitUs();
  if (limitUs == 0 || !pacer.mayLook()) return os::ReadMessage(pipe, buffer, size, read);
  const Looks looks = lookForMessage(pipe, buffer, size, read, limitUs);
  if (looks.yielded) pacer.noteYield(looks.longestYieldUs);
  return looks.result == os::kNoData ? os::ReadMessage(pipe, buffer, size, read) : looks.result;
}

}  // namespace kova
