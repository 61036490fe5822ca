// The commands about the socket for a runtime.
#ifndef KOVADX_ENGINE_SOCKET_HANDLERS_H
#define KOVADX_ENGINE_SOCKET_HANDLERS_H

#include <span>

#include "engine/handler.h"

namespace kova::engine {

std::span<const HandlerRow> socketHandlers();

}  // namespace kova::engine

#endif
