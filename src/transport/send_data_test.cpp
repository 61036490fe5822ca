#include <numeric>
#include <thread>

#include "tests/transport/exchange_images.h"
#include "tests/transport/traced_test.h"
#include "transport/KovaPipe.h"
#include "transport/message_exchange.h"

namespace {

using kova::fake::callCount;
using kova::fake::fail;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string kName = "\\\\.\\pipe\\1234PYTHON0xdapi";

class SendDataTest : public kova::TracedTest {
 protected:
  void Join() {
    ASSERT_EQ(server_.CreatePipe(), 0);
    ASSERT_EQ(client_.KOVACreateFile(), 0);
  }

  // The pipe messages that the message becomes.
  std::vector<std::string> Sent(CleXDSmb& message) {
    std::thread sender([&] {
      EXPECT_EQ(SendData(&client_, message), 0);
      client_.ClosePipe();
    });
    std::vector<std::string> packets;
    std::string area(10000, '\0');
    unsigned long read = 0;
    while (server_.ReadData(10000, area.data(), read) == 0) packets.push_back(area.substr(0, read));
    sender.join();
    return packets;
  }

  KovaPipe server_{kName};
  KovaPipe client_{kName};
};

struct ShapeCase {
  const char* label;
  int headLength;   // Of all but the void data; 56 or more, or 52.
  int blockLength;  // Of the void data.
};

class SentShape : public SendDataTest, public testing::WithParamInterface<ShapeCase> {};

TEST_P(SentShape, IsTheImageIn8192ByteChunks) {
  Join();
  CleXDSmb message;
  message.SetCommandAction(CleXDSmb::CommandAction::IsBackendReady);
  if (GetParam().headLength > 52)
    message.SetString(std::string(static_cast<std::size_t>(GetParam().headLength - 56), 's'));
  std::vector<char> block(static_cast<std::size_t>(GetParam().blockLength));
  std::iota(block.begin(), block.end(), '\0');
  message.BorrowVoidData(block.data(), GetParam().blockLength);
  CleXDSmb same = message;
  const std::string image = kova::imageOf(same);
  ASSERT_EQ(static_cast<int>(image.size()), GetParam().headLength + GetParam().blockLength);

  EXPECT_EQ(Sent(message), kova::inPieces(image, 8192));
}

const ShapeCase kShapes[] = {
    {"empty", 52, 0},
    {"small", 56, 0},
    {"smallWithBlock", 56, 8},
    {"justFull", 8192, 0},
    {"oneMore", 8193, 0},
    {"blockFillsTheChunk", 52, 8140},
    {"blockOneMore", 52, 8141},
    {"headIsOneChunk", 8192, 1},
    {"headIsOneChunkWithLongBlock", 8192, 20000},
    {"headEndsInTheSecondChunk", 10000, 20000},
    {"headIsTwoChunks", 16384, 8192},
    {"longHeadTinyBlock", 16383, 1},
    {"longBlock", 52, 1000000},
};
INSTANTIATE_TEST_SUITE_P(Shapes, SentShape, testing::ValuesIn(kShapes),
                         [](const auto& row) { return std::string(row.param.label); });

TEST_F(SendDataTest, ASmallMessageIsOneWrite) {
  Join();
  CleXDSmb message;
  EXPECT_EQ(SendData(&client_, message, true), 0);
  EXPECT_EQ(callCount("WriteMessage"), 1u);
}

TEST_F(SendDataTest, SuccessClearsTheRequest) {
  Join();
  CleXDSmb message;
  message.SetLong(7);
  EXPECT_EQ(SendData(&client_, message, true), 0);
  EXPECT_EQ(message.GetLongData().Size(), 0);
  int length = -1;
  EXPECT_EQ(message.GetSendBuf(length), nullptr);
}

TEST_F(SendDataTest, FailureKeepsTheRequestForAnotherTry) {
  Join();
  CleXDSmb message;
  message.SetLong(7);
  fail("WriteMessage", 232);
  Traced();
  EXPECT_EQ(SendData(&client_, message, true), 99104);
  EXPECT_THAT(Traced(), ElementsAre(kName + " WriteData error code : 232."));
  EXPECT_EQ(message.FirstLong(), 7);

  EXPECT_EQ(SendData(&client_, message, true), 0);
  CleXDSmb received;
  EXPECT_EQ(ReceiveData(&server_, received), 0);
  EXPECT_EQ(received.FirstLong(), 7);
}

TEST_F(SendDataTest, FailureInALaterChunkKeepsTheRequestToo) {
  Join();
  CleXDSmb message;
  message.SetErrorCode(3);
  const std::vector<char> block(8192, 'b');
  message.BorrowVoidData(block.data(), 8192);
  fail("WriteMessage", 232, 1);
  EXPECT_EQ(SendData(&client_, message, true), 99104);
  int length = 0;
  EXPECT_EQ(message.GetVoidData(length), block.data());
  EXPECT_EQ(length, 8192);
}

TEST_F(SendDataTest, TheClientSideOpensThePipeWhenItHoldsNone) {
  server_.CreatePipe();
  CleXDSmb message;
  EXPECT_EQ(SendData(&client_, message, false), 0);
  EXPECT_EQ(SendData(&client_, message, false), 0);
  EXPECT_EQ(callCount("OpenPipe"), 1u);
  EXPECT_EQ(callCount("SetMessageReadMode"), 2u);
}

TEST_F(SendDataTest, TheClientSideGivesTheCodeOfAFailedOpen) {
  CleXDSmb message;
  message.SetLong(7);
  EXPECT_EQ(SendData(&client_, message, false), 99104);
  EXPECT_EQ(message.FirstLong(), 7);
  EXPECT_THAT(Traced(), ElementsAre(kName + " KOVACreateFile error code : 2."));
}

TEST_F(SendDataTest, TheClientSideClosesThePipeWhenItsModeCanNotBeSet) {
  server_.CreatePipe();
  CleXDSmb message;
  fail("SetMessageReadMode", 233);
  EXPECT_EQ(SendData(&client_, message, false), 99104);
  EXPECT_FALSE(client_.HasPipe());
  EXPECT_EQ(callCount("WriteMessage"), 0u);
  EXPECT_THAT(Traced(), ElementsAre(kName + " ChangeReadMode error code : 233.", kName + " ClosePipe error code : 0."));
}

TEST_F(SendDataTest, TheServerSideOpensNothing) {
  server_.CreatePipe();
  CleXDSmb message;
  EXPECT_EQ(SendData(&client_, message, true), 99104);
  EXPECT_EQ(callCount("OpenPipe"), 0u);
  EXPECT_EQ(callCount("SetMessageReadMode"), 0u);
  EXPECT_THAT(Traced(), ElementsAre(kName + " WriteData error code : 6."));
}

}  // namespace
