// What a process sees of a peer that dies, breaks off or writes nonsense.
#include <gtest/gtest.h>

#include <limits>

#include "tests/multiprocess/exchange_children.h"
#include "tests/transport/exchange_images.h"
#include "transport/message_exchange.h"

namespace {

using kova::claiming;
using kova::Conversation;
using kova::imageOfLength;

// What the child writes, by name: it can not be handed over as text.
std::vector<std::string> packetsNamed(const std::string& name) {
  constexpr int kLargest = std::numeric_limits<std::int32_t>::max();
  const std::string zeros(60, '\0');
  const std::string whole = imageOfLength(20000, 41);
  if (name == "one byte") return {"x"};
  if (name == "4 bytes") return {claiming(4, "....")};
  if (name == "4 bytes of ones") return {"\xFF\xFF\xFF\xFF"};
  if (name == "51 bytes") return {claiming(51, zeros.substr(0, 51))};
  if (name == "60 bytes that say 52") return {claiming(52, zeros)};
  if (name == "negative") return {claiming(-1, zeros)};
  if (name == "oversized") return {claiming(kLargest, imageOfLength(60, 41))};
  if (name == "header cut") return {whole.substr(0, 11)};
  if (name == "cut after one chunk") return {whole.substr(0, 8192)};
  if (name == "cut after two chunks") return {whole.substr(0, 8192), whole.substr(8192, 8192)};
  return {};
}

// Writes the named bytes and ends without a word, with exit code 0.
KOVA_KIT_CHILD(writes_and_ends) {
  KovaPipe pipe(arguments.at(0));
  if (pipe.KOVACreateFile() != 0) return 2;
  for (const std::string& packet : packetsNamed(arguments.at(1))) {
    if (pipe.WriteData(packet.data(), static_cast<int>(packet.size()), nullptr) != 0) return 3;
  }
  return 0;
}

struct BrokenCase {
  const char* label;
  const char* packets;
  int result;
  int status;
};

class BrokenPeer : public testing::TestWithParam<BrokenCase> {};

TEST_P(BrokenPeer, EndsTheReceiveWithACode) {
  KovaPipe pipe(kova::kit::scratchName());
  ASSERT_EQ(pipe.CreatePipe(), 0);
  auto child = kova::kit::startChild("writes_and_ends", {pipe.GetPipeName(), GetParam().packets});
  ASSERT_TRUE(static_cast<bool>(child));
  const int connected = pipe.ConnectPipe();
  ASSERT_TRUE(connected == 0 || connected == 535) << connected;
  CleXDSmb message;
  int status = -1;
  EXPECT_EQ(kova::ReceiveMessage(&pipe, message, &status), GetParam().result);
  EXPECT_EQ(status, GetParam().status);
  EXPECT_EQ(ReceiveData(&pipe, message), 109);
  EXPECT_EQ(kova::kit::waitForChild(child), 0);
  EXPECT_EQ(SendData(&pipe, message), 99104);
}

const BrokenCase kBroken[] = {
    {"writesNothing", "nothing", 109, 109},
    {"oneByte", "one byte", 13, 13},
    {"fourBytes", "4 bytes", 13, 13},
    {"fourBytesOfOnes", "4 bytes of ones", 13, 13},
    {"fiftyOneBytes", "51 bytes", 13, 13},
    {"saysLessThanItHas", "60 bytes that say 52", 13, 13},
    {"negative", "negative", 13, 13},
    {"oversized", "oversized", 41, 109},
    {"headerCut", "header cut", 109, 109},
    {"cutAfterOneChunk", "cut after one chunk", 41, 109},
    {"cutAfterTwoChunks", "cut after two chunks", 41, 109},
};
INSTANTIATE_TEST_SUITE_P(Bytes, BrokenPeer, testing::ValuesIn(kBroken),
                         [](const auto& row) { return std::string(row.param.label); });

// Writes a message of no bytes, then waits until the other side closes.
KOVA_KIT_CHILD(writes_nothing_and_stays) {
  KovaPipe pipe(arguments.at(0));
  if (pipe.KOVACreateFile() != 0 || pipe.WriteData("", 0, nullptr) != 0) return 2;
  CleXDSmb never;
  return ReceiveData(&pipe, never);
}

TEST(LivingPeer, ThatWritesNoBytesIsNotTakenForGone) {
  KovaPipe pipe(kova::kit::scratchName());
  ASSERT_EQ(pipe.CreatePipe(), 0);
  auto child = kova::kit::startChild("writes_nothing_and_stays", {pipe.GetPipeName()});
  ASSERT_TRUE(static_cast<bool>(child));
  const int connected = pipe.ConnectPipe();
  ASSERT_TRUE(connected == 0 || connected == 535) << connected;
  CleXDSmb message;
  EXPECT_EQ(ReceiveData(&pipe, message), 99103);
  pipe.ClosePipe();
  EXPECT_EQ(kova::kit::waitForChild(child), 109);
}

// Writes the first chunk of a longer request, then waits to be ended.
KOVA_KIT_CHILD(stops_in_the_middle_of_a_request) {
  KovaPipe requests(arguments.at(0));
  KovaPipe replies(arguments.at(1));
  const std::string chunk = imageOfLength(20000, 41).substr(0, 8192);
  if (requests.KOVACreateFile() != 0 || replies.KOVACreateFile() != 0) return 2;
  if (requests.WriteData(chunk.data(), static_cast<int>(chunk.size()), nullptr) != 0) return 3;
  CleXDSmb never;
  return ReceiveData(&replies, never);
}

TEST(KilledPeer, InTheMiddleOfARequestEndsTheReceive) {
  Conversation conversation;
  ASSERT_TRUE(conversation.created());
  auto child = kova::kit::startChild("stops_in_the_middle_of_a_request", conversation.names());
  ASSERT_TRUE(static_cast<bool>(child));
  ASSERT_TRUE(conversation.connect());
  std::vector<char> chunk(8192);
  unsigned long read = 0;
  ASSERT_EQ(conversation.requests().ReadData(8192, chunk.data(), read), 0);
  ASSERT_EQ(read, 8192u);
  ASSERT_EQ(child.Terminate(), 0u);
  CleXDSmb message;
  EXPECT_EQ(ReceiveData(&conversation.requests(), message), 109);
  EXPECT_EQ(SendData(&conversation.replies(), message), 99104);
  kova::kit::waitForChild(child);
}

TEST(KilledPeer, ThatNeverReadItsReplyMakesTheWriteFail) {
  Conversation conversation;
  ASSERT_TRUE(conversation.created());
  auto child = kova::kit::startChild("stops_in_the_middle_of_a_request", conversation.names());
  ASSERT_TRUE(static_cast<bool>(child));
  ASSERT_TRUE(conversation.connect());
  ASSERT_EQ(child.Terminate(), 0u);
  kova::kit::waitForChild(child);
  CleXDSmb reply;
  const std::vector<char> block(1 << 20, 'b');
  reply.BorrowVoidData(block.data(), 1 << 20);
  EXPECT_EQ(SendData(&conversation.replies(), reply), 99104);
  int length = 0;
  EXPECT_EQ(reply.GetVoidData(length), block.data()) << "the reply is kept";
}

// Asks once and gives the transport's status of the reply.
KOVA_KIT_CHILD(gives_the_status_of_its_reply) {
  KovaPipe requests(arguments.at(0));
  KovaPipe replies(arguments.at(1));
  CleXDSmb request;
  if (SendData(&requests, request, false) != 0 || replies.KOVACreateFile() != 0) return 2;
  CleXDSmb reply;
  int status = 0;
  const int result = kova::ReceiveMessage(&replies, reply, &status);
  return result == std::stoi(arguments.at(2)) ? status : 3;
}

TEST(CutReply, KeepsItsErrorCodeAndIsToldByTheStatus) {
  Conversation conversation;
  ASSERT_TRUE(conversation.created());
  std::vector<std::string> arguments = conversation.names();
  arguments.emplace_back("41");
  auto child = kova::kit::startChild("gives_the_status_of_its_reply", arguments);
  ASSERT_TRUE(static_cast<bool>(child));
  ASSERT_TRUE(conversation.connect());
  CleXDSmb request;
  ASSERT_EQ(ReceiveData(&conversation.requests(), request), 0);
  const std::string cut = imageOfLength(20000, 41).substr(0, 8192);
  ASSERT_EQ(conversation.replies().WriteData(cut.data(), 8192, nullptr), 0);
  ASSERT_EQ(conversation.replies().ClosePipe(), 0);
  EXPECT_EQ(kova::kit::waitForChild(child), 109);
}

}  // namespace
