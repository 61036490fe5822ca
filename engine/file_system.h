// What the writing of a data file asks of the file system. Every step may fail, and none of them throws.
//
// The program's own goes to the system. A test derives one that fails where it is told to. One thread at a time uses
// it.
#ifndef KOVADX_ENGINE_FILE_SYSTEM_H
#define KOVADX_ENGINE_FILE_SYSTEM_H

#include <cstdio>
#include <string>
#include <string_view>

#include "platform/os/error.h"

namespace kova::engine {

class FileSystem {
 public:
  FileSystem() = default;
  FileSystem(const FileSystem&) = delete;
  FileSystem& operator=(const FileSystem&) = delete;
  virtual ~FileSystem() = default;

  // Makes an empty file, in the place of one of that name.
  virtual os::Error create(const std::string& path, std::FILE** file);

  virtual os::Error write(std::FILE* file, std::string_view bytes);

  // Succeeds when the disk holds the whole file. Closes it in any case.
  virtual os::Error finish(std::FILE* file);

  // Gives a file another name, in one step, whether there is one of that name or not.
  virtual os::Error moveOver(const std::string& from, const std::string& to);

  virtual void remove(const std::string& path);
};

}  // namespace kova::engine

#endif
