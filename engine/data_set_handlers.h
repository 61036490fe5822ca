// The commands about data sets as such: how many cases they have, how they are created, named, activated, copied and
// closed.
#ifndef KOVADX_ENGINE_DATA_SET_HANDLERS_H
#define KOVADX_ENGINE_DATA_SET_HANDLERS_H

#include <span>

#include "engine/handler.h"

namespace kova::engine {

std::span<const HandlerRow> dataSetHandlers();

}  // namespace kova::engine

#endif
