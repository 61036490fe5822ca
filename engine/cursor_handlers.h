// The commands about the groups into which the split variables divide the cases.
#ifndef KOVADX_ENGINE_CURSOR_HANDLERS_H
#define KOVADX_ENGINE_CURSOR_HANDLERS_H

#include <span>

#include "engine/handler.h"

namespace kova::engine {

std::span<const HandlerRow> cursorHandlers();

}  // namespace kova::engine

#endif
