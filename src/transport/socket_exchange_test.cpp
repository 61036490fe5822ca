// Messages and Java records over the socket.
#include <limits>
#include <numeric>
#include <thread>

#include "message/JavaExtensionSmb.h"
#include "tests/transport/exchange_images.h"
#include "tests/transport/socket_test_kit.h"
#include "tests/transport/traced_test.h"
#include "transport/JavaPlugInSocket.h"
#include "transport/message_exchange.h"

namespace {

using kova::claiming;
using kova::imageOfLength;
using kova::fake::callCount;
using kova::fake::fail;
using testing::ElementsAre;
using testing::IsEmpty;

class SocketExchangeTest : public kova::TracedTest {
 protected:
  SocketExchangeTest() {
    EXPECT_EQ(socket_.CreateSocket(), 0);
    EXPECT_TRUE(peer_.connect(socket_.GetSocketPort()));
    EXPECT_EQ(socket_.AcceptSocket(), 0);
  }

  ~SocketExchangeTest() override {
    JavaExtensionSmb().CleanUp();
    JavaExtensionSmb().SetDataLen(0);
    HangUp();
    socket_.CloseSocket();
  }

  void HangUp() {
    if (writer_.joinable()) writer_.join();
    peer_.close();
  }

  // Has the peer send the bytes, on a thread of its own, and then close.
  void PeerSends(std::string bytes) {
    writer_ = std::thread([this, bytes = std::move(bytes)] {
      peer_.send(bytes);
      peer_.close();
    });
  }

  static std::vector<std::string> SizesSent() {
    std::vector<std::string> sizes;
    const std::string name = "Socket::Send ";
    for (const std::string& call : kova::fake::calls()) {
      if (call.rfind(name, 0) == 0) sizes.push_back(call.substr(name.size()));
    }
    return sizes;
  }

  kova::SocketPeer peer_;
  JavaPlugInSocket socket_;
  std::thread writer_;
};

struct ReceiveCase {
  const char* label;
  std::string bytes;
  int result;
  int status;
};

class Received : public SocketExchangeTest, public testing::WithParamInterface<ReceiveCase> {
 protected:
  void Check() {
    PeerSends(GetParam().bytes);
    CleXDSmb message;
    int status = -1;
    EXPECT_EQ(kova::ReceiveMessage(&socket_, message, &status), GetParam().result);
    EXPECT_EQ(status, GetParam().status);
  }
};

TEST_P(Received, GivesResultAndTransportStatus) { Check(); }

TEST_P(Received, GivesTheSameFromSingleBytes) {
  kova::fake::limitReceives(1);
  Check();
}

constexpr int kLargest = std::numeric_limits<std::int32_t>::max();
const std::string kLong = imageOfLength(20000, 41);
const std::string kZeros(60, '\0');

const ReceiveCase kWhole[] = {
    {"empty", imageOfLength(52, 0), 0, 0},           {"errorCodeIsTheResult", imageOfLength(52, 5), 5, 0},
    {"small", imageOfLength(60, 0), 0, 0},           {"oneChunk", imageOfLength(8192, 41), 41, 0},
    {"oneByteMore", imageOfLength(8193, 41), 41, 0}, {"long", kLong, 41, 0},
    {"withMoreBehindIt", kLong + "more", 41, 0},
};
INSTANTIATE_TEST_SUITE_P(Whole, Received, testing::ValuesIn(kWhole),
                         [](const auto& row) { return std::string(row.param.label); });

const ReceiveCase kSpoilt[] = {
    {"nothing", "", 99122, 99122},
    {"oneByte", "x", 99122, 99122},
    {"threeBytes", "abc", 99122, 99122},
    {"fourBytesOfOnes", "\xFF\xFF\xFF\xFF", 99122, 99122},
    {"says10", claiming(10, kZeros), 99122, 99122},
    {"says51", claiming(51, kZeros), 99122, 99122},
    {"saysNothing", claiming(0, kZeros), 99122, 99122},
    {"saysTheLeast", claiming(-kLargest - 1, kZeros), 99122, 99122},
};
INSTANTIATE_TEST_SUITE_P(Spoilt, Received, testing::ValuesIn(kSpoilt),
                         [](const auto& row) { return std::string(row.param.label); });

const ReceiveCase kCut[] = {
    {"afterTheLength", kLong.substr(0, 4), 99122, 99122},
    {"beforeTheErrorCode", kLong.substr(0, 11), 99122, 99122},
    {"afterTheErrorCode", kLong.substr(0, 12), 41, 99122},
    {"afterTheFirstChunk", kLong.substr(0, 8192), 41, 99122},
    {"byOneByte", kLong.substr(0, 19999), 41, 99122},
    {"farFromWhatItSays", claiming(10000000, kLong.substr(0, 60)), 41, 99122},
};
INSTANTIATE_TEST_SUITE_P(Cut, Received, testing::ValuesIn(kCut),
                         [](const auto& row) { return std::string(row.param.label); });

TEST_F(SocketExchangeTest, TheLargestLengthCostsNothingButItsName) {
  PeerSends(claiming(kLargest, kLong.substr(0, 60)));
  CleXDSmb message;
  EXPECT_EQ(ReceiveData(&socket_, message), 41);
}

TEST_F(SocketExchangeTest, TheValuesArrive) {
  CleXDSmb sent;
  sent.SetLong(7);
  sent.SetString("label");
  const std::string block(20000, 'b');
  sent.BorrowVoidData(block.data(), 20000);
  PeerSends(kova::imageOf(sent));
  CleXDSmb message;
  EXPECT_EQ(ReceiveData(&socket_, message), 0);
  EXPECT_EQ(message.FirstLong(), 7);
  EXPECT_STREQ(message.FirstString(), "label");
  int length = 0;
  const void* data = message.GetVoidData(length);
  EXPECT_EQ(std::string(static_cast<const char*>(data), static_cast<std::size_t>(length)), block);
}

TEST_F(SocketExchangeTest, TwoMessagesThatComeTogetherAreReadOneByOne) {
  PeerSends(imageOfLength(52, 1) + imageOfLength(60, 2) + kLong);
  CleXDSmb message;
  EXPECT_EQ(ReceiveData(&socket_, message), 1);
  EXPECT_EQ(ReceiveData(&socket_, message), 2);
  EXPECT_EQ(ReceiveData(&socket_, message), 41);
  EXPECT_EQ(ReceiveData(&socket_, message), 99122);
}

TEST_F(SocketExchangeTest, NoReadAsksForMoreThan8192Bytes) {
  ASSERT_TRUE(peer_.send(kLong));
  CleXDSmb message;
  EXPECT_EQ(ReceiveData(&socket_, message), 41);
  std::vector<std::string> sizes;
  for (const std::string& call : kova::fake::calls()) {
    if (call.rfind("Socket::Receive ", 0) == 0) sizes.push_back(call.substr(16));
  }
  EXPECT_THAT(sizes, ElementsAre("4", "8192", "8192", "3612"));
}

TEST_F(SocketExchangeTest, APeerThatHasClosedIsNoticedByAHundredEmptyReads) {
  peer_.close();
  const std::uint64_t start = kova::fake::elapsedMs();
  CleXDSmb message;
  EXPECT_EQ(ReceiveData(&socket_, message), 99122);
  EXPECT_EQ(callCount("Socket::Receive"), 100U);
  EXPECT_EQ(callCount("SleepMs"), 99U);
  EXPECT_EQ(kova::fake::elapsedMs() - start, 990U);
}

TEST_F(SocketExchangeTest, AFailedReadEndsTheMessage) {
  ASSERT_TRUE(peer_.send(kLong));
  fail("Socket::Receive", 10054, 2);
  CleXDSmb message;
  int status = 0;
  EXPECT_EQ(kova::ReceiveMessage(&socket_, message, &status), 41) << "two reads have brought the error code";
  EXPECT_EQ(status, 99122);
  EXPECT_THAT(Traced(), ElementsAre("ReadData error code : 80054."));
  EXPECT_EQ(ReceiveData(&socket_, message), 99122);
}

TEST_F(SocketExchangeTest, WhatIsMissingReadsAsZeros) {
  CleXDSmb sent;
  const std::string block(20000, 'b');
  sent.BorrowVoidData(block.data(), 20000);
  PeerSends(kova::imageOf(sent).substr(0, 8192));
  CleXDSmb message;
  EXPECT_EQ(ReceiveData(&socket_, message), 0);
  int length = 0;
  const void* data = message.GetVoidData(length);
  ASSERT_EQ(length, 20000);
  const std::size_t there = 8192 - 52;
  EXPECT_EQ(std::string(static_cast<const char*>(data), 20000),
            std::string(there, 'b') + std::string(20000 - there, '\0'));
}

TEST_F(SocketExchangeTest, AMessageIsSentInPiecesOf8192Bytes) {
  CleXDSmb message;
  std::string block(19948, '\0');
  std::iota(block.begin(), block.end(), '\0');
  message.BorrowVoidData(block.data(), 19948);
  CleXDSmb same = message;
  const std::string image = kova::imageOf(same);
  ASSERT_EQ(image.size(), 20000U);
  EXPECT_EQ(SendData(&socket_, message), 0);
  EXPECT_THAT(SizesSent(), ElementsAre("8192", "8192", "3616"));
  EXPECT_TRUE(peer_.receive(20000) == image);
}

TEST_F(SocketExchangeTest, SuccessClearsTheMessage) {
  CleXDSmb message;
  message.SetLong(7);
  EXPECT_EQ(SendData(&socket_, message), 0);
  EXPECT_EQ(message.GetLongData().Size(), 0);
}

TEST_F(SocketExchangeTest, FailureKeepsTheMessage) {
  CleXDSmb message;
  message.SetLong(7);
  fail("Socket::Send", 10054);
  EXPECT_EQ(SendData(&socket_, message), 99122);
  EXPECT_EQ(message.FirstLong(), 7);
  EXPECT_THAT(Traced(), ElementsAre("WriteData error code : 80054."));
}

class JavaRecord : public SocketExchangeTest {
 protected:
  void Set(std::string bytes) {
    record_.SetDataLen(static_cast<int>(bytes.size()));
    record_.SetSendBuf(bytes.data());
    record_.SetCommandName("command");
  }

  JavaExtensionSmb record_;
};

TEST_F(JavaRecord, IsSentAsItStandsAndCleared) {
  const std::string bytes(20000, 'j');
  Set(bytes);
  EXPECT_EQ(SendData(&socket_, record_), 0);
  EXPECT_THAT(SizesSent(), ElementsAre("8192", "8192", "3616"));
  EXPECT_TRUE(peer_.receive(20000) == bytes);
  EXPECT_TRUE(peer_.hearsNothing(0));
  EXPECT_EQ(record_.GetCommandName(), "");
  EXPECT_EQ(record_.GetDataLen(), 20000) << "the length stays";
}

TEST_F(JavaRecord, WithoutBytesSendsNothing) {
  Set("12345");
  record_.CleanUp();
  EXPECT_EQ(SendData(&socket_, record_), 0);
  EXPECT_TRUE(peer_.hearsNothing(0));
  EXPECT_THAT(SizesSent(), IsEmpty());
}

TEST_F(JavaRecord, StaysWhenItCanNotBeSent) {
  Set("12345");
  fail("Socket::Send", 10054);
  EXPECT_EQ(SendData(&socket_, record_), 99122);
  int length = 0;
  EXPECT_NE(record_.GetSendBuf(length), nullptr);
  EXPECT_EQ(record_.GetCommandName(), "command");
}

TEST_F(JavaRecord, IsNeverReadBack) {
  peer_.send("something");
  EXPECT_EQ(ReceiveData(&socket_, record_), 0);
  EXPECT_EQ(callCount("Socket::Receive"), 0U);
}

}  // namespace
