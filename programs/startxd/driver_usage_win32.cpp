#include <malloc.h>

#include <cstdint>
#include <string>

#include "platform/os/loader.h"
#include "programs/startxd/driver_usage.h"

namespace {

constexpr std::uintptr_t kHandleStep = 4;
constexpr std::uintptr_t kMostHandles = 1000;

// The system's function of that name: 0 when there is no such handle.
using GetHandleInformation = int(void* handle, unsigned long* flags);

GetHandleInformation* systemFunction() {
  kova::os::LibraryHandle system = nullptr;
  void* function = nullptr;
  std::string message;
  if (kova::os::LoadSharedLibrary("kernel32.dll", &system, &message) != kova::os::kSuccess) return nullptr;
  kova::os::FindSymbol(system, "GetHandleInformation", &function, &message);
  return reinterpret_cast<GetHandleInformation*>(function);
}

}  // namespace

// An emulator may not know the number, so each value that may be a handle is asked about.
int usedHandles() {
  static GetHandleInformation* const isThere = systemFunction();
  int count = 0;
  for (std::uintptr_t i = 1; isThere != nullptr && i <= kMostHandles; ++i) {
    unsigned long flags = 0;
    if (isThere(reinterpret_cast<void*>(i * kHandleStep), &flags) != 0) ++count;
  }
  return count;
}

int usedBytes() {
  std::size_t bytes = 0;
  _HEAPINFO entry = {};
  while (_heapwalk(&entry) == _HEAPOK) {
    if (entry._useflag == _USEDENTRY) bytes += entry._size;
  }
  return static_cast<int>(bytes);
}
