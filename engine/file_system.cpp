#include "engine/file_system.h"

#include "platform/os/file.h"

namespace kova::engine {

os::Error FileSystem::create(const std::string& path, std::FILE** file) {
  os::Error error = os::kSuccess;
  *file = os::OpenFile(path, "wb", &error);
  return *file == nullptr ? error : os::kSuccess;
}

os::Error FileSystem::write(std::FILE* file, std::string_view bytes) {
  return os::WriteStream(file, bytes.data(), bytes.size());
}

os::Error FileSystem::finish(std::FILE* file) {
  const os::Error error = os::SyncStream(file);
  const bool isClosed = std::fclose(file) == 0;
  return error == os::kSuccess && !isClosed ? os::kGeneralFailure : error;
}

os::Error FileSystem::moveOver(const std::string& from, const std::string& to) { return os::MoveFileOver(from, to); }

void FileSystem::remove(const std::string& path) { os::DeletePlainFile(path); }

}  // namespace kova::engine
