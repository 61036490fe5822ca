// Carries out submitted text.
#ifndef KOVADX_ENGINE_COMMAND_RUN_H
#define KOVADX_ENGINE_COMMAND_RUN_H

#include <string_view>

#include "engine/engine_state.h"
#include "engine/error_codes.h"

namespace kova::engine {

// Carries out the commands of the text, in order, up to the first that fails; its problem is posted to the output. Text
// that can not be cut into commands is refused as a whole. kNone, the problem's code, or that of a block. May throw
// std::bad_alloc.
ErrorCode runCommands(EngineState* state, std::string_view text);

}  // namespace kova::engine

#endif
