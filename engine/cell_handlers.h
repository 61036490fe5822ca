// The commands about single cells and rectangles of them.
#ifndef KOVADX_ENGINE_CELL_HANDLERS_H
#define KOVADX_ENGINE_CELL_HANDLERS_H

#include <span>

#include "engine/handler.h"

namespace kova::engine {

std::span<const HandlerRow> cellHandlers();

}  // namespace kova::engine

#endif
