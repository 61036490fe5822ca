// Time. The fake backend's time is virtual: a sleep takes none.
#ifndef KOVADX_PLATFORM_OS_CLOCK_H
#define KOVADX_PLATFORM_OS_CLOCK_H

#include <cstdint>
#include <ctime>

namespace kova::os {

// Lets the calling thread sleep for at least that time.
void SleepMs(std::uint32_t milliseconds);

// Milliseconds and microseconds since some fixed moment; never goes back.
std::uint64_t TickMs();
std::uint64_t TickUs();

// Offers the processor to another thread that is ready to run; returns at once when there is none.
void YieldThread();

// The present local date and time, broken down.
std::tm LocalTime();

}  // namespace kova::os

#endif
