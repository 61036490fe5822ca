#include "engine/socket_handlers.h"

namespace kova::engine {
namespace {

ErrorCode createSocket(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  int port = 0;
  const ErrorCode code = state.runtimeSocket.open(&port);
  reply.SetLong(port);
  return code;
}

// Deliberate: the wait has a limit. The engine carries out one request after the other, so nobody else is answered
// meanwhile.
ErrorCode acceptSocket(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& /*reply*/) {
  return state.runtimeSocket.accept();
}

constexpr HandlerRow kRows[] = {
    {Command::CreateSocket, createSocket},
    {Command::AcceptSocket, acceptSocket},
};

}  // namespace

std::span<const HandlerRow> socketHandlers() { return kRows; }

}  // namespace kova::engine
