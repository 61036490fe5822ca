// Makes what a language needs to be run: its host inside this process, and a runner.
//
// For the thread that drives the runtimes, after InitDxGlobal.
#ifndef KOVADX_HOST_CREATELANGUAGEX_H
#define KOVADX_HOST_CREATELANGUAGEX_H

#include <string>

#include "export.h"

class CmdKovaDX;

namespace kova {

constexpr int kStateNotInitialised = 1;
constexpr int kLanguageNotSupported = 99120;

}  // namespace kova

// Begins a run of the language: registers its host when there is none yet, and makes a runner (KovaDX_P) for the
// registry's stack, which raises the index of the language's pipes. kovaDrive is the new host's. 0 also when the host's
// library can not be loaded: its operations tell; 1 before InitDxGlobal; 99120 for a language that the configuration
// does not list; 8 when memory runs out. Whoever begins a run ends it with XManager::destoryKovaDX.
KOVADX_API int CreateLanguageX(const std::string& language, bool kovaDrive);

// The runner of a program that drives the engine, on the language's registered host, which is made when there is none
// yet. It is not on the registry's stack and raises no index: the caller owns it. Null where the other one fails.
KOVADX_API CmdKovaDX* CreateCmdKovaDX(const std::string& language, bool kovaDrive);

#endif
