// Any text as a command line, split at its blanks, and any text as an argument that is quoted where it must be.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "config/XCmdArgument.h"

namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

std::string joined(XCmdArgument& arguments) {
  std::string text;
  for (int i = 0; arguments.argumentAt(i) != nullptr; ++i)
    text += (i == 0 ? "" : " ") + std::string(arguments.argumentAt(i));
  return text;
}

// The pieces, joined by single blanks, are the text again; a blank at its end is no piece.
void splitAndJoin(const std::string& text) {
  XCmdArgument arguments(text);
  const bool endsInBlank = !text.empty() && text.back() == ' ';
  require(joined(arguments) == (endsInBlank ? text.substr(0, text.size() - 1) : text));
  const int count = arguments.argc();
  char** const vector = arguments.argv();
  for (int i = 0; i < count; ++i) require(std::string(vector[i]) == arguments.argumentAt(i));
  require(vector == nullptr || vector[count] == nullptr);
}

// An argument with a blank is in quotes, and no "\" escapes the closing one. The command line is a blank and the
// argument.
void quote(const std::string& text) {
  XCmdArgument arguments;
  arguments.pushArgument(text, false);
  const std::string pushed = arguments.argumentAt(0);
  const bool own = text.find(' ') == std::string::npos || text.front() == '"' || text.front() == '\'';
  require(own ? pushed == text : pushed.front() == '"' && pushed.back() == '"' && pushed.find(text) == 1);
  require(arguments.cmdline() == ' ' + pushed);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Command lines are C strings.
  const std::string text(std::string(reinterpret_cast<const char*>(data), size).c_str());
  splitAndJoin(text);
  quote(text);
  return 0;
}
