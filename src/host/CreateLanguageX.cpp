#include "host/CreateLanguageX.h"

#include <memory>

#include "config/KovaDXConfigReader.h"
#include "config/process_values.h"
#include "host/CmdKovaDX.h"
#include "host/InpStatisticsX.h"
#include "host/KovaDX_P.h"
#include "host/XManager.h"
#include "platform/os/error.h"
#include "trace/DxTracer.h"

using namespace kova;

namespace {

bool isReady() { return IsDXGlobalInit() && GetXManager() != nullptr; }

bool isSupported(const std::string& language) {
  if (KovaDXConfigReader::GetInstance()->IsSupportLanguage(language)) return true;
  DxTrace("Unsupported external language:" + language);
  return false;
}

// A host that is there is taken, whatever kind it is.
StatisticsX* hostOf(const std::string& language, XConfigOptions* options, bool kovaDrive) {
  XManager& manager = *GetXManager();
  StatisticsX* host = manager.getStatisticsX(language);
  if (host == nullptr) {
    host = new InpStatisticsX(options, kovaDrive);
    manager.addStatisticsX(language, host);
  }
  return host;
}

template <class Runner>
std::unique_ptr<Runner> makeRunner(const std::string& language, bool kovaDrive) {
  XConfigOptions* const options = KovaDXConfigReader::GetInstance(language);
  return std::make_unique<Runner>(language, hostOf(language, options, kovaDrive), options);
}

}  // namespace

int CreateLanguageX(const std::string& language, bool kovaDrive) {
  if (!isReady()) return kStateNotInitialised;
  try {
    if (!isSupported(language)) return kLanguageNotSupported;
    GetXManager()->addKovaDX(makeRunner<KovaDX_P>(language, kovaDrive).release());
    return 0;
  } catch (...) {
    return os::kNotEnoughMemory;
  }
}

CmdKovaDX* CreateCmdKovaDX(const std::string& language, bool kovaDrive) {
  try {
    if (!isReady() || !isSupported(language)) return nullptr;
    return makeRunner<CmdKovaDX>(language, kovaDrive).release();
  } catch (...) {
    return nullptr;
  }
}
