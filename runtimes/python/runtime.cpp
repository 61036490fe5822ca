#include "runtimes/python/runtime.h"

#include <cstdio>

#include "runtimes/python/libpython_posix.h"

namespace kova::python {
namespace {

constexpr int kBusy = 170;
constexpr int kNotStarted = 99115;

}  // namespace

Runtime& Runtime::get() {
  static auto* const runtime = new Runtime;
  return *runtime;
}

void Runtime::start(const std::vector<std::string>& arguments) {
  if (ready_) return;
  const std::string problem = setUp();
  if (!problem.empty()) {
    std::fprintf(stderr, "kovapython: Python could not be started: %s\n", problem.c_str());
    return;
  }
  ready_ = onPython([&] { return session_.start(arguments); }) == 0;
}

void Runtime::joinHost() {
  if (!ready_ && !ownsPython_ && isPythonThere()) start({});
}

std::string Runtime::setUp() {
  std::string problem;
  if (!isPythonThere()) {
    showLibpython();
    worker_.start();
    worker_.tryRun([&problem] { problem = startPython(); });
    ownsPython_ = problem.empty();
  }
  if (!problem.empty()) return problem;
  const bool loaded = onPython([this] { return session_.load(ownsPython_) ? 0 : 1; }) == 0;
  return loaded ? problem : "its part of the runtime failed";
}

int Runtime::execute(const char* syntax) {
  if (!ready_) return kNotStarted;
  ++running_;
  const int code = onPython([&] { return session_.run(syntax); });
  --running_;
  return code;
}

int Runtime::stop() {
  if (running_ != 0) return kBusy;
  if (!ready_) return 0;
  ready_ = false;
  return onPython([this] { return session_.stop(); });
}

int Runtime::onPython(const std::function<int()>& work) {
  int result = 0;
  if (ownsPython_ && !hasPythonLock() && worker_.tryRun([&] { result = work(); })) return result;
  return work();
}

}  // namespace kova::python
