#include "engine/format.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace kova::engine {
namespace {

struct Row {
  FormatType type;
  std::string_view name;
  bool hasDecimals;
};

constexpr Row kRows[] = {
#define KOVA_FORMAT(code, name, hasDecimals) {FormatType::k##name, #name, hasDecimals},
#include "engine/formats.def"
#undef KOVA_FORMAT
};

const Row& rowOf(FormatType type) {
  return *std::find_if(std::begin(kRows), std::end(kRows) - 1, [type](const Row& row) { return row.type == type; });
}

const Row* rowNamed(std::string_view name) {
  const auto same = [name](const Row& row) {
    return std::equal(name.begin(), name.end(), row.name.begin(), row.name.end(),
                      [](char a, char b) { return std::toupper(static_cast<unsigned char>(a)) == b; });
  };
  const auto* found = std::find_if(std::begin(kRows), std::end(kRows), same);
  return found == std::end(kRows) ? nullptr : found;
}

// Takes a whole number of digits off the front of the text.
std::optional<int> takeNumber(std::string_view* text) {
  int value = 0;
  const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), value);
  if (error != std::errc() || value < 0) return std::nullopt;
  text->remove_prefix(static_cast<std::size_t>(end - text->data()));
  return value;
}

bool fits(const Format& format) {
  const int widest = format.isText() ? kWidestString : kWidestNumber;
  return format.width >= 1 && format.width <= widest && format.decimals <= kMostDecimals &&
         format.decimals < format.width;
}

}  // namespace

std::string formatText(const Format& format) {
  const Row& row = rowOf(format.type);
  std::string text = std::string(row.name) + std::to_string(format.width);
  if (row.hasDecimals) text += "." + std::to_string(format.decimals);
  return text;
}

std::optional<FormatType> formatTypeOf(int number) {
  for (const Row& row : kRows) {
    if (static_cast<int>(row.type) == number) return row.type;
  }
  return std::nullopt;
}

bool hasDecimals(FormatType type) { return rowOf(type).hasDecimals; }

std::optional<Format> parseFormat(std::string_view text) {
  const auto letters = text.find_first_of("0123456789");
  if (letters == std::string_view::npos) return std::nullopt;
  const Row* row = rowNamed(text.substr(0, letters));
  if (row == nullptr) return std::nullopt;
  text.remove_prefix(letters);
  const auto width = takeNumber(&text);
  if (!width) return std::nullopt;
  Format format{row->type, *width, 0};
  if (!text.empty()) {
    if (text.front() != '.' || !row->hasDecimals) return std::nullopt;
    text.remove_prefix(1);
    const auto decimals = takeNumber(&text);
    if (!decimals || !text.empty()) return std::nullopt;
    format.decimals = *decimals;
  }
  if (!fits(format)) return std::nullopt;
  return format;
}

}  // namespace kova::engine
