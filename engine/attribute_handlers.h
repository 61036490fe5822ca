// The commands that read and change the custom attributes of variables and data sets.
#ifndef KOVADX_ENGINE_ATTRIBUTE_HANDLERS_H
#define KOVADX_ENGINE_ATTRIBUTE_HANDLERS_H

#include <span>

#include "engine/handler.h"

namespace kova::engine {

std::span<const HandlerRow> attributeHandlers();

}  // namespace kova::engine

#endif
