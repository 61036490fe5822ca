#include "monitor_command.h"

#include <cstdio>
#include <ctime>
#include <string>

#include "platform/os/clock.h"
#include "platform/os/event.h"
#include "platform/os/process.h"
#include "suite_view.h"

namespace kova::program {
namespace {

constexpr std::uint32_t kPeriodMs = 1000;

// Set when the user asks to end. Lives as long as the process: the handler may be at work at any time.
os::EventHandle endRequest = nullptr;

std::string clockText() {
  const std::tm now = os::LocalTime();
  char text[16];
  return std::string(text, std::strftime(text, sizeof text, "%H:%M:%S ", &now));
}

bool print(const std::string& line) {
  const bool isWritten = std::fprintf(stdout, "%s\n", line.c_str()) > 0;
  return std::fflush(stdout) == 0 && isWritten;
}

int reportNotStarted(const MonitorOptions& options, os::Error error) {
  if (error == os::kPipeBusy) {
    printError("somebody else looks at " + options.name + " already; end the other kovadx monitor");
  } else {
    printError("can not listen to the monitors of " + options.name + " (" + os::ErrorText(error) + ")");
  }
  return kOwnFailure;
}

}  // namespace

int monitorCommand(const MonitorOptions& options) {
  SuiteView view(options.name);
  os::Error error = os::CreateEventObject(true, false, nullptr, &endRequest);
  if (error == os::kSuccess) error = view.start();
  if (error != os::kSuccess) return reportNotStarted(options, error);
  os::SetEndRequestHandler([] { os::SetEventObject(endRequest); });
  for (unsigned done = 0; options.count == 0 || done < options.count; ++done) {
    // The end of the pause, not the user, is what goes on.
    if (done > 0 && os::WaitEventObject(endRequest, kPeriodMs) != os::kWaitTimeout) break;
    if (print(clockText() + view.state())) continue;
    printError("the state could not be written to the standard output");
    return kOwnFailure;
  }
  return 0;
}

}  // namespace kova::program
