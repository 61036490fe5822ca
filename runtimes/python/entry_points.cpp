// The seven entry points of the Python runtime.
#include <kovadx_runtime.h>

#include <exception>

#include "runtimes/python/runtime.h"

using kova::python::Runtime;

namespace {

constexpr int kNotEnoughMemory = 8;
constexpr int kSetUpFailed = 1;

// What ends here is a system that has no memory or no thread left.
template <class Body>
int guarded(Body body) noexcept {
  try {
    return body();
  } catch (const std::exception&) {
    return kNotEnoughMemory;
  }
}

}  // namespace

// The runtime calls nothing of the table: scripts load the library and call its functions by name.
void setup_dxcallback(void*) {}

// Deliberate: a Python that could not be set up is told by pre_action alone, whose 1 has a code of its own to the host.
int init_embedded_x(int argc, char** argv) {
  return guarded([&] {
    Runtime::get().start(std::vector<std::string>(argv, argv + argc));
    return 0;
  });
}

int execute_x(char* syntax) {
  return guarded([&] { return Runtime::get().execute(syntax); });
}

int stop_embedded_x(void) {
  return guarded([] { return Runtime::get().stop(); });
}

void set_post_kova_output(int (*post)(const char* text, int length)) { kova::python::setOutput(post); }

int pre_action(void) {
  return guarded([] {
    Runtime::get().joinHost();
    return Runtime::get().isReady() ? 0 : kSetUpFailed;
  });
}

int post_action(void) { return 0; }
