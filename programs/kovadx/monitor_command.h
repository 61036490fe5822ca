// "kovadx monitor": the live state of a pipe suite.
#ifndef KOVADX_PROGRAMS_KOVADX_MONITOR_COMMAND_H
#define KOVADX_PROGRAMS_KOVADX_MONITOR_COMMAND_H

#include "command_line.h"

namespace kova::program {

// Prints the state once a second, as often as was asked for or until the user asks to end. 0; 125 after a line on the
// error stream when somebody else looks at the suite, or what is printed can not be written.
int monitorCommand(const MonitorOptions& options);

}  // namespace kova::program

#endif
