// What a new process is made of, prepared before the fork: after it only a few system calls are safe.
#ifndef KOVADX_PLATFORM_POSIX_PROGRAM_IMAGE_POSIX_H
#define KOVADX_PLATFORM_POSIX_PROGRAM_IMAGE_POSIX_H

#include <string>
#include <vector>

#include "platform/os/process.h"

namespace kova::os {

// The texts and pointer lists of one execve. Not movable: the lists point into the texts.
class ProgramImage {
 public:
  explicit ProgramImage(const ProcessStart& start);
  ProgramImage(const ProgramImage&) = delete;
  ProgramImage& operator=(const ProgramImage&) = delete;

  // Becomes the program; returns the errno when it can not. Safe between fork and exec.
  int execute() const;

 private:
  std::vector<std::string> places_;  // Where the program may lie, in the order in which it is looked for.
  std::vector<std::string> argumentTexts_;
  std::vector<std::string> environmentTexts_;
  std::vector<char*> arguments_;
  std::vector<char*> environment_;
};

}  // namespace kova::os

#endif
