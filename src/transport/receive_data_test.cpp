#include <limits>
#include <thread>

#include "platform/os/named_pipe.h"
#include "tests/transport/exchange_images.h"
#include "tests/transport/traced_test.h"
#include "transport/KovaPipe.h"
#include "transport/message_exchange.h"

namespace {

namespace os = kova::os;

using kova::claiming;
using kova::imageOfLength;
using kova::inPieces;
using kova::fake::callCount;
using testing::Contains;
using testing::ElementsAre;

using Packets = std::vector<std::string>;

const std::string kName = "\\\\.\\pipe\\1234PYTHON0xdapiresult";

class ReceiveDataTest : public kova::TracedTest {
 protected:
  ReceiveDataTest() {
    pipe_.CreatePipe();
    os::OpenPipe(kName.c_str(), os::PipeAccess::ReadWrite, os::WhenTaken::Wait, &peer_);
  }

  ~ReceiveDataTest() override { HangUp(); }

  // Ends both sides and the peer's thread; whoever still waits is released.
  void HangUp() {
    pipe_.ClosePipe();
    if (writer_.joinable()) writer_.join();
    if (peer_ != nullptr) os::ClosePipeHandle(peer_);
    peer_ = nullptr;
  }

  // Has the peer write each text as one pipe message, of any size, and then close.
  void PeerWrites(Packets packets) {
    writer_ = std::thread([this, packets = std::move(packets)] {
      std::uint32_t written = 0;
      for (const std::string& packet : packets) {
        os::WriteMessage(peer_, packet.data(), static_cast<std::uint32_t>(packet.size()), &written);
      }
      os::ClosePipeHandle(peer_);
      peer_ = nullptr;
    });
  }

  KovaPipe pipe_{kName};
  os::NativeHandle peer_ = nullptr;
  std::thread writer_;
};

struct ReceiveCase {
  const char* label;
  Packets packets;
  int result;
  int status;
};

class Received : public ReceiveDataTest, public testing::WithParamInterface<ReceiveCase> {};

TEST_P(Received, GivesResultAndTransportStatus) {
  PeerWrites(GetParam().packets);
  CleXDSmb message;
  int status = -1;
  EXPECT_EQ(kova::ReceiveMessage(&pipe_, message, &status), GetParam().result);
  EXPECT_EQ(status, GetParam().status);
}

constexpr int kLargest = std::numeric_limits<std::int32_t>::max();
const std::string kLong = imageOfLength(20000, 41);
const std::string kZeros(60, '\0');

const ReceiveCase kWhole[] = {
    {"empty", {imageOfLength(52, 0)}, 0, 0},
    {"errorCodeIsTheResult", {imageOfLength(52, 5)}, 5, 0},
    {"small", {imageOfLength(60, 0)}, 0, 0},
    {"oneChunk", inPieces(imageOfLength(8192, 41), 8192), 41, 0},
    {"oneByteMore", inPieces(imageOfLength(8193, 41), 8192), 41, 0},
    {"twoChunks", inPieces(imageOfLength(16384, 41), 8192), 41, 0},
    {"threeChunks", inPieces(kLong, 8192), 41, 0},
    {"onePacketOfAnySize", {kLong}, 41, 0},
    {"packetsOf9000", inPieces(kLong, 9000), 41, 0},
    {"packetsOf4", inPieces(imageOfLength(60, 41), 4), 41, 0},
};
INSTANTIATE_TEST_SUITE_P(Whole, Received, testing::ValuesIn(kWhole),
                         [](const auto& row) { return std::string(row.param.label); });

const ReceiveCase kSpoilt[] = {
    {"nothing", {}, 109, 109},
    {"zeroBytes", {""}, 99103, 99103},
    {"oneByte", {"x"}, 13, 13},
    {"threeBytes", {"abc"}, 13, 13},
    {"fourBytesOfOnes", {"\xFF\xFF\xFF\xFF"}, 13, 13},
    {"fourBytesThatSay4", {claiming(4, "....")}, 13, 13},
    {"tenBytes", {claiming(10, kZeros.substr(0, 10))}, 13, 13},
    {"fiftyOneBytes", {claiming(51, kZeros.substr(0, 51))}, 13, 13},
    {"says51", {claiming(51, kZeros.substr(0, 40))}, 13, 13},
    {"saysLessThanItHas", {claiming(52, kZeros)}, 13, 13},
    {"saysNothing", {claiming(0, kZeros)}, 13, 13},
    {"saysMinusOne", {claiming(-1, kZeros)}, 13, 13},
    {"saysTheLeast", {claiming(-kLargest - 1, kZeros)}, 13, 13},
    {"firstPacketStepsOver", {claiming(8192, std::string(9000, 'x'))}, 13, 13},
    {"secondPacketStepsOver", {claiming(8200, std::string(8192, '\0')), std::string(9, 'x')}, 13, 13},
    {"secondPacketStepsFarOver", {claiming(8200, std::string(8192, '\0')), std::string(30000, 'x')}, 13, 13},
};
INSTANTIATE_TEST_SUITE_P(Spoilt, Received, testing::ValuesIn(kSpoilt),
                         [](const auto& row) { return std::string(row.param.label); });

const ReceiveCase kCut[] = {
    {"afterTheFirstChunk", {kLong.substr(0, 8192)}, 41, 109},
    {"afterTheSecondChunk", {kLong.substr(0, 8192), kLong.substr(8192, 8192)}, 41, 109},
    {"beforeTheErrorCode", {kLong.substr(0, 11)}, 109, 109},
    {"afterTheErrorCode", {kLong.substr(0, 12)}, 41, 109},
    {"afterTheLength", {kLong.substr(0, 4)}, 109, 109},
    {"byAnEmptyPacket", {kLong.substr(0, 8192), "", kLong.substr(8192)}, 41, 99103},
    {"byAnEmptyPacketInTheHeader", {kLong.substr(0, 8), ""}, 99103, 99103},
    {"ofTheLargestLength", {claiming(kLargest, kLong.substr(0, 60))}, 41, 109},
};
INSTANTIATE_TEST_SUITE_P(Cut, Received, testing::ValuesIn(kCut),
                         [](const auto& row) { return std::string(row.param.label); });

TEST_F(ReceiveDataTest, TheValuesArrive) {
  CleXDSmb sent;
  sent.SetLong(7);
  sent.SetString("label");
  const std::string block(20000, 'b');
  sent.BorrowVoidData(block.data(), 20000);
  PeerWrites(inPieces(kova::imageOf(sent), 8192));
  CleXDSmb message;
  EXPECT_EQ(ReceiveData(&pipe_, message), 0);
  EXPECT_EQ(message.FirstLong(), 7);
  EXPECT_STREQ(message.FirstString(), "label");
  int length = 0;
  const void* data = message.GetVoidData(length);
  EXPECT_EQ(std::string(static_cast<const char*>(data), static_cast<std::size_t>(length)), block);
}

TEST_F(ReceiveDataTest, WhatIsMissingReadsAsZeros) {
  CleXDSmb sent;
  sent.SetLong(7);
  const std::string block(20000, 'b');
  sent.BorrowVoidData(block.data(), 20000);
  PeerWrites({kova::imageOf(sent).substr(0, 8192)});
  CleXDSmb message;
  int status = 0;
  EXPECT_EQ(kova::ReceiveMessage(&pipe_, message, &status), 0);
  EXPECT_EQ(status, 109);
  EXPECT_EQ(message.FirstLong(), 7);
  int length = 0;
  const void* data = message.GetVoidData(length);
  ASSERT_EQ(length, 20000);
  const std::string received(static_cast<const char*>(data), 20000);
  const std::size_t there = 8192 - 56;
  EXPECT_EQ(received, std::string(there, 'b') + std::string(20000 - there, '\0'));
}

TEST_F(ReceiveDataTest, ACutMessageIsTracedAsAFailedRead) {
  PeerWrites({kLong.substr(0, 8192)});
  CleXDSmb message;
  EXPECT_EQ(ReceiveData(&pipe_, message, true), 41);
  EXPECT_THAT(Traced(), ElementsAre(kName + " ReadData error code : 109."));
}

TEST_F(ReceiveDataTest, TheNextMessageIsInStepAfterOneThatStepsOver) {
  PeerWrites({claiming(8200, std::string(8192, '\0')), std::string(30000, 'x'), imageOfLength(52, 6)});
  CleXDSmb spoilt;
  EXPECT_EQ(ReceiveData(&pipe_, spoilt), 13);
  CleXDSmb message;
  EXPECT_EQ(ReceiveData(&pipe_, message), 6);
}

TEST_F(ReceiveDataTest, TwoMessagesAreReadOneByOne) {
  PeerWrites({imageOfLength(52, 1), imageOfLength(60, 2)});
  CleXDSmb message;
  EXPECT_EQ(ReceiveData(&pipe_, message), 1);
  EXPECT_EQ(ReceiveData(&pipe_, message), 2);
  EXPECT_EQ(ReceiveData(&pipe_, message), 109);
}

TEST_F(ReceiveDataTest, ASmallMessageIsOneRead) {
  PeerWrites({imageOfLength(60, 0)});
  CleXDSmb message;
  EXPECT_EQ(ReceiveData(&pipe_, message), 0);
  EXPECT_EQ(callCount("ReadMessage"), 1u);
}

TEST_F(ReceiveDataTest, AShortReadIsContinued) {
  PeerWrites({imageOfLength(60, 3)});
  kova::fake::shortNextRead(20);
  CleXDSmb message;
  EXPECT_EQ(ReceiveData(&pipe_, message), 3);
  EXPECT_EQ(callCount("ReadMessage"), 2u);
}

TEST_F(ReceiveDataTest, APeerThatDiesGives109) {
  kova::fake::losePeer(kName.c_str());
  CleXDSmb message;
  EXPECT_EQ(ReceiveData(&pipe_, message), 109);
}

TEST_F(ReceiveDataTest, WorksAfterAConnectThatFoundTheClientThere) {
  PeerWrites({imageOfLength(52, 9)});
  EXPECT_EQ(pipe_.ConnectPipe(), 535);
  CleXDSmb message;
  EXPECT_EQ(ReceiveData(&pipe_, message, true), 9);
}

TEST_F(ReceiveDataTest, WithoutAHandleTheServerSideGives6) {
  HangUp();
  CleXDSmb message;
  EXPECT_EQ(ReceiveData(&pipe_, message, true), 6);
}

TEST_F(ReceiveDataTest, TheClientSideOpensThePipeWhenItHoldsNone) {
  HangUp();
  KovaPipe server(kName);
  ASSERT_EQ(server.CreatePipe(), 0);
  KovaPipe client(kName);
  std::thread writer([&server] {
    const int connected = server.ConnectPipe();
    EXPECT_TRUE(connected == 0 || connected == 535) << connected;
    CleXDSmb message;
    message.SetErrorCode(4);
    EXPECT_EQ(SendData(&server, message), 0);
  });
  CleXDSmb message;
  EXPECT_EQ(ReceiveData(&client, message, false), 4);
  writer.join();
}

TEST_F(ReceiveDataTest, TheClientSideGivesTheCodeOfAFailedOpen) {
  HangUp();
  KovaPipe client(kName);
  CleXDSmb message;
  EXPECT_EQ(ReceiveData(&client, message, false), 99104);
  EXPECT_THAT(Traced(), Contains(kName + " KOVACreateFile error code : 2."));
}

TEST_F(ReceiveDataTest, TheCallerKeepsWhatAnEarlierMessageLeft) {
  PeerWrites({imageOfLength(60, 0), imageOfLength(60, 0)});
  CleXDSmb message;
  ReceiveData(&pipe_, message);
  ReceiveData(&pipe_, message);
  EXPECT_EQ(message.GetStringData().Size(), 2) << "a parse appends to the scalar lists";
}

}  // namespace
