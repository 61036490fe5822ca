// How one command is carried out.
#ifndef KOVADX_ENGINE_HANDLER_H
#define KOVADX_ENGINE_HANDLER_H

#include "engine/engine_state.h"
#include "engine/error_codes.h"
#include "message/CleXDSmb.h"

namespace kova::engine {

// Reads the request's items, which are all there, and adds the reply's. On a code other than kNone the reply's items
// are dropped. May throw; that is answered with a code.
using Handler = ErrorCode (*)(EngineState& state, const CleXDSmb& request, CleXDSmb& reply);

struct HandlerRow {
  Command command;
  Handler handler;
};

}  // namespace kova::engine

#endif
