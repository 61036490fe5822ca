#include "api/pipe_selection.h"

#include <atomic>
#include <cstdio>
#include <new>
#include <string>

#include "api/InitDxGlobal.h"
#include "api/client_state.h"
#include "config/KovaDXConfigReader.h"
#include "config/process_values.h"
#include "config/text_utilities.h"
#include "host/CreateLanguageX.h"
#include "platform/os/environment.h"
#include "platform/os/process.h"
#include "trace/DxTracer.h"
#include "transport/KovaPipe.h"
#include "transport/XPipeManager.h"
#include "transport/XPipeSuit.h"
#include "transport/XPipes.h"

namespace kova {
namespace {

std::atomic<XPipeSuit*> currentSuite = nullptr;

// The first that is set. There is no other default: without any the folder is empty, on every platform.
std::string environmentsFolder() {
  for (const char* name : {"KOVADXTEMP", "TEMP", "TMP", "tmp"}) {
    if (auto value = os::GetEnvironment(name)) return *std::move(value);
  }
  return {};
}

// What StartKova was told comes first.
std::string temporaryFolder() {
  std::string folder = StoredIdentity().tempFolder;
  if (folder.empty()) folder = environmentsFolder();
  DecoratePathEnd(folder);
  return folder;
}

std::string processIdText() {
  char text[16];
  std::snprintf(text, sizeof text, "%04x", os::CurrentProcessId());
  return text;
}

// The stored name names the suite as it is, while the process-wide one is upper case; callers give upper case.
std::string settleName() {
  std::string& name = StoredIdentity().xName;
  if (name.empty()) {
    name = GetXName();
  } else {
    SetXName(name);
  }
  return name;
}

// A suite that no run has raised yet starts at its first level: with the runner of a host of its language, for nested
// runs in this process, when the configuration lists the language. Deliberate: that the host can not load its library
// ends nothing here, and the process counts as its maker.
void raiseToFirstLevel(XPipeSuit& suite) {
  const bool isHosted = KovaDXConfigReader::GetInstance()->IsSupportLanguage(suite.XName());
  if (isHosted) {
    CreateLanguageX(suite.XName(), false);
  } else {
    suite.increaseIndex();
  }
  SetHostCreatedHere(isHosted);
}

// Null when somebody took the pipe manager away.
XPipeSuit* chooseSuite() {
  const ClientIdentity& identity = StoredIdentity();
  if (!IsDXGlobalInit() && InitDxGlobal(temporaryFolder(), processIdText(), identity.xName, identity.kovaHome) != 0) {
    throw std::bad_alloc();  // The one reason for which it fails.
  }
  const std::string name = settleName();
  XPipeManager* const manager = GetXPipeManager();
  if (!manager) return nullptr;
  XPipeSuit* const suite = manager->getPipeSuit(name);
  if (suite->getIndex() < 0) raiseToFirstLevel(*suite);
  return suite;
}

// A failure shows in the trace, and again when the call waits on the pipe that is not there.
void createReplyPipe(KovaPipe& pipe) {
  const int code = pipe.CreatePipe();
  if (code == 0) pipe.DisconnectPipe();
  DxTraceError(pipe.GetPipeName() + " created:", code);
}

}  // namespace

XPipeSuit* CurrentSuite() {
  XPipeSuit* suite = currentSuite.load(std::memory_order_acquire);
  if (!suite) {
    suite = chooseSuite();
    currentSuite.store(suite, std::memory_order_release);
  }
  return suite;
}

CallPipes SelectPipes() {
  XPipeSuit* const suite = CurrentSuite();
  XPipes* const set = suite ? suite->getXPipes() : nullptr;
  if (!set) return {};
  const CallPipes pipes{set->GetXDAPIPipe(), set->GetXDAPIResultPipe()};
  if (!pipes.reply->IsPipeCreated()) createReplyPipe(*pipes.reply);
  return pipes;
}

void ForgetCurrentSuite() { currentSuite.store(nullptr, std::memory_order_release); }

}  // namespace kova
