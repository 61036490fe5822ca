// Who this process is and whether it has an engine: local functions.
#include "api/client_state.h"
#include "api/guard.h"
#include "api/kovadx.h"
#include "api/kovadx_ext.h"

namespace {

const char* textOrEmpty(const char* text) { return text ? text : ""; }

}  // namespace

int SetKovaRunning(bool running) {
  kova::SetEngineRunning(running);
  return 0;
}

void SetXNameAndSHome(const char* xName, const char* kovaHome) {
  kova::Guarded([&] {
    kova::StoredIdentity().xName = textOrEmpty(xName);
    kova::StoredIdentity().kovaHome = textOrEmpty(kovaHome);
    return 0;
  });
}

int SetRTempFolderToKOVA(const char* folder) {
  return kova::Guarded([&] {
    kova::StoredIdentity().rTempFolder = textOrEmpty(folder);
    return 0;
  });
}

const char* GetRTempFolderToKOVA() { return kova::StoredIdentity().rTempFolder.c_str(); }

int SaveFileInDS() { return 0; }

int KovaLastReceiveStatus() { return kova::LastReceiveStatus(); }
