#include "platform/os/file.h"

#include <dlfcn.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <system_error>

#include "platform/posix/error_posix.h"

namespace kova::os {
namespace {

// 't' is no mode letter here; 'e' closes the descriptor in child processes from its birth.
std::string nativeMode(const char* mode) {
  std::string result = mode;
  std::erase(result, 't');
  return result + 'e';
}

std::string resolved(const char* path) {
  const std::unique_ptr<char, decltype(&std::free)> full(realpath(path, nullptr), &std::free);
  return full ? full.get() : std::string();
}

// A stream that is not open for writing fails without a number.
Error errorOfStream() { return errno == 0 ? kGeneralFailure : lastError(); }

}  // namespace

std::string NativePath(const std::string& path) {
  std::string result = path;
  std::replace(result.begin(), result.end(), '\\', '/');
  return result;
}

std::FILE* OpenFile(const std::string& path, const char* mode, Error* error) {
  std::FILE* file = std::fopen(NativePath(path).c_str(), nativeMode(mode).c_str());
  if (file == nullptr && error != nullptr) *error = lastError();
  return file;
}

Error WriteStream(std::FILE* stream, const void* bytes, std::size_t size) {
  errno = 0;
  const bool isWritten = std::fwrite(bytes, 1, size, stream) == size && std::fflush(stream) == 0;
  return isWritten ? kSuccess : errorOfStream();
}

Error SyncStream(std::FILE* stream) {
  errno = 0;
  const bool isSynced = std::fflush(stream) == 0 && fsync(fileno(stream)) == 0;
  return isSynced ? kSuccess : errorOfStream();
}

Error MoveFileOver(const std::string& from, const std::string& to) {
  return orNoMemory(
      [&] { return std::rename(NativePath(from).c_str(), NativePath(to).c_str()) == 0 ? kSuccess : lastError(); });
}

bool FileExists(const std::string& path) { return access(NativePath(path).c_str(), F_OK) == 0; }

Error DeletePlainFile(const std::string& path) {
  return orNoMemory([&] {
    const std::string native = NativePath(path);
    struct stat status = {};
    if (lstat(native.c_str(), &status) != 0) return lastError();
    if (!S_ISREG(status.st_mode)) return kAccessDenied;
    return unlink(native.c_str()) == 0 ? kSuccess : lastError();
  });
}

Error CopyPlainFile(const std::string& source, const std::string& target) {
  return orNoMemory([&] {
    std::error_code code;
    std::filesystem::copy_file(NativePath(source), NativePath(target),
                               std::filesystem::copy_options::overwrite_existing, code);
    return errorOfErrno(code.value());
  });
}

std::string ProgramPath() {
  char path[PATH_MAX];
  const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
  return length > 0 ? std::string(path, static_cast<std::size_t>(length)) : std::string();
}

std::string ModulePath(const void* address) {
  Dl_info info = {};
  void* map = nullptr;
  if (dladdr1(address, &info, &map, RTLD_DL_LINKMAP) == 0 || map == nullptr) return {};
  // The program itself has no name in the linker's list; dli_fname would be what it was called as, relative to a folder
  // that may have changed since.
  const char* name = static_cast<const link_map*>(map)->l_name;
  return *name == '\0' ? ProgramPath() : resolved(name);
}

}  // namespace kova::os
