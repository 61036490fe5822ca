// The rules that hold for every text and every name of a data set.
//
// Two names are the same when they differ in nothing but the case of the letters A to Z. A name has 1 to 64 bytes of
// UTF-8. A variable's begins with a letter or '@'; letters, digits and . _ $ # @ may follow, but it does not end in a
// period and is none of the reserved words. Beyond ASCII every character counts as a letter but controls, spaces,
// punctuation, symbols and private ones; a mark that combines with the letter before it can not begin a name.
#ifndef KOVADX_ENGINE_TEXT_RULES_H
#define KOVADX_ENGINE_TEXT_RULES_H

#include <cstddef>
#include <string>
#include <string_view>

#include "engine/error_codes.h"

namespace kova::engine {

constexpr std::size_t kLongestName = 64;

bool sameName(std::string_view a, std::string_view b);

// For tables whose keys are names.
struct NameHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view name) const;
};
struct NameEqual {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const { return sameName(a, b); }
};

// kNone; kTextNotUtf8 or kTextWithNul.
ErrorCode checkText(std::string_view text);

// What is wrong with a name. The numbers travel in replies and never move.
enum class NameFault : int {
  kNone = 0,
  kEmpty = 1,
  kTooLong = 2,
  kBadStart = 3,
  kBadCharacter = 4,
  kEndsInPeriod = 5,
  kReserved = 6,
  kNotUtf8 = 7,
};

NameFault faultOfVariableName(std::string_view name);

// The same rules as error codes: for variables; for attributes, which may be reserved words; for response sets, which
// have a '$' in front of a name and may be reserved words.
ErrorCode checkVariableName(std::string_view name);
ErrorCode checkAttributeName(std::string_view name);
ErrorCode checkResponseSetName(std::string_view name);

// A text without the blanks at its end, which mean nothing in a value.
std::string_view withoutEndBlanks(std::string_view text);

}  // namespace kova::engine

#endif
