#include "engine/data_pass_access.h"

namespace kova::engine {

ErrorCode findPass(EngineState& state, DataPass** pass) {
  const auto found = state.passes.find(state.conversation);
  if (found == state.passes.end()) return ErrorCode::kNoCaseCursor;
  *pass = &found->second;
  return ErrorCode::kNone;
}

ErrorCode findChangingPass(EngineState& state, DataPass** pass) {
  const ErrorCode code = findPass(state, pass);
  if (code != ErrorCode::kNone) return code;
  if ((*pass)->cursor.access() == CaseCursor::Access::kRead) return ErrorCode::kCursorReadOnly;
  return (*pass)->changesEnded ? ErrorCode::kChangesEnded : ErrorCode::kNone;
}

}  // namespace kova::engine
