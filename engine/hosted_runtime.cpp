#include "engine/hosted_runtime.h"

#include <utility>

#include "config/KovaDXConfigReader.h"
#include "host/DriveX.h"
#include "host/XManager.h"
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
class HostedRuntime::Level {
 public:
  explicit Level(HostedRuntime& runtime) : runtime_(runtime) {}
  Level(const Level&) = delete;
  Level& operator=(const Level&) = delete;
  ~Level() {
    server_.reset();
    if (runner_ == nullptr) return;
    closeClientEnds();
    GetXManager()->destoryKovaDX(runner_);
  }

  // Raises the language's index and serves the pipes of that index.
  int begin(std::optional<int> greeting = std::nullopt) {
    const int code = runtime_.raiseLevel();
    if (code != 0) return code;
    runner_ = GetXManager()->getBackKovaDX();
    const int index = runner_->getIndex();
    server_ = std::make_unique<XdapiServer>(
        suite()->getPipeNamePrefix() + std::to_string(index),
        [this, index](const CleXDSmb& request, CleXDSmb& reply) { runtime_.perform_(request, reply, index); },
        [this, index] { runtime_.leave_(index); });
    return server_->start(greeting);
  }

  void endAfterReply() { server_->endAfterReply(); }

 private:
  // The first set of pipes outlives its level. The ends of a client in this process belong to a conversation that is
  // over.
  void closeClientEnds() {
    XPipes* const set = suite()->getXPipes(runner_->getIndex());
    if (set == nullptr) return;
    set->GetXDAPIPipe()->ClosePipe();
    set->GetXDAPIResultPipe()->ClosePipe();
  }

  XPipeSuit* suite() const { return GetXPipeManager()->getPipeSuit(runtime_.language_); }

  HostedRuntime& runtime_;
  DriveX* runner_ = nullptr;  // The registry's.
  std::unique_ptr<XdapiServer> server_;
};

HostedRuntime::HostedRuntime(std::string language, Perform perform, Leave leave, bool isOutermost)
    : language_(std::move(language)),
      perform_(std::move(perform)),
      leave_(std::move(leave)),
      runningAtRest_(isOutermost ? 0 : 1),
      running_(runningAtRest_) {}

HostedRuntime::~HostedRuntime() = default;

StatisticsX* HostedRuntime::host() const { return GetXManager()->getStatisticsX(language_); }

int HostedRuntime::stopHost() { return host()->stop_embedded_x(); }

int HostedRuntime::start() {
  if (first_) return 0;
  first_ = std::make_unique<Level>(*this);
  int code = first_->begin(greeting());
  if (code == 0) code = startHost();
  if (code == 0) return 0;
  hostHasEnded();
  first_.reset();
  return code;
}

int HostedRuntime::run(std::vector<std::string> lines, bool* areReached) {
  bool ignored = false;
  if (areReached == nullptr) areReached = &ignored;
  *areReached = false;
  if (!first_) return kHostNotInitialised;
  awaitStart();
  const Running running(running_);
  if (running.isNested && !isNestable()) return kBusy;
  Level own(*this);
  const int code = running.isNested ? own.begin() : 0;
  return code != 0 ? code : runOn(lines, areReached);
}

int HostedRuntime::runOn(std::vector<std::string>& lines, bool* areReached) {
  if (host() == nullptr || !host()->isIntialized()) return kHostNotInitialised;
  NotingRunner runner(language_, host(), areReached);
  runner.setSyntax(lines);
  const int code = runner.invokeX();
  if (!*areReached) runWasNotReached();
  return code;
}

void HostedRuntime::endFirstLevelAfterReply() { first_->endAfterReply(); }

int HostedRuntime::stop() {
  if (running_ > runningAtRest_) return kBusy;
  if (!first_) return 0;
  const int code = stopHost();
  hostHasEnded();
  first_.reset();
  return code;
}

}  // namespace kova::engine
