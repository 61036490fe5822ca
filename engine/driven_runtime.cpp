#include "engine/driven_runtime.h"

#include <utility>

#include "config/KovaDXConfigReader.h"
#include "config/process_values.h"
#include "host/DriveX.h"
#include "host/OutpStatisticsX.h"
#include "host/XManager.h"
#include "transport/AsyCsPipe1.h"
#include "transport/DXCmdDispatcher.h"
#include "transport/XPipeManager.h"
#include "transport/XPipeSuit.h"

namespace kova::engine {
namespace {

XPipeSuit* suiteOf(const std::string& name) { return GetXPipeManager()->getPipeSuit(name); }

DXCmdDispatcher* dispatcherOf(const std::string& name) { return suiteOf(name)->getCmdDispatcher(false); }

}  // namespace

DrivenRuntime::DrivenRuntime(std::string name, int greeting, Perform perform, Leave leave)
    : HostedRuntime(std::move(name), std::move(perform), std::move(leave), false),
      greeting_(greeting),
      takesCommands_(AsyCsPipe1::isServerThere(suiteOf(language())->getPipeNamePrefix())) {}

DrivenRuntime::~DrivenRuntime() { stop(); }

// The control channel's pipe is there before the greeting: the program looks for it then.
int DrivenRuntime::raiseLevel() {
  KovaDXConfigReader& configuration = *KovaDXConfigReader::GetInstance();
  const bool hasBlocks = takesCommands_ && configuration.IsSupportLanguage(language());
  XConfigOptions* const options = hasBlocks ? configuration.GetOptions(language()) : nullptr;
  if (hasBlocks && host() == nullptr) {
    GetXManager()->addStatisticsX(language(), new OutpStatisticsX(options, GetAppMode(), false));
  }
  if (takesCommands_) dispatcherOf(language());
  GetXManager()->addKovaDX(new DriveX(language(), host(), options));
  return 0;
}

// After the greeting: the program connects its side only then.
int DrivenRuntime::startHost() {
  if (!takesCommands_) return 0;
  const std::lock_guard lock(starting_);
  const int connected = dispatcherOf(language())->connectPeer();
  return connected != 0 || host() == nullptr ? connected : host()->init_embedded_x(0, nullptr);
}

// The program may call as soon as its own side is connected, which can be before this one's is.
void DrivenRuntime::awaitStart() { const std::lock_guard lock(starting_); }

// The host itself stops nothing: the runtime is not this process's.
int DrivenRuntime::stopHost() {
  if (!takesCommands_) return 0;
  if (host() != nullptr) host()->stop_embedded_x();
  return dispatcherOf(language())->sendCmd(DXCmdDispatcher::kStopDX);
}

void DrivenRuntime::hostHasEnded() { GetXManager()->destoryStatisticsX(language()); }

// The program may have a runner for the run; it must go before the next one.
void DrivenRuntime::runWasNotReached() {
  if (host() != nullptr) host()->post_action();
}

}  // namespace kova::engine
