#include "engine/runtime_socket.h"

#include <utility>

#include "transport/JavaPlugInSocket.h"

namespace kova::engine {

RuntimeSocket::RuntimeSocket() = default;

RuntimeSocket::RuntimeSocket(RuntimeSocket&& other) noexcept = default;

// The one that goes takes the earlier socket with it.
RuntimeSocket& RuntimeSocket::operator=(RuntimeSocket&& other) noexcept {
  std::swap(socket_, other.socket_);
  std::swap(isConnected_, other.isConnected_);
  std::swap(acceptLimitMs_, other.acceptLimitMs_);
  return *this;
}

RuntimeSocket::~RuntimeSocket() { close(); }

ErrorCode RuntimeSocket::open(int* port) {
  close();
  auto socket = std::make_unique<JavaPlugInSocket>();
  const int result = socket->CreateSocket();
  if (result != 0) return static_cast<ErrorCode>(result);
  *port = socket->GetSocketPort();
  socket_ = std::move(socket);
  return ErrorCode::kNone;
}

ErrorCode RuntimeSocket::accept() {
  if (socket_ == nullptr) return ErrorCode::kNoSocketOpen;
  if (isConnected_) return ErrorCode::kNone;
  int result = socket_->AwaitPeer(acceptLimitMs_);
  if (result == kNoPeerYet) return ErrorCode::kNoRuntimeYet;
  if (result == 0) result = socket_->AcceptSocket();
  if (result != 0) {
    close();
    return static_cast<ErrorCode>(result);
  }
  isConnected_ = true;
  return ErrorCode::kNone;
}

void RuntimeSocket::close() {
  if (socket_ != nullptr) socket_->CloseSocket();
  socket_.reset();
  isConnected_ = false;
}

}  // namespace kova::engine
