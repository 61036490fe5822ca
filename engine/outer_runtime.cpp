#include "engine/outer_runtime.h"

#include <utility>

#include "config/KovaDXConfigReader.h"
#include "config/process_values.h"
#include "host/CreateLanguageX.h"
#include "host/DriveX.h"
#include "host/OutpStatisticsX.h"
#include "host/XManager.h"
#include "transport/MonitorThread.h"
#include "transport/XPipeManager.h"
#include "transport/XPipeSuit.h"

namespace kova::engine {
namespace {

// The console goes on when its package can not be loaded, or could make nothing of the set-up, and nothing that follows
// would tell: no run would do anything.
constexpr const char* kEndWithoutPackage =
    "tryCatch({ library(kovastatistics); "
    "if (!kovastatistics:::console$isChild) stop('initRProcess() has not been run') }, "
    "error = function(e) { message(conditionMessage(e)); quit(status = 3) })\n";

}  // namespace

OuterRuntime::OuterRuntime(std::string language, Perform perform, Leave leave)
    : HostedRuntime(std::move(language), std::move(perform), std::move(leave)) {}

OuterRuntime::~OuterRuntime() { stop(); }

OutpStatisticsX* OuterRuntime::outerHost() const { return dynamic_cast<OutpStatisticsX*>(host()); }

bool OuterRuntime::isStartx() const { return language() != "R" && language() != "JAVAEXTENSION"; }

ChildEnd OuterRuntime::childEnd(unsigned patienceMs) {
  OutpStatisticsX* const present = outerHost();
  if (present == nullptr) return ended_;
  return {present->childProgram(), present->childExitCode(patienceMs), present->lastConsoleOutput()};
}

// The first level makes the host: its runner needs one.
int OuterRuntime::raiseLevel() {
  if (!KovaDXConfigReader::GetInstance()->IsSupportLanguage(language())) return kLanguageNotSupported;
  XConfigOptions* const options = KovaDXConfigReader::GetInstance(language());
  if (host() == nullptr) {
    GetXManager()->addStatisticsX(language(), new OutpStatisticsX(options, GetAppMode(), true));
  }
  GetXManager()->addKovaDX(new DriveX(language(), host(), options));
  return 0;
}

int OuterRuntime::startHost() {
  const std::string prefix = GetXPipeManager()->getPipeSuit(language())->getPipeNamePrefix();
  if (isStartx()) {
    childToParent_ = std::make_unique<MonitorThread>(prefix + "C2P", MonitorThread::kReader);
    childToParent_->Start();
  }
  int code = DriveX(language(), host(), KovaDXConfigReader::GetInstance(language())).initializeX();
  if (code == 0 && language() == "R") code = checkPackage();
  if (code == 0 && isStartx()) {
    parentToChild_ = std::make_unique<MonitorThread>(prefix + "P2C", MonitorThread::kWriter);
    parentToChild_->Start();
  }
  return code;
}

// How R has ended is known when it is stopped.
int OuterRuntime::checkPackage() {
  std::string statement = kEndWithoutPackage;
  const int code = host()->execute_x(statement.data());
  if (code != 0) stopHost();
  return code;
}

// The goodbye goes first: the child must not take the end of the words for that of the engine.
int OuterRuntime::stopHost() {
  if (parentToChild_) parentToChild_->stop();
  return HostedRuntime::stopHost();
}

void OuterRuntime::hostHasEnded() {
  ended_ = childEnd();
  parentToChild_.reset();
  childToParent_.reset();
  GetXManager()->destoryStatisticsX(language());
}

// The child may have a runner for the run; it must go before the next one.
void OuterRuntime::runWasNotReached() { host()->post_action(); }

}  // namespace kova::engine
