#include "engine/missing_values.h"

#include <gtest/gtest.h>

#include "engine/case_store.h"

namespace kova::engine {
namespace {

Variable numeric(int kind, std::array<double, kMostMissing> values) {
  Variable variable;
  variable.missing = {kind, values, {}};
  return variable;
}

TEST(MissingNumbers, FollowTheKind) {
  struct Row {
    const char* label;
    Variable variable;
    double value;
    Missing missing;
  };
  const Row rows[] = {
      {"system-missing without codes", numeric(kNoMissing, {}), kSystemMissing, Missing::kSystem},
      {"system-missing within a range", numeric(kMissingRange, {kSystemMissing, 0, 0}), kSystemMissing,
       Missing::kSystem},
      {"no codes", numeric(kNoMissing, {1, 1, 1}), 1, Missing::kNone},
      {"the one", numeric(kOneMissing, {1, 2, 3}), 1, Missing::kUser},
      {"behind the one", numeric(kOneMissing, {1, 2, 3}), 2, Missing::kNone},
      {"the second of two", numeric(kTwoMissing, {1, 2, 3}), 2, Missing::kUser},
      {"the third of three", numeric(kThreeMissing, {1, 2, 3}), 3, Missing::kUser},
      {"-0.0 is not 0.0", numeric(kOneMissing, {0.0, 0, 0}), -0.0, Missing::kNone},
      {"-0.0 lies in a range", numeric(kMissingRange, {-1, 1, 0}), -0.0, Missing::kUser},
      {"the range's ends", numeric(kMissingRange, {-1, 1, 0}), 1, Missing::kUser},
      {"outside the range", numeric(kMissingRange, {-1, 1, 99}), 99, Missing::kNone},
      {"the one beside the range", numeric(kMissingRangeAndOne, {-1, 1, 99}), 99, Missing::kUser},
      {"the range beside the one", numeric(kMissingRangeAndOne, {-1, 1, 99}), 0.5, Missing::kUser},
  };
  for (const Row& row : rows) EXPECT_EQ(missingOf(row.variable, row.value), row.missing) << row.label;
}

TEST(MissingTexts, AreComparedWithoutTheirEndBlanks) {
  Variable variable;
  variable.width = 12;
  variable.missing = {kTwoMissing, {}, {"AB", "", "C"}};
  EXPECT_EQ(missingOf(variable, "AB          "), Missing::kUser);
  EXPECT_EQ(missingOf(variable, "AB         x"), Missing::kNone);
  EXPECT_EQ(missingOf(variable, "            "), Missing::kUser) << "blanks alone are the empty text";
  EXPECT_EQ(missingOf(variable, "C           "), Missing::kNone) << "the third place is not in use";
  variable.missing = {};
  EXPECT_EQ(missingOf(variable, ""), Missing::kNone);
}

}  // namespace
}  // namespace kova::engine
