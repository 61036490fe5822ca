// For tests: a pipe folder of a test's own.
#ifndef KOVADX_TESTS_KIT_PIPE_FOLDER_SCOPE_POSIX_H
#define KOVADX_TESTS_KIT_PIPE_FOLDER_SCOPE_POSIX_H

#include <cstdlib>
#include <filesystem>
#include <string>

#include "platform/os/environment.h"
#include "platform/posix/pipe_address_posix.h"
#include "tests/kit/kit.h"

namespace kova::os {

// Sets the variables that lead to the pipe folder for a scope, and keeps a place below which a test makes its folders.
class PipeFolderScope {
 public:
  PipeFolderScope()
      : chosen_(GetEnvironment("KOVA_PIPE_DIR").value_or("")),
        runtime_(GetEnvironment("XDG_RUNTIME_DIR").value_or("")),
        place_(kit::scratchPath("pipes")) {
    std::filesystem::create_directory(place_);
    use(folder());
  }
  PipeFolderScope(const PipeFolderScope&) = delete;
  PipeFolderScope& operator=(const PipeFolderScope&) = delete;
  ~PipeFolderScope() {
    use(chosen_, runtime_);
    std::filesystem::remove_all(place_);
  }

  std::string place() const { return place_; }
  std::string folder() const { return place_ + "/own"; }
  void use(const std::string& chosen, const std::string& runtime = "") {
    SetEnvironment("KOVA_PIPE_DIR", chosen);
    SetEnvironment("XDG_RUNTIME_DIR", runtime);
    forgetPipeFolder();
  }

 private:
  std::string chosen_;
  std::string runtime_;
  std::string place_;
};

}  // namespace kova::os

#endif
