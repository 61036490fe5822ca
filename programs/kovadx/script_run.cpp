#include "script_run.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>

#include "engine/inner_runtime.h"
#include "message/error_codes.h"

namespace kova::program {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kLook{50};     // How often a wait for the script looks for an end request.
constexpr milliseconds kOwnEnd{500};  // How long the script may still take then.
constexpr int kInterrupted = 130;
constexpr int kLargestResult = 255;

// What became of a script: why it was not run, or what it gave.
struct Outcome {
  bool wasRun = false;
  int code = 0;
};

std::string explained(int code) {
  const std::string name = errorName(code);
  const std::string known = name.empty() ? "" : std::string(": ") + errorMeaning(code) + " " + errorAdvice(code);
  return "error " + std::to_string(code) + known;
}

Outcome performRun(engine::InnerRuntime& runtime, const std::vector<std::string>& lines) {
  const int started = runtime.start();
  if (started != 0) return {false, started};
  Outcome outcome;
  outcome.code = runtime.run(lines, &outcome.wasRun);
  runtime.stop();
  return outcome;
}

// Nobody can take the thread from a script that does not end.
[[noreturn]] void leave() {
  printError("the script was ended while it ran");
  std::fflush(stdout);
  std::_Exit(kInterrupted);
}

Outcome waitForScript(std::future<Outcome>& run, const std::atomic<bool>& endRequested) {
  while (run.wait_for(kLook) != std::future_status::ready) {
    if (endRequested && run.wait_for(kOwnEnd) != std::future_status::ready) leave();
  }
  return run.get();
}

}  // namespace

std::optional<int> runScript(const RunOptions& options, const std::string& home, const std::vector<std::string>& lines,
                             engine::Engine* engine, const std::atomic<bool>& endRequested) {
  engine::InnerRuntime runtime(
      options.language, home,
      [engine](const CleXDSmb& request, CleXDSmb& reply, int level) { engine->perform(request, reply, level); },
      [engine](int level) { engine->leave(level); });
  std::future<Outcome> run = std::async(std::launch::async, [&] { return performRun(runtime, lines); });
  const Outcome outcome = waitForScript(run, endRequested);
  if (!outcome.wasRun) {
    printError("can not run the script in " + options.language + ", " + explained(outcome.code));
    return std::nullopt;
  }
  if (outcome.code >= 0 && outcome.code <= kLargestResult) return outcome.code;
  printError("the script ended with " + explained(outcome.code));
  return kOwnFailure;
}

}  // namespace kova::program
