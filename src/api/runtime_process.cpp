// How a process that the engine has started as a runtime begins: local functions.
#include <memory>
#include <string>
#include <string_view>

#include "api/InitDxGlobal.h"
#include "api/client_state.h"
#include "api/guard.h"
#include "api/kovadx.h"
#include "config/never_destroyed.h"
#include "config/process_values.h"
#include "host/CmdKovaDX.h"
#include "host/CreateLanguageX.h"
#include "host/sync_syntax.h"
#include "platform/os/environment.h"

namespace {

constexpr std::string_view kEngineProgram = "kovaengine";
constexpr int kLocalMode = 1;
constexpr int kRemoteMode = 0;

const char* textOrEmpty(const char* text) { return text ? text : ""; }

// The engine's own program also counts as local.
int applicationModeOf(std::string_view mode) {
  return mode == "LOCAL" || mode.find(kEngineProgram) != std::string_view::npos ? kLocalMode : kRemoteMode;
}

// Its thread may sit in it until the process ends.
std::unique_ptr<CmdKovaDX>& ownRunner() {
  static kova::NeverDestroyed<std::unique_ptr<CmdKovaDX>> runner;
  return runner.object();
}

// Starts the runtime on the calling thread, which then runs what comes for it where syntax is handed over to one
// thread.
void drive(const std::string& language) {
  ownRunner().reset(CreateCmdKovaDX(language, true));
  if (!ownRunner()) return;
  if (ownRunner()->initializeX() != 0) {
    GSetUseSyncDx(false);
  } else if (GGetUseSyncDx()) {
    ownRunner()->invokeX();
  }
}

int begin(const std::string& mode, const std::string& tempPath, const std::string& pid, const std::string& xName) {
  const int code = InitDxGlobal(tempPath, pid, xName, kova::os::GetEnvironment("KOVA_HOME").value_or(""));
  if (code != 0) return code;
  SetAppMode(applicationModeOf(mode));
  kova::SetEngineRunning(true);
  drive(xName);
  return 0;
}

}  // namespace

void InitXProcess(const char* mode, const char* tempPath, const char* pid, const char* xName, const char* reserved) {
  kova::Guarded([&] {
    kova::StoredIdentity().reserved = textOrEmpty(reserved);
    return begin(textOrEmpty(mode), textOrEmpty(tempPath), textOrEmpty(pid), textOrEmpty(xName));
  });
}
