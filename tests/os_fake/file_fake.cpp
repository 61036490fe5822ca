// Files are the machine's own, since a standard stream can not lie in memory on every platform; their calls are counted
// and fail as scripted like all others.
#include "platform/os/file.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include "tests/os_fake/fake_kernel.h"
#include "tests/os_fake/os_fake.h"

namespace kova::os {

using fake::Call;

namespace {

struct Paths {
  std::string program = "/fake/program.exe";
  std::string module = "/fake/module";
  bool holdsCopies = false;
};

Paths& paths() {
  static Paths* const thePaths = new Paths;
  return *thePaths;
}

Error errorOfOpen(int number) {
  if (number == ENOENT) return kFileNotFound;
  if (number == EACCES || number == EISDIR || number == EPERM) return kAccessDenied;
  return kGeneralFailure;
}

}  // namespace

std::string NativePath(const std::string& path) {
  std::string native = path;
  std::replace(native.begin(), native.end(), '\\', '/');
  return native;
}

std::FILE* OpenFile(const std::string& path, const char* mode, Error* error) {
  const Call call("OpenFile", path.c_str());
  if (call.failure()) {
    if (error) *error = *call.failure();
    return nullptr;
  }
  std::FILE* const file = std::fopen(NativePath(path).c_str(), mode);
  if (!file && error) *error = errorOfOpen(errno);
  return file;
}

Error WriteStream(std::FILE* stream, const void* bytes, std::size_t size) {
  const Call call("WriteStream");
  if (call.failure()) return *call.failure();
  return std::fwrite(bytes, 1, size, stream) == size && std::fflush(stream) == 0 ? kSuccess : kGeneralFailure;
}

Error SyncStream(std::FILE* stream) {
  const Call call("SyncStream");
  if (call.failure()) return *call.failure();
  return std::fflush(stream) == 0 ? kSuccess : kGeneralFailure;
}

Error MoveFileOver(const std::string& from, const std::string& to) {
  const Call call("MoveFileOver", from.c_str());
  if (call.failure()) return *call.failure();
  std::error_code error;
  std::filesystem::rename(NativePath(from), NativePath(to), error);
  if (!error) return kSuccess;
  return error == std::errc::no_such_file_or_directory ? kFileNotFound : kAccessDenied;
}

bool FileExists(const std::string& path) {
  const Call call("FileExists", path.c_str());
  std::error_code ignored;
  return !call.failure() && !path.empty() && std::filesystem::exists(NativePath(path), ignored);
}

Error DeletePlainFile(const std::string& path) {
  const Call call("DeletePlainFile", path.c_str());
  if (call.failure()) return *call.failure();
  std::error_code ignored;
  const std::string native = NativePath(path);
  const std::filesystem::file_status status = std::filesystem::symlink_status(native, ignored);
  if (!std::filesystem::exists(status)) return kFileNotFound;
  if (!std::filesystem::is_regular_file(status)) return kAccessDenied;
  return std::filesystem::remove(native, ignored) ? kSuccess : kAccessDenied;
}

Error CopyPlainFile(const std::string& source, const std::string& target) {
  Call call("CopyPlainFile", source.c_str());
  if (call.failure()) return *call.failure();
  call.wait([] { return !paths().holdsCopies; });
  std::error_code code;
  const std::string native = NativePath(source);
  const std::string copy = NativePath(target);
  if (!std::filesystem::exists(native, code)) return kFileNotFound;
  if (std::filesystem::equivalent(native, copy, code)) return kGeneralFailure;
  // The compiler's library for Windows can not copy over a file that is there.
  if (std::filesystem::is_regular_file(copy, code)) std::filesystem::remove(copy, code);
  std::filesystem::copy_file(native, copy, code);
  return code ? kGeneralFailure : kSuccess;
}

std::string ProgramPath() {
  const Call call("ProgramPath");
  return call.failure() ? std::string() : paths().program;
}

std::string ModulePath(const void* address) {
  const Call call("ModulePath");
  return call.failure() || !address ? std::string() : paths().module;
}

}  // namespace kova::os

namespace kova::fake {

void resetFiles() { os::paths() = os::Paths{}; }

void setProgramPath(const std::string& path) {
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  os::paths().program = path;
}

void holdCopies(bool hold) {
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  os::paths().holdsCopies = hold;
  Call::notify();
}

void setModulePath(const std::string& path) {
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  os::paths().module = path;
}

}  // namespace kova::fake
