// Files by path. Callers write paths with '\' or '/'; a platform that knows '/' alone turns every '\' just before its
// call.
#ifndef KOVADX_PLATFORM_OS_FILE_H
#define KOVADX_PLATFORM_OS_FILE_H

#include <cstdio>
#include <string>

#include "platform/os/error.h"

namespace kova::os {

// The path as this platform's own calls take it.
std::string NativePath(const std::string& path);

// Opens a standard stream ("rt", "w", "a+", ...), closed in child processes. Other processes may read the file
// meanwhile. Null when it can not be opened; *error (may be null) then tells why.
std::FILE* OpenFile(const std::string& path, const char* mode, Error* error);

// True when something of that name is there.
bool FileExists(const std::string& path);

// Deletes a plain file; 2 when there is none. Never follows or deletes anything else.
Error DeletePlainFile(const std::string& path);

// The full path of the running program, and of the module (library or program) that holds an address; empty when
// unknown.
std::string ProgramPath();
std::string ModulePath(const void* address);

}  // namespace kova::os

#endif
