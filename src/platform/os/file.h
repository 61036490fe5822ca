// Files by path. Callers write paths with '\' or '/'; a platform that knows '/' alone turns every '\' just before its
// call.
#ifndef KOVADX_PLATFORM_OS_FILE_H
#define KOVADX_PLATFORM_OS_FILE_H

#include <cstddef>
#include <cstdio>
#include <string>

#include "platform/os/error.h"

namespace kova::os {

// The path as this platform's own calls take it.
std::string NativePath(const std::string& path);

// Opens a standard stream ("rt", "w", "a+", ...), closed in child processes. Other processes may read the file
// meanwhile. Null when it can not be opened; *error (may be null) then tells why.
std::FILE* OpenFile(const std::string& path, const char* mode, Error* error);

// Writes all the bytes to a stream and hands everything that it holds to the system. The error tells what stopped it,
// such as 112 for a full disk; a part of the bytes may be written then.
Error WriteStream(std::FILE* stream, const void* bytes, std::size_t size);

// Returns when the disk holds what was written to the stream, a plain file's, so that a power failure can not take it.
Error SyncStream(std::FILE* stream);

// Gives a plain file another name within its folder, in one step: a file of that name is replaced, and at no time is
// there none. Nothing changes on a failure.
Error MoveFileOver(const std::string& from, const std::string& to);

// True when something of that name is there.
bool FileExists(const std::string& path);

// Deletes a plain file; 2 when there is none. Never follows or deletes anything else.
Error DeletePlainFile(const std::string& path);

// Copies a plain file's bytes into a file of another name, in place of what that holds. 2 when there is no such file.
// Another error than 0 leaves the source whole; what the target then holds, if it is there, is unknown when the device
// failed (112: it is full), and what it held before otherwise. A name of the source itself is refused as a target.
Error CopyPlainFile(const std::string& source, const std::string& target);

// The full path of the running program, and of the module (library or program) that holds an address; empty when
// unknown.
std::string ProgramPath();
std::string ModulePath(const void* address);

}  // namespace kova::os

#endif
