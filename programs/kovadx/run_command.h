// "kovadx run": an engine, and a program that talks to it.
#ifndef KOVADX_PROGRAMS_KOVADX_RUN_COMMAND_H
#define KOVADX_PROGRAMS_KOVADX_RUN_COMMAND_H

#include "command_line.h"

namespace kova::program {

// Reads the data, starts the program, serves it until it ends, and gives its exit code, or one of kovadx's own after a
// line on the error stream. To be called once, on the main thread: the program is tied to it.
int runCommand(const RunOptions& options);

}  // namespace kova::program

#endif
