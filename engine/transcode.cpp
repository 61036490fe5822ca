#include "engine/transcode.h"

#include "engine/text_file.h"

namespace kova::engine {
namespace {

// The characters of the bytes 0x80 to 0x9F; all others are their own number.
constexpr char16_t kFrom80[] = {
    0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178,
};

unsigned characterOf(unsigned char byte) { return byte >= 0x80 && byte <= 0x9F ? kFrom80[byte - 0x80] : byte; }

void append(unsigned character, std::string* text) {
  if (character < 0x80) {
    *text += static_cast<char>(character);
  } else if (character < 0x800) {
    *text += static_cast<char>(0xC0 | (character >> 6));
    *text += static_cast<char>(0x80 | (character & 0x3F));
  } else {
    *text += static_cast<char>(0xE0 | (character >> 12));
    *text += static_cast<char>(0x80 | ((character >> 6) & 0x3F));
    *text += static_cast<char>(0x80 | (character & 0x3F));
  }
}

}  // namespace

std::string toUtf8(std::string_view text) {
  if (findInvalidUtf8(text) == std::string_view::npos) return std::string(text);
  std::string result;
  result.reserve(text.size() * 2);
  for (const char byte : text) append(characterOf(static_cast<unsigned char>(byte)), &result);
  return result;
}

}  // namespace kova::engine
