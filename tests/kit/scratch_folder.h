// A folder of a test's own, removed with all it holds when the object ends.
#ifndef KOVADX_TESTS_KIT_SCRATCH_FOLDER_H
#define KOVADX_TESTS_KIT_SCRATCH_FOLDER_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <system_error>

namespace kova::kit {

class ScratchFolder {
 public:
  ScratchFolder() {
    std::random_device random;
    do {
      folder_ = std::filesystem::temp_directory_path() / ("kova_scratch_" + std::to_string(random()));
    } while (!std::filesystem::create_directory(folder_));
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

  std::string path() const { return folder_.string(); }
  std::string path(const std::string& name) const { return (folder_ / name).string(); }

  // Writes a file byte for byte and gives its path.
  std::string write(const std::string& name, const std::string& content) const {
    std::ofstream file(folder_ / name, std::ios::binary);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    return path(name);
  }

  // A file's bytes; empty when there is none.
  std::string read(const std::string& name) const {
    std::ifstream file(folder_ / name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  }

  bool has(const std::string& name) const { return std::filesystem::exists(folder_ / name); }

 private:
  std::filesystem::path folder_;
};

}  // namespace kova::kit

#endif
