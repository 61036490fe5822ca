#include "engine/report_width.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace kova::engine {
namespace {

struct Range {
  std::uint32_t first;
  std::uint32_t last;
};

constexpr Range kZeroWidth[] = {
#define KOVA_ZERO_WIDTH(first, last) {first, last},
#include "engine/report_width.def"
#undef KOVA_ZERO_WIDTH
};

constexpr Range kDoubleWidth[] = {
#define KOVA_DOUBLE_WIDTH(first, last) {first, last},
#include "engine/report_width.def"
#undef KOVA_DOUBLE_WIDTH
};

template <std::size_t count>
bool isIn(const Range (&ranges)[count], std::uint32_t point) {
  const auto* const after =
      std::upper_bound(std::begin(ranges), std::end(ranges), point,
                       [](std::uint32_t value, const Range& range) { return value < range.first; });
  return after != std::begin(ranges) && point <= std::prev(after)->last;
}

std::size_t widthOf(std::uint32_t point) {
  if (point < 0x300) return 1;
  if (isIn(kZeroWidth, point)) return 0;
  return isIn(kDoubleWidth, point) ? 2 : 1;
}

struct Character {
  std::size_t bytes;
  std::size_t width;
};

// The first character of a text that is not empty.
Character firstOf(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t wanted = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  const std::size_t bytes = std::min(wanted, text.size());
  std::uint32_t point = bytes == 1 ? lead : lead & (0x7FU >> bytes);
  for (std::size_t i = 1; i < bytes; ++i) point = point << 6 | (static_cast<unsigned char>(text[i]) & 0x3FU);
  return {bytes, widthOf(point)};
}

// The bytes of the first characters that fit into `width` columns, at least one, with the marks that combine with them.
std::size_t fitting(std::string_view text, std::size_t width) {
  std::size_t bytes = 0;
  std::size_t taken = 0;
  while (bytes < text.size()) {
    const Character next = firstOf(text.substr(bytes));
    if (taken + next.width > width && taken > 0) break;
    bytes += next.bytes;
    taken += next.width;
  }
  return bytes;
}

// Calls `use` for each word; the blanks between words are dropped.
template <typename Use>
void eachWord(std::string_view line, Use use) {
  while (!line.empty()) {
    const auto start = line.find_first_not_of(' ');
    if (start == std::string_view::npos) return;
    line.remove_prefix(start);
    const std::string_view word = line.substr(0, line.find(' '));
    use(word);
    line.remove_prefix(word.size());
  }
}

void wrapLine(std::string_view text, std::size_t width, std::vector<std::string>* lines) {
  if (displayWidth(text) <= width) {
    lines->emplace_back(text);
    return;
  }
  std::string line;
  std::size_t lineWidth = 0;
  const auto close = [&] {
    lines->push_back(std::move(line));
    line.clear();
    lineWidth = 0;
  };
  eachWord(text, [&](std::string_view word) {
    std::size_t wordWidth = displayWidth(word);
    if (lineWidth > 0 && lineWidth + 1 + wordWidth > width) close();
    if (lineWidth > 0) line += ' ';
    for (; wordWidth > width; close()) {
      const std::size_t bytes = fitting(word, width);
      if (bytes == word.size()) break;
      line = word.substr(0, bytes);
      word.remove_prefix(bytes);
      wordWidth -= displayWidth(line);
    }
    line += word;
    lineWidth = displayWidth(line);
  });
  if (!line.empty()) close();
}

}  // namespace

std::size_t displayWidth(std::string_view text) {
  std::size_t width = 0;
  while (!text.empty()) {
    const Character next = firstOf(text);
    width += next.width;
    text.remove_prefix(next.bytes);
  }
  return width;
}

std::size_t widestWord(std::string_view text) {
  std::size_t widest = 0;
  while (!text.empty()) {
    const auto end = text.find('\n');
    eachWord(text.substr(0, end), [&widest](std::string_view word) { widest = std::max(widest, displayWidth(word)); });
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
  return widest;
}

std::vector<std::string> wrapped(std::string_view text, std::size_t width) {
  std::vector<std::string> lines;
  for (;;) {
    const auto end = text.find('\n');
    wrapLine(text.substr(0, end), std::max<std::size_t>(width, 1), &lines);
    if (end == std::string_view::npos) return lines;
    text.remove_prefix(end + 1);
  }
}

std::string padded(std::string_view text, std::size_t width, Align align) {
  const std::size_t taken = displayWidth(text);
  std::string result(text);
  if (taken >= width) return result;
  const std::size_t missing = width - taken;
  const std::size_t before = align == Align::kLeft ? 0 : align == Align::kRight ? missing : missing / 2;
  result.insert(0, before, ' ');
  result.append(missing - before, ' ');
  return result;
}

}  // namespace kova::engine
