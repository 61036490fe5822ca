// The commands that read and change multiple-response sets.
#ifndef KOVADX_ENGINE_RESPONSE_SET_HANDLERS_H
#define KOVADX_ENGINE_RESPONSE_SET_HANDLERS_H

#include <span>

#include "engine/handler.h"

namespace kova::engine {

std::span<const HandlerRow> responseSetHandlers();

}  // namespace kova::engine

#endif
