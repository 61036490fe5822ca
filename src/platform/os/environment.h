// The environment of this process, and the two characters in which platforms write paths differently.
// Not locked: a process changes its environment on one thread.
#ifndef KOVADX_PLATFORM_OS_ENVIRONMENT_H
#define KOVADX_PLATFORM_OS_ENVIRONMENT_H

#include <cstdint>
#include <optional>
#include <string>

namespace kova::os {

// What separates the folders of a path, and the paths of a list, in a value that another program reads.
extern const char kPathSeparator;  // '\' or '/'
extern const char kListSeparator;  // ';' or ':'

// The value of a variable; nothing when it is not set.
std::optional<std::string> GetEnvironment(const std::string& name);

// Sets a variable to a copy of the value; an empty value removes it. 0, or why not.
std::uint32_t SetEnvironment(const std::string& name, const std::string& value);

}  // namespace kova::os

#endif
