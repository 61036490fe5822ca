// Shared libraries, loaded into this process while it runs.
//
// Results are Windows error numbers, 0 for success; an output is stored on success and untouched on failure. *message
// (never null) receives, on failure alone, the platform's own text for it, which may end in a line break. Any thread
// may call these functions; one library loaded twice is the same library, and is unloaded with its last handle.
#ifndef KOVADX_PLATFORM_OS_LOADER_H
#define KOVADX_PLATFORM_OS_LOADER_H

#include <string>

#include "platform/os/error.h"

namespace kova::os {

using LibraryHandle = void*;

// Loads a library and all that it needs, and runs what it runs at its start. Its symbols are found through its handle
// alone, so that two libraries may use the same names. The path is taken with both separators. To a last component
// without a "." the platform adds the usual ending of its libraries: Windows ".dll"; POSIX takes the path as it is,
// then with ".so", then with "lib" before the last component and ".so" behind it. 126 when the library, or something
// that it needs, is not there; 193 when the file is no library.
Error LoadSharedLibrary(const std::string& path, LibraryHandle* out, std::string* message);

// The address of what the library exports under that name; 127 when there is no such thing.
Error FindSymbol(LibraryHandle library, const char* name, void** out, std::string* message);

// Gives the handle up.
Error UnloadLibrary(LibraryHandle library);

}  // namespace kova::os

#endif
