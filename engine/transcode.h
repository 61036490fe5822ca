// Turns texts of other encodings into the engine's own, UTF-8.
#ifndef KOVADX_ENGINE_TRANSCODE_H
#define KOVADX_ENGINE_TRANSCODE_H

#include <string>
#include <string_view>

namespace kova::engine {

// A text that is UTF-8 already stays as it is; the bytes of any other are taken as characters of Windows-1252, which
// has those of Latin-1. Its five unassigned bytes become the control characters of the same number.
std::string toUtf8(std::string_view text);

}  // namespace kova::engine

#endif
