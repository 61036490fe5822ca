// The commands that read what is said of variables: names, labels, types, formats, levels, roles, missing values.
#ifndef KOVADX_ENGINE_DICTIONARY_HANDLERS_H
#define KOVADX_ENGINE_DICTIONARY_HANDLERS_H

#include <span>

#include "engine/handler.h"

namespace kova::engine {

std::span<const HandlerRow> dictionaryHandlers();

}  // namespace kova::engine

#endif
