#include "engine/field.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstdio>
#include <limits>

#include "engine/case_store.h"

namespace kova::engine {
namespace {

Field fieldOf(FieldType type) {
  Field field;
  field.type = type;
  field.trueTexts = {"true", "yes"};
  field.falseTexts = {"false"};
  return field;
}

struct Row {
  FieldType type;
  const char* text;
  std::optional<double> value;
};

TEST(Field, ReadsNumbers) {
  const Row rows[] = {
      {FieldType::kNumber, "39.1", 39.1},
      {FieldType::kNumber, "-1e3", -1000.0},
      {FieldType::kNumber, "+2", 2.0},
      {FieldType::kNumber, ".5", 0.5},
      {FieldType::kNumber, "NaN", kSystemMissing},
      {FieldType::kNumber, "", std::nullopt},
      {FieldType::kNumber, "39,1", std::nullopt},
      {FieldType::kNumber, " 1", std::nullopt},
      {FieldType::kNumber, "1 ", std::nullopt},
      {FieldType::kNumber, "+-1", std::nullopt},
      {FieldType::kNumber, "+", std::nullopt},
      {FieldType::kNumber, "INF", std::numeric_limits<double>::infinity()},
      {FieldType::kNumber, "-INF", -std::numeric_limits<double>::infinity()},
      {FieldType::kNumber, "inf", std::nullopt},
      {FieldType::kNumber, "infinity", std::nullopt},
      {FieldType::kNumber, "nan", std::nullopt},
      {FieldType::kNumber, "NaN:7ff8000000000000", std::nullopt},
      {FieldType::kNumber, "1e999", std::nullopt},
      {FieldType::kNumber, "-1e99999999999999999999", std::nullopt},
      {FieldType::kNumber, "1e-400", 0.0},
      {FieldType::kNumber, "-12.5E-400", 0.0},
      {FieldType::kNumber, "1e-99999999999999999999", 0.0},
      {FieldType::kNumber, "1e-320", 1e-320},
      {FieldType::kNumber, "1e-400x", std::nullopt},
      {FieldType::kNumber, "-1.7976931348623157e308", std::nullopt},
      {FieldType::kNumber, "-1.7976931348623155e308", -1.7976931348623155e308},
      {FieldType::kNumber, "0x10", std::nullopt},
      {FieldType::kInteger, "181", 181.0},
      {FieldType::kInteger, "-7", -7.0},
      {FieldType::kInteger, "+7", 7.0},
      {FieldType::kInteger, "9007199254740992", 9007199254740992.0},
      {FieldType::kInteger, "9007199254740993", std::nullopt},
      {FieldType::kInteger, "99999999999999999999", std::nullopt},
      {FieldType::kInteger, "1.0", std::nullopt},
      {FieldType::kInteger, "NaN", std::nullopt},
      {FieldType::kBoolean, "yes", 1.0},
      {FieldType::kBoolean, "false", 0.0},
      {FieldType::kBoolean, "True", std::nullopt},
  };
  for (const Row& row : rows) EXPECT_EQ(numberOf(fieldOf(row.type), row.text), row.value) << row.text;
}

TEST(Field, ReadsNotANumbersByTheirBitsWhereItHasThem) {
  Field field = fieldOf(FieldType::kNumber);
  field.hasNotANumber = true;
  for (const std::uint64_t bits : {0x7FF8000000000000U, 0xFFF8000000000001U, 0x7FF0000000000001U}) {
    char text[32];
    std::snprintf(text, sizeof text, "NaN:%016llx", static_cast<unsigned long long>(bits));
    EXPECT_EQ(std::bit_cast<std::uint64_t>(numberOf(field, text).value_or(0)), bits) << text;
  }
  EXPECT_EQ(numberOf(field, "NaN"), kSystemMissing);
  for (const char* text : {"NaN:", "NaN:7ff8", "NaN:7ff0000000000000", "NaN:7ff800000000000g", "NaN:3ff0000000000000",
                           "NaN:7ff80000000000000"}) {
    EXPECT_EQ(numberOf(field, text), std::nullopt) << text;
  }
}

TEST(Field, EscapesStandForBytes) {
  EXPECT_EQ(withoutEscapes("a%25%c3%C3 %00"), std::string("a%\xC3\xC3 \0", 6));
  for (const char* text : {"%", "%4", "%zz", "%4z", "%-1", "a%%"})
    EXPECT_EQ(withoutEscapes(text), std::nullopt) << text;
}

TEST(Field, TellsTinyNumbersFromHugeOnesByAllTheirDigits) {
  const Field number = fieldOf(FieldType::kNumber);
  const std::string zeros(400, '0');
  EXPECT_EQ(numberOf(number, "0." + zeros + "1"), 0.0);
  EXPECT_EQ(numberOf(number, "0." + zeros + "1e+10"), 0.0);
  EXPECT_EQ(numberOf(number, "1" + zeros + "e-800"), 0.0);
  EXPECT_EQ(numberOf(number, "1" + zeros), std::nullopt);
  EXPECT_EQ(numberOf(number, "1" + zeros + "e-10"), std::nullopt);
}

TEST(Field, ReadsDaysAndTimesAsSeconds) {
  const Row rows[] = {
      {FieldType::kDate, "1970-01-01", 0.0},
      {FieldType::kDate, "1970-01-02", 86400.0},
      {FieldType::kDate, "1969-12-31", -86400.0},
      {FieldType::kDate, "2024-02-29", 1709164800.0},
      {FieldType::kDate, "2023-02-29", std::nullopt},
      {FieldType::kDate, "2024-13-01", std::nullopt},
      {FieldType::kDate, "2024-1-1", std::nullopt},
      {FieldType::kDate, "2024/01/01", std::nullopt},
      {FieldType::kDate, "2024-01-01x", std::nullopt},
      {FieldType::kTime, "00:00:00", 0.0},
      {FieldType::kTime, "23:59:59", 86399.0},
      {FieldType::kTime, "01:00:00.25", 3600.25},
      {FieldType::kTime, "24:00:00", std::nullopt},
      {FieldType::kTime, "01:00", std::nullopt},
      {FieldType::kTime, "01:00:00.", std::nullopt},
      {FieldType::kTime, "01:00:00.2x", std::nullopt},
      {FieldType::kDateTime, "1970-01-02T00:00:01", 86401.0},
      {FieldType::kDateTime, "1970-01-01T12:00:00Z", 43200.0},
      {FieldType::kDateTime, "1970-01-01 12:00:00", std::nullopt},
      {FieldType::kDateTime, "1970-01-01", std::nullopt},
  };
  for (const Row& row : rows) EXPECT_EQ(numberOf(fieldOf(row.type), row.text), row.value) << row.text;
}

}  // namespace
}  // namespace kova::engine
