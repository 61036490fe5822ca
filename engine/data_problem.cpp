#include "engine/data_problem.h"

namespace kova::engine {
namespace {

constexpr std::size_t kLongestQuote = 40;

// Cuts before a byte that continues a character, so that the rest is still UTF-8.
std::string_view cut(std::string_view text) {
  std::size_t length = kLongestQuote;
  while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) --length;
  return text.substr(0, length);
}

// Names, keys and paths of a file may hold line breaks and what a terminal obeys.
std::string withoutControls(std::string_view text) {
  std::string result(text);
  for (char& character : result) {
    const auto byte = static_cast<unsigned char>(character);
    if (byte < 0x20 || byte == 0x7F) character = '?';
  }
  return result;
}

}  // namespace

std::string problemLine(const FilePlace& place, std::string_view expected, std::string_view found) {
  std::string line = place.file;
  if (place.row > 0) line += ", row " + std::to_string(place.row) + ", column " + std::to_string(place.column);
  if (!place.part.empty()) line += " (" + place.part + ")";
  line += ": expected ";
  line += expected;
  if (!found.empty()) (line += ", found ") += found;
  return withoutControls(line);
}

std::string quotedText(std::string_view text) {
  if (text.empty()) return "nothing";
  const bool isLong = text.size() > kLongestQuote;
  return '"' + withoutControls(isLong ? cut(text) : text) + (isLong ? "...\"" : "\"");
}

}  // namespace kova::engine
