#include "report_file.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <utility>

#include "engine/file_system.h"
#include "platform/os/file.h"
#include "platform/os/process.h"

namespace kova::program {
namespace {

namespace fs = std::filesystem;

constexpr int kMostLinks = 40;

// The file that a link leads to, whether it is there or not; the path itself when it is none.
std::string behindLinks(const std::string& path) {
  std::error_code error;
  fs::path file = os::NativePath(path);
  for (int links = 0; links < kMostLinks && fs::is_symlink(file, error); ++links) {
    const fs::path target = fs::read_symlink(file, error);
    if (error) break;
    file = target.is_absolute() ? target : file.parent_path() / target;
  }
  return file.string();
}

// A report may take an older one's place, or that of an empty file. Anything else was named by mistake.
bool isNoReport(const std::string& path) {
  const std::string start = "<!DOCTYPE html>";
  std::string found(start.size(), '\0');
  std::ifstream file(path, std::ios::binary);
  file.read(found.data(), static_cast<std::streamsize>(found.size()));
  return file.gcount() > 0 && found != start;
}

os::Error writeBytes(engine::FileSystem& files, const std::string& path, const std::string& bytes) {
  std::FILE* file = nullptr;
  os::Error error = files.create(path, &file);
  if (error != os::kSuccess) return error;
  error = files.write(file, bytes);
  const os::Error finished = files.finish(file);
  return error != os::kSuccess ? error : finished;
}

bool isDone(os::Error error, std::string* problem) {
  if (error != os::kSuccess) *problem = os::ErrorText(error);
  return error == os::kSuccess;
}

}  // namespace

ReportFile::ReportFile(std::string path)
    : target_(behindLinks(path)), temporary_(target_ + ".new" + std::to_string(os::CurrentProcessId())) {}

bool ReportFile::check(std::string* problem) const {
  std::error_code ignored;
  if (target_.empty() || (fs::exists(target_, ignored) && !fs::is_regular_file(target_, ignored))) {
    *problem = "it is no plain file";
    return false;
  }
  if (isNoReport(target_)) {
    *problem = "there is a file that is no report";
    return false;
  }
  engine::FileSystem files;
  const os::Error error = writeBytes(files, temporary_, "");
  files.remove(temporary_);
  return isDone(error, problem);
}

bool ReportFile::write(const std::string& bytes, std::string* problem) const {
  engine::FileSystem files;
  os::Error error = writeBytes(files, temporary_, bytes);
  if (error == os::kSuccess) error = files.moveOver(temporary_, target_);
  if (error != os::kSuccess) files.remove(temporary_);
  return isDone(error, problem);
}

}  // namespace kova::program
