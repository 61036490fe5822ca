#include "api/start_options.h"

#include <algorithm>
#include <string_view>

namespace kova {
namespace {

// Cuts an option out of the text, with what ends its value; its value, which begins so many characters behind the
// prefix.
std::string takeOption(std::string* text, std::string_view prefix, char ending, std::size_t gap = 0) {
  const std::size_t begin = text->find(prefix);
  if (begin == std::string::npos) return {};
  const std::size_t valueBegin = std::min(begin + prefix.size() + gap, text->size());
  const std::size_t end = std::min(text->find(ending, valueBegin), text->size());
  std::string value = text->substr(valueBegin, end - valueBegin);
  text->erase(begin, end - begin + 1);
  return value;
}

}  // namespace

StartOptions parseStartOptions(const std::string& text) {
  StartOptions options;
  options.rest = text;
  options.kovaHome = takeOption(&options.rest, "-kovahome=", ',');
  options.language = takeOption(&options.rest, "-language=", ',');
  options.tempPath = takeOption(&options.rest, "-temppath", ' ', 1);
  return options;
}

}  // namespace kova
