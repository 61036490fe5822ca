// The commands that read and change value labels.
#ifndef KOVADX_ENGINE_LABEL_HANDLERS_H
#define KOVADX_ENGINE_LABEL_HANDLERS_H

#include <span>

#include "engine/handler.h"

namespace kova::engine {

std::span<const HandlerRow> labelHandlers();

}  // namespace kova::engine

#endif
