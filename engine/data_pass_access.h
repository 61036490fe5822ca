// Finds the pass of the conversation that asks.
#ifndef KOVADX_ENGINE_DATA_PASS_ACCESS_H
#define KOVADX_ENGINE_DATA_PASS_ACCESS_H

#include "engine/engine_state.h"
#include "engine/error_codes.h"

namespace kova::engine {

// Each stores the pass, or answers with the code of what is missing: a pass; one that may still change the data.
ErrorCode findPass(EngineState& state, DataPass** pass);
ErrorCode findChangingPass(EngineState& state, DataPass** pass);

}  // namespace kova::engine

#endif
