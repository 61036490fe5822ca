// An environment of its own, empty at first, for each process that the backend knows.
#include "platform/os/environment.h"

#include <map>

#include "tests/os_fake/fake_kernel.h"

namespace kova::os {

using fake::Call;

const char kPathSeparator = '/';
const char kListSeparator = ':';

namespace {

std::map<std::string, std::string>& variables() { return fake::currentThread()->process->environment; }

}  // namespace

std::optional<std::string> GetEnvironment(const std::string& name) {
  const Call call("GetEnvironment", name.c_str());
  if (call.failure()) return std::nullopt;
  const auto found = variables().find(name);
  if (found == variables().end()) return std::nullopt;
  return found->second;
}

std::uint32_t SetEnvironment(const std::string& name, const std::string& value) {
  const Call call("SetEnvironment", name.c_str());
  if (call.failure()) return *call.failure();
  if (value.empty()) {
    variables().erase(name);
  } else {
    variables()[name] = value;
  }
  return 0;
}

}  // namespace kova::os
