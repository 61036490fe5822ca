// The numbers that stand for measurement levels, roles, alignments and kinds of missing values in requests and replies.
#ifndef KOVADX_ENGINE_VALUE_CODES_H
#define KOVADX_ENGINE_VALUE_CODES_H

#include <optional>
#include <string_view>

namespace kova::engine {

// What may be done with a variable's values.
enum class Measure : int {
  kUnknown = 0,
  kNominal = 1,  // Names without an order.
  kOrdinal = 2,  // Names with an order.
  kScale = 3,    // Amounts.
};

// What a variable is for in an analysis.
enum class Role : int {
  kInput = 0,
  kTarget = 1,
  kBoth = 2,
  kNone = 3,
  kPartition = 4,
  kSplit = 5,
};

// Where a value stands in its column.
enum class Alignment : int {
  kLeft = 0,
  kRight = 1,
  kCenter = 2,
};

// The width of a variable's column on a screen, in characters.
constexpr int kUsualColumnWidth = 8;
constexpr int kWidestColumn = 255;

// The kind of a numeric variable's user-missing values. A string variable has 0 to 3 discrete ones, with the same
// numbers.
enum MissingKind : int {
  kNoMissing = 0,
  kOneMissing = 1,
  kTwoMissing = 2,
  kThreeMissing = 3,
  kMissingRange = -2,        // From the first value to the second.
  kMissingRangeAndOne = -3,  // That range, and the third value.
};

constexpr int kMostMissing = 3;
constexpr int kMissingTextBytes = 8;  // A string missing value is at most as long as one unit of a case.

// The words of data descriptions: "unknown", "nominal", "ordinal", "scale"; "input", "target", "both", "none",
// "partition", "split"; "left", "right", "center". Nothing for another word.
std::optional<Measure> measureOf(std::string_view word);
std::optional<Role> roleOf(std::string_view word);
std::optional<Alignment> alignmentOf(std::string_view word);

// The word of each.
std::string_view wordOf(Measure measure);
std::string_view wordOf(Role role);
std::string_view wordOf(Alignment alignment);

}  // namespace kova::engine

#endif
