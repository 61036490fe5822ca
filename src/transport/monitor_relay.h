// Who looks at a suite from outside can not read its monitors' pipes: each has room for its two ends alone. So the end
// that reads the words passes each one on to a pipe that an onlooker may have created. Nothing happens while there is
// none, and nobody ever waits for an onlooker.
#ifndef KOVADX_TRANSPORT_MONITOR_RELAY_H
#define KOVADX_TRANSPORT_MONITOR_RELAY_H

#include <cstdint>
#include <string>

namespace kova {

// The words of a monitor: four bytes, in a message of their own.
constexpr std::int32_t kWordVanished = 0;  // Passed on to onlookers alone: the pipe broke without a goodbye.
constexpr std::int32_t kWordAlive = 1;
constexpr std::int32_t kWordGoodbye = 3;

// The pipe that an onlooker creates to be told of the monitor of that name.
inline std::string onlookerPipeName(const std::string& monitorName) { return monitorName + "_watch"; }

// Passes a word on: opens the onlooker's pipe, writes one message, closes it again. On any thread.
void tellOnlooker(const std::string& monitorName, std::int32_t word) noexcept;

}  // namespace kova

#endif
