#include "transport/JavaPlugInSocket.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <limits>
#include <mutex>
#include <utility>

#include "platform/os/socket.h"
#include "trace/DxTracer.h"

namespace os = kova::os;

namespace {

constexpr int kBacklog = 5;
constexpr int kCloseFailed = -1;  // What closing a socket gives when it fails.
constexpr std::uint32_t kNoLimit = 0xFFFFFFFF;
constexpr std::uint32_t kStepMs = 200;  // How often a wait looks whether it was cancelled.

// What is refused here has no number of the platform.
constexpr os::SocketResult refused(os::Error error) { return {error, static_cast<std::int32_t>(error)}; }

void traceFailure(const char* label, int number) noexcept {
  try {
    DxTraceError(label, number);
  } catch (...) {
    // A record that can not be written for want of memory must not change the result of what it tells of.
  }
}

JavaPlugInSocket* theSocket = nullptr;

}  // namespace

// What an object holds, in this order.
struct kova::SocketPair {
  os::Socket listener;
  os::Socket connection;
  int port = 0;

  bool started = false;  // The platform's socket library was started and not yet stopped.
  std::atomic<bool> cancelled{false};
  std::mutex change;  // Held where `connection` changes, and while another thread ends what is blocked in it.

  // False when the platform has no sockets of the version that is asked for.
  bool start() {
    std::uint16_t obtained = 0;
    if (os::StartSockets(os::kSocketVersion, &obtained).failed()) return false;
    started = true;
    if (obtained != os::kSocketVersion) stop();
    return started;
  }

  // Gives back no more than was started: other parts of the program may use the library too.
  void stop() {
    if (started) os::StopSockets();
    started = false;
  }

  // Closes the listening socket, where it is open, and stops.
  int giveUp(int status) {
    listener.Close();
    stop();
    return status;
  }

  os::SocketResult closeConnection() {
    const std::lock_guard<std::mutex> hold(change);
    return connection.Close();
  }

  // Waits until the socket has something to tell: 258 when the time is up, 995 when the wait is cancelled.
  os::SocketResult await(const os::Socket& socket, std::uint32_t limitMs) const {
    for (std::uint32_t left = limitMs;;) {
      if (cancelled) return refused(os::kOperationAborted);
      const std::uint32_t step = std::min(left, kStepMs);
      const os::SocketResult result = socket.Await(step);
      if (result.error != os::kWaitTimeout) return result;
      if (limitMs != kNoLimit) left -= step;
      if (left == 0) return result;
    }
  }

  os::SocketResult receive(void* buffer, int size, std::uint32_t* count) {
    if (size < 0) return refused(os::kInvalidData);
    os::SocketResult result = await(connection, kNoLimit);
    if (!result.failed()) result = connection.Receive(buffer, static_cast<std::uint32_t>(size), count);
    // A cancelled connection ends as if its peer had closed it.
    return !result.failed() && *count == 0 && cancelled ? refused(os::kOperationAborted) : result;
  }

  os::SocketResult send(const char* data, int size, std::uint32_t* count) {
    if (size < 0) return refused(os::kInvalidData);
    return cancelled ? refused(os::kOperationAborted) : connection.Send(data, static_cast<std::uint32_t>(size), count);
  }
};

JavaPlugInSocket::JavaPlugInSocket() : sockets_(new kova::SocketPair) {}

JavaPlugInSocket::~JavaPlugInSocket() {
  sockets_->listener.Forget();
  sockets_->connection.Forget();
  delete sockets_;
}

int JavaPlugInSocket::Listen(int port, bool recordPort) {
  sockets_->closeConnection();
  sockets_->giveUp(0);
  sockets_->cancelled = false;
  if (!sockets_->start()) return kova::kSocketBroken;
  if (os::Socket::Open(&sockets_->listener).failed()) return sockets_->giveUp(kova::kSocketNotMade);

  if (port < 0 || port > std::numeric_limits<std::uint16_t>::max()) return sockets_->giveUp(kova::kSocketBroken);
  std::uint16_t chosen = 0;
  os::Socket& listener = sockets_->listener;
  os::SocketResult result = listener.Bind(os::kAnyAddress, static_cast<std::uint16_t>(port));
  if (!result.failed()) result = listener.Listen(kBacklog);
  if (!result.failed() && recordPort) result = listener.Port(&chosen);
  if (result.failed()) return sockets_->giveUp(kova::kSocketBroken);
  if (recordPort) sockets_->port = chosen;
  return 0;
}

int JavaPlugInSocket::CreateSocket(int port) { return Listen(port, false); }

int JavaPlugInSocket::CreateSocket() { return Listen(0, true); }

int JavaPlugInSocket::AwaitPeer(int milliseconds) {
  if (sockets_->connection) return kova::kSocketNotMade;
  const auto limit = static_cast<std::uint32_t>(std::max(milliseconds, 0));
  const os::SocketResult result = sockets_->await(sockets_->listener, limit);
  if (result.error == os::kWaitTimeout) return kova::kNoPeerYet;
  return result.failed() ? sockets_->giveUp(kova::kSocketNotMade) : 0;
}

int JavaPlugInSocket::AcceptSocket() {
  if (sockets_->connection) return kova::kSocketNotMade;
  os::Socket accepted;
  os::SocketResult result = sockets_->await(sockets_->listener, kNoLimit);
  if (!result.failed()) result = sockets_->listener.Accept(&accepted);
  if (result.failed()) return sockets_->giveUp(kova::kSocketNotMade);
  const std::lock_guard<std::mutex> hold(sockets_->change);
  sockets_->connection = std::move(accepted);
  return 0;
}

int JavaPlugInSocket::ReadData(char* buffer, int size, unsigned long& read) {
  std::uint32_t count = 0;
  const os::SocketResult result = sockets_->receive(buffer, size, &count);
  read = result.failed() ? 0 : count;
  return result.failed() ? Broken("ReadData", result.number) : 0;
}

int JavaPlugInSocket::WriteData(const void* data, int length, unsigned long& written) {
  if (data == nullptr) return 0;
  const char* position = static_cast<const char*>(data);
  for (int remaining = length;;) {
    const bool isLast = remaining <= kova::kSocketChunk;
    std::uint32_t sent = 0;
    const os::SocketResult result = sockets_->send(position, isLast ? remaining : kova::kSocketChunk, &sent);
    if (result.failed()) return Broken("WriteData", result.number);
    written += sent;
    // Deliberate: the count of the last send is not looked at. The platforms' sends take everything, or fail.
    if (isLast) return 0;
    position += sent;
    remaining -= static_cast<int>(sent);
  }
}

// What a failed read or write leaves.
int JavaPlugInSocket::Broken(const char* label, int number) {
  sockets_->closeConnection();
  sockets_->stop();
  traceFailure(label, number);
  return kova::kSocketBroken;
}

int JavaPlugInSocket::CloseSocket() {
  // Deliberate: the labels stand this way round.
  if (sockets_->closeConnection().failed()) traceFailure("CloseServerSocket", kCloseFailed);
  const bool failed = sockets_->listener.Close().failed();
  if (failed) traceFailure("CloseClientSocket", kCloseFailed);
  sockets_->stop();
  return failed ? kCloseFailed : 0;
}

int JavaPlugInSocket::GetSocketPort() const { return sockets_->port; }

void JavaPlugInSocket::SetSocketPort(int port) { sockets_->port = port; }

void JavaPlugInSocket::CancelWait() {
  sockets_->cancelled = true;
  const std::lock_guard<std::mutex> hold(sockets_->change);
  if (sockets_->connection) sockets_->connection.Shutdown();
}

JavaPlugInSocket* GetJavaExtSocket() { return theSocket; }

void SetavaExtSocket(JavaPlugInSocket* socket) { theSocket = socket; }
