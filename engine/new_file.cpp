#include "engine/new_file.h"

#include <utility>

#include "platform/os/process.h"

namespace kova::engine {
namespace {

constexpr os::Error kFileTooLarge = 223;
constexpr os::Error kQuotaUsedUp = 1295;

bool isFullDisk(os::Error error) { return error == os::kDiskFull || error == kQuotaUsedUp || error == kFileTooLarge; }

std::string reasonOf(os::Error error) {
  const std::string text = os::ErrorText(error);
  return text.empty() ? "error " + std::to_string(error) : text;
}

}  // namespace

NewFile::NewFile(std::string path, FileSystem& files)
    : path_(std::move(path)), temporary_(path_ + ".new" + std::to_string(os::CurrentProcessId())), files_(files) {
  check(files_.create(temporary_, &file_), "made");
}

NewFile::~NewFile() {
  if (file_ != nullptr) files_.finish(file_);
  if (!isInPlace_) files_.remove(temporary_);
}

void NewFile::write(std::string_view bytes) { check(files_.write(file_, bytes), "written"); }

void NewFile::finish() { check(files_.finish(std::exchange(file_, nullptr)), "written"); }

void NewFile::putInPlace() {
  check(files_.moveOver(temporary_, path_), "put in its place");
  isInPlace_ = true;
}

void NewFile::takeBack() { files_.remove(path_); }

void NewFile::check(os::Error error, const char* step) const {
  if (error == os::kSuccess) return;
  const bool isFull = isFullDisk(error);
  throw SaveProblem(isFull ? ErrorCode::kDiskFull : ErrorCode::kDataFileNotWritable,
                    path_ + " can not be " + step + " (" + reasonOf(error) + "); " +
                        (isFull ? "free some room, or choose another folder"
                                : "check that its folder is there and that files may be made in it"));
}

}  // namespace kova::engine
