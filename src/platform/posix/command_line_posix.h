// Arguments that come as one text.
#ifndef KOVADX_PLATFORM_POSIX_COMMAND_LINE_POSIX_H
#define KOVADX_PLATFORM_POSIX_COMMAND_LINE_POSIX_H

#include <string>
#include <vector>

namespace kova::os {

// The arguments in a text, as the C runtime library of Windows would take it apart: blanks and tabs that are not
// between double quotes separate them; a double quote begins or ends such a stretch, so that "" is an empty argument.
// 2n backslashes before a double quote stand for n, and the quote counts; 2n + 1 stand for n, and the quote is a part
// of the argument. All other backslashes stand for themselves.
std::vector<std::string> splitCommandLine(const std::string& text);

}  // namespace kova::os

#endif
