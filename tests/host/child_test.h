// What tests of a host with a process of its own share: the engine's side of the process-wide state, and the records
// that the host itself has traced.
#ifndef KOVADX_TESTS_HOST_CHILD_TEST_H
#define KOVADX_TESTS_HOST_CHILD_TEST_H

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <string>
#include <vector>

#include "api/InitDxGlobal.h"
#include "config/XConfigOptions.h"
#include "config/process_values.h"
#include "host/DriveX.h"
#include "host/OutpStatisticsX.h"
#include "host/XManager.h"
#include "tests/transport/traced_test.h"
#include "transport/XPipeManager.h"
#include "transport/XPipeSuit.h"

namespace kova {

// A host whose operations can be called without what the base does before them.
class OpenHost : public OutpStatisticsX {
 public:
  using OutpStatisticsX::OutpStatisticsX;
  using OutpStatisticsX::x_execute_x;
  using OutpStatisticsX::x_init_embedded_x;
  using OutpStatisticsX::x_post_action;
  using OutpStatisticsX::x_pre_action;
  using OutpStatisticsX::x_stop_embedded_x;
};

class ChildTest : public TracedTest {
 protected:
  ChildTest() {
    SetKOVAHOME("C:\\kova");
    InitDxGlobal("T:\\tmp\\", "1a2b", "ENGINE", "");
    Traced();
  }
  ~ChildTest() override { FinalizeDXGlobal(); }

  // Starts the host with those arguments.
  static int start(StatisticsX& host, std::initializer_list<const char*> arguments = {}) {
    std::vector<std::string> texts(arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& text : texts) argv.push_back(text.data());
    argv.push_back(nullptr);
    return host.init_embedded_x(static_cast<int>(texts.size()), argv.data());
  }

  static int execute(StatisticsX& host, const std::string& syntax) {
    std::string text = syntax;
    return host.execute_x(text.data());
  }

  // Begins and ends a level of runs, as an engine does around each.
  static DriveX* raise(const std::string& language, StatisticsX& host, XConfigOptions& options) {
    auto* const runner = new DriveX(language, &host, &options);
    GetXManager()->addKovaDX(runner);
    return runner;
  }
  static void lower(DriveX* runner) { GetXManager()->destoryKovaDX(runner); }

  // What the host has traced since the last call: the child's records, and those of the pipes, are not its own.
  std::vector<std::string> hostsTraces() {
    std::vector<std::string> traced = Traced();
    std::erase_if(traced, [](const std::string& line) {
      const auto beginsWith = [&line](const char* label) { return line.starts_with(label); };
      constexpr const char* kLabels[] = {"StatisticsX::", "stat_",      "start_x_process",
                                         "setup_x_run",   "exit_x_run", "x_execute_x"};
      return std::none_of(std::begin(kLabels), std::end(kLabels), beginsWith);
    });
    return traced;
  }
};

}  // namespace kova

#endif
