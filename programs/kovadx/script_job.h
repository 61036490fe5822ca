// What a runtime is given for a script: the lines of most languages' scripts, one statement for R, a record for a Java
// extension.
#ifndef KOVADX_PROGRAMS_KOVADX_SCRIPT_JOB_H
#define KOVADX_PROGRAMS_KOVADX_SCRIPT_JOB_H

#include <optional>
#include <string>
#include <vector>

#include "command_line.h"

namespace kova::program {

// Whether the script's runtime is a process of its own: as the command line says, else as the language needs.
bool runsAsChild(const RunOptions& options);

// Whether such a runtime's process ends with the script's result, rather than telling it over its pipes.
bool endsWithResult(const RunOptions& options);

// Reads or finds the script and what its language needs besides. Nothing, after a line on the error stream, when that
// can not be done.
std::optional<std::vector<std::string>> prepareScript(const RunOptions& options, const std::string& home);

// Fills the process's Java record for the script, when it is a Java extension; before its runtime is started.
void fillJavaRecord(const RunOptions& options);

}  // namespace kova::program

#endif
