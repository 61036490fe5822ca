// The commands that read output back: XML documents by handle, XPath, images, tags.
#ifndef KOVADX_ENGINE_XPATH_HANDLERS_H
#define KOVADX_ENGINE_XPATH_HANDLERS_H

#include <span>

#include "engine/handler.h"

namespace kova::engine {

std::span<const HandlerRow> xpathHandlers();

}  // namespace kova::engine

#endif
