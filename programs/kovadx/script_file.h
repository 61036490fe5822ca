// The file of a script.
#ifndef KOVADX_PROGRAMS_KOVADX_SCRIPT_FILE_H
#define KOVADX_PROGRAMS_KOVADX_SCRIPT_FILE_H

#include <string>
#include <vector>

namespace kova::program {

// Reads the lines of a script: UTF-8 without NUL bytes; a byte order mark and the carriage returns of line ends are
// left out. False, after a line on the error stream, when that can not be done.
bool readScript(const std::string& path, std::vector<std::string>* lines);

}  // namespace kova::program

#endif
