#include "host/StartXDispatcherVisitor.h"

#include "host/CreateLanguageX.h"
#include "host/KovaDX_P.h"
#include "host/XManager.h"
#include "host/sync_syntax.h"
#include "trace/DxTracer.h"
#include "transport/KovaPipe.h"
#include "transport/XPipeManager.h"
#include "transport/XPipeSuit.h"
#include "transport/XPipes.h"

using namespace kova;

namespace {

// Null when the stack is empty, or its last runner is of another kind.
KovaDX_P* lastRunner() {
  XManager* const manager = GetXManager();
  return manager != nullptr ? dynamic_cast<KovaDX_P*>(manager->getBackKovaDX()) : nullptr;
}

void startRun() {
  if (KovaDX_P* const runner = lastRunner()) runner->startX();
}

void exitRun() {
  KovaDX_P* const runner = lastRunner();
  if (runner == nullptr) return;
  runner->awaitEnd();
  GetXManager()->destoryKovaDX(runner);
}

}  // namespace

StartXDispatcherVisitor::StartXDispatcherVisitor(const std::string& language, bool kovaDrive)
    : language_(language), kovaDrive_(kovaDrive) {}

int StartXDispatcherVisitor::cmdDispatcher(DXCmdDispatcher::CmdKey key, const std::vector<std::string>&) {
  const int result = perform(key);
  DxTraceError("StartXDispatcherVisitor result ", result);
  return result;
}

int StartXDispatcherVisitor::perform(int key) {
  switch (key) {
    case 0:
    case DXCmdDispatcher::kTestCmdst:
      DxTrace("StartXDispatcherVisitor kTestCmdst");
      return 0;
    case DXCmdDispatcher::kSetupDXRun:
      DxTrace("StartXDispatcherVisitor kSetupDXRun");
      return setUpRun();
    case DXCmdDispatcher::kRunDX:
      DxTrace("StartXDispatcherVisitor kRunDX");
      startRun();
      return 0;
    case DXCmdDispatcher::kExitDxRun:
      DxTrace("StartXDispatcherVisitor kExitDxRun");
      exitRun();
      return 0;
    case DXCmdDispatcher::kStopDX:
      DxTrace("StartXDispatcherVisitor kStopDX");
      return GGetUseSyncDx() ? GStopSyncSyntax() : 0;
    default:
      return kUnknownControlCommand;
  }
}

// Deliberate: the run is started also when its pipe could not be made. Its own failure then ends it.
int StartXDispatcherVisitor::setUpRun() {
  CreateLanguageX(language_, kovaDrive_);
  const int result = makeSyntaxPipe();
  startRun();
  return result;
}

int StartXDispatcherVisitor::makeSyntaxPipe() {
  XPipeManager* const manager = GetXPipeManager();
  XPipes* const set = manager != nullptr ? manager->getPipeSuit(language_)->getXPipes() : nullptr;
  if (set == nullptr) return kPipeFailed;
  KovaPipe& pipe = *set->GetSyntaxPipe();
  if (pipe.IsPipeCreated()) {
    DxTrace("kSetupDXRun syntaxPipe has Create");
    return 0;
  }
  const int created = pipe.CreatePipe();
  if (created != 0) return created;
  const int result = pipe.DisconnectPipe();
  DxTrace("kSetupDXRun syntaxPipe Create");
  return result;
}
