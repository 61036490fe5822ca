// The engine that driven_runtime_test drives: its submitted text says what happens next. For tests alone.
//
//     run LINE;LINE   runs a block in the driving program; the block's code
//     stop            stops the runtime; its code
//     touch FILE      writes a file: this process's id and a "."
//     work FILE       the same, and never ends
//     die             ends the process in the middle of the call
//
// The setting SHOWN is what blocks have shown since it was asked for last, "|" between the texts; the setting REACHED
// tells whether the last block was given its lines.
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <sstream>
#include <string>
#include <vector>

#include "api/InitDxGlobal.h"
#include "config/process_values.h"
#include "engine/data_package.h"
#include "engine/driven_runtime.h"
#include "engine/engine.h"
#include "platform/os/clock.h"
#include "platform/os/file.h"
#include "platform/os/process.h"
#include "programs/common/parent_guard.h"

namespace {

using kova::Command;

constexpr const char* kRun = "run ";
constexpr const char* kTouch = "touch ";
constexpr const char* kWork = "work ";

// What stands behind the first word.
std::string after(const std::string& text) { return text.substr(text.find(' ') + 1); }

void touch(const std::string& path) { std::ofstream(path) << kova::os::CurrentProcessId() << '.'; }

void goOnForEver() {
  volatile bool goesOn = true;
  while (goesOn) kova::os::YieldThread();
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line, ';');) lines.push_back(line);
  return lines;
}

class Session {
 public:
  explicit Session(const std::string& name)
      : runtime_(
            name, 0, [this](const CleXDSmb& request, CleXDSmb& reply, int level) { perform(request, reply, level); },
            [this](int level) { leave(level); }) {
    engine_.onOutput([this](const std::string& text) { shown_ += text; });
  }

  int run(const std::string& data) {
    kova::engine::DataSet dataSet;
    std::string problem;
    if (!data.empty() && kova::engine::readDataPackage(data, &dataSet, &problem)) engine_.open(std::move(dataSet));
    if (const int code = runtime_.start(); code != 0) return code;
    std::unique_lock lock(mutex_);
    over_.wait(lock, [this] { return isOver_; });
    lock.unlock();
    return runtime_.stop();
  }

 private:
  void perform(const CleXDSmb& request, CleXDSmb& reply, int level) {
    switch (request.GetCommandAction()) {
      case Command::IsXDriven:
        reply.SetLong(1);
        break;
      case Command::StopKova:
        runtime_.endAfterReply();
        break;
      case Command::Submit:
        reply.SetErrorCode(submit(request.Strings()[0]));
        break;
      case Command::GetSetting:
        reply.SetString(setting(request.Strings()[0]));
        break;
      default:
        engine_.perform(request, reply, level);
    }
  }

  int submit(const std::string& text) {
    if (text == "stop") return runtime_.stop();
    if (text == "die") kova::os::EndWithChildren();
    if (text.starts_with(kRun)) return runtime_.run(linesOf(after(text)), &areReached_);
    if (text.starts_with(kTouch) || text.starts_with(kWork)) touch(after(text));
    if (text.starts_with(kWork)) goOnForEver();
    return 0;
  }

  std::string setting(const std::string& item) {
    if (item == "REACHED") return areReached_ ? "yes" : "no";
    std::string text = std::exchange(shown_, {});
    for (char& c : text) c = c == '\n' ? '|' : c;
    return text.substr(0, text.find_last_not_of('|') + 1);
  }

  void leave(int level) {
    engine_.leave(level);
    if (level != 0) return;
    const std::lock_guard lock(mutex_);
    isOver_ = true;
    over_.notify_all();
  }

  kova::engine::Engine engine_;
  std::string shown_;
  bool areReached_ = false;
  std::mutex mutex_;
  std::condition_variable over_;
  bool isOver_ = false;
  kova::engine::DrivenRuntime runtime_;  // Last: its threads use the rest.
};

}  // namespace

int main(int count, char** words) {
  if (count < 4) return 2;
  const kova::program::ParentGuard guard("the test's engine: the driving program has ended");
  const std::string home = std::filesystem::path(kova::os::ProgramPath()).parent_path().string();
  InitDxGlobal(words[1], words[2], "KOVAENGINE", home);
  SetAppMode(1);
  const int code = Session(words[3]).run(count > 4 ? words[4] : "");
  FinalizeDXGlobal();
  return code;
}
