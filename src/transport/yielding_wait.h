// How long a reader looks for a message without blocking before it blocks. Between two looks it offers the processor to
// others, so that a reply that comes within microseconds costs neither side a sleep and a wake-up.
//
// The limit is a setting of the process: any thread may read or set it.
#ifndef KOVADX_TRANSPORT_YIELDING_WAIT_H
#define KOVADX_TRANSPORT_YIELDING_WAIT_H

#include <atomic>
#include <cstdint>

#include "platform/os/named_pipe.h"

namespace kova {

constexpr std::uint32_t kLargestYieldUs = 1000;

// The limit that a text states in microseconds: at most kLargestYieldUs, and what suits the platform (os::GoodLookUs)
// for null and for a text that is no whole number of 0 or more.
std::uint32_t ParseYieldLimit(const char* text);

// The limit in microseconds; 0 blocks at once. Taken from the environment variable KOVA_YIELD_US at its first use.
std::uint32_t YieldLimitUs();

// Replaces the limit for this process.
void SetYieldLimitUs(std::uint32_t microseconds);

// Stops the looks for a while where they do harm: on a machine with more to do than processors, a yield gives the
// processor to other programs for milliseconds, while a blocked reader is woken at once. Each yield that takes so long
// has the next waits block, twice as many as the time before; waits that pass well take that back step by step.
//
// Any thread may use it; what one thread notes at the same moment as another may count once.
class YieldPacer {
 public:
  static constexpr std::uint64_t kLongYieldUs = 1000;
  static constexpr std::uint32_t kFirstPause = 64;
  static constexpr std::uint32_t kLongestPause = 65536;

  // True when this wait may look; counts a wait that may not.
  bool mayLook();

  // How long the longest yield of a wait took.
  void noteYield(std::uint64_t microseconds);

 private:
  std::atomic<std::uint32_t> waitsToBlock_ = 0;
  std::atomic<std::uint32_t> pause_ = kFirstPause;
};

// os::ReadMessage, preceded by looks for at most the limit. With a limit of 0 it is one read and nothing else.
os::Error ReadMessageYielding(os::NativeHandle pipe, void* buffer, std::uint32_t size, std::uint32_t* read);

}  // namespace kova

#endif
