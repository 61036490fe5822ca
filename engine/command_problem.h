// What is wrong with a command: where in the text, what happened to what, and what to do next.
#ifndef KOVADX_ENGINE_COMMAND_PROBLEM_H
#define KOVADX_ENGINE_COMMAND_PROBLEM_H

#include <cstddef>
#include <exception>
#include <string>
#include <string_view>

#include "engine/error_codes.h"

namespace kova::engine {

// Thrown while commands are read and carried out; it never leaves runCommands.
class CommandProblem : public std::exception {
 public:
  // `offset` is a place in the whole text. Both texts are sentences.
  CommandProblem(ErrorCode code, std::size_t offset, std::string happened, std::string advice);

  // With the sentences that the table of error codes has.
  CommandProblem(ErrorCode code, std::size_t offset);

  const char* what() const noexcept override { return happened_.c_str(); }
  ErrorCode code() const { return code_; }

  // "Error 98011 in line 2, column 9: There is no variable "x". Submit variables; ...". Lines and columns count from 1,
  // columns are characters.
  std::string lineFor(std::string_view text) const;

 private:
  ErrorCode code_;
  std::size_t offset_;
  std::string happened_;
  std::string advice_;
};

}  // namespace kova::engine

#endif
