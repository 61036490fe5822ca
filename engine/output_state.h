// What the engine knows of output: what was put out, and the documents through which it is read back.
#ifndef KOVADX_ENGINE_OUTPUT_STATE_H
#define KOVADX_ENGINE_OUTPUT_STATE_H

#include "engine/output_log.h"
#include "engine/xpath_documents.h"

namespace kova::engine {

struct OutputState {
  OutputLog log;
  XPathDocuments documents;
};

}  // namespace kova::engine

#endif
