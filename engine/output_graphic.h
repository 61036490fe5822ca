// Graphics that programs have drawn into files.
#ifndef KOVADX_ENGINE_OUTPUT_GRAPHIC_H
#define KOVADX_ENGINE_OUTPUT_GRAPHIC_H

#include <string>

#include "engine/output_log.h"

namespace kova::engine {

constexpr std::size_t kLargestGraphic = std::size_t{64} << 20;

// Reads a PNG file: its bytes, its type and its size. kGraphicNotReadable when that is not possible.
ErrorCode readGraphic(const std::string& path, Graphic* graphic);

}  // namespace kova::engine

#endif
