// Finds the handler of a request by its command code and checks the request's items before it is called.
#ifndef KOVADX_ENGINE_DISPATCHER_H
#define KOVADX_ENGINE_DISPATCHER_H

#include "engine/engine_state.h"
#include "message/CleXDSmb.h"

namespace kova::engine {

// Carries out the request and fills the reply: its command, its error code and, when that is 0, its items. A code that
// is not assigned, a command that is not answered, a request that lacks items and a handler that fails each give their
// own code. Never throws. One thread at a time uses the state.
void dispatch(EngineState& state, const CleXDSmb& request, CleXDSmb& reply) noexcept;

// True when the request has at least the items that the letters of the command table ask for.
bool hasItems(const CleXDSmb& request, const char* letters);

}  // namespace kova::engine

#endif
