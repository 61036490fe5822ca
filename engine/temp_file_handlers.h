// Commands that save the active data set's cases to a file and get them from there.
#ifndef KOVADX_ENGINE_TEMP_FILE_HANDLERS_H
#define KOVADX_ENGINE_TEMP_FILE_HANDLERS_H

#include <span>

#include "engine/handler.h"

namespace kova::engine {

std::span<const HandlerRow> tempFileHandlers();

}  // namespace kova::engine

#endif
