#include "platform/os/environment.h"

#include <cstdlib>

#include "platform/posix/error_posix.h"

namespace kova::os {

const char kPathSeparator = '/';
const char kListSeparator = ':';

std::optional<std::string> GetEnvironment(const std::string& name) {
  const char* value = std::getenv(name.c_str());
  if (value == nullptr) return std::nullopt;
  return value;
}

std::uint32_t SetEnvironment(const std::string& name, const std::string& value) {
  const int result = value.empty() ? unsetenv(name.c_str()) : setenv(name.c_str(), value.c_str(), 1);
  return result == 0 ? kSuccess : lastError();
}

}  // namespace kova::os
