// The commands that put out: procedures, text blocks, number styles, posted text, graphics.
#ifndef KOVADX_ENGINE_OUTPUT_HANDLERS_H
#define KOVADX_ENGINE_OUTPUT_HANDLERS_H

#include <span>

#include "engine/handler.h"

namespace kova::engine {

std::span<const HandlerRow> outputHandlers();

}  // namespace kova::engine

#endif
