// A file that is written beside its place and put there when it is whole.
#ifndef KOVADX_ENGINE_NEW_FILE_H
#define KOVADX_ENGINE_NEW_FILE_H

#include <stdexcept>
#include <string>
#include <string_view>

#include "engine/error_codes.h"
#include "engine/file_system.h"

namespace kova::engine {

// Thrown when a data set can not be saved. what() is one line: the file, what happened, what to do.
class SaveProblem : public std::runtime_error {
 public:
  SaveProblem(ErrorCode code, const std::string& line) : std::runtime_error(line), code_(code) {}
  ErrorCode code() const { return code_; }

 private:
  ErrorCode code_;
};

// Made by whoever writes the file; the file system must outlive it. What was not put in place is removed with it. Its
// operations throw SaveProblem; whatever stood in the place is unharmed then.
class NewFile {
 public:
  NewFile(std::string path, FileSystem& files);
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  ~NewFile();

  void write(std::string_view bytes);

  // To be called when all is written.
  void finish();
  void putInPlace();

  // Removes the file from its place, where none was before.
  void takeBack();

 private:
  void check(os::Error error, const char* step) const;

  std::string path_;
  std::string temporary_;  // In the same folder, so that putting it in place is one step.
  FileSystem& files_;
  std::FILE* file_ = nullptr;  // Null when it is closed.
  bool isInPlace_ = false;
};

}  // namespace kova::engine

#endif
