#include "engine/output_number.h"

#include <gtest/gtest.h>

#include <limits>

#include "engine/case_store.h"

namespace kova::engine {
namespace {

constexpr double kDay = 86400;

std::string shown(double value, FormatType type, int decimals, int width = 12) {
  return numberText(value, Format{type, width, decimals});
}

TEST(NumberText, EveryFormat) {
  EXPECT_EQ(shown(1234.5, FormatType::kF, 2), "1234.50");
  EXPECT_EQ(shown(1234.5, FormatType::kE, 2), "1.23E+03");
  EXPECT_EQ(shown(1234567.5, FormatType::kCOMMA, 1), "1,234,567.5");
  EXPECT_EQ(shown(1234567.5, FormatType::kDOT, 1), "1.234.567,5");
  EXPECT_EQ(shown(12.5, FormatType::kPCT, 1), "12.5%");
  EXPECT_EQ(shown(42, FormatType::kN, 0, 6), "000042");
  EXPECT_EQ(shown(19782 * kDay, FormatType::kDATE, 0), "2024-02-29");
  EXPECT_EQ(shown(90061, FormatType::kTIME, 0), "25:01:01");
  EXPECT_EQ(shown(19782 * kDay + 3661, FormatType::kDATETIME, 0), "2024-02-29 01:01:01");
}

TEST(NumberText, Signs) {
  EXPECT_EQ(shown(-1234567, FormatType::kCOMMA, 0), "-1,234,567");
  EXPECT_EQ(shown(-123, FormatType::kCOMMA, 0), "-123");
  EXPECT_EQ(shown(-42, FormatType::kN, 0, 5), "-0042");
  EXPECT_EQ(shown(-0.001, FormatType::kF, 2), "0.00") << "no sign without an amount";
  EXPECT_EQ(shown(-0.0, FormatType::kF, 0), "0");
  EXPECT_EQ(shown(-3661, FormatType::kTIME, 0), "-01:01:01");
  EXPECT_EQ(shown(-1, FormatType::kDATE, 0), "1969-12-31");
}

TEST(NumberText, EndsOfTheRange) {
  EXPECT_EQ(shown(kSystemMissing, FormatType::kF, 2), ".");
  EXPECT_EQ(shown(std::numeric_limits<double>::quiet_NaN(), FormatType::kDATE, 0), ".");
  EXPECT_EQ(shown(std::numeric_limits<double>::infinity(), FormatType::kF, 2), "\u221E");
  EXPECT_EQ(shown(-std::numeric_limits<double>::infinity(), FormatType::kPCT, 2), "-\u221E");
  EXPECT_EQ(shown(999999999999999, FormatType::kF, 0), "999999999999999");
  EXPECT_EQ(shown(1e15, FormatType::kF, 2), "1.00E+15");
  EXPECT_EQ(shown(1e15, FormatType::kCOMMA, 0), "1E+15");
  EXPECT_EQ(shown(1e300, FormatType::kTIME, 0), "1.00E+300");
  EXPECT_EQ(shown(253402300799, FormatType::kDATE, 0), "9999-12-31");
  EXPECT_EQ(shown(253402300800, FormatType::kDATE, 0), "253402300800") << "no calendar has it";
  EXPECT_EQ(shown(-62135596800, FormatType::kDATE, 0), "0001-01-01");
}

TEST(NumberText, SmallAmounts) {
  const Format three{FormatType::kF, 8, 3};
  EXPECT_EQ(numberText(0.0004, NumberStyle{"", three, SmallAmount::kAsZero}), "0.000");
  EXPECT_EQ(numberText(0.0004, NumberStyle{"", three, SmallAmount::kExponent}), "4.000E-04");
  EXPECT_EQ(numberText(0.0004, NumberStyle{"", three, SmallAmount::kBelow}), "<0.001");
  EXPECT_EQ(numberText(0.0, NumberStyle{"", three, SmallAmount::kBelow}), "0.000");
  EXPECT_EQ(numberText(0.0005001, NumberStyle{"", three, SmallAmount::kBelow}), "0.001");
  EXPECT_EQ(numberText(kSystemMissing, NumberStyle{"", three, SmallAmount::kBelow}), ".");
}

TEST(ShortNumberText, IsAsShortAsItGoes) {
  EXPECT_EQ(shortNumberText(3), "3");
  EXPECT_EQ(shortNumberText(0.1), "0.1");
  EXPECT_EQ(shortNumberText(-2.5), "-2.5");
  EXPECT_EQ(shortNumberText(0.00001), "0.00001");
  EXPECT_EQ(shortNumberText(1e-7), "1E-07");
  EXPECT_EQ(shortNumberText(1e20), "1E+20");
  EXPECT_EQ(shortNumberText(-0.0), "0");
  EXPECT_EQ(shortNumberText(kSystemMissing), ".");
}

}  // namespace
}  // namespace kova::engine
