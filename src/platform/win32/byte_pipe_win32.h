// What stands behind an end of a byte pipe on this platform.
#ifndef KOVADX_PLATFORM_WIN32_BYTE_PIPE_WIN32_H
#define KOVADX_PLATFORM_WIN32_BYTE_PIPE_WIN32_H

#include "platform/win32/system_win32.h"

namespace kova::os {

// The system's handle of an end; null for none. It stays the end's.
HANDLE systemHandleOfBytePipe(const void* handle);

}  // namespace kova::os

#endif
