#include "engine/text_rules.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "engine/text_file.h"

namespace kova::engine {
namespace {

constexpr std::string_view kReservedWords[] = {"ALL", "AND", "BY",  "EQ", "GE", "GT",  "LE",
                                               "LT",  "NE",  "NOT", "OR", "TO", "WITH"};

struct Range {
  char32_t first;
  char32_t last;
};

// What is no letter beyond ASCII, in rising order.
constexpr Range kNoLetters[] = {
    {0x80, 0xA9},     {0xAB, 0xB4},     {0xB6, 0xB9},     {0xBB, 0xBF},       {0xD7, 0xD7},        {0xF7, 0xF7},
    {0x1680, 0x1680}, {0x2000, 0x20CF}, {0x2190, 0x2BFF}, {0x2E00, 0x2E7F},   {0x3000, 0x3004},    {0x3007, 0x3020},
    {0x3030, 0x3030}, {0xE000, 0xF8FF}, {0xFE10, 0xFE1F}, {0xFE30, 0xFE6F},   {0xFEFF, 0xFEFF},    {0xFF00, 0xFF20},
    {0xFF3B, 0xFF40}, {0xFF5B, 0xFF65}, {0xFFE0, 0xFFFF}, {0x1F000, 0x1FAFF}, {0xE0000, 0x10FFFF},
};

unsigned char lower(char character) {
  return static_cast<unsigned char>(character >= 'A' && character <= 'Z' ? character - 'A' + 'a' : character);
}

// Takes the first character off a text that is known to be UTF-8.
char32_t takeCharacter(std::string_view* text) {
  const auto first = static_cast<unsigned char>(text->front());
  const std::size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  char32_t character = length == 1 ? first : first & (0xFFU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i)
    character = (character << 6) | (static_cast<unsigned char>((*text)[i]) & 0x3FU);
  text->remove_prefix(length);
  return character;
}

bool isLetter(char32_t character) {
  if (character < 0x80) return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
  return std::none_of(std::begin(kNoLetters), std::end(kNoLetters),
                      [character](const Range& range) { return character >= range.first && character <= range.last; });
}

bool mayFollow(char32_t character) {
  constexpr std::u32string_view kOthers = U"0123456789._$#@";
  return isLetter(character) || kOthers.find(character) != std::u32string_view::npos;
}

NameFault faultOfName(std::string_view name) {
  if (findInvalidUtf8(name) != std::string_view::npos) return NameFault::kNotUtf8;
  if (name.empty()) return NameFault::kEmpty;
  if (name.size() > kLongestName) return NameFault::kTooLong;
  std::string_view rest = name;
  const char32_t first = takeCharacter(&rest);
  if (!isLetter(first) && first != '@') return NameFault::kBadStart;
  while (!rest.empty()) {
    if (!mayFollow(takeCharacter(&rest))) return NameFault::kBadCharacter;
  }
  return name.back() == '.' ? NameFault::kEndsInPeriod : NameFault::kNone;
}

ErrorCode codeOf(NameFault fault) {
  constexpr std::array kCodes = {
      ErrorCode::kNone,         ErrorCode::kNameEmpty,        ErrorCode::kNameTooManyBytes,
      ErrorCode::kNameBadStart, ErrorCode::kNameBadCharacter, ErrorCode::kNameEndsInPeriod,
      ErrorCode::kNameReserved, ErrorCode::kTextNotUtf8,
  };
  return kCodes.at(static_cast<std::size_t>(fault));
}

}  // namespace

bool sameName(std::string_view a, std::string_view b) {
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return lower(x) == lower(y); });
}

// FNV-1a.
std::size_t NameHash::operator()(std::string_view name) const {
  std::uint64_t hash = 0xCBF29CE484222325;
  for (const char character : name) hash = (hash ^ lower(character)) * 0x100000001B3;
  return static_cast<std::size_t>(hash);
}

ErrorCode checkText(std::string_view text) {
  if (text.find('\0') != std::string_view::npos) return ErrorCode::kTextWithNul;
  return findInvalidUtf8(text) == std::string_view::npos ? ErrorCode::kNone : ErrorCode::kTextNotUtf8;
}

NameFault faultOfVariableName(std::string_view name) {
  const NameFault fault = faultOfName(name);
  if (fault != NameFault::kNone) return fault;
  const auto isName = [name](std::string_view word) { return sameName(word, name); };
  const bool isReserved = std::any_of(std::begin(kReservedWords), std::end(kReservedWords), isName);
  return isReserved ? NameFault::kReserved : NameFault::kNone;
}

ErrorCode checkVariableName(std::string_view name) { return codeOf(faultOfVariableName(name)); }

ErrorCode checkAttributeName(std::string_view name) { return codeOf(faultOfName(name)); }

ErrorCode checkResponseSetName(std::string_view name) {
  if (name.empty()) return ErrorCode::kNameEmpty;
  if (name.size() > kLongestName) return ErrorCode::kNameTooManyBytes;
  if (name.front() != '$' || name.size() == 1) return ErrorCode::kNameBadStart;
  return codeOf(faultOfName(name.substr(1)));
}

std::string_view withoutEndBlanks(std::string_view text) {
  const auto last = text.find_last_not_of(' ');
  return last == std::string_view::npos ? std::string_view() : text.substr(0, last + 1);
}

}  // namespace kova::engine
