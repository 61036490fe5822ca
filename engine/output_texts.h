// How a text must be changed before it is shown.
#ifndef KOVADX_ENGINE_OUTPUT_TEXTS_H
#define KOVADX_ENGINE_OUTPUT_TEXTS_H

#include <string>
#include <string_view>
#include <vector>

namespace kova::engine {

// The text without what a terminal would obey and documents can not hold: control characters and those that
// turn the direction of a text become U+FFFD, a tab a blank, and every end of a line a line feed. For text that is
// UTF-8.
std::string presentable(std::string_view text);

// The same on one line: ends of lines become blanks.
std::string onOneLine(std::string_view text);

// The text's lines; a line end at its end begins none.
std::vector<std::string> linesOf(std::string_view text);

}  // namespace kova::engine

#endif
