#include "engine/control_handlers.h"

#include <algorithm>

namespace kova::engine {
namespace {

// Every text is kept. One of blanks alone asks for nothing, so it is carried out; this engine has no commands yet that
// would carry out another.
ErrorCode submit(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  const std::string& text = request.Strings()[0];
  state.submittedSyntax.push_back(text);
  const bool isBlank = text.find_first_not_of(" \t\r\n") == std::string::npos;
  return isBlank ? ErrorCode::kNone : ErrorCode::kSyntaxNotCarriedOut;
}

ErrorCode isBackendReady(EngineState& /*state*/, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  reply.SetLong(1);
  return ErrorCode::kNone;
}

ErrorCode getSystemMissingValue(EngineState& /*state*/, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  reply.SetDouble(kSystemMissing);
  return ErrorCode::kNone;
}

constexpr HandlerRow kRows[] = {
    {Command::Submit, submit},
    {Command::IsBackendReady, isBackendReady},
    {Command::GetSystemMissingValue, getSystemMissingValue},
};

}  // namespace

std::span<const HandlerRow> controlHandlers() { return kRows; }

}  // namespace kova::engine
