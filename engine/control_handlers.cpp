#include "engine/control_handlers.h"

#include <string>
#include <utility>

#include "engine/dictionary_rules.h"

namespace kova::engine {
namespace {

// Every text is kept, behind the parts that were queued before it. One of blanks alone asks for nothing, so it is
// carried out; this engine has no commands yet that would carry out another.
ErrorCode submit(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  state.submittedSyntax.push_back(state.session.queuedSyntax + request.Strings()[0]);
  state.session.queuedSyntax.clear();
  const bool isBlank = state.submittedSyntax.back().find_first_not_of(" \t\r\n") == std::string::npos;
  return isBlank ? ErrorCode::kNone : ErrorCode::kSyntaxNotCarriedOut;
}

ErrorCode queueCommandPart(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  state.session.queuedSyntax += request.Strings()[0] + '\n';
  return ErrorCode::kNone;
}

ErrorCode isBackendReady(EngineState& /*state*/, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  reply.SetLong(1);
  return ErrorCode::kNone;
}

ErrorCode isXDriven(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  reply.SetLong(state.session.isDriven ? 1 : 0);
  return ErrorCode::kNone;
}

// The reply tells the run that its end was seen; the server of the pipes goes on for the next one.
ErrorCode stopReceiveXdApiThread(EngineState& /*state*/, const CleXDSmb& /*request*/, CleXDSmb& /*reply*/) {
  return ErrorCode::kNone;
}

ErrorCode getSystemMissingValue(EngineState& /*state*/, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  reply.SetDouble(kSystemMissing);
  return ErrorCode::kNone;
}

ErrorCode getKOVALowHigh(EngineState& /*state*/, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  reply.SetDouble(kLowestNumber);
  reply.SetDouble(kHighestNumber);
  return ErrorCode::kNone;
}

constexpr HandlerRow kRows[] = {
    {Command::Submit, submit},
    {Command::QueueCommandPart, queueCommandPart},
    {Command::IsBackendReady, isBackendReady},
    {Command::IsXDriven, isXDriven},
    {Command::StopReceiveXdApiThread, stopReceiveXdApiThread},
    {Command::GetSystemMissingValue, getSystemMissingValue},
    {Command::GetKOVALowHigh, getKOVALowHigh},
};

}  // namespace

std::span<const HandlerRow> controlHandlers() { return kRows; }

}  // namespace kova::engine
