// startx: the process of one runtime. An engine starts it, with the words that it needs to reach the engine; it loads
// the language's library from the home folder, takes the engine's commands, and ends when the engine tells it to or is
// gone.
//
// Usage: startx MODE TEMPORARY_FOLDER PROCESS_ID_TEXT LANGUAGE [LANGUAGE_HOME]
#include <cstdio>
#include <exception>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "api/InitDxGlobal.h"
#include "api/kovadx.h"
#include "host/CmdKovaDX.h"
#include "host/CreateLanguageX.h"
#include "host/StartXDispatcherVisitor.h"
#include "host/XManager.h"
#include "host/sync_syntax.h"
#include "platform/os/error.h"
#include "programs/common/parent_guard.h"
#include "programs/startx/engine_loss.h"
#include "transport/DXCmdDispatcher.h"
#include "transport/MonitorThread.h"
#include "transport/XPipeManager.h"
#include "transport/XPipeSuit.h"

namespace {

using kova::program::loseEngine;

constexpr int kWrongUse = 2;
constexpr int kUnexpected = 125;

// Notes that the engine has told this process to stop, which no send needs to confirm.
class Commands : public StartXDispatcherVisitor {
 public:
  explicit Commands(const std::string& language) : StartXDispatcherVisitor(language, true) {}

  int cmdDispatcher(DXCmdDispatcher::CmdKey key, const std::vector<std::string>& args) override {
    if (key == DXCmdDispatcher::kStopDX) isToldToStop_ = true;
    return StartXDispatcherVisitor::cmdDispatcher(key, args);
  }

  bool isToldToStop() const { return isToldToStop_; }

 private:
  bool isToldToStop_ = false;
};

void onEngineVanished(MonitorThread*) { kova::program::loseEngineOfPipe(); }

// The thread of the engine's commands.
void takeCommands(DXCmdDispatcher* dispatcher, const std::string& language) {
  const int connected = dispatcher->connectPeer();
  if (connected != 0 && connected != static_cast<int>(kova::os::kPipeConnected)) {
    loseEngine("startx: the engine's control pipe can not be reached (error " + std::to_string(connected) + ")");
    return;
  }
  kova::program::noteEngineReached();
  Commands commands(language);
  const int ended = dispatcher->receiveCmd(&commands);
  if (!commands.isToldToStop()) {
    loseEngine("startx: the engine's commands have ended (error " + std::to_string(ended) + ")");
  }
}

// The runner by which this thread runs what comes for the runtime; null when the runtime is not up, which the engine
// learns from its first run.
std::unique_ptr<CmdKovaDX> ownRunner(const std::string& language) {
  const StatisticsX* const host = GetXManager()->getStatisticsX(language);
  const bool isUp = host != nullptr && host->isIntialized();
  return std::unique_ptr<CmdKovaDX>(isUp ? CreateCmdKovaDX(language, true) : nullptr);
}

void serve(const std::string& language) {
  XPipeSuit* const suite = GetXPipeManager()->getPipeSuit(language);
  suite->startMonitor(true, reinterpret_cast<void*>(&onEngineVanished));
  suite->startMonitor(false, nullptr);
  DXCmdDispatcher* const dispatcher = suite->getCmdDispatcher(true);
  const std::unique_ptr<CmdKovaDX> runner = ownRunner(language);
  GSetUseSyncDx(runner != nullptr);
  if (kova::program::beginToServe(dispatcher)) {
    std::thread control(takeCommands, dispatcher, language);
    if (runner) runner->invokeX();
    control.join();
  }
  kova::program::endServing();
}

// The exit code.
int runProcess(int count, char** words) {
  try {
    const kova::program::ParentGuard guard("startx: the engine has ended", &loseEngine);
    InitXProcess(words[1], words[2], words[3], words[4], count > 5 ? words[5] : "");
    serve(words[4]);
    FinalizeDXGlobal();
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "startx: failed unexpectedly: %s\n", error.what());
  }
  return kUnexpected;
}

}  // namespace

int main(int count, char** words) {
  if (count < 5) {
    std::fprintf(stderr,
                 "startx: an engine starts this program; usage: startx MODE TEMPORARY_FOLDER PROCESS_ID_TEXT "
                 "LANGUAGE [LANGUAGE_HOME]\n");
    return kWrongUse;
  }
  const int code = runProcess(count, words);
  kova::program::endAfterLoss();
  return code;
}
