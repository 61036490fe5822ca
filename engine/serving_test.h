// An engine that serves a runtime that this process hosts, and what it has shown. For tests alone.
#ifndef KOVADX_ENGINE_SERVING_TEST_H
#define KOVADX_ENGINE_SERVING_TEST_H

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "api/InitDxGlobal.h"
#include "engine/engine.h"
#include "engine/hosted_runtime.h"
#include "platform/os/process.h"

namespace kova::engine {

class ServingTest : public testing::Test {
 protected:
  explicit ServingTest(const std::string& home) {
    char pid[16];
    std::snprintf(pid, sizeof pid, "%04x", static_cast<unsigned>(os::CurrentProcessId()));
    InitDxGlobal(std::filesystem::temp_directory_path().string(), pid, "KOVAENGINE", home);
    engine_.onOutput(
        [this](const std::string& text) { shown_.push_back(text.substr(0, text.find_last_not_of('\n') + 1)); });
  }
  ~ServingTest() override { FinalizeDXGlobal(); }

  // What blocks have shown since the last call.
  std::vector<std::string> Shown() { return std::exchange(shown_, {}); }

  // Submitted syntax goes to the test, everything else to the engine.
  HostedRuntime::Perform Performer() {
    return [this](const CleXDSmb& request, CleXDSmb& reply, int level) {
      if (onSubmit_ && request.GetCommandAction() == Command::Submit) {
        reply.SetErrorCode(onSubmit_(request.Strings()[0]));
      } else {
        engine_.perform(request, reply, level);
      }
    };
  }

  Engine engine_;
  std::function<int(const std::string&)> onSubmit_;
  std::vector<std::string> shown_;
};

}  // namespace kova::engine

#endif
