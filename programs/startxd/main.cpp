// StartXD: the reference engine as a program. A program that drives it starts it (StartKova), gives it its work over
// the pipes of its own name, and has it run blocks of its own language in its own process. The engine ends when it is
// told to (StopKova) or when that program is gone.
//
// Usage: StartXD TEMPORARY_FOLDER PROCESS_ID_TEXT NAME [DATAPACKAGE]
#include <condition_variable>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "api/InitDxGlobal.h"
#include "config/process_values.h"
#include "engine/data_package.h"
#include "engine/driven_runtime.h"
#include "engine/engine.h"
#include "engine/text_rules.h"
#include "message/commands.h"
#include "message/error_codes.h"
#include "platform/os/environment.h"
#include "platform/os/file.h"
#include "platform/os/process.h"
#include "programs/common/parent_guard.h"

namespace {

using kova::Command;

constexpr const char* kEngineInstance = "KOVAENGINE";
constexpr int kLocalMode = 1;
constexpr int kWrongUse = 2;
constexpr int kNotStarted = 1;
constexpr int kUnexpected = 125;

std::string homeFolder() {
  const std::string named = kova::os::GetEnvironment("KOVA_HOME").value_or("");
  return named.empty() ? std::filesystem::path(kova::os::ProgramPath()).parent_path().string() : named;
}

// What the driving program is told first: 0, or why its data can not be opened.
int openData(const std::string& path, kova::engine::Engine* engine) {
  if (path.empty()) return 0;
  kova::engine::DataSet dataSet;
  std::string problem;
  if (!kova::engine::readDataPackage(path, &dataSet, &problem)) {
    std::fprintf(stderr, "StartXD: can not read the data: %s\n", problem.c_str());
    return static_cast<int>(kova::ErrorCode::kDataFileNotReadable);
  }
  engine->open(std::move(dataSet));
  return 0;
}

// Where nobody reads it any more it is lost, and nothing else is.
void print(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fflush(stdout);
}

// One session with the driving program, and the moment when it is over.
class Session {
 public:
  Session(const std::string& name, int greeting, kova::engine::Engine* engine)
      : engine_(engine),
        runtime_(
            name, greeting,
            [this](const CleXDSmb& request, CleXDSmb& reply, int level) { perform(request, reply, level); },
            [this](int level) { leave(level); }) {
    engine->onBlock([this, name](const std::string& language, const std::vector<std::string>& lines) {
      const bool isOwn = kova::engine::sameName(language, name);
      return isOwn ? runtime_.run(lines) : static_cast<int>(kova::ErrorCode::kLanguageNotSupported);
    });
  }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  ~Session() { engine_->onBlock({}); }

  // 0 when the program has been served to its end.
  int run() {
    const int started = runtime_.start();
    if (started != 0) return started;
    std::unique_lock lock(mutex_);
    over_.wait(lock, [this] { return isOver_; });
    lock.unlock();
    runtime_.stop();
    return 0;
  }

 private:
  // The session answers for itself; the engine knows of no driving program.
  void perform(const CleXDSmb& request, CleXDSmb& reply, int level) {
    const Command command = request.GetCommandAction();
    if (command == Command::IsXDriven) {
      reply.SetLong(1);
    } else if (command == Command::StopKova && level == 0) {
      runtime_.endAfterReply();
    } else {
      engine_->perform(request, reply, level);
    }
  }

  // Without its calls the driving program is of no use to the engine.
  void leave(int level) {
    engine_->leave(level);
    if (level != 0) return;
    const std::lock_guard lock(mutex_);
    isOver_ = true;
    over_.notify_all();
  }

  kova::engine::Engine* engine_;
  std::mutex mutex_;
  std::condition_variable over_;
  bool isOver_ = false;
  kova::engine::DrivenRuntime runtime_;  // Last: its threads use the rest.
};

int serve(const std::string& name, const std::string& data) {
  kova::engine::Engine engine;
  engine.onOutput(print);
  const int greeting = openData(data, &engine);
  const int code = Session(name, greeting, &engine).run();
  if (code != greeting) std::fprintf(stderr, "StartXD: the driving program can not be served (error %d)\n", code);
  engine.endOutput();
  return code == 0 ? 0 : kNotStarted;
}

}  // namespace

int main(int count, char** words) {
  if (count < 4) {
    std::fprintf(stderr,
                 "StartXD: a program that drives an engine starts this one; usage: StartXD TEMPORARY_FOLDER "
                 "PROCESS_ID_TEXT NAME [DATAPACKAGE]\n");
    return kWrongUse;
  }
  try {
    kova::os::OutliveOutput();
    const kova::program::ParentGuard guard("StartXD: the driving program has ended");
    InitDxGlobal(words[1], words[2], kEngineInstance, homeFolder());
    SetAppMode(kLocalMode);
    const int exitCode = serve(words[3], count > 4 ? words[4] : "");
    FinalizeDXGlobal();
    return exitCode;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "StartXD: failed unexpectedly: %s\n", error.what());
  }
  return kUnexpected;
}
