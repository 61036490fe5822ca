// The commands that change what is said of variables. Each succeeds or leaves everything as it was.
#ifndef KOVADX_ENGINE_DICTIONARY_SETTERS_H
#define KOVADX_ENGINE_DICTIONARY_SETTERS_H

#include <span>

#include "engine/handler.h"

namespace kova::engine {

std::span<const HandlerRow> dictionarySetters();

}  // namespace kova::engine

#endif
