#include <malloc.h>

#include "programs/startxd/driver_usage.h"
#include "tests/kit/kit_system.h"

int usedHandles() { return kova::kit::systemHandleCount(); }

int usedBytes() {
  const struct mallinfo2 info = mallinfo2();
  return static_cast<int>(info.uordblks + info.hblkhd);
}
