// What is wrong with a data file, as one line: the file, the row and column, what was expected there and what was
// found.
#ifndef KOVADX_ENGINE_DATA_PROBLEM_H
#define KOVADX_ENGINE_DATA_PROBLEM_H

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kova::engine {

// Thrown by the readers of data files; it never leaves readDataPackage. what() is the line.
class DataProblem : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A place in a file. Rows and columns count from 1; a row of 0 stands for the whole file. `part` names the place in the
// file's own words (a heading, a property) and may be empty.
struct FilePlace {
  std::string file;
  std::size_t row = 0;
  std::size_t column = 0;
  std::string part{};
};

// "<file>, row <r>, column <c> (<part>): expected <expected>, found <found>"; without "found" when that is empty. One
// line: control characters become '?'.
std::string problemLine(const FilePlace& place, std::string_view expected, std::string_view found);

// The text in quotes on one line: control characters become '?', what exceeds 40 bytes is cut and replaced by "...".
// "nothing" for an empty text.
std::string quotedText(std::string_view text);

}  // namespace kova::engine

#endif
