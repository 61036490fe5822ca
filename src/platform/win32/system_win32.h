// The Windows header as every source of this backend includes it, and what they all need beside it.
#ifndef KOVADX_PLATFORM_WIN32_SYSTEM_WIN32_H
#define KOVADX_PLATFORM_WIN32_SYSTEM_WIN32_H

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include "platform/os/error.h"

namespace kova::os {

// Why the system call just before has failed; never 0.
inline Error lastError() {
  const DWORD error = GetLastError();
  return error == 0 ? kGeneralFailure : error;
}

// What a system call of the kind "true, or false and an error number" gave.
inline Error resultOf(BOOL done) { return done ? kSuccess : lastError(); }

}  // namespace kova::os

#endif
