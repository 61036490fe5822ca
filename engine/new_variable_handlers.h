// The commands with which a pass over the cases makes variables, and the one that takes many cases at once.
#ifndef KOVADX_ENGINE_NEW_VARIABLE_HANDLERS_H
#define KOVADX_ENGINE_NEW_VARIABLE_HANDLERS_H

#include <span>

#include "engine/handler.h"

namespace kova::engine {

std::span<const HandlerRow> newVariableHandlers();

}  // namespace kova::engine

#endif
