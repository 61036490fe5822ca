#include "platform/os/environment.h"

#include <cstdlib>

#include "platform/win32/system_win32.h"

namespace kova::os {

const char kPathSeparator = '\\';
const char kListSeparator = ';';

std::optional<std::string> GetEnvironment(const std::string& name) {
  std::string value(128, '\0');
  for (;;) {
    SetLastError(ERROR_SUCCESS);
    const DWORD length = GetEnvironmentVariableA(name.c_str(), value.data(), static_cast<DWORD>(value.size()));
    if (length == 0 && GetLastError() != ERROR_SUCCESS) return std::nullopt;
    const bool fits = length < value.size();
    value.resize(length);  // Without room the length counts the end character, which the next try needs.
    if (fits) return value;
  }
}

std::uint32_t SetEnvironment(const std::string& name, const std::string& value) {
  if (name.empty() || name.find('=') != std::string::npos) return ERROR_INVALID_PARAMETER;
  // The C library's call keeps its own copy and the system's the same, so that getenv and child processes agree.
  return _putenv_s(name.c_str(), value.c_str()) == 0 ? 0 : lastError();
}

}  // namespace kova::os
