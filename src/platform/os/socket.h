// Stream sockets over IPv4: one that listens, and the connections to it.
//
// Functions tell what became of a call as a SocketResult; an output is stored on success and untouched on failure. A
// socket is used by one thread at a time, save for Shutdown, which may be called while another thread is blocked in
// Send. No call raises a signal, and no socket is inherited by a child process.
//
// A thread that must be woken never waits here without limit: it waits with Await, in steps, and looks between them
// whether it should still wait. Nothing else wakes a blocked accept and a blocked receive on every platform.
#ifndef KOVADX_PLATFORM_OS_SOCKET_H
#define KOVADX_PLATFORM_OS_SOCKET_H

#include <cstdint>
#include <utility>

#include "platform/os/error.h"

namespace kova::os {

// What a call of a socket gave. `error` is in the seam's language: a Windows error number on every platform, for
// sockets mostly one above 10000, and 0 for success; code compares with it. `number` is what the platform itself calls
// the same failure, errno on POSIX and the Windows Sockets number on Windows: it is for the trace, where it must be
// found again in the platform's own books, and nothing compares with it.
struct SocketResult {
  Error error = kSuccess;
  std::int32_t number = 0;

  bool failed() const { return error != kSuccess; }
};

constexpr Error kAddressInUse = 10048;
constexpr Error kConnectionReset = 10054;
constexpr Error kConnectionRefused = 10061;

// IPv4 addresses, as numbers: all interfaces of this machine, and the machine itself.
constexpr std::uint32_t kAnyAddress = 0;
constexpr std::uint32_t kLoopbackAddress = 0x7F000001;

// The version that the callers of StartSockets ask for: 2.2, the major number in the low byte.
constexpr std::uint16_t kSocketVersion = 0x0202;

// Starts the platform's socket library and stores the version obtained. Each start that succeeds needs one
// StopSockets. A platform without such a library does nothing and stores the version asked for.
SocketResult StartSockets(std::uint16_t version, std::uint16_t* obtained);
void StopSockets();

// One socket. Owns its handle; destruction closes it. A call on an object without a handle gives 6.
class Socket {
 public:
  Socket() = default;
  Socket(Socket&& other) noexcept : native_(other.Release()) {}
  Socket& operator=(Socket&& other) noexcept {
    std::swap(native_, other.native_);
    return *this;
  }
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;
  ~Socket();

  // Makes a socket that is neither bound nor connected.
  static SocketResult Open(Socket* out);

  // Binds it to a port; 0 has the system choose one. 10048 when the port is in use, 10013 when it is not allowed. A
  // port whose last connections still linger in the system can be bound again.
  SocketResult Bind(std::uint32_t address, std::uint16_t port);

  // Lets peers connect from now on; up to `backlog` of them (as the platform counts) wait for their accept.
  SocketResult Listen(int backlog);

  // The port that the socket is bound to.
  SocketResult Port(std::uint16_t* port) const;

  // Connects to a listening socket. 10061 when nobody listens there.
  SocketResult Connect(std::uint32_t address, std::uint16_t port);

  // Waits until Accept has a peer to take, or Receive has bytes, an end or a failure to tell, at most that time
  // (0xFFFFFFFF: no limit): 258 when the time is up.
  SocketResult Await(std::uint32_t timeoutMs) const;

  // Takes the connection of the peer that came first; waits for one.
  SocketResult Accept(Socket* out) const;

  // What has come, at most `size` bytes; waits for the first. *read is 0 at the end of the stream, at once and as often
  // as it is asked. 10054 when the peer has broken off.
  SocketResult Receive(void* buffer, std::uint32_t size, std::uint32_t* read);

  // Sends the bytes and waits until the platform has taken them all. A platform that takes fewer and calls that a
  // success tells how many. 10054 or a number near it when the peer is known to have gone; what was sent by then is not
  // known.
  SocketResult Send(const void* data, std::uint32_t size, std::uint32_t* sent);

  // Ends a connection both ways. A Send that is blocked in it fails.
  SocketResult Shutdown();

  // Frees the handle. The object is without one afterwards, also when the call fails.
  SocketResult Close();

  // Leaves the handle to nobody: it stays open until the process ends.
  void Forget() { Release(); }

  explicit operator bool() const { return native_ != kNone; }

 private:
  static constexpr std::uintptr_t kNone = ~std::uintptr_t{0};

  explicit Socket(std::uintptr_t native) : native_(native) {}
  std::uintptr_t Release() { return std::exchange(native_, kNone); }

  std::uintptr_t native_ = kNone;
};

}  // namespace kova::os

#endif
