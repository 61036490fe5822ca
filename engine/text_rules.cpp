#include "engine/text_rules.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>

#include "engine/text_file.h"

namespace kova::engine {
namespace {

constexpr std::string_view kReservedWords[] = {"ALL", "AND", "BY",  "EQ", "GE", "GT",  "LE",
                                               "LT",  "NE",  "NOT", "OR", "TO", "WITH"};

struct Range {
  char32_t first;
  char32_t last;
};

constexpr Range kNoLetters[] = {
#define KOVA_NO_LETTER(first, last) {first, last},
#include "engine/text_letters.def"
#undef KOVA_NO_LETTER
};

constexpr Range kMarks[] = {
#define KOVA_MARK(first, last) {first, last},
#include "engine/text_letters.def"
#undef KOVA_MARK
};

template <std::size_t count>
bool isIn(const Range (&ranges)[count], char32_t character) {
  const Range* const range = std::lower_bound(std::begin(ranges), std::end(ranges), character,
                                              [](const Range& before, char32_t value) { return before.last < value; });
  return range != std::end(ranges) && range->first <= character;
}

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
  return !isIn(kNoLetters, character);
}

bool mayBegin(char32_t character) { return (isLetter(character) && !isIn(kMarks, character)) || character == '@'; }

bool mayFollow(char32_t character) {
  constexpr std::u32string_view kOthers = U"0123456789._$#@";
  return isLetter(character) || kOthers.find(character) != std::u32string_view::npos;
}

NameFault faultOfName(std::string_view name) {
  if (findInvalidUtf8(name) != std::string_view::npos) return NameFault::kNotUtf8;
  if (name.empty()) return NameFault::kEmpty;
  if (name.size() > kLongestName) return NameFault::kTooLong;
  std::string_view rest = name;
  if (!mayBegin(takeCharacter(&rest))) return NameFault::kBadStart;
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
