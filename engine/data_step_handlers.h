// The commands about the data step and about whole cases.
#ifndef KOVADX_ENGINE_DATA_STEP_HANDLERS_H
#define KOVADX_ENGINE_DATA_STEP_HANDLERS_H

#include <span>

#include "engine/handler.h"

namespace kova::engine {

std::span<const HandlerRow> dataStepHandlers();

}  // namespace kova::engine

#endif
