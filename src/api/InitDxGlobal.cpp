#include "api/InitDxGlobal.h"

#include <memory>

#include "api/callback_table.h"
#include "api/guard.h"
#include "api/kovadx.h"
#include "api/pipe_selection.h"
#include "config/KovaDXConfigReader.h"
#include "config/process_values.h"
#include "config/text_utilities.h"
#include "host/XManager.h"
#include "host/client_functions.h"
#include "trace/DxTracer.h"
#include "transport/XPipeManager.h"

namespace {

// The tracer stays for the life of the process, opened or not: what comes later never replaces it.
void installTracer() {
  if (GetDxTracer()) return;
  std::string path = KovaDXConfigReader::GetInstance()->GetTracePath();
  auto tracer = std::make_unique<DxTracer>();
  if (!path.empty()) {
    DecoratePathEnd(path);
    tracer->open(path + GetXName() + "_trace.log");
  }
  SetDxTracer(tracer.release());
}

int initialise(const std::string& tempPath, const std::string& pid, const std::string& xName,
               const std::string& kovaHome) {
  SetInStat(false);
  kova::setClientFunctions({&StopReceiveXdApiThread, &PostKovaOutput, kova::callbackTable()});
  SetXName(xName);
  if (!kovaHome.empty()) SetKOVAHOME(kovaHome.c_str());
  auto hosts = std::make_unique<XManager>();
  auto pipes = std::make_unique<XPipeManager>(tempPath, pid);
  installTracer();
  SetXManager(hosts.release());
  SetXPipeManager(pipes.release());
  SetDXGlobalInitFin(true);
  return 0;
}

void traceStart(const std::string& tempPath, const std::string& pid, const std::string& xName,
                const std::string& kovaHome) {
  DxTrace("InitDxGlobal>tempPath:" + tempPath);
  DxTrace("InitDxGlobal>pid:" + pid);
  DxTrace("InitDxGlobal>xname:" + xName);
  DxTrace("InitDxGlobal>kovaHome:" + kovaHome);
}

}  // namespace

int InitDxGlobal(const std::string& tempPath, const std::string& pid, const std::string& xName,
                 const std::string& kovaHome) {
  if (IsDXGlobalInit()) return 0;
  const int code = kova::Guarded([&] { return initialise(tempPath, pid, xName, kovaHome); });
  // A record that finds no memory takes nothing back.
  if (code == 0) kova::Guarded([&] { return traceStart(tempPath, pid, xName, kovaHome), 0; });
  return code;
}

void FinalizeDXGlobal() {
  kova::clearXName();
  SetAppMode(-1);
  delete GetXManager();
  SetXManager(nullptr);
  kova::ForgetCurrentSuite();
  delete GetXPipeManager();
  SetXPipeManager(nullptr);
  SetDXGlobalInitFin(false);
}
