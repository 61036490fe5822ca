#include "explain_command.h"

#include <charconv>
#include <cstdio>

#include "command_line.h"
#include "message/error_codes.h"

namespace kova::program {
namespace {

constexpr int kNotKnown = 1;

constexpr int kCodes[] = {
#define KOVA_ERROR(code, name, happened, advice) code,
#include "message/error_codes.def"
#undef KOVA_ERROR
};

void explain(int code) {
  std::printf("%d %s\n  %s\n  %s\n", code, errorName(code), errorMeaning(code), errorAdvice(code));
}

}  // namespace

int explainCommand(const std::string& text) {
  if (text.empty()) {
    for (const int code : kCodes) explain(code);
    return 0;
  }
  int code = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), code);
  if (error != std::errc() || end != text.data() + text.size()) {
    printError("expected a number, found \"" + text + "\"");
    return kOwnFailure;
  }
  if (*errorName(code) == '\0') {
    printError("the code " + text + " is not known here; it is the engine's or the system's own");
    return kNotKnown;
  }
  explain(code);
  return 0;
}

}  // namespace kova::program
