// The commands that build pivot tables: tables, dimensions, categories, cells, footnotes, captions, column widths.
#ifndef KOVADX_ENGINE_PIVOT_HANDLERS_H
#define KOVADX_ENGINE_PIVOT_HANDLERS_H

#include <span>

#include "engine/handler.h"

namespace kova::engine {

std::span<const HandlerRow> pivotHandlers();

}  // namespace kova::engine

#endif
