// A folder for one test's files, with what tests need to fill it. For tests alone.
#ifndef KOVADX_ENGINE_SCRATCH_FOLDER_H
#define KOVADX_ENGINE_SCRATCH_FOLDER_H

#include <filesystem>
#include <fstream>
#include <string>

#include "platform/os/process.h"

namespace kova::engine {

// Made empty, removed with all it holds.
class ScratchFolder {
 public:
  ScratchFolder()
      : path_(std::filesystem::temp_directory_path() / ("kova_engine_test_" + std::to_string(os::CurrentProcessId()))) {
    std::filesystem::remove_all(path_);
    std::filesystem::create_directories(path_);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  std::string path() const { return path_.string(); }
  std::string path(const std::string& name) const { return path() + "/" + name; }

  void write(const std::string& name, const std::string& bytes) const {
    std::ofstream(path(name), std::ios::binary) << bytes;
  }

 private:
  std::filesystem::path path_;
};

}  // namespace kova::engine

#endif
