// Sees to it that a program does not outlive the process that has started it, whatever it is doing.
#ifndef KOVADX_PROGRAMS_COMMON_PARENT_GUARD_H
#define KOVADX_PROGRAMS_COMMON_PARENT_GUARD_H

#include <string>
#include <thread>

#include "platform/os/process_watch.h"

namespace kova::program {

// Tells on the error stream, in one line, that and why this process ends with all that it has started. Nobody needs to
// read it.
void tellEnd(const std::string& why);

// Tells so, and ends this process with all that it has started. Any thread; of those that call at the same time one
// tells.
[[noreturn]] void endWithChildren(const std::string& why);

// Watches the process that has started this one, on a thread of its own, and has this one end when that one has ended.
// The program's main function owns it.
class ParentGuard {
 public:
  // `why` begins with this program's name and names the other one. `end` is called on the guard's thread and may
  // return.
  explicit ParentGuard(const std::string& why, void (*end)(const std::string& why) = &endWithChildren);
  ParentGuard(const ParentGuard&) = delete;
  ParentGuard& operator=(const ParentGuard&) = delete;
  ~ParentGuard();

 private:
  os::ProcessWatch parent_;
  std::thread thread_;
};

}  // namespace kova::program

#endif
