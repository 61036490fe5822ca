// What the tests of the socket share: a peer that connects to it, and the bytes that it sends and gets.
#ifndef KOVADX_TESTS_TRANSPORT_SOCKET_TEST_KIT_H
#define KOVADX_TESTS_TRANSPORT_SOCKET_TEST_KIT_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

#include "platform/os/socket.h"

namespace kova {

// The runtime's end of the connection. Closed when it goes.
class SocketPeer {
 public:
  SocketPeer() {
    std::uint16_t obtained = 0;
    EXPECT_FALSE(os::StartSockets(os::kSocketVersion, &obtained).failed());
  }
  SocketPeer(const SocketPeer&) = delete;
  SocketPeer& operator=(const SocketPeer&) = delete;
  ~SocketPeer() {
    close();
    os::StopSockets();
  }

  bool connect(int port) {
    return !os::Socket::Open(&socket_).failed() &&
           !socket_.Connect(os::kLoopbackAddress, static_cast<std::uint16_t>(port)).failed();
  }

  // False when the other side has gone.
  bool send(const std::string& bytes) {
    std::uint32_t sent = 0;
    return bytes.empty() || !socket_.Send(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &sent).failed();
  }

  // So many bytes, fewer when the stream ends before.
  std::string receive(std::size_t length) {
    std::string bytes(length, '\0');
    std::size_t received = 0;
    while (received < length) {
      const std::size_t wanted = std::min<std::size_t>(length - received, 8192);
      std::uint32_t count = 0;
      if (socket_.Receive(&bytes[received], static_cast<std::uint32_t>(wanted), &count).failed() || count == 0) break;
      received += count;
    }
    return bytes.substr(0, received);
  }

  // True when nothing has come within that time.
  bool hearsNothing(std::uint32_t milliseconds) { return socket_.Await(milliseconds).error == os::kWaitTimeout; }

  void close() {
    if (socket_) socket_.Close();
  }

 private:
  os::Socket socket_;
};

}  // namespace kova

#endif
