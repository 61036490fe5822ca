#include "platform/os/socket.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

#include "platform/posix/error_posix.h"
#include "platform/posix/monotonic_posix.h"

namespace kova::os {
namespace {

SocketResult lastResult() { return {socketErrorOfErrno(errno), errno}; }

SocketResult socketResult(int returned) { return returned == 0 ? SocketResult{} : lastResult(); }

constexpr SocketResult kNoSocket = {kInvalidHandle, EBADF};

int descriptorOf(std::uintptr_t native) { return static_cast<int>(native); }

sockaddr_in addressOf(std::uint32_t address, std::uint16_t port) {
  sockaddr_in result = {};
  result.sin_family = AF_INET;
  result.sin_port = htons(port);
  result.sin_addr.s_addr = htonl(address);
  return result;
}

// A connect that a signal has interrupted goes on by itself.
SocketResult finishConnect(int descriptor) {
  pollfd entry = {descriptor, POLLOUT, 0};
  while (poll(&entry, 1, -1) < 0) {
    if (errno != EINTR) return lastResult();
  }
  int number = 0;
  socklen_t size = sizeof number;
  if (getsockopt(descriptor, SOL_SOCKET, SO_ERROR, &number, &size) != 0) return lastResult();
  return {socketErrorOfErrno(number), number};
}

}  // namespace

SocketResult StartSockets(std::uint16_t version, std::uint16_t* obtained) {
  *obtained = version;
  return {};
}

void StopSockets() {}

Socket::~Socket() { Close(); }

SocketResult Socket::Open(Socket* out) {
  const int descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (descriptor < 0) return lastResult();
  *out = Socket(static_cast<std::uintptr_t>(descriptor));
  return {};
}

SocketResult Socket::Bind(std::uint32_t address, std::uint16_t port) {
  if (native_ == kNone) return kNoSocket;
  // For the connections that linger. Unlike elsewhere, it does not let two sockets listen on one port here.
  const int yes = 1;
  setsockopt(descriptorOf(native_), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  const sockaddr_in place = addressOf(address, port);
  return socketResult(bind(descriptorOf(native_), reinterpret_cast<const sockaddr*>(&place), sizeof place));
}

SocketResult Socket::Listen(int backlog) {
  if (native_ == kNone) return kNoSocket;
  return socketResult(listen(descriptorOf(native_), backlog));
}

SocketResult Socket::Port(std::uint16_t* port) const {
  if (native_ == kNone) return kNoSocket;
  sockaddr_in place = {};
  socklen_t size = sizeof place;
  if (getsockname(descriptorOf(native_), reinterpret_cast<sockaddr*>(&place), &size) != 0) return lastResult();
  *port = ntohs(place.sin_port);
  return {};
}

SocketResult Socket::Connect(std::uint32_t address, std::uint16_t port) {
  if (native_ == kNone) return kNoSocket;
  const sockaddr_in place = addressOf(address, port);
  if (connect(descriptorOf(native_), reinterpret_cast<const sockaddr*>(&place), sizeof place) == 0) return {};
  return errno == EINTR ? finishConnect(descriptorOf(native_)) : lastResult();
}

SocketResult Socket::Await(std::uint32_t timeoutMs) const {
  if (native_ == kNone) return kNoSocket;
  const TimeLeft left(timeoutMs);
  pollfd entry = {descriptorOf(native_), POLLIN, 0};
  int ready = 0;
  do {
    ready = poll(&entry, 1, left.forPoll());
  } while (ready < 0 && errno == EINTR);
  if (ready < 0) return lastResult();
  return ready == 0 ? SocketResult{kWaitTimeout, ETIMEDOUT} : SocketResult{};
}

SocketResult Socket::Accept(Socket* out) const {
  if (native_ == kNone) return kNoSocket;
  int descriptor = -1;
  do {
    descriptor = accept4(descriptorOf(native_), nullptr, nullptr, SOCK_CLOEXEC);
  } while (descriptor < 0 && errno == EINTR);
  if (descriptor < 0) return lastResult();
  *out = Socket(static_cast<std::uintptr_t>(descriptor));
  return {};
}

SocketResult Socket::Receive(void* buffer, std::uint32_t size, std::uint32_t* read) {
  if (native_ == kNone) return kNoSocket;
  ssize_t count = 0;
  do {
    count = recv(descriptorOf(native_), buffer, size, 0);
  } while (count < 0 && errno == EINTR);
  if (count < 0) return lastResult();
  *read = static_cast<std::uint32_t>(count);
  return {};
}

SocketResult Socket::Send(const void* data, std::uint32_t size, std::uint32_t* sent) {
  if (native_ == kNone) return kNoSocket;
  // A signal may end a send in the middle.
  const char* const bytes = static_cast<const char*>(data);
  std::uint32_t taken = 0;
  do {
    const ssize_t count = send(descriptorOf(native_), bytes + taken, size - taken, MSG_NOSIGNAL);
    if (count < 0 && errno != EINTR) return lastResult();
    if (count > 0) taken += static_cast<std::uint32_t>(count);
  } while (taken < size);
  *sent = taken;
  return {};
}

SocketResult Socket::Shutdown() {
  if (native_ == kNone) return kNoSocket;
  return socketResult(shutdown(descriptorOf(native_), SHUT_RDWR));
}

SocketResult Socket::Close() {
  if (native_ == kNone) return kNoSocket;
  return socketResult(close(descriptorOf(Release())));
}

}  // namespace kova::os
