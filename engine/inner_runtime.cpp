#include "engine/inner_runtime.h"

#include <utility>

#include "api/kovadx.h"
#include "config/KovaDXConfigReader.h"
#include "host/CmdKovaDX.h"
#include "host/CreateLanguageX.h"
#include "host/XManager.h"
#include "platform/os/error.h"
#include "transport/XPipeManager.h"
#include "transport/XPipeSuit.h"
#include "transport/XPipes.h"

namespace kova::engine {
namespace {

constexpr int kBusy = 170;

// Notes that the runtime is given the lines.
class NotingRunner : public DriveX {
 public:
  NotingRunner(const std::string& language, StatisticsX* host, bool* areReached)
      : DriveX(language, host, KovaDXConfigReader::GetInstance(language)), areReached_(areReached) {}

 protected:
  int ExecuteXLines(std::vector<std::string>& lines) override {
    *areReached_ = true;
    return DriveX::ExecuteXLines(lines);
  }

 private:
  bool* areReached_;
};

// Counts a block for as long as it runs.
struct Running {
  explicit Running(std::atomic<int>& counted) : count(counted), isNested(counted++ > 0) {}
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;
  ~Running() { --count; }

  std::atomic<int>& count;
  const bool isNested;
};

}  // namespace

// One level of runs: the pipes that the library gives it, and their service.
class InnerRuntime::Level {
 public:
  explicit Level(const InnerRuntime& runtime) : runtime_(runtime) {}
  Level(const Level&) = delete;
  Level& operator=(const Level&) = delete;
  ~Level() {
    server_.reset();
    if (runner_ == nullptr) return;
    closeClientEnds();
    GetXManager()->destoryKovaDX(runner_);
  }

  // Raises the language's index by a runner that stands for it and is never started, and serves the pipes of that
  // index.
  int begin() {
    const int code = CreateLanguageX(runtime_.language_, true);
    if (code != 0) return code;
    runner_ = GetXManager()->getBackKovaDX();
    const int index = runner_->getIndex();
    server_ = std::make_unique<XdapiServer>(
        suite()->getPipeNamePrefix() + std::to_string(index),
        [this, index](const CleXDSmb& request, CleXDSmb& reply) { runtime_.perform_(request, reply, index); },
        [this, index] { runtime_.leave_(index); });
    return server_->start();
  }

 private:
  // The first set of pipes outlives its level. Its ends belong to a conversation that is over.
  void closeClientEnds() {
    XPipes* const set = suite()->getXPipes(runner_->getIndex());
    if (set == nullptr) return;
    set->GetXDAPIPipe()->ClosePipe();
    set->GetXDAPIResultPipe()->ClosePipe();
  }

  XPipeSuit* suite() const { return GetXPipeManager()->getPipeSuit(runtime_.language_); }

  const InnerRuntime& runtime_;
  DriveX* runner_ = nullptr;  // The registry's.
  std::unique_ptr<XdapiServer> server_;
};

InnerRuntime::InnerRuntime(std::string language, std::string home, Perform perform, Leave leave)
    : language_(std::move(language)), home_(std::move(home)), perform_(std::move(perform)), leave_(std::move(leave)) {}

InnerRuntime::~InnerRuntime() { stop(); }

StatisticsX* InnerRuntime::host() const { return GetXManager()->getStatisticsX(language_); }

int InnerRuntime::start() {
  if (first_) return 0;
  SetXNameAndSHome(language_.c_str(), home_.c_str());
  SetKovaRunning(true);
  first_ = std::make_unique<Level>(*this);
  int code = first_->begin();
  if (code == 0) {
    const std::unique_ptr<CmdKovaDX> starter(CreateCmdKovaDX(language_, true));
    code = starter ? starter->initializeX() : static_cast<int>(os::kNotEnoughMemory);
  }
  if (code != 0) endService();
  return code;
}

int InnerRuntime::run(std::vector<std::string> lines, bool* areReached) {
  bool ignored = false;
  if (areReached == nullptr) areReached = &ignored;
  *areReached = false;
  if (!first_) return kHostNotInitialised;
  const Running running(running_);
  Level own(*this);
  const int code = running.isNested ? own.begin() : 0;
  return code != 0 ? code : runOn(lines, areReached);
}

int InnerRuntime::runOn(std::vector<std::string>& lines, bool* areReached) {
  NotingRunner runner(language_, host(), areReached);
  runner.setSyntax(lines);
  return host()->isIntialized() ? runner.invokeX() : kHostNotInitialised;
}

int InnerRuntime::stop() {
  if (running_ > 0) return kBusy;
  if (!first_) return 0;
  const int code = host()->stop_embedded_x();
  endService();
  return code;
}

// A thread that a block has left behind may go on calling. It must be refused before the pipes go, not try to open
// them again.
void InnerRuntime::endService() {
  SetKovaRunning(false);
  first_.reset();
}

}  // namespace kova::engine
