#include "platform/os/file.h"

#include <io.h>
#include <share.h>

#include <cstdlib>

#include "platform/win32/system_win32.h"

namespace kova::os {
namespace {

constexpr std::size_t kLongestPath = 32768;

bool isSeparator(char c) { return c == '\\' || c == '/'; }

// A name of the device namespace (\\.\...) is no file. To ask the system about one would open it, and for a pipe that
// takes a server end up.
bool isDeviceName(const std::string& path) {
  return path.size() > 3 && isSeparator(path[0]) && isSeparator(path[1]) && path[2] == '.' && isSeparator(path[3]);
}

std::string pathOfModule(HMODULE module) {
  std::string path(kLongestPath, '\0');
  path.resize(GetModuleFileNameA(module, path.data(), static_cast<DWORD>(path.size())));
  return path;
}

// Why the C library could not open or write a file.
Error errorOfStream() { return _doserrno == 0 ? kGeneralFailure : static_cast<Error>(_doserrno); }

}  // namespace

std::string NativePath(const std::string& path) { return path; }

std::FILE* OpenFile(const std::string& path, const char* mode, Error* error) {
  _doserrno = 0;
  std::FILE* const file = _fsopen(path.c_str(), mode, _SH_DENYNO);
  if (file == nullptr) {
    if (error != nullptr) *error = errorOfStream();
    return nullptr;
  }
  SetHandleInformation(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file))), HANDLE_FLAG_INHERIT, 0);
  return file;
}

Error WriteStream(std::FILE* stream, const void* bytes, std::size_t size) {
  _doserrno = 0;
  const bool isWritten = std::fwrite(bytes, 1, size, stream) == size && std::fflush(stream) == 0;
  return isWritten ? kSuccess : errorOfStream();
}

Error SyncStream(std::FILE* stream) {
  _doserrno = 0;
  if (std::fflush(stream) != 0) return errorOfStream();
  return resultOf(FlushFileBuffers(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)))));
}

Error MoveFileOver(const std::string& from, const std::string& to) {
  return resultOf(MoveFileExA(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
}

bool FileExists(const std::string& path) {
  return !isDeviceName(path) && GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

Error DeletePlainFile(const std::string& path) {
  if (isDeviceName(path)) return kFileNotFound;
  const DWORD attributes = GetFileAttributesA(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return lastError() == ERROR_PATH_NOT_FOUND ? kFileNotFound : lastError();
  if ((attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT)) != 0) return kAccessDenied;
  return resultOf(DeleteFileA(path.c_str()));
}

Error CopyPlainFile(const std::string& source, const std::string& target) {
  if (isDeviceName(source) || isDeviceName(target)) return kFileNotFound;
  const Error error = resultOf(CopyFileA(source.c_str(), target.c_str(), FALSE));
  return error == ERROR_PATH_NOT_FOUND ? kFileNotFound : error;
}

std::string ProgramPath() { return pathOfModule(nullptr); }

std::string ModulePath(const void* address) {
  HMODULE module = nullptr;
  const DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  const bool found = GetModuleHandleExA(flags, static_cast<const char*>(address), &module) != 0;
  return found && address != nullptr ? pathOfModule(module) : std::string();
}

}  // namespace kova::os
