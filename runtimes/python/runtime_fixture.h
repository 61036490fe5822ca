// What the tests of the Python runtime share: the built library, loaded as a host loads it, and the output of its
// blocks.
#ifndef KOVADX_RUNTIMES_PYTHON_RUNTIME_FIXTURE_H
#define KOVADX_RUNTIMES_PYTHON_RUNTIME_FIXTURE_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "platform/os/loader.h"

namespace kova::python {

// The entry points, each looked up by its name. The library stays loaded.
struct Library {
  Library() {
    std::string message;
    os::LibraryHandle handle = nullptr;
    const os::Error error = os::LoadSharedLibrary(KOVA_RUNTIME_DIR "/kovapython", &handle, &message);
    EXPECT_EQ(error, os::kSuccess) << message;
    find(handle, "setup_dxcallback", &setupCallback);
    find(handle, "init_embedded_x", &init);
    find(handle, "execute_x", &execute);
    find(handle, "stop_embedded_x", &stop);
    find(handle, "set_post_kova_output", &setPostOutput);
    find(handle, "pre_action", &preAction);
    find(handle, "post_action", &postAction);
  }

  template <class Function>
  static void find(os::LibraryHandle handle, const char* name, Function* function) {
    void* address = nullptr;
    std::string message;
    EXPECT_EQ(os::FindSymbol(handle, name, &address, &message), os::kSuccess) << message;
    *function = reinterpret_cast<Function>(address);
  }

  void (*setupCallback)(void*) = nullptr;
  int (*init)(int, char**) = nullptr;
  int (*execute)(char*) = nullptr;
  int (*stop)() = nullptr;
  void (*setPostOutput)(int (*)(const char*, int)) = nullptr;
  int (*preAction)() = nullptr;
  int (*postAction)() = nullptr;
};

inline Library& library() {
  static auto* const loaded = new Library;
  return *loaded;
}

// Runs a block of lines.
inline int run(std::string block) { return library().execute(block.data()); }

// What was posted, one entry a call. Written by one thread at a time: the one that runs the innermost block.
inline std::vector<std::string>& posted() {
  static auto* const texts = new std::vector<std::string>;
  return *texts;
}

inline int keep(const char* text, int length) {
  posted().emplace_back(text, static_cast<std::size_t>(length));
  return 0;
}

// A started runtime; stopped at the end of the test.
class PythonRuntime : public ::testing::Test {
 protected:
  PythonRuntime() {
    posted().clear();
    EXPECT_EQ(library().init(0, nullptr), 0);
    EXPECT_EQ(library().preAction(), 0);
    library().setPostOutput(&keep);
  }
  ~PythonRuntime() override { EXPECT_EQ(library().stop(), 0); }

  // All that was posted since the last time.
  static std::string output() {
    std::string all;
    for (const std::string& text : posted()) all += text;
    posted().clear();
    return all;
  }

  // What a block of one expression shows.
  static std::string valueOf(const std::string& expression) {
    EXPECT_EQ(run("print(" + expression + ")\n"), 0);
    return output();
  }
};

// The address of a function of the test, for a block that calls it with ctypes, which lets other threads run meanwhile
// as a call of the client interface does.
inline std::string addressOf(int (*function)(int)) {
  return std::to_string(reinterpret_cast<std::uintptr_t>(function));
}

}  // namespace kova::python

#endif
