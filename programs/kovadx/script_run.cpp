#include "script_run.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <memory>

#include "engine/inner_runtime.h"
#include "engine/outer_runtime.h"
#include "engine/text_rules.h"
#include "host/OutpStatisticsX.h"
#include "message/error_codes.h"
#include "platform/os/error.h"
#include "platform/os/file.h"
#include "script_job.h"
#include "transport/KovaPipe.h"

namespace kova::program {
namespace {

using engine::ChildEnd;
using engine::HostedRuntime;
using engine::InnerRuntime;
using engine::OuterRuntime;
using std::chrono::milliseconds;

constexpr milliseconds kLook{50};     // How often a wait for the script looks for an end request.
constexpr milliseconds kOwnEnd{500};  // How long the script may still take then.
constexpr int kInterrupted = 130;
constexpr int kLargestResult = 255;

constexpr unsigned kDyingMs = 500;

constexpr int kSignalBase = 128;
constexpr int kLargestSignal = 64;

// What became of a script: why it was not run, or what it gave; and what of its runtime's process, when it has one.
struct Outcome {
  bool wasRun = false;
  int code = 0;
  bool endedEarly = false;  // The process, before it was told to.
  ChildEnd child;
};

std::string explained(int code) {
  const std::string name = errorName(code);
  const std::string known = name.empty() ? "" : std::string(": ") + errorMeaning(code) + " " + errorAdvice(code);
  return "error " + std::to_string(code) + known;
}

bool isSignal(int exitCode) { return exitCode > kSignalBase && exitCode <= kSignalBase + kLargestSignal; }

std::string endOf(int exitCode) {
  return isSignal(exitCode) ? "was ended by signal " + std::to_string(exitCode - kSignalBase)
                            : "ended with exit code " + std::to_string(exitCode);
}

// What R's console has shown last stands in nobody's output yet. Where a return belongs to a line's end, the standard
// error stream puts one there by itself.
void printLastOutput(std::string output) {
  if (output.empty()) return;
  for (std::size_t at = 0; (at = output.find("\r\n", at)) != std::string::npos;) output.erase(at, 1);
  std::fwrite(output.data(), 1, output.size(), stderr);
  if (output.back() != '\n') std::fputc('\n', stderr);
  std::fflush(stderr);
}

// Whether the runtime's process has ended in the run. One that is about to is waited for: its pipes have broken by
// then.
bool hasEnded(OuterRuntime& runtime, int code) {
  const bool isLost = code == static_cast<int>(os::kBrokenPipe) || code == kPipeFailed;
  return runtime.childEnd(isLost ? kDyingMs : 0).exitCode.has_value();
}

Outcome performRun(HostedRuntime& runtime, OuterRuntime* outer, const std::vector<std::string>& lines) {
  Outcome outcome;
  outcome.code = runtime.start();
  if (outcome.code == 0) {
    outcome.code = runtime.run(lines, &outcome.wasRun);
    if (outer != nullptr) outcome.endedEarly = hasEnded(*outer, outcome.code);
    runtime.stop();
  }
  if (outer != nullptr) outcome.child = outer->childEnd();
  return outcome;
}

// Nobody can take the thread from a script that does not end. startx sees this end and ends with what it has started,
// and gives the script a moment; R and Java would leave that behind.
[[noreturn]] void leave(const RunOptions& options) {
  printError("the script was ended while it ran");
  std::fflush(stdout);
  if (runsAsChild(options) && endsWithResult(options)) OutpStatisticsX::terminateChildren();
  std::_Exit(kInterrupted);
}

Outcome waitForScript(const RunOptions& options, std::future<Outcome>& run, const std::atomic<bool>& endRequested) {
  while (run.wait_for(kLook) != std::future_status::ready) {
    if (endRequested && run.wait_for(kOwnEnd) != std::future_status::ready) leave(options);
  }
  return run.get();
}

std::unique_ptr<HostedRuntime> makeRuntime(const RunOptions& options, const std::string& home, engine::Engine* engine) {
  const auto perform = [engine](const CleXDSmb& request, CleXDSmb& reply, int level) {
    engine->perform(request, reply, level);
  };
  const auto leaveEngine = [engine](int level) { engine->leave(level); };
  if (runsAsChild(options)) return std::make_unique<OuterRuntime>(options.language, perform, leaveEngine);
  return std::make_unique<InnerRuntime>(options.language, home, perform, leaveEngine);
}

std::nullopt_t tellNotRun(const RunOptions& options, const Outcome& outcome) {
  std::string line = "can not run the script in " + options.language + ", " + explained(outcome.code);
  if (outcome.child.exitCode) {
    line += " Its process " + endOf(*outcome.child.exitCode) + ".";
  } else if (!outcome.child.program.empty()) {
    line += " Its program is " + outcome.child.program +
            (os::FileExists(outcome.child.program) ? "." : ", which is not there.");
  }
  printError(line);
  printLastOutput(outcome.child.lastOutput);
  return std::nullopt;
}

// A process that ends by itself in the middle: R may have been told to by the script, others have been killed or have
// left without a word.
int tellEarlyEnd(const RunOptions& options, const Outcome& outcome) {
  const int exitCode = *outcome.child.exitCode;
  if (!endsWithResult(options) || isSignal(exitCode)) {
    printError("the script was cut short: its process " + endOf(exitCode));
    printLastOutput(outcome.child.lastOutput);
  }
  return exitCode == 0 && !endsWithResult(options) ? kOwnFailure : exitCode;
}

// A process that tells its result over the pipes has nothing to end with but 0.
void tellBadStop(const RunOptions& options, const Outcome& outcome) {
  const int exitCode = outcome.child.exitCode.value_or(0);
  if (exitCode == 0 || (endsWithResult(options) && !isSignal(exitCode))) return;
  printError("the script has ended, but its process " + endOf(exitCode) + " when it was stopped");
}

int resultOf(const RunOptions& options, const Outcome& outcome) {
  if (outcome.endedEarly) return tellEarlyEnd(options, outcome);
  tellBadStop(options, outcome);
  const bool isChilds = outcome.code == 0 && endsWithResult(options) && outcome.child.exitCode;
  const int code = isChilds ? *outcome.child.exitCode : outcome.code;
  if (code >= 0 && code <= kLargestResult) return code;
  printError("the script ended with " + explained(code));
  return kOwnFailure;
}

}  // namespace

std::optional<int> runScript(const RunOptions& options, const std::string& home, const std::vector<std::string>& lines,
                             engine::Engine* engine, const std::atomic<bool>& endRequested) {
  const std::unique_ptr<HostedRuntime> runtime = makeRuntime(options, home, engine);
  fillJavaRecord(options);
  engine->onBlock([&](const std::string& language, const std::vector<std::string>& block) {
    const bool isOwn = engine::sameName(language, options.language);
    return isOwn ? runtime->run(block) : static_cast<int>(ErrorCode::kLanguageNotSupported);
  });
  auto* const outer = dynamic_cast<OuterRuntime*>(runtime.get());
  std::future<Outcome> run = std::async(std::launch::async, [&] { return performRun(*runtime, outer, lines); });
  const Outcome outcome = waitForScript(options, run, endRequested);
  engine->onBlock({});
  if (!outcome.wasRun) return tellNotRun(options, outcome);
  return resultOf(options, outcome);
}

}  // namespace kova::program
