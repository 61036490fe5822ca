#include "engine/control_handlers.h"

#include <string>
#include <utility>

#include "engine/command_run.h"
#include "engine/dictionary_rules.h"

namespace kova::engine {
namespace {

// The parts that were queued before stand in front of the text.
ErrorCode submit(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  const std::string text = std::exchange(state.session.queuedSyntax, {}) + request.Strings()[0];
  return runCommands(&state, text);
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
