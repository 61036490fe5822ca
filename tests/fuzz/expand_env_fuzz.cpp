// Any lines "KEY=VALUE" as the entries of an option set: their "%NAME%" references are expanded, and that ends within
// the stated bounds.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "config/XConfigOptions.h"
#include "config/text_utilities.h"

namespace {

constexpr std::size_t kMostExpanded = 64 * 1024;

void require(bool condition) {
  if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  XConfigOptions options("FUZZ");
  for (const std::string& line : GetListFromDelims({reinterpret_cast<const char*>(data), size}, "\n")) {
    const std::string key = line.substr(0, line.find('='));
    const std::string value = key.size() == line.size() ? std::string() : line.substr(key.size() + 1);
    options.PutOption(key, value);
    require(options.GetOption(key) == value);
    if (XConfigOptions::IsDefinedKey(key)) {
      require(options.GetXEnvVars().count(key) == 0);
      continue;
    }
    const std::string& expanded = options.GetXEnvVars().at(key);
    require(value.find('%') != std::string::npos || expanded == value);
    require(expanded.size() <= (value.size() > kMostExpanded ? value.size() : kMostExpanded));
  }
  return 0;
}
