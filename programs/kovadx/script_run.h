// "kovadx run --language": a script in a language whose runtime this process hosts, in itself or as a process of its
// own.
#ifndef KOVADX_PROGRAMS_KOVADX_SCRIPT_RUN_H
#define KOVADX_PROGRAMS_KOVADX_SCRIPT_RUN_H

#include <atomic>
#include <optional>
#include <string>
#include <vector>

#include "command_line.h"
#include "engine/engine.h"

namespace kova::program {

// Runs what prepareScript has given against the engine, with the configuration of the home folder, and gives the exit
// code: the script's own result when that is one, else kovadx's own after a line on the error stream. Nothing, after
// such a line, when the script was not run at all. The library's process-wide objects must be there. When the user asks
// for the end, which endRequested tells, and the script goes on, the process ends.
std::optional<int> runScript(const RunOptions& options, const std::string& home, const std::vector<std::string>& lines,
                             engine::Engine* engine, const std::atomic<bool>& endRequested);

}  // namespace kova::program

#endif
