#include "engine/field.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <limits>

#include "engine/case_store.h"

namespace kova::engine {
namespace {

constexpr std::int64_t kLargestExact = std::int64_t{1} << 53;  // Beyond it a double skips whole numbers.
constexpr double kDaySeconds = 86400;

// A '+' is legal before a number, but std::from_chars takes none.
std::string_view withoutPlus(std::string_view text) {
  const bool hasPlus = text.size() > 1 && text[0] == '+' && text[1] != '-';
  return hasPlus ? text.substr(1) : text;
}

// Tells of a number that no double can hold whether it is too close to 0 or too far from it.
bool isTooSmall(std::string_view text) {
  const std::size_t mark = std::min(text.find_first_of("eE"), text.size());
  const std::string_view tail = withoutPlus(text.substr(std::min(mark + 1, text.size())));
  std::int32_t exponent = 0;
  if (std::from_chars(tail.data(), tail.data() + tail.size(), exponent).ec == std::errc::result_out_of_range) {
    return tail.starts_with('-');
  }
  const auto point = static_cast<std::int64_t>(std::min(text.find('.'), mark));
  const auto firstDigit = static_cast<std::int64_t>(text.find_first_of("123456789"));
  return point - firstDigit + exponent < 0;
}

// All of the text as a number in hexadecimal digits.
template <typename Number>
std::optional<Number> hexadecimalOf(std::string_view text) {
  Number number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, 16);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

// Between the ways to write one, nothing but the bits tell two not-a-numbers apart.
std::optional<double> notANumberOf(std::string_view digits) {
  const auto bits = digits.size() == 16 ? hexadecimalOf<std::uint64_t>(digits) : std::nullopt;
  if (!bits || !std::isnan(std::bit_cast<double>(*bits))) return std::nullopt;
  return std::bit_cast<double>(*bits);
}

std::optional<double> amountOf(std::string_view text) {
  if (text == "NaN") return kSystemMissing;
  if (text == "INF") return std::numeric_limits<double>::infinity();
  if (text == "-INF") return -std::numeric_limits<double>::infinity();
  text = withoutPlus(text);
  double value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (stop != end) return std::nullopt;
  if (error == std::errc::result_out_of_range && isTooSmall(text)) return 0;
  // The number that stands for no value is none itself.
  if (error != std::errc() || !std::isfinite(value) || value == kSystemMissing) return std::nullopt;
  return value;
}

std::optional<double> wholeNumberOf(std::string_view text) {
  text = withoutPlus(text);
  std::int64_t value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || stop != end || value > kLargestExact || value < -kLargestExact) return std::nullopt;
  return static_cast<double>(value);
}

std::optional<double> truthOf(const Field& field, std::string_view text) {
  const auto among = [text](const std::vector<std::string>& texts) {
    return std::find(texts.begin(), texts.end(), text) != texts.end();
  };
  if (among(field.trueTexts)) return 1;
  if (among(field.falseTexts)) return 0;
  return std::nullopt;
}

// Exactly `count` digits at that place.
std::optional<int> digitsAt(std::string_view text, std::size_t place, std::size_t count) {
  if (text.size() < place + count) return std::nullopt;
  int value = 0;
  for (const char digit : text.substr(place, count)) {
    if (digit < '0' || digit > '9') return std::nullopt;
    value = value * 10 + (digit - '0');
  }
  return value;
}

// 2024-12-31
std::optional<double> dayOf(std::string_view text) {
  const auto year = digitsAt(text, 0, 4);
  const auto month = digitsAt(text, 5, 2);
  const auto day = digitsAt(text, 8, 2);
  if (!year || !month || !day || text.size() != 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
  const std::chrono::year_month_day date{std::chrono::year(*year), std::chrono::month(static_cast<unsigned>(*month)),
                                         std::chrono::day(static_cast<unsigned>(*day))};
  if (!date.ok()) return std::nullopt;
  return static_cast<double>(std::chrono::sys_days(date).time_since_epoch().count()) * kDaySeconds;
}

// 23:59:59, with a fraction if any
std::optional<double> timeOf(std::string_view text) {
  const auto hour = digitsAt(text, 0, 2);
  const auto minute = digitsAt(text, 3, 2);
  const auto second = digitsAt(text, 6, 2);
  if (!hour || !minute || !second || text[2] != ':' || text[5] != ':') return std::nullopt;
  if (*hour > 23 || *minute > 59 || *second > 59) return std::nullopt;
  double fraction = 0;
  if (text.size() > 8) {
    const std::string_view tail = text.substr(9);
    if (text[8] != '.' || tail.empty() || tail.find_first_not_of("0123456789") != std::string_view::npos) {
      return std::nullopt;
    }
    std::from_chars(text.data() + 8, text.data() + text.size(), fraction);
  }
  return *hour * 3600 + *minute * 60 + *second + fraction;
}

// 2024-12-31T23:59:59, with a Z if any
std::optional<double> momentOf(std::string_view text) {
  if (text.ends_with('Z')) text.remove_suffix(1);
  if (text.size() < 11 || text[10] != 'T') return std::nullopt;
  const auto day = dayOf(text.substr(0, 10));
  const auto time = timeOf(text.substr(11));
  if (!day || !time) return std::nullopt;
  return *day + *time;
}

}  // namespace

bool Field::meansNoValue(std::string_view text) const {
  return std::find(noValue.begin(), noValue.end(), text) != noValue.end();
}

std::optional<double> numberOf(const Field& field, std::string_view text) {
  switch (field.type) {
    case FieldType::kNumber:
      return field.hasNotANumber && text.starts_with(kNotANumberMark)
                 ? notANumberOf(text.substr(kNotANumberMark.size()))
                 : amountOf(text);
    case FieldType::kInteger:
      return wholeNumberOf(text);
    case FieldType::kBoolean:
      return truthOf(field, text);
    case FieldType::kDate:
      return dayOf(text);
    case FieldType::kTime:
      return timeOf(text);
    case FieldType::kDateTime:
      return momentOf(text);
    case FieldType::kString:
      break;
  }
  return std::nullopt;
}

std::optional<std::string> withoutEscapes(std::string_view text) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      bytes += text[i];
      continue;
    }
    const std::string_view digits = text.substr(i + 1, 2);
    const auto byte = digits.size() == 2 ? hexadecimalOf<std::uint8_t>(digits) : std::nullopt;
    if (!byte) return std::nullopt;
    bytes += static_cast<char>(*byte);
    i += 2;
  }
  return bytes;
}

std::string expectationOf(const Field& field) {
  switch (field.type) {
    case FieldType::kNumber:
      return "a number";
    case FieldType::kInteger:
      return "a whole number";
    case FieldType::kBoolean:
      return "true or false, as " + field.trueTexts.front() + " or " + field.falseTexts.front();
    case FieldType::kDate:
      return "a day, as 2024-12-31";
    case FieldType::kTime:
      return "a time, as 23:59:59";
    case FieldType::kDateTime:
      return "a day and a time, as 2024-12-31T23:59:59";
    case FieldType::kString:
      break;
  }
  return "a text";
}

}  // namespace kova::engine
