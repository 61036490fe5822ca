// Text files read whole, and what the readers of data files need to know about text.
#ifndef KOVADX_ENGINE_TEXT_FILE_H
#define KOVADX_ENGINE_TEXT_FILE_H

#include <cstddef>
#include <string>
#include <string_view>

namespace kova::engine {

// The file's bytes, less a byte order mark of UTF-8 at its start. Throws DataProblem when it can not be read or is no
// plain file.
std::string readTextFile(const std::string& path);

// The offset of the first byte that is not UTF-8, or npos when all of it is.
std::size_t findInvalidUtf8(std::string_view text);

struct RowAndColumn {
  std::size_t row;     // 1 for the first line.
  std::size_t column;  // 1 for a line's first byte.
};

// Where the byte at the offset stands.
RowAndColumn positionOf(std::string_view text, std::size_t offset);

// The part of a path up to and including its last separator ('/' or '\'); empty when it has none.
std::string folderOf(const std::string& path);

}  // namespace kova::engine

#endif
