#include "engine/inner_runtime.h"

#include <memory>
#include <utility>

#include "api/kovadx.h"
#include "host/CmdKovaDX.h"
#include "host/CreateLanguageX.h"
#include "platform/os/error.h"

namespace kova::engine {

InnerRuntime::InnerRuntime(std::string language, std::string home, Perform perform, Leave leave)
    : HostedRuntime(std::move(language), std::move(perform), std::move(leave)), home_(std::move(home)) {}

InnerRuntime::~InnerRuntime() { stop(); }

int InnerRuntime::raiseLevel() { return CreateLanguageX(language(), true); }

int InnerRuntime::startHost() {
  SetXNameAndSHome(language().c_str(), home_.c_str());
  SetKovaRunning(true);
  const std::unique_ptr<CmdKovaDX> starter(CreateCmdKovaDX(language(), true));
  return starter ? starter->initializeX() : static_cast<int>(os::kNotEnoughMemory);
}

// A thread that a block has left behind may go on calling. It must be refused before the pipes go, not try to open
// them again.
void InnerRuntime::hostHasEnded() { SetKovaRunning(false); }

}  // namespace kova::engine
