// Stream sockets: how the two ends come together, what a stream keeps, and how it ends.
#include "platform/os/socket.h"

#include <algorithm>
#include <string>
#include <thread>

#include "platform/os/clock.h"
#include "tests/conformance/seam_fixture.h"

namespace kova::conformance {
namespace {

using os::Socket;
using os::SocketResult;

constexpr std::uint32_t kPatienceMs = 20000;

class Sockets : public SeamTest {
 protected:
  Sockets() {
    std::uint16_t obtained = 0;
    EXPECT_FALSE(os::StartSockets(os::kSocketVersion, &obtained).failed());
    EXPECT_EQ(obtained, os::kSocketVersion);
  }
  ~Sockets() override {
    for (Socket* socket : {&listener_, &server_, &client_}) socket->Close();
    os::StopSockets();
  }

  // A listening socket on a port that the system has chosen.
  void listen() {
    ASSERT_EQ(Socket::Open(&listener_).error, os::kSuccess);
    ASSERT_EQ(listener_.Bind(os::kLoopbackAddress, 0).error, os::kSuccess);
    ASSERT_EQ(listener_.Listen(5).error, os::kSuccess);
    ASSERT_EQ(listener_.Port(&port_).error, os::kSuccess);
  }

  Error connect(Socket* out) const {
    const SocketResult opened = Socket::Open(out);
    return opened.failed() ? opened.error : out->Connect(os::kLoopbackAddress, port_).error;
  }

  void join() {
    listen();
    ASSERT_EQ(connect(&client_), os::kSuccess);
    ASSERT_EQ(listener_.Accept(&server_).error, os::kSuccess);
  }

  static Received receive(Socket& socket, std::uint32_t size = kArea) {
    std::string area(size, '?');
    std::uint32_t count = 0;
    const SocketResult result = socket.Receive(area.data(), size, &count);
    return {result.error, area.substr(0, count)};
  }

  // So many bytes, in whatever pieces they come.
  static std::string receiveAll(Socket& socket, std::size_t length) {
    std::string all;
    while (all.size() < length) {
      const Received piece =
          receive(socket, static_cast<std::uint32_t>(std::min<std::size_t>(length - all.size(), kArea)));
      if (piece.error != os::kSuccess || piece.bytes.empty()) break;
      all += piece.bytes;
    }
    return all;
  }

  static Error send(Socket& socket, const std::string& bytes) {
    std::uint32_t sent = 0;
    const SocketResult result = socket.Send(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &sent);
    if (!result.failed()) {
      EXPECT_EQ(sent, bytes.size());
    }
    return result.error;
  }

  Socket listener_;
  Socket server_;
  Socket client_;
  std::uint16_t port_ = 0;
};

TEST_F(Sockets, TheSystemChoosesAPort) {
  listen();
  EXPECT_NE(port_, 0);
}

TEST_F(Sockets, BytesGoBothWays) {
  join();
  EXPECT_EQ(send(client_, "request"), os::kSuccess);
  EXPECT_EQ(receiveAll(server_, 7), "request");
  EXPECT_EQ(send(server_, "reply"), os::kSuccess);
  EXPECT_EQ(receiveAll(client_, 5), "reply");
}

TEST_F(Sockets, AStreamKeepsNoBounds) {
  join();
  EXPECT_EQ(send(client_, "one"), os::kSuccess);
  EXPECT_EQ(send(client_, "two"), os::kSuccess);
  EXPECT_EQ(receiveAll(server_, 4), "onet");
  EXPECT_EQ(receiveAll(server_, 2), "wo");
}

TEST_F(Sockets, ASendWaitsUntilAllIsTaken) {
  join();
  const std::string bytes = pattern(4000000);
  std::thread writer([&] { EXPECT_EQ(send(client_, bytes), os::kSuccess); });
  EXPECT_TRUE(receiveAll(server_, bytes.size()) == bytes);
  writer.join();
}

TEST_F(Sockets, APeerThatClosesEndsTheStreamAgainAndAgain) {
  join();
  EXPECT_EQ(send(client_, "last"), os::kSuccess);
  client_.Close();
  EXPECT_EQ(receiveAll(server_, 4), "last");
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(server_.Await(kPatienceMs).error, os::kSuccess);
    EXPECT_EQ(receive(server_), (Received{os::kSuccess, ""}));
  }
}

TEST_F(Sockets, APeerThatClosesEndsAReceiveThatWaits) {
  join();
  std::thread closer([&] { client_.Close(); });
  EXPECT_EQ(receive(server_), (Received{os::kSuccess, ""}));
  closer.join();
}

// The first bytes may still be taken on their way to a peer that has gone.
TEST_F(Sockets, ASendToAPeerThatHasGoneFailsBeforeLong) {
  join();
  server_.Close();
  Error error = os::kSuccess;
  for (int i = 0; i < 1000 && error == os::kSuccess; ++i) {
    error = send(client_, pattern(1000));
    os::SleepMs(1);
  }
  EXPECT_NE(error, os::kSuccess);
}

TEST_F(Sockets, AnAcceptCanBeAwaitedInSteps) {
  listen();
  EXPECT_EQ(listener_.Await(0).error, os::kWaitTimeout);
  EXPECT_EQ(listener_.Await(30).error, os::kWaitTimeout);
  ASSERT_EQ(connect(&client_), os::kSuccess);
  EXPECT_EQ(listener_.Await(kPatienceMs).error, os::kSuccess);
  EXPECT_EQ(listener_.Accept(&server_).error, os::kSuccess);
  EXPECT_EQ(listener_.Await(0).error, os::kWaitTimeout);
}

TEST_F(Sockets, AReceiveCanBeAwaitedInSteps) {
  join();
  EXPECT_EQ(server_.Await(0).error, os::kWaitTimeout);
  EXPECT_EQ(server_.Await(30).error, os::kWaitTimeout);
  EXPECT_EQ(send(client_, "x"), os::kSuccess);
  EXPECT_EQ(server_.Await(kPatienceMs).error, os::kSuccess);
  EXPECT_EQ(receive(server_), (Received{os::kSuccess, "x"}));
  EXPECT_EQ(server_.Await(0).error, os::kWaitTimeout);
}

TEST_F(Sockets, APeerEndsAWaitWithoutLimit) {
  listen();
  std::thread peer([&] { EXPECT_EQ(connect(&client_), os::kSuccess); });
  EXPECT_EQ(listener_.Await(os::kWaitForever).error, os::kSuccess);
  peer.join();
}

TEST_F(Sockets, SeveralPeersWaitForTheirAccept) {
  listen();
  Socket second;
  ASSERT_EQ(connect(&client_), os::kSuccess);
  ASSERT_EQ(connect(&second), os::kSuccess);
  EXPECT_EQ(send(client_, "first"), os::kSuccess);
  EXPECT_EQ(send(second, "second"), os::kSuccess);
  ASSERT_EQ(listener_.Accept(&server_).error, os::kSuccess);
  EXPECT_EQ(receiveAll(server_, 5), "first");
  Socket another;
  ASSERT_EQ(listener_.Accept(&another).error, os::kSuccess);
  EXPECT_EQ(receiveAll(another, 6), "second");
}

TEST_F(Sockets, APortThatIsTakenGives10048) {
  listen();
  Socket second;
  ASSERT_EQ(Socket::Open(&second).error, os::kSuccess);
  SocketResult result = second.Bind(os::kLoopbackAddress, port_);
  if (!result.failed()) result = second.Listen(5);
  EXPECT_EQ(result.error, os::kAddressInUse);
  EXPECT_NE(result.number, 0);
}

TEST_F(Sockets, APortThatNobodyListensOnGives10061) {
  listen();
  listener_.Close();
  ASSERT_EQ(Socket::Open(&client_).error, os::kSuccess);
  const SocketResult result = client_.Connect(os::kLoopbackAddress, port_);
  EXPECT_EQ(result.error, os::kConnectionRefused);
  EXPECT_EQ(result.number, kit::kBackend.refusedNumber);
}

TEST_F(Sockets, APortCanBeBoundAgainAfterAConversation) {
  join();
  server_.Close();
  EXPECT_EQ(receive(client_), (Received{os::kSuccess, ""}));
  client_.Close();
  listener_.Close();
  ASSERT_EQ(Socket::Open(&listener_).error, os::kSuccess);
  EXPECT_EQ(listener_.Bind(os::kLoopbackAddress, port_).error, os::kSuccess);
  EXPECT_EQ(listener_.Listen(5).error, os::kSuccess);
}

TEST_F(Sockets, AShutdownEndsTheStreamOfThePeer) {
  join();
  EXPECT_EQ(server_.Shutdown().error, os::kSuccess);
  EXPECT_EQ(receive(client_), (Received{os::kSuccess, ""}));
  EXPECT_NE(send(server_, "x"), os::kSuccess);
}

// Whether the thread is blocked already is not to be seen; a shutdown ends the send also when it comes first.
TEST_F(Sockets, AShutdownEndsASendThatWaits) {
  join();
  Error error = os::kSuccess;
  std::thread writer([&] {
    const std::string bytes = pattern(1000000);
    while (error == os::kSuccess) error = send(client_, bytes);
  });
  os::SleepMs(50);
  EXPECT_EQ(client_.Shutdown().error, os::kSuccess);
  writer.join();
  EXPECT_NE(error, os::kSuccess);
}

TEST_F(Sockets, AreMoved) {
  listen();
  ASSERT_EQ(connect(&client_), os::kSuccess);
  Socket accepted;
  ASSERT_EQ(listener_.Accept(&accepted).error, os::kSuccess);
  Socket moved = std::move(accepted);
  EXPECT_FALSE(accepted);
  ASSERT_TRUE(moved);
  EXPECT_EQ(send(moved, "x"), os::kSuccess);
  EXPECT_EQ(receiveAll(client_, 1), "x");
}

TEST_F(Sockets, WithoutAHandleAllGives6) {
  Socket none;
  std::uint32_t count = 7;
  std::uint16_t port = 7;
  char byte = 0;
  EXPECT_EQ(none.Bind(0, 0).error, os::kInvalidHandle);
  EXPECT_EQ(none.Listen(5).error, os::kInvalidHandle);
  EXPECT_EQ(none.Port(&port).error, os::kInvalidHandle);
  EXPECT_EQ(none.Connect(os::kLoopbackAddress, 1).error, os::kInvalidHandle);
  EXPECT_EQ(none.Await(0).error, os::kInvalidHandle);
  EXPECT_EQ(none.Accept(&server_).error, os::kInvalidHandle);
  EXPECT_EQ(none.Receive(&byte, 1, &count).error, os::kInvalidHandle);
  EXPECT_EQ(none.Send(&byte, 1, &count).error, os::kInvalidHandle);
  EXPECT_EQ(none.Shutdown().error, os::kInvalidHandle);
  const SocketResult closed = none.Close();
  EXPECT_EQ(closed.error, os::kInvalidHandle);
  EXPECT_NE(closed.number, 0);
  EXPECT_EQ(count, 7U);
  EXPECT_EQ(port, 7);
}

}  // namespace
}  // namespace kova::conformance
