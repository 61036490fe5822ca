// What stands behind an end of a byte pipe on this platform.
#ifndef KOVADX_PLATFORM_POSIX_BYTE_PIPE_POSIX_H
#define KOVADX_PLATFORM_POSIX_BYTE_PIPE_POSIX_H

namespace kova::os {

// The descriptor of an end's handle; -1 for none. It stays the end's.
int descriptorOfBytePipe(const void* handle);

}  // namespace kova::os

#endif
