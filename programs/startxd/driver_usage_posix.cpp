#include <malloc.h>

#include <filesystem>
#include <iterator>

#include "programs/startxd/driver_usage.h"

int usedHandles() {
  const std::filesystem::directory_iterator all("/proc/self/fd");
  return static_cast<int>(std::distance(begin(all), end(all))) - 1;  // The look itself opens one.
}

int usedBytes() {
  const struct mallinfo2 info = mallinfo2();
  return static_cast<int>(info.uordblks + info.hblkhd);
}
