#include "engine/number_text.h"

#include <bit>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>

#include "engine/case_store.h"

namespace kova::engine {
namespace {

constexpr double kLargestExact = 9007199254740992;  // 2^53; beyond it a double skips whole numbers.
constexpr std::int64_t kDaySeconds = 86400;
constexpr double kFirstDay = -719528.0 * kDaySeconds;  // 1 January of the year 0: a year has four digits.
constexpr double kLastDay = 2932896.0 * kDaySeconds;   // 31 December 9999.

// A negative zero is no whole number here: a text without a point would lose its sign.
bool isWholeWithin(double number, double least, double most) {
  return number >= least && number <= most && number == std::floor(number) && !(number == 0 && std::signbit(number));
}

void appendPlain(double number, std::string* text) {
  char area[32];
  const auto [end, error] = std::to_chars(area, area + sizeof area, number);
  text->append(area, end);
}

void appendWhole(std::int64_t number, std::string* text) {
  char area[32];
  const auto [end, error] = std::to_chars(area, area + sizeof area, number);
  text->append(area, end);
}

void appendAmount(double number, std::string* text) {
  if (std::isinf(number)) {
    text->append(number > 0 ? "INF" : "-INF");
  } else {
    appendPlain(number, text);
  }
}

void appendDay(std::int64_t days, std::string* text) {
  const std::chrono::year_month_day date{std::chrono::sys_days(std::chrono::days(days))};
  char area[32];
  std::snprintf(area, sizeof area, "%04d-%02u-%02u", static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                static_cast<unsigned>(date.day()));
  text->append(area);
}

void appendTime(std::int64_t seconds, std::string* text) {
  const auto whole = static_cast<int>(seconds);
  char area[48];
  std::snprintf(area, sizeof area, "%02d:%02d:%02d", whole / 3600, whole / 60 % 60, whole % 60);
  text->append(area);
}

void appendMoment(std::int64_t seconds, std::string* text) {
  const std::int64_t ofDay = (seconds % kDaySeconds + kDaySeconds) % kDaySeconds;
  appendDay((seconds - ofDay) / kDaySeconds, text);
  text->push_back('T');
  appendTime(ofDay, text);
}

}  // namespace

bool canBeWritten(FieldType type, double number) {
  switch (type) {
    case FieldType::kNumber:
      return number != kSystemMissing && !std::isnan(number);
    case FieldType::kInteger:
      return isWholeWithin(number, -kLargestExact, kLargestExact);
    case FieldType::kDate:
      return isWholeWithin(number, kFirstDay, kLastDay) && std::fmod(number, kDaySeconds) == 0;
    case FieldType::kTime:
      return isWholeWithin(number, 0, kDaySeconds - 1);
    case FieldType::kDateTime:
      return isWholeWithin(number, kFirstDay, kLastDay + kDaySeconds - 1);
    case FieldType::kBoolean:
    case FieldType::kString:
      break;
  }
  return false;
}

void appendNumber(FieldType type, double number, std::string* text) {
  switch (type) {
    case FieldType::kInteger:
      return appendWhole(static_cast<std::int64_t>(number), text);
    case FieldType::kDate:
      return appendDay(static_cast<std::int64_t>(number) / kDaySeconds, text);
    case FieldType::kTime:
      return appendTime(static_cast<std::int64_t>(number), text);
    case FieldType::kDateTime:
      return appendMoment(static_cast<std::int64_t>(number), text);
    case FieldType::kNumber:
    case FieldType::kBoolean:
    case FieldType::kString:
      return appendAmount(number, text);
  }
}

std::string numberText(FieldType type, double number) {
  std::string text;
  appendNumber(type, number, &text);
  return text;
}

std::string notANumberText(double number) {
  char digits[20];
  std::snprintf(digits, sizeof digits, "%016llx",
                static_cast<unsigned long long>(std::bit_cast<std::uint64_t>(number)));
  return std::string(kNotANumberMark) + digits;
}

}  // namespace kova::engine
