// Synchronous syntax: a meeting of any thread that has lines to run with the one thread that runs them.
//
// Process-wide. The functions with a G wait without limit for the running thread, also for one that has yet to begin;
// they may be called on any thread but that one, which serves one caller after the other. A caller holds no lock that
// the lines may need.
#ifndef KOVADX_HOST_SYNC_SYNTAX_H
#define KOVADX_HOST_SYNC_SYNTAX_H

#include <functional>
#include <string>
#include <vector>

#include "export.h"

// Has the lines run; their code.
KOVADX_API int GRunSyncSyntax(std::vector<std::string>& lines);

// Has the running thread stop; 0.
KOVADX_API int GStopSyncSyntax();

// Whether the process's runs take this way; false at first.
KOVADX_API bool GGetUseSyncDx();
KOVADX_API void GSetUseSyncDx(bool use);

namespace kova {

// Makes the calling thread the running one, until it is told to stop: `run` gets each list of lines and gives its code;
// one that throws gives 8.
void serveSyncSyntax(const std::function<int(std::vector<std::string>& lines)>& run);

}  // namespace kova

#endif
