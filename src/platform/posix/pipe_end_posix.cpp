#include "platform/posix/pipe_end_posix.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>

#include "platform/posix/error_posix.h"
#include "platform/posix/pipe_address_posix.h"

namespace kova::os {
namespace {

// More than a packet can be: the sender's buffer limits it, and that is 208 KiB unless it asks for more.
constexpr std::size_t kSpillSize = std::size_t{1} << 20;

// The least that a connection takes in before its reader reads, in the system's own count.
constexpr int kLeastBuffer = 64 * 1024;

void widenBuffer(int connection) {
  int present = 0;
  socklen_t size = sizeof present;
  if (getsockopt(connection, SOL_SOCKET, SO_SNDBUF, &present, &size) != 0 || present >= kLeastBuffer) return;
  setsockopt(connection, SOL_SOCKET, SO_SNDBUF, &kLeastBuffer, sizeof kLeastBuffer);
}

// Waits while the server's queue is full, or gives 231 then.
Error connectTo(const sockaddr_un& address, int socket, WhenTaken whenTaken) {
  const auto* plain = reinterpret_cast<const sockaddr*>(&address);
  const int flags = fcntl(socket, F_GETFL);
  const bool mayWait = whenTaken == WhenTaken::Wait;
  if (!mayWait && fcntl(socket, F_SETFL, flags | O_NONBLOCK) != 0) return lastError();
  while (connect(socket, plain, sizeof address) != 0) {
    if (errno == EAGAIN) return kPipeBusy;
    if (errno != EINTR) return lastError();
  }
  return mayWait || fcntl(socket, F_SETFL, flags) == 0 ? kSuccess : lastError();
}

// Tells a packet of no bytes, after which the connection lives or more is there to read, from the end of the
// connection. A packet of no bytes that is the very last before the end can not be told from it.
bool wasEmptyPacket(int connection) {
  pollfd entry = {connection, POLLRDHUP, 0};
  if (poll(&entry, 1, 0) == 0) return true;
  char first = 0;
  return recv(connection, &first, sizeof first, MSG_PEEK | MSG_DONTWAIT) > 0;
}

}  // namespace

Error PipeEnd::serve(const char* name) {
  const std::string folder = pipeFolder();
  const uid_t user = geteuid();
  sockaddr_un address;
  Error error = pipeAddress(folder, name, &address);
  if (error != kSuccess) return error;
  wake_ = Descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
  if (!wake_) return lastError();
  // Until the socket listens, another creator must not take its file for a stale one.
  FolderLock lock;
  error = lockPipeFolder(folder, user, &lock);
  if (error != kSuccess) return error;
  return file_.create(address, user, &listener_);
}

Error PipeEnd::open(const char* name, bool mayWrite, WhenTaken whenTaken) {
  const std::string folder = pipeFolder();
  const uid_t user = geteuid();
  sockaddr_un address;
  Error error = pipeAddress(folder, name, &address);
  if (error == kSuccess) error = checkPipeFolder(folder, user);
  if (error != kSuccess) return error;
  connection_ = Descriptor(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
  if (!connection_) return lastError();
  error = connectTo(address, connection_.get(), whenTaken);
  if (error == kSuccess) error = checkPeer(connection_.get(), user);
  if (error != kSuccess) return error;
  widenBuffer(connection_.get());
  mayWrite_ = mayWrite;
  state_ = State::Connected;
  return kSuccess;
}

Error PipeEnd::accept() {
  if (!isServer()) return kInvalidHandle;
  if (cancelled_) return kOperationAborted;
  if (state_ == State::Connected) return kPipeConnected;
  state_ = State::Listening;
  Error error = takeClient();
  if (error == kSuccess) return kPipeConnected;
  if (error == kPipeListening) error = awaitClient();
  // A client that could not be taken in keeps its place: the disconnect that makes ready for the next accept leaves it.
  if (error != kSuccess) state_ = State::Disconnected;
  return error;
}

Error PipeEnd::awaitClient() {
  for (;;) {
    const bool isLastLook = noMore_;  // Asked first: a client that came before the declaration is still taken in.
    Error error = takeClient();
    if (error != kPipeListening) return error;
    if (isLastLook) return kBrokenPipe;
    error = waitForClient();
    if (error != kSuccess) return error;
  }
}

// Takes in the client that has come; 536 when none has.
Error PipeEnd::takeClient() {
  Descriptor client;
  do {
    client = Descriptor(accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!client && errno == EAGAIN) return kPipeListening;
    if (!client && errno != EINTR && errno != ECONNABORTED) return lastError();
    // Another user's process is sent away, and the wait goes on.
  } while (!client || checkPeer(client.get(), geteuid()) != kSuccess);
  widenBuffer(client.get());
  const std::lock_guard<std::mutex> hold(change_);
  if (cancelled_) return kOperationAborted;
  if (noMore_) shutdown(client.get(), SHUT_RD);
  connection_ = std::move(client);
  restLength_ = 0;
  peerGone_ = false;
  state_ = State::Connected;
  return kSuccess;
}

Error PipeEnd::waitForClient() const {
  pollfd entries[] = {{listener_.get(), POLLIN, 0}, {wake_.get(), POLLIN, 0}};
  while (poll(entries, 2, -1) < 0) {
    if (errno != EINTR) return lastError();
  }
  return cancelled_ ? kOperationAborted : kSuccess;
}

Error PipeEnd::disconnect() {
  if (!isServer()) return kInvalidHandle;
  const std::lock_guard<std::mutex> hold(change_);
  if (state_ == State::Connected) {
    // Ends both ways at once, and wakes a user who waits. The descriptor itself must outlive that user's call.
    shutdown(connection_.get(), SHUT_RDWR);
  } else if (state_ == State::Listening) {
    dropClients();
  }
  state_ = State::Disconnected;
  eventfd_t declared = 0;
  if (noMore_.exchange(false) && !cancelled_) eventfd_read(wake_.get(), &declared);
  return kSuccess;
}

// Sends away a client that nobody has taken in yet.
void PipeEnd::dropClients() {
  while (Descriptor(accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC))) {
  }
}

Error PipeEnd::cancel() {
  const std::lock_guard<std::mutex> hold(change_);
  cancelled_ = true;
  if (connection_) shutdown(connection_.get(), SHUT_RDWR);
  if (wake_ && eventfd_write(wake_.get(), 1) != 0) return lastError();
  return kSuccess;
}

// What has been received stays to be read; the sender's copies, if there are any, can send no more.
Error PipeEnd::expectNoMore() {
  const std::lock_guard<std::mutex> hold(change_);
  noMore_ = true;
  if (connection_) shutdown(connection_.get(), SHUT_RD);
  if (wake_ && eventfd_write(wake_.get(), 1) != 0) return lastError();
  return kSuccess;
}

// The connection to read from or write to. A client that came before accept() is taken in.
Error PipeEnd::useConnection(int* connection) {
  State state = state_;
  if (state == State::Listening) {
    const Error error = takeClient();
    if (error != kSuccess) return error;
    state = State::Connected;
  }
  if (state == State::Disconnected) return kPipeNotConnected;
  *connection = connection_.get();
  return kSuccess;
}

Error PipeEnd::read(void* buffer, std::uint32_t size, std::uint32_t* count, bool mayWait) {
  *count = 0;
  if (cancelled_) return kOperationAborted;
  int connection = -1;
  const Error error = useConnection(&connection);
  if (error != kSuccess) return noMore_ ? kBrokenPipe : error;
  if (restLength_ > 0) return takeRest(buffer, size, count);
  if (!spill_) spill_.reset(new (std::nothrow) char[kSpillSize]);
  if (!spill_) return kNotEnoughMemory;
  std::size_t length = 0;
  const Error received = nextPacket(connection, buffer, size, mayWait && !noWait_, &length);
  if (received != kSuccess) return received;
  *count = static_cast<std::uint32_t>(std::min<std::size_t>(length, size));
  restOffset_ = 0;
  restLength_ = length - *count;
  return restLength_ > 0 ? kMoreData : kSuccess;
}

Error PipeEnd::nextPacket(int connection, void* buffer, std::uint32_t size, bool mayWait, std::size_t* length) {
  iovec areas[] = {{buffer, size}, {spill_.get(), kSpillSize}};
  msghdr message = {};
  message.msg_iov = areas;
  message.msg_iovlen = 2;
  ssize_t received = 0;
  do {
    received = recvmsg(connection, &message, mayWait ? 0 : MSG_DONTWAIT);
    // A reset is told once, ahead of the packets that arrived before it; they are read first.
  } while (received < 0 && (errno == EINTR || errno == ECONNRESET));
  if (received < 0) return lastError();
  if (received == 0) return nothingReceived(connection);
  // The rest of such a packet is lost, so the stream is no longer what was sent.
  if ((message.msg_flags & MSG_TRUNC) != 0) return kInvalidData;
  *length = static_cast<std::size_t>(received);
  return kSuccess;
}

Error PipeEnd::nothingReceived(int connection) {
  if (cancelled_) return kOperationAborted;
  if (state_ == State::Disconnected) return kPipeNotConnected;
  if (wasEmptyPacket(connection)) return kSuccess;
  peerGone_ = true;
  return kBrokenPipe;
}

Error PipeEnd::takeRest(void* buffer, std::uint32_t size, std::uint32_t* count) {
  const std::size_t taken = std::min<std::size_t>(restLength_, size);
  if (taken > 0) std::memcpy(buffer, spill_.get() + restOffset_, taken);
  restOffset_ += taken;
  restLength_ -= taken;
  *count = static_cast<std::uint32_t>(taken);
  return restLength_ > 0 ? kMoreData : kSuccess;
}

Error PipeEnd::write(const void* data, std::uint32_t size, std::uint32_t* count) {
  if (!mayWrite_) return kAccessDenied;
  if (cancelled_) return kOperationAborted;
  int connection = -1;
  const Error error = useConnection(&connection);
  if (error != kSuccess) return error;
  ssize_t sent = 0;
  do {
    sent = send(connection, data, size, MSG_NOSIGNAL);
  } while (sent < 0 && errno == EINTR);
  if (sent >= 0) {
    *count = static_cast<std::uint32_t>(sent);
    return kSuccess;
  }
  if (errno != EPIPE && errno != ECONNRESET) return lastError();
  if (cancelled_) return kOperationAborted;
  peerGone_ = true;
  return kNoData;
}

Error PipeEnd::messageMode() const {
  // Packets are always read whole. Only what is known already is told: a look at the peer would cost every call a
  // system call, and the write that follows tells as much.
  return peerGone_ || state_ == State::Disconnected ? kPipeNotConnected : kSuccess;
}

}  // namespace kova::os
