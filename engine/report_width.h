// Texts in columns of a terminal: how wide they are, how they are broken and filled up. All texts are UTF-8.
#ifndef KOVADX_ENGINE_REPORT_WIDTH_H
#define KOVADX_ENGINE_REPORT_WIDTH_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kova::engine {

// The columns that the text takes: none for a combining character, two for a wide one, one for every other.
std::size_t displayWidth(std::string_view text);

// The width of the widest word.
std::size_t widestWord(std::string_view text);

// The text in lines of at most `width` columns, broken at blanks, and inside a word that is wider than a line. A wide
// character stands alone on a line of one column. Line feeds are kept; an empty text is one empty line.
std::vector<std::string> wrapped(std::string_view text, std::size_t width);

enum class Align { kLeft, kRight, kCenter };

// The text with blanks beside it up to `width` columns; a wider text stays as it is.
std::string padded(std::string_view text, std::size_t width, Align align);

}  // namespace kova::engine

#endif
