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

}  // namespace

std::uint32_t ParseYieldLimit(const char* text) {
  if (text == nullptr || *text == '\0') return kDefaultYieldUs;
  const char* end = text + std::strlen(text);
  std::uint32_t value = 0;
  const auto [stop, result] = std::from_chars(text, end, value);
  if (stop != end || result == std::errc::invalid_argument) return kDefaultYieldUs;
  return result == std::errc::result_out_of_range ? kLargestYieldUs : std::min(value, kLargestYieldUs);
}

std::uint32_t YieldLimitUs() { return limit().load(std::memory_order_relaxed); }

void SetYieldLimitUs(std::uint32_t microseconds) {
  limit().store(std::min(microseconds, kLargestYieldUs), std::memory_order_relaxed);
}

os::Error ReadMessageYielding(os::NativeHandle pipe, void* buffer, std::uint32_t size, std::uint32_t* read) {
  const std::uint32_t limitUs = YieldLimitUs();
  if (limitUs == 0) return os::ReadMessage(pipe, buffer, size, read);
  const std::uint64_t start = os::TickUs();
  // A look takes a good part of a microsecond, so the count is a second bound where time stands still.
  for (std::uint32_t looks = 0; looks < 10 * limitUs; ++looks) {
    const os::Error error = os::TryReadMessage(pipe, buffer, size, read);
    if (error != os::kNoData) return error;
    if (os::TickUs() - start >= limitUs) break;
    os::YieldThread();
  }
  return os::ReadMessage(pipe, buffer, size, read);
}

}  // namespace kova
