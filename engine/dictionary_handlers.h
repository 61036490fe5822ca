// The commands that read the dictionary of the active data set.
#ifndef KOVADX_ENGINE_DICTIONARY_HANDLERS_H
#define KOVADX_ENGINE_DICTIONARY_HANDLERS_H

#include <span>

#include "engine/handler.h"

namespace kova::engine {

std::span<const HandlerRow> dictionaryHandlers();

}  // namespace kova::engine

#endif
