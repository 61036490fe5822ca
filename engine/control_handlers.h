// The commands that ask for the engine itself: readiness, syntax, the system-missing value.
#ifndef KOVADX_ENGINE_CONTROL_HANDLERS_H
#define KOVADX_ENGINE_CONTROL_HANDLERS_H

#include <span>

#include "engine/handler.h"

namespace kova::engine {

std::span<const HandlerRow> controlHandlers();

}  // namespace kova::engine

#endif
