#include "report_file.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <utility>

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

bool writeBytes(const std::string& path, const std::string& bytes, std::string* problem) {
  os::Error error = os::kSuccess;
  std::FILE* const file = os::OpenFile(path, "wb", &error);
  if (file == nullptr) {
    *problem = os::ErrorText(error);
    return false;
  }
  const bool isWritten = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  const bool isClosed = std::fclose(file) == 0;
  if (!isWritten || !isClosed) *problem = "the disk may be full";
  return isWritten && isClosed;
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
  const bool isWritten = writeBytes(temporary_, "", problem);
  os::DeletePlainFile(temporary_);
  return isWritten;
}

bool ReportFile::write(const std::string& bytes, std::string* problem) const {
  if (writeBytes(temporary_, bytes, problem)) {
    std::error_code error;
    fs::rename(temporary_, target_, error);
    if (!error) return true;
    *problem = error.message();
  }
  os::DeletePlainFile(temporary_);
  return false;
}

}  // namespace kova::program
