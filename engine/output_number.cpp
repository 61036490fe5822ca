#include "engine/output_number.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>

#include "engine/case_store.h"

namespace kova::engine {
namespace {

constexpr double kLargestPlain = 1e15;
constexpr double kSecondsOfDay = 86400;
constexpr double kMostDays = 2932896;  // From 1 January 1970 to 31 December 9999.
constexpr double kFewestDays = -719162;

std::string digits(double value, std::chars_format shape, int decimals) {
  char text[400];
  const auto end = std::to_chars(std::begin(text), std::end(text), value, shape, decimals).ptr;
  return {text, end};
}

bool isZero(const std::string& text) { return text.find_first_of("123456789") == std::string::npos; }

std::string scientific(double value, int decimals) {
  std::string text = digits(value, std::chars_format::scientific, decimals);
  std::replace(text.begin(), text.end(), 'e', 'E');
  return text;
}

// Never "-0.0".
std::string fixed(double value, int decimals) {
  if (std::fabs(value) >= kLargestPlain) return scientific(value, decimals);
  std::string text = digits(value, std::chars_format::fixed, decimals);
  if (text.front() == '-' && isZero(text)) text.erase(0, 1);
  return text;
}

std::string grouped(double value, int decimals, char thousands, char point) {
  std::string text = fixed(value, decimals);
  if (text.find('E') != std::string::npos) return text;
  const auto dot = text.find('.');
  if (dot != std::string::npos) text[dot] = point;
  const std::size_t first = text.front() == '-' ? 1 : 0;
  for (std::size_t at = dot == std::string::npos ? text.size() : dot; at > first + 3;) {
    at -= 3;
    text.insert(at, 1, thousands);
  }
  return text;
}

std::string filledUp(double value, int width) {
  std::string text = fixed(value, 0);
  const std::size_t first = text.front() == '-' ? 1 : 0;
  const auto wanted = static_cast<std::size_t>(width);
  if (text.size() < wanted) text.insert(first, wanted - text.size(), '0');
  return text;
}

std::string dayText(double days) {
  using namespace std::chrono;
  const year_month_day date{sys_days{std::chrono::days{static_cast<int>(days)}}};
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02u-%02u", static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                static_cast<unsigned>(date.day()));
  return text;
}

// Hours may pass 24: a time may be a duration.
std::string timeText(double seconds) {
  if (std::fabs(seconds) >= kLargestPlain) return scientific(seconds, 2);
  const auto whole = static_cast<std::int64_t>(std::fabs(seconds) + 0.5);
  char text[64];
  std::snprintf(text, sizeof text, "%s%02lld:%02d:%02d", seconds < 0 && whole > 0 ? "-" : "",
                static_cast<long long>(whole / 3600), static_cast<int>(whole / 60 % 60), static_cast<int>(whole % 60));
  return text;
}

std::string dateText(double seconds, bool withTime) {
  const double days = std::floor(seconds / kSecondsOfDay);
  if (days < kFewestDays || days > kMostDays) return shortNumberText(seconds);
  if (!withTime) return dayText(days);
  return dayText(days) + " " + timeText(std::floor(seconds - days * kSecondsOfDay));
}

}  // namespace

std::string numberText(double value, const Format& format) {
  if (value == kSystemMissing || std::isnan(value)) return ".";
  if (std::isinf(value)) return value > 0 ? "\u221E" : "-\u221E";
  switch (format.type) {
    case FormatType::kE:
      return scientific(value, format.decimals);
    case FormatType::kCOMMA:
      return grouped(value, format.decimals, ',', '.');
    case FormatType::kDOT:
      return grouped(value, format.decimals, '.', ',');
    case FormatType::kPCT:
      return fixed(value, format.decimals) + "%";
    case FormatType::kN:
      return filledUp(value, format.width);
    case FormatType::kDATE:
      return dateText(value, false);
    case FormatType::kTIME:
      return timeText(value);
    case FormatType::kDATETIME:
      return dateText(value, true);
    default:
      return fixed(value, format.decimals);
  }
}

std::string numberText(double value, const NumberStyle& style) {
  std::string text = numberText(value, style.format);
  if (style.small == SmallAmount::kAsZero || value == 0 || !isZero(text) || !std::isfinite(value) ||
      value == kSystemMissing) {
    return text;
  }
  if (style.small == SmallAmount::kExponent) return scientific(value, style.format.decimals);
  return "<" + fixed(std::pow(10.0, -style.format.decimals), style.format.decimals);
}

std::string shortNumberText(double value) {
  if (value == kSystemMissing || std::isnan(value)) return ".";
  if (std::isinf(value)) return numberText(value, Format{});
  if (value == 0) return "0";
  char text[64];
  const bool plain = std::fabs(value) < kLargestPlain && std::fabs(value) >= 1e-5;
  const auto shape = plain ? std::chars_format::fixed : std::chars_format::scientific;
  std::string shortest(text, std::to_chars(std::begin(text), std::end(text), value, shape).ptr);
  std::replace(shortest.begin(), shortest.end(), 'e', 'E');
  return shortest;
}

}  // namespace kova::engine
