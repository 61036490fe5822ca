// An engine of driven_test.py that ends before it greets, as many milliseconds after its start as its last argument
// says.
#include <cstdint>
#include <cstdlib>

#include "platform/os/clock.h"

int main(int count, char** words) {
  kova::os::SleepMs(static_cast<std::uint32_t>(std::atoi(words[count - 1])));
  return 0;
}
