// The commands about the engine itself: readiness, syntax, and the numbers that have a meaning of their own.
#ifndef KOVADX_ENGINE_CONTROL_HANDLERS_H
#define KOVADX_ENGINE_CONTROL_HANDLERS_H

#include <span>

#include "engine/handler.h"

namespace kova::engine {

std::span<const HandlerRow> controlHandlers();

}  // namespace kova::engine

#endif
