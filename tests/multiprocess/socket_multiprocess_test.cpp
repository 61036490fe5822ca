// The socket with a real runtime at its other end: a process that connects, talks, breaks off and dies.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>

#include "message/CleXDSmb.h"
#include "message/JavaExtensionSmb.h"
#include "platform/os/clock.h"
#include "tests/kit/kit.h"
#include "tests/kit/kit_system.h"
#include "tests/transport/exchange_images.h"
#include "tests/transport/socket_test_kit.h"
#include "transport/JavaPlugInSocket.h"
#include "transport/message_exchange.h"

namespace {

namespace os = kova::os;

using kova::imageOfLength;

constexpr int kPatienceMs = 30000;
constexpr int kKilled = 137;

class RuntimeSocket : public testing::Test {
 protected:
  ~RuntimeSocket() override { socket_.CloseSocket(); }

  // Starts the child with the port and takes its connection in.
  void Join(const std::string& child) {
    ASSERT_EQ(socket_.CreateSocket(), 0);
    child_ = kova::kit::startChild(child, {std::to_string(socket_.GetSocketPort())});
    ASSERT_TRUE(static_cast<bool>(child_));
    ASSERT_EQ(socket_.AwaitPeer(kPatienceMs), 0);
    ASSERT_EQ(socket_.AcceptSocket(), 0);
  }

  JavaPlugInSocket socket_;
  os::Process child_;
};

// Sends each message back, with another error code, until the stream ends.
KOVA_KIT_CHILD(runtime_that_answers) {
  kova::SocketPeer peer;
  if (!peer.connect(std::stoi(arguments.at(0)))) return 1;
  for (;;) {
    const std::string length = peer.receive(4);
    if (length.size() < 4) return length.empty() ? 0 : 2;
    std::int32_t total = 0;
    std::memcpy(&total, length.data(), sizeof total);
    std::string bytes = length + peer.receive(static_cast<std::size_t>(total) - 4);
    bytes[8] = 17;
    if (!peer.send(bytes)) return 3;
  }
}

TEST_F(RuntimeSocket, CarriesMessagesToTheRuntimeAndBack) {
  Join("runtime_that_answers");
  for (const int length : {60, 8192, 8193, 20000, 1000000}) {
    CleXDSmb message;
    message.SetString(std::string(static_cast<std::size_t>(length - 56), 's'));
    ASSERT_EQ(SendData(&socket_, message), 0) << length;
    CleXDSmb answer;
    ASSERT_EQ(ReceiveData(&socket_, answer), 17) << length;
    EXPECT_EQ(answer.GetSingleString().size(), static_cast<std::size_t>(length - 56));
  }
  EXPECT_EQ(socket_.CloseSocket(), 0);
  EXPECT_EQ(kova::kit::waitForChild(child_), 0) << "the end of the stream ends the runtime";
}

KOVA_KIT_CHILD(runtime_of_few_words) {
  kova::SocketPeer peer;
  if (!peer.connect(std::stoi(arguments.at(0)))) return 1;
  for (const char byte : imageOfLength(200, 5)) {
    if (!peer.send(std::string(1, byte))) return 2;
    os::SleepMs(1);
  }
  return peer.send(imageOfLength(52, 6) + imageOfLength(60, 7)) ? 0 : 3;
}

TEST_F(RuntimeSocket, CollectsSingleBytesAndKeepsMessagesApart) {
  Join("runtime_of_few_words");
  CleXDSmb message;
  EXPECT_EQ(ReceiveData(&socket_, message), 5);
  EXPECT_EQ(ReceiveData(&socket_, message), 6);
  EXPECT_EQ(ReceiveData(&socket_, message), 7);
  EXPECT_EQ(kova::kit::waitForChild(child_), 0);
}

KOVA_KIT_CHILD(runtime_that_goes) { return kova::SocketPeer().connect(std::stoi(arguments.at(0))) ? 0 : 1; }

TEST_F(RuntimeSocket, NoticesWithinTwoSecondsThatTheRuntimeHasGone) {
  Join("runtime_that_goes");
  EXPECT_EQ(kova::kit::waitForChild(child_), 0);
  const std::uint64_t start = os::TickMs();
  const std::uint64_t busyBefore = kova::kit::processorMs();
  CleXDSmb message;
  EXPECT_EQ(ReceiveData(&socket_, message), 99122);
  EXPECT_LT(os::TickMs() - start, 2000U);
  EXPECT_LT(kova::kit::processorMs() - busyBefore, 250U) << "a dead peer costs no processor time";
}

KOVA_KIT_CHILD(runtime_that_stays) {
  kova::SocketPeer peer;
  if (!peer.connect(std::stoi(arguments.at(0)))) return 1;
  peer.receive(1);
  os::SleepMs(kPatienceMs);
  return 0;
}

TEST_F(RuntimeSocket, EndsAReceiveWhenTheRuntimeIsKilled) {
  Join("runtime_that_stays");
  std::thread killer([this] {
    os::SleepMs(50);
    EXPECT_EQ(child_.Terminate(), os::kSuccess);
  });
  CleXDSmb message;
  EXPECT_EQ(ReceiveData(&socket_, message), 99122);
  killer.join();
  EXPECT_EQ(kova::kit::waitForChild(child_), kKilled);
}

TEST_F(RuntimeSocket, EndsASendWhenTheRuntimeIsKilled) {
  Join("runtime_that_stays");
  std::thread killer([this] {
    os::SleepMs(50);
    EXPECT_EQ(child_.Terminate(), os::kSuccess);
  });
  CleXDSmb message;
  const std::string block(100000000, 'b');
  message.BorrowVoidData(block.data(), static_cast<int>(block.size()));
  EXPECT_EQ(SendData(&socket_, message), 99122) << "nobody reads so much";
  killer.join();
  EXPECT_EQ(kova::kit::waitForChild(child_), kKilled);
}

KOVA_KIT_CHILD(runtime_that_never_connects) { return 7; }

// What a host does that watches its child.
TEST_F(RuntimeSocket, TheWaitForARuntimeThatHasEndedCanEnd) {
  ASSERT_EQ(socket_.CreateSocket(), 0);
  child_ = kova::kit::startChild("runtime_that_never_connects");
  int exitCode = -1;
  int awaited = 0;
  do {
    awaited = socket_.AwaitPeer(20);
  } while (awaited == 258 && child_.Wait(0, &exitCode) == os::kWaitTimeout);
  EXPECT_EQ(awaited, 258);
  EXPECT_EQ(exitCode, 7);
}

// How long a cancel takes to end the operation, in ms.
template <class Operation>
std::uint64_t timeToCancel(JavaPlugInSocket* socket, Operation operation) {
  std::uint64_t cancelled = 0;
  std::thread canceller([&] {
    os::SleepMs(50);
    cancelled = os::TickMs();
    socket->CancelWait();
  });
  operation();
  const std::uint64_t ended = os::TickMs();
  canceller.join();
  return ended - cancelled;
}

TEST_F(RuntimeSocket, ABlockedAcceptIsWokenWithinASecond) {
  ASSERT_EQ(socket_.CreateSocket(), 0);
  const auto accept = [this] { EXPECT_EQ(socket_.AcceptSocket(), 99121); };
  EXPECT_LT(timeToCancel(&socket_, accept), 1000U);
}

TEST_F(RuntimeSocket, ABlockedReceiveIsWokenWithinASecond) {
  kova::SocketPeer peer;
  ASSERT_EQ(socket_.CreateSocket(), 0);
  ASSERT_TRUE(peer.connect(socket_.GetSocketPort()));
  ASSERT_EQ(socket_.AcceptSocket(), 0);
  const auto receive = [this] {
    CleXDSmb message;
    EXPECT_EQ(ReceiveData(&socket_, message), 99122);
  };
  EXPECT_LT(timeToCancel(&socket_, receive), 1000U);
}

TEST_F(RuntimeSocket, ABlockedSendIsWokenWithinASecond) {
  kova::SocketPeer peer;
  ASSERT_EQ(socket_.CreateSocket(), 0);
  ASSERT_TRUE(peer.connect(socket_.GetSocketPort()));
  ASSERT_EQ(socket_.AcceptSocket(), 0);
  const std::string bytes(100000000, 'b');
  const auto send = [&] {
    unsigned long written = 0;
    EXPECT_EQ(socket_.WriteData(bytes.data(), static_cast<int>(bytes.size()), written), 99122);
  };
  EXPECT_LT(timeToCancel(&socket_, send), 1000U);
}

TEST_F(RuntimeSocket, ASilentPeerCostsNoProcessorTime) {
  kova::SocketPeer peer;
  ASSERT_EQ(socket_.CreateSocket(), 0);
  ASSERT_TRUE(peer.connect(socket_.GetSocketPort()));
  ASSERT_EQ(socket_.AcceptSocket(), 0);
  std::thread writer([&] {
    os::SleepMs(1000);
    EXPECT_TRUE(peer.send(imageOfLength(52, 3)));
  });
  const std::uint64_t busyBefore = kova::kit::processorMs();
  CleXDSmb message;
  EXPECT_EQ(ReceiveData(&socket_, message), 3);
  EXPECT_LT(kova::kit::processorMs() - busyBefore, 250U);
  writer.join();
}

TEST_F(RuntimeSocket, APortThatIsInUseGives99122) {
  ASSERT_EQ(socket_.CreateSocket(), 0);
  JavaPlugInSocket second;
  EXPECT_EQ(second.CreateSocket(socket_.GetSocketPort()), 99122);
}

TEST_F(RuntimeSocket, TwoHundredConversationsLeaveNothingBehind) {
  for (int i = 0; i < 200; ++i) {
    kova::SocketPeer peer;
    ASSERT_EQ(socket_.CreateSocket(), 0) << i;
    ASSERT_TRUE(peer.connect(socket_.GetSocketPort()));
    ASSERT_EQ(socket_.AcceptSocket(), 0);
    JavaExtensionSmb record;
    char bytes[] = "12345";
    record.SetDataLen(5);
    record.SetSendBuf(bytes);
    ASSERT_EQ(SendData(&socket_, record), 0);
    ASSERT_EQ(peer.receive(5), "12345");
    ASSERT_EQ(socket_.CloseSocket(), 0);
  }
}

}  // namespace
