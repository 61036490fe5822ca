// The commands of a pass over the cases: those that read one case after the other, change one and add one.
#ifndef KOVADX_ENGINE_CURSOR_HANDLERS_H
#define KOVADX_ENGINE_CURSOR_HANDLERS_H

#include <span>

#include "engine/handler.h"

namespace kova::engine {

std::span<const HandlerRow> cursorHandlers();

}  // namespace kova::engine

#endif
