// Makes and destroys the process-wide objects: the registry of hosts, the manager of pipe suites, the trace log.
//
// For one thread, before and after any other use of the library.
#ifndef KOVADX_API_INITDXGLOBAL_H
#define KOVADX_API_INITDXGLOBAL_H

#include <string>

#include "export.h"

// Makes the objects, with the folder for temporary files, the text of the process id that pipe names begin with, this
// instance's name and the engine's home folder (empty: as it is). The trace log is made once for the process, and
// opened only when the configuration names a folder for it. 0, also when all is there already: then nothing changes,
// not even the name. 8 when memory runs out.
KOVADX_API int InitDxGlobal(const std::string& tempPath, const std::string& pid, const std::string& xName,
                            const std::string& kovaHome);

// Destroys the registry and the pipe suites, and empties the instance's name; after it a new InitDxGlobal begins
// afresh. The trace log stays.
extern "C" KOVADX_API void FinalizeDXGlobal();

#endif
