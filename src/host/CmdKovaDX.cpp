#include "host/CmdKovaDX.h"

#include "host/client_functions.h"
#include "host/sync_syntax.h"

using namespace kova;

CmdKovaDX::CmdKovaDX(const std::string& name, StatisticsX* host, XConfigOptions* options)
    : DriveX(name, host, options) {}

CmdKovaDX::~CmdKovaDX() { endThread(); }

int CmdKovaDX::initializeX() {
  if (host()->isIntialized()) return 0;
  if (XName() == "R") {
    host()->setR(true);
    host()->setIntialized(true);
  }
  host()->setup_dxcallback(clientFunctions().callbackTable);
  const int code = DriveX::initializeX();
  if (code != 0) return code;
  host()->set_post_kova_output(clientFunctions().postKovaOutput);
  return 0;
}

int CmdKovaDX::invokeX() {
  serveSyncSyntax([this](std::vector<std::string>& lines) {
    setSyntax(lines);
    const int code = DriveX::runX();
    forgetSyntax();
    return code;
  });
  return 0;
}
