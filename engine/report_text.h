// Output as plain text for a terminal: aligned tables, text blocks, footnotes, in lines of a given width.
#ifndef KOVADX_ENGINE_REPORT_TEXT_H
#define KOVADX_ENGINE_REPORT_TEXT_H

#include <cstddef>
#include <string>

#include "engine/output_log.h"

namespace kova::engine {

// The section in UTF-8, every line ended by a line feed, an empty line last. Posted text keeps its lines as they are.
std::string sectionText(const OutputSection& section, std::size_t width);

}  // namespace kova::engine

#endif
