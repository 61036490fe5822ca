// Numbers as people read them: by a print format, or by one of the styles that a table's cells are given.
#ifndef KOVADX_ENGINE_OUTPUT_NUMBER_H
#define KOVADX_ENGINE_OUTPUT_NUMBER_H

#include <string>

#include "engine/format.h"

namespace kova::engine {

// What is done with an amount that would be shown as zero though it is none.
enum class SmallAmount {
  kAsZero,    // Nothing.
  kExponent,  // It is shown with an exponent: 1.25E-07.
  kBelow,     // It is said that it is below the smallest amount shown: <0.001.
};

// How the numbers of cells are shown. A plain value.
struct NumberStyle {
  const char* name = "GeneralStat";  // As in the commands' names behind "SetFormatSpec"; a static text.
  Format format{FormatType::kF, kWidestNumber, 3};
  SmallAmount small = SmallAmount::kExponent;
};

// The number in a print format. Widths do not cut: only N fills up to its width. System-missing is ".". Amounts of
// 1E+15 and more are shown with an exponent, as are days and times that no calendar has.
std::string numberText(double value, const Format& format);
std::string numberText(double value, const NumberStyle& style);

// The shortest text that names the number among its neighbours: "3", "0.1".
std::string shortNumberText(double value);

}  // namespace kova::engine

#endif
