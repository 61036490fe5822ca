// What a new process takes over as text: one command line, and one block with its environment.
#ifndef KOVADX_PLATFORM_WIN32_COMMAND_LINE_WIN32_H
#define KOVADX_PLATFORM_WIN32_COMMAND_LINE_WIN32_H

#include <string>
#include <utility>
#include <vector>

namespace kova::os {

// Where the program lies that a new process is to be made of, found as the system would find the first word of a
// command line; the name itself when there is none.
std::string programFile(const std::string& name);

// The command line that the C runtime library takes apart into exactly these arguments again.
std::string commandLine(const std::string& program, const std::vector<std::string>& arguments);

// This process's environment with the changes, in the form that a new process gets it in; an empty value removes.
std::wstring environmentBlock(const std::vector<std::pair<std::string, std::string>>& changes);

}  // namespace kova::os

#endif
