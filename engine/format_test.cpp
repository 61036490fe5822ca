#include "engine/format.h"

#include <gtest/gtest.h>

#include "engine/value_codes.h"

namespace kova::engine {
namespace {

TEST(Format, ReadsAndWritesTexts) {
  struct Row {
    const char* text;
    Format format;
    const char* written;
  };
  const Row rows[] = {
      {"F8.1", {FormatType::kF, 8, 1}, "F8.1"},
      {"f8", {FormatType::kF, 8, 0}, "F8.0"},
      {"F40.16", {FormatType::kF, 40, 16}, "F40.16"},
      {"comma12.2", {FormatType::kCOMMA, 12, 2}, "COMMA12.2"},
      {"A9", {FormatType::kA, 9, 0}, "A9"},
      {"A32767", {FormatType::kA, 32767, 0}, "A32767"},
      {"DATE10", {FormatType::kDATE, 10, 0}, "DATE10"},
      {"DateTime19", {FormatType::kDATETIME, 19, 0}, "DATETIME19"},
  };
  for (const Row& row : rows) {
    const auto format = parseFormat(row.text);
    ASSERT_TRUE(format.has_value()) << row.text;
    EXPECT_EQ(*format, row.format) << row.text;
    EXPECT_EQ(formatText(*format), row.written);
  }
}

TEST(Format, RefusesOtherTexts) {
  for (const char* text : {"", "F", "8.1", "F0", "F41", "F8.", "F8.8", "F20.17", "F8.1x", "F-8", "F8.-1", "A0",
                           "A32768", "A9.1", "DATE10.2", "X8", "F99999999999", "F 8"}) {
    EXPECT_FALSE(parseFormat(text).has_value()) << text;
  }
}

TEST(ValueCodes, KnowTheWordsOfDescriptions) {
  EXPECT_EQ(measureOf("scale"), Measure::kScale);
  EXPECT_EQ(measureOf("Scale"), std::nullopt);
  EXPECT_EQ(roleOf("partition"), Role::kPartition);
  EXPECT_EQ(roleOf(""), std::nullopt);
}

}  // namespace
}  // namespace kova::engine
