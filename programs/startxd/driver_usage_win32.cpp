#include <malloc.h>

#include <cstddef>

#include "programs/startxd/driver_usage.h"
#include "tests/kit/kit_system.h"

int usedHandles() { return kova::kit::systemHandleCount(); }

int usedBytes() {
  std::size_t bytes = 0;
  _HEAPINFO entry = {};
  while (_heapwalk(&entry) == _HEAPOK) {
    if (entry._useflag == _USEDENTRY) bytes += entry._size;
  }
  return static_cast<int>(bytes);
}
