// A runtime library behind the fake loader, for tests of what hosts it: its entry points note what they are asked and
// answer what the test tells.
//
// One for the process; reset() before each test. The entry points may be called on any thread, one at a time.
#ifndef KOVADX_TESTS_HOST_FAKE_RUNTIME_H
#define KOVADX_TESTS_HOST_FAKE_RUNTIME_H

#include <functional>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

#include "tests/os_fake/os_fake.h"

namespace kova {

struct FakeRuntime {
  std::vector<std::string> asked;      // "init a b", "execute <text>", "stop", "pre", "post", "callback", "output".
  std::map<std::string, int> answers;  // By the first word; 0 without an entry.
  std::function<void()> whileExecuting;
  std::function<void()> onLoad;
  void* callback = nullptr;
  int (*output)(const char*, int) = nullptr;

  int note(const std::string& text) {
    asked.push_back(text);
    return answers[text.substr(0, text.find(' '))];
  }
};

inline FakeRuntime& fakeRuntime() {
  static FakeRuntime runtime;
  return runtime;
}

namespace entry_points {

inline int init(int argc, char** argv) {
  std::string text = "init";
  for (int i = 0; i < argc; ++i) text.append(" ").append(argv[i]);
  return fakeRuntime().note(text);
}
inline int execute(char* syntax) {
  const int code = fakeRuntime().note("execute " + std::string(syntax));
  if (fakeRuntime().whileExecuting) fakeRuntime().whileExecuting();
  *syntax = '\0';  // It may.
  return code;
}
inline int stop() { return fakeRuntime().note("stop"); }
inline int pre() { return fakeRuntime().note("pre"); }
inline int post() { return fakeRuntime().note("post"); }
inline void callback(void* table) {
  fakeRuntime().note("callback");
  fakeRuntime().callback = table;
}
inline void output(int (*function)(const char*, int)) {
  fakeRuntime().note("output");
  fakeRuntime().output = function;
}

}  // namespace entry_points

// Makes the runtime anew and registers its library under that path, without the entry points that are named.
inline void provideFakeRuntime(const std::string& path, std::initializer_list<const char*> lacks = {}) {
  fakeRuntime() = FakeRuntime();
  fake::Library library;
  library.symbols = {
      {"setup_dxcallback", reinterpret_cast<void*>(&entry_points::callback)},
      {"init_embedded_x", reinterpret_cast<void*>(&entry_points::init)},
      {"execute_x", reinterpret_cast<void*>(&entry_points::execute)},
      {"stop_embedded_x", reinterpret_cast<void*>(&entry_points::stop)},
      {"set_post_kova_output", reinterpret_cast<void*>(&entry_points::output)},
      {"pre_action", reinterpret_cast<void*>(&entry_points::pre)},
      {"post_action", reinterpret_cast<void*>(&entry_points::post)},
  };
  for (const char* name : lacks) library.symbols.erase(name);
  library.onLoad = [] {
    if (fakeRuntime().onLoad) fakeRuntime().onLoad();
  };
  fake::registerLibrary(path, library);
}

}  // namespace kova

#endif
