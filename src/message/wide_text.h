// Text in 16-bit units, as the wire carries it, on platforms whose wchar_t has either width.
#ifndef KOVADX_MESSAGE_WIDE_TEXT_H
#define KOVADX_MESSAGE_WIDE_TEXT_H

#include <cstddef>
#include <string>
#include <type_traits>

namespace kova {

// One UTF-16 unit: wchar_t where that has 16 bits, else char16_t.
using WideUnit = std::conditional_t<sizeof(wchar_t) == 2, wchar_t, char16_t>;
static_assert(sizeof(WideUnit) == 2);

// The units of a NUL-terminated text; 32-bit characters above U+FFFF become surrogate pairs, values beyond Unicode
// become U+FFFD. May throw std::bad_alloc.
std::basic_string<WideUnit> wideUnits(const wchar_t* text);

// The number of units before the terminator, at most `limit`.
std::size_t wideLength(const WideUnit* text, std::size_t limit);

}  // namespace kova

#endif
