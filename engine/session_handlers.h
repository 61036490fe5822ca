// The commands about the engine's own settings: languages, modes, the program that shows its output.
#ifndef KOVADX_ENGINE_SESSION_HANDLERS_H
#define KOVADX_ENGINE_SESSION_HANDLERS_H

#include <span>

#include "engine/handler.h"

namespace kova::engine {

std::span<const HandlerRow> sessionHandlers();

}  // namespace kova::engine

#endif
