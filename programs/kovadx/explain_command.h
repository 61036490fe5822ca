// "kovadx explain": what an error code means.
#ifndef KOVADX_PROGRAMS_KOVADX_EXPLAIN_COMMAND_H
#define KOVADX_PROGRAMS_KOVADX_EXPLAIN_COMMAND_H

#include <string>

namespace kova::program {

// Prints the code's name, what has happened and what may be done. 0; 1 when the code is not known. Without a code
// (empty) it prints the whole table.
int explainCommand(const std::string& code);

}  // namespace kova::program

#endif
