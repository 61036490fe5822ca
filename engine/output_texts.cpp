#include "engine/output_texts.h"

#include <algorithm>

namespace kova::engine {
namespace {

constexpr std::string_view kReplacement = "\uFFFD";
constexpr std::string_view kNextLine = "\u0085";

bool isControl(unsigned char byte) { return byte < 0x20 || byte == 0x7F; }

// The second set of control characters, U+0080 to U+009F; those that turn the direction of what follows, U+202A to
// U+202E and U+2066 to U+2069; and the two that are no characters, U+FFFE and U+FFFF.
bool isForbidden(std::string_view rest) {
  const auto at = [rest](std::size_t index) { return static_cast<unsigned char>(rest[index]); };
  if (rest.size() > 1 && at(0) == 0xC2) return at(1) < 0xA0;
  if (rest.size() < 3) return false;
  if (at(0) == 0xE2 && at(1) == 0x80) return at(2) >= 0xAA && at(2) <= 0xAE;
  if (at(0) == 0xE2 && at(1) == 0x81) return at(2) >= 0xA6 && at(2) <= 0xA9;
  return at(0) == 0xEF && at(1) == 0xBF && at(2) >= 0xBE;
}

// Nothing of it occurs in most texts.
bool isPresentable(std::string_view text) {
  return std::none_of(text.begin(), text.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return isControl(byte) || byte == 0xC2 || byte == 0xE2 || byte == 0xEF;
  });
}

}  // namespace

std::string presentable(std::string_view text) {
  if (isPresentable(text)) return std::string(text);
  std::string result;
  result.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    const std::string_view rest = text.substr(at);
    if (rest.front() == '\n' || rest.front() == '\r') {
      if (rest.starts_with("\r\n")) ++at;
      result += '\n';
    } else if (rest.front() == '\t') {
      result += ' ';
    } else if (isControl(static_cast<unsigned char>(rest.front()))) {
      result += kReplacement;
    } else if (isForbidden(rest)) {
      result += rest.starts_with(kNextLine) ? "\n" : kReplacement;
      at += rest.front() == '\xC2' ? 1 : 2;
    } else {
      result += rest.front();
    }
  }
  return result;
}

std::string onOneLine(std::string_view text) {
  std::string line = presentable(text);
  std::replace(line.begin(), line.end(), '\n', ' ');
  return line;
}

std::vector<std::string> linesOf(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const auto end = text.find('\n');
    lines.emplace_back(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
  return lines;
}

}  // namespace kova::engine
