#include "engine/socket_handlers.h"

#include <thread>

#include "engine/request_kit.h"
#include "tests/transport/socket_test_kit.h"

namespace kova::engine {
namespace {

class SocketRequests : public RequestTest {
 protected:
  SocketRequests() { state_.runtimeSocket.setAcceptLimitMs(50); }

  int createdPort() {
    const CleXDSmb reply = ask(Command::CreateSocket);
    EXPECT_EQ(reply.GetErrorCode(), 0);
    return reply.FirstLong();
  }
};

TEST_F(SocketRequests, TheRuntimeIsTakenIn) {
  const int port = createdPort();
  EXPECT_GT(port, 0);
  EXPECT_LE(port, 65535);
  SocketPeer runtime;
  ASSERT_TRUE(runtime.connect(port));
  EXPECT_EQ(tell(Command::AcceptSocket), 0);
  EXPECT_EQ(tell(Command::AcceptSocket), 0) << "it is there";
}

TEST_F(SocketRequests, ARuntimeThatComesLaterIsWaitedFor) {
  state_.runtimeSocket.setAcceptLimitMs(60000);
  const int port = createdPort();
  SocketPeer runtime;
  std::thread start([&] { EXPECT_TRUE(runtime.connect(port)); });
  EXPECT_EQ(tell(Command::AcceptSocket), 0);
  start.join();
}

TEST_F(SocketRequests, TheWaitForARuntimeIsLimitedAndCanBeBegunAgain) {
  const int port = createdPort();
  expectRefused(ErrorCode::kNoRuntimeYet, Command::AcceptSocket);
  EXPECT_EQ(tell(Command::AcceptSocket), 98131);
  SocketPeer runtime;
  ASSERT_TRUE(runtime.connect(port));
  EXPECT_EQ(tell(Command::AcceptSocket), 0);
}

TEST_F(SocketRequests, WithoutASocketNobodyCanBeAccepted) {
  expectRefused(ErrorCode::kNoSocketOpen, Command::AcceptSocket);
  EXPECT_EQ(tell(Command::AcceptSocket), 98130);
}

TEST_F(SocketRequests, ANewSocketTakesThePlaceOfTheOldOne) {
  const int first = createdPort();
  SocketPeer runtime;
  ASSERT_TRUE(runtime.connect(first));
  ASSERT_EQ(tell(Command::AcceptSocket), 0);
  createdPort();
  EXPECT_EQ(runtime.receive(1), "") << "its connection was closed";
  EXPECT_EQ(tell(Command::AcceptSocket), 98131) << "the new socket has no runtime yet";
}

TEST_F(SocketRequests, TheSocketGoesWithTheEngine) {
  SocketPeer runtime;
  {
    EngineState state;
    int port = 0;
    ASSERT_EQ(state.runtimeSocket.open(&port), ErrorCode::kNone);
    ASSERT_TRUE(runtime.connect(port));
    ASSERT_EQ(state.runtimeSocket.accept(), ErrorCode::kNone);
  }
  EXPECT_EQ(runtime.receive(1), "");
}

TEST(RuntimeSocket, WaitsNoLongerThanTheEngineMayGoOnAfterItsProgram) {
  EXPECT_EQ(RuntimeSocket::kAcceptLimitMs, 4000);
}

}  // namespace
}  // namespace kova::engine
