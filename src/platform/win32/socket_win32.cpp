#include "platform/os/socket.h"

// Ahead of the Windows header, which would else bring in an older version of it.
#include <winsock2.h>

#include <algorithm>
#include <climits>

#include "platform/win32/system_win32.h"

namespace kova::os {
namespace {

SocketResult failure(int number) {
  const Error error = number == 0 ? kGeneralFailure : static_cast<Error>(number);
  return {error, number};
}

SocketResult lastResult() { return failure(WSAGetLastError()); }

SocketResult socketResult(int returned) { return returned == 0 ? SocketResult{} : lastResult(); }

constexpr SocketResult kNoSocket = {kInvalidHandle, WSAENOTSOCK};

int lengthOf(std::uint32_t size) { return static_cast<int>(std::min<std::uint32_t>(size, INT_MAX)); }

sockaddr_in addressOf(std::uint32_t address, std::uint16_t port) {
  sockaddr_in result = {};
  result.sin_family = AF_INET;
  result.sin_port = htons(port);
  result.sin_addr.s_addr = htonl(address);
  return result;
}

timeval timeOf(std::uint32_t milliseconds) {
  return {static_cast<long>(milliseconds / 1000), static_cast<long>(milliseconds % 1000 * 1000)};
}

}  // namespace

SocketResult StartSockets(std::uint16_t version, std::uint16_t* obtained) {
  WSADATA data = {};
  const int number = WSAStartup(version, &data);
  if (number != 0) return failure(number);
  *obtained = data.wVersion;
  return {};
}

void StopSockets() { WSACleanup(); }

Socket::~Socket() { Close(); }

SocketResult Socket::Open(Socket* out) {
  const DWORD flags = WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT;
  const SOCKET handle = WSASocketA(AF_INET, SOCK_STREAM, 0, nullptr, 0, flags);
  if (handle == INVALID_SOCKET) return lastResult();
  *out = Socket(handle);
  return {};
}

SocketResult Socket::Bind(std::uint32_t address, std::uint16_t port) {
  if (native_ == kNone) return kNoSocket;
  const sockaddr_in place = addressOf(address, port);
  return socketResult(bind(native_, reinterpret_cast<const sockaddr*>(&place), sizeof place));
}

SocketResult Socket::Listen(int backlog) {
  if (native_ == kNone) return kNoSocket;
  return socketResult(listen(native_, backlog));
}

SocketResult Socket::Port(std::uint16_t* port) const {
  if (native_ == kNone) return kNoSocket;
  sockaddr_in place = {};
  int size = sizeof place;
  if (getsockname(native_, reinterpret_cast<sockaddr*>(&place), &size) != 0) return lastResult();
  *port = ntohs(place.sin_port);
  return {};
}

SocketResult Socket::Connect(std::uint32_t address, std::uint16_t port) {
  if (native_ == kNone) return kNoSocket;
  const sockaddr_in place = addressOf(address, port);
  return socketResult(connect(native_, reinterpret_cast<const sockaddr*>(&place), sizeof place));
}

SocketResult Socket::Await(std::uint32_t timeoutMs) const {
  if (native_ == kNone) return kNoSocket;
  fd_set readable = {};
  readable.fd_count = 1;
  readable.fd_array[0] = native_;
  timeval limit = timeOf(timeoutMs);
  const int ready = select(0, &readable, nullptr, nullptr, timeoutMs == INFINITE ? nullptr : &limit);
  if (ready == SOCKET_ERROR) return lastResult();
  return ready == 0 ? SocketResult{kWaitTimeout, WAIT_TIMEOUT} : SocketResult{};
}

SocketResult Socket::Accept(Socket* out) const {
  if (native_ == kNone) return kNoSocket;
  const SOCKET handle = accept(native_, nullptr, nullptr);
  if (handle == INVALID_SOCKET) return lastResult();
  SetHandleInformation(reinterpret_cast<HANDLE>(handle), HANDLE_FLAG_INHERIT, 0);
  *out = Socket(handle);
  return {};
}

SocketResult Socket::Receive(void* buffer, std::uint32_t size, std::uint32_t* read) {
  if (native_ == kNone) return kNoSocket;
  const int count = recv(native_, static_cast<char*>(buffer), lengthOf(size), 0);
  if (count == SOCKET_ERROR) return lastResult();
  *read = static_cast<std::uint32_t>(count);
  return {};
}

SocketResult Socket::Send(const void* data, std::uint32_t size, std::uint32_t* sent) {
  if (native_ == kNone) return kNoSocket;
  const int count = send(native_, static_cast<const char*>(data), lengthOf(size), 0);
  if (count == SOCKET_ERROR) return lastResult();
  *sent = static_cast<std::uint32_t>(count);
  return {};
}

SocketResult Socket::Shutdown() {
  if (native_ == kNone) return kNoSocket;
  const SocketResult result = socketResult(shutdown(native_, SD_BOTH));
  // A send that is waiting for room would wait on.
  CancelIoEx(reinterpret_cast<HANDLE>(native_), nullptr);
  return result;
}

SocketResult Socket::Close() {
  if (native_ == kNone) return kNoSocket;
  return socketResult(closesocket(Release()));
}

}  // namespace kova::os
