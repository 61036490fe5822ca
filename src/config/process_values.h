// The plain process-wide values: who this process is and how far its initialisation has come. They live as long as the
// process. Not locked: initialisation and finalisation run on one thread, before and after every other use.
#ifndef KOVADX_CONFIG_PROCESS_VALUES_H
#define KOVADX_CONFIG_PROCESS_VALUES_H

#include <string>

#include "export.h"

// The instance name of the runtime that this process serves, in upper case; empty at first. Setting an empty name
// stores "UNNAMEDX". The result is a copy.
KOVADX_API std::string GetXName();
KOVADX_API void SetXName(const std::string& name);

namespace kova {

// Takes the instance name away again, as at load.
void clearXName();

}  // namespace kova

extern "C" {

// The home folder, where the configuration file lies. While none is stored, the environment variable KOVA_HOME is taken
// and stored. Either is stored less one "\" at its end. The text is the library's, valid until the next set; empty when
// no folder is known. A null or empty path sets nothing.
KOVADX_API const char* GetKOVAHOME(void);
KOVADX_API void SetKOVAHOME(const char* path);

// The application mode, a number of the caller's own choosing; -1 while unset.
KOVADX_API int GetAppMode(void);
KOVADX_API void SetAppMode(int mode);

// Whether the process-wide objects exist.
KOVADX_API bool IsDXGlobalInit(void);
KOVADX_API void SetDXGlobalInitFin(bool finished);

// Whether this process is the engine.
KOVADX_API bool IsInStat(void);
KOVADX_API void SetInStat(bool inStat);
}

#endif
