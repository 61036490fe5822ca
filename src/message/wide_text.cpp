#include "message/wide_text.h"

#include <cstdint>

namespace kova {
namespace {

constexpr std::uint32_t kReplacement = 0xFFFD;
constexpr std::uint32_t kFirstSupplementary = 0x10000;
constexpr std::uint32_t kLastCharacter = 0x10FFFF;
constexpr std::uint32_t kHighSurrogate = 0xD800;
constexpr std::uint32_t kLowSurrogate = 0xDC00;

void appendCharacter(std::basic_string<WideUnit>& units, std::uint32_t character) {
  if (character > kLastCharacter) character = kReplacement;
  if (character < kFirstSupplementary) {
    units.push_back(static_cast<WideUnit>(character));
    return;
  }
  const std::uint32_t offset = character - kFirstSupplementary;
  units.push_back(static_cast<WideUnit>(kHighSurrogate + (offset >> 10)));
  units.push_back(static_cast<WideUnit>(kLowSurrogate + (offset & 0x3FF)));
}

}  // namespace

std::basic_string<WideUnit> wideUnits(const wchar_t* text) {
  if constexpr (std::is_same_v<WideUnit, wchar_t>) {
    return std::basic_string<WideUnit>(reinterpret_cast<const WideUnit*>(text));
  } else {
    std::basic_string<WideUnit> units;
    for (; *text != L'\0'; ++text) appendCharacter(units, static_cast<std::uint32_t>(*text));
    return units;
  }
}

std::size_t wideLength(const WideUnit* text, std::size_t limit) {
  std::size_t length = 0;
  while (length < limit && text[length] != 0) ++length;
  return length;
}

}  // namespace kova
