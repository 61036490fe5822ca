// The variables that requests of output name by position.
#ifndef KOVADX_ENGINE_OUTPUT_VARIABLE_H
#define KOVADX_ENGINE_OUTPUT_VARIABLE_H

#include "engine/engine_state.h"
#include "engine/error_codes.h"

namespace kova::engine {

// The variable at a position of the running procedure's data set. kNoActiveDataSet or kIndexOutOfRange when there is
// none.
ErrorCode findVariable(const EngineState& state, int position, const Variable** variable);

// The format with so many decimals more, as many as a format can have; formats without decimals stay as they are.
Format withMoreDecimals(Format format, int more);

}  // namespace kova::engine

#endif
