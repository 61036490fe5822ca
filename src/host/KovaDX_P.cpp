#include "host/KovaDX_P.h"

#include "host/client_functions.h"
#include "host/sync_syntax.h"
#include "message/CleXDSmb.h"
#include "platform/os/error.h"
#include "trace/DxTracer.h"
#include "transport/KovaPipe.h"
#include "transport/XPipeManager.h"
#include "transport/XPipeSuit.h"
#include "transport/XPipes.h"
#include "transport/message_exchange.h"

using namespace kova;

namespace {

constexpr const char* kR = "R";

int sendCode(XPipes& set, int code) {
  CleXDSmb message;
  message.SetErrorCode(code);
  return SendData(set.GetSyntaxResultPipe(), message, false);
}

// A peer that came before the wait for it is as good as any.
int connect(KovaPipe& pipe) {
  const int code = pipe.ConnectPipe();
  return code == static_cast<int>(os::kPipeConnected) ? 0 : code;
}

int stopApiThread() {
  const auto stop = clientFunctions().stopReceiveXdApiThread;
  return stop != nullptr ? stop() : 0;
}

}  // namespace

KovaDX_P::KovaDX_P(const std::string& name, StatisticsX* host, XConfigOptions* options) : DriveX(name, host, options) {}

KovaDX_P::~KovaDX_P() { endThread(); }

// A visitor takes the place of the engine that has not come, and goes.
void KovaDX_P::releaseThread() {
  XPipes* const set = pipes();
  if (set == nullptr) return;
  KovaPipe visitor(set->GetSyntaxPipe()->GetPipeName());
  visitor.OpenPipeToUnBlockWrite();
}

int KovaDX_P::initR() {
  if (XName() != kR) return 0;
  host()->setR(true);
  host()->setIntialized(true);
  host()->setup_dxcallback(clientFunctions().callbackTable);
  host()->set_post_kova_output(clientFunctions().postKovaOutput);
  return 0;
}

XPipes* KovaDX_P::pipes() const {
  XPipeManager* const manager = GetXPipeManager();
  return manager != nullptr ? manager->getPipeSuit(XName())->getXPipes(getIndex()) : nullptr;
}

int KovaDX_P::runX() {
  setRunning(true);
  const int code = exchange();
  setRunning(false);
  return code;
}

int KovaDX_P::exchange() {
  XPipes* const set = pipes();
  if (set == nullptr) return kPipeFailed;
  int code = sendCode(*set, 0);
  if (code != 0) return code;
  std::vector<std::string> lines;
  code = receiveLines(*set, &lines);
  if (code != 0 || lines.empty()) return code;
  const int result = runLines(lines);
  DxTraceError("StopReceiveXdApiThread", stopApiThread());
  return sendCode(*set, result);
}

int KovaDX_P::receiveLines(XPipes& set, std::vector<std::string>* lines) {
  KovaPipe& pipe = *set.GetSyntaxPipe();
  int code = connect(pipe);
  CleXDSmb message;
  if (code == 0) code = ReceiveData(&pipe, message, true);
  if (code == 0) *lines = message.Strings().values();
  return code;
}

int KovaDX_P::runLines(std::vector<std::string>& lines) {
  const int code = prepareHost();
  if (code != 0) return code;
  if (GGetUseSyncDx() && getIndex() == 0) return GRunSyncSyntax(lines);
  setSyntax(lines);
  const int result = DriveX::runX();
  forgetSyntax();
  return result;
}

int KovaDX_P::prepareHost() {
  if (XName() == kR) return host()->isIntialized() ? 0 : initR();
  if (!host()->isIntialized()) {
    host()->setup_dxcallback(clientFunctions().callbackTable);
    const int code = initializeX();
    if (code != 0) return code;
  }
  host()->set_post_kova_output(clientFunctions().postKovaOutput);
  return 0;
}
