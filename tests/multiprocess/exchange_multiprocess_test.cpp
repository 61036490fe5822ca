// Two processes that exchange messages through KovaPipe. The child's exit code tells at which of its checks it failed.
#include <gtest/gtest.h>

#include <numeric>

#include "platform/os/named_pipe.h"
#include "tests/multiprocess/exchange_children.h"
#include "transport/message_exchange.h"
#include "transport/yielding_wait.h"

namespace {

using kova::Conversation;
using kova::knownBlock;
using Command = CleXDSmb::CommandAction;

// Serves one client: answers with the sum of the request's integers and its void data, until the client has gone.
int serve(Conversation& conversation) {
  if (!conversation.connect()) return -1;
  for (int served = 0;; ++served) {
    CleXDSmb request;
    int status = 0;
    const int result = kova::ReceiveMessage(&conversation.requests(), request, &status);
    if (status != 0) return served;
    CleXDSmb reply;
    reply.SetErrorCode(result);
    const std::vector<int> values = request.GetLongData().GetData();
    reply.SetLong(std::accumulate(values.begin(), values.end(), 0));
    int length = 0;
    const void* block = request.GetVoidData(length);
    reply.BorrowVoidData(block, length);
    if (SendData(&conversation.replies(), reply) != 0) return served;
  }
}

class Client {
 public:
  explicit Client(const std::vector<std::string>& names) : requests_(names.at(0)), replies_(names.at(1)) {}

  // The reply's code; the reply holds the rest.
  int call(CleXDSmb& request, CleXDSmb& reply) {
    const int sent = SendData(&requests_, request, false);
    return sent != 0 ? sent : ReceiveData(&replies_, reply, false);
  }

 private:
  KovaPipe requests_;
  KovaPipe replies_;
};

KOVA_KIT_CHILD(asks_many_times) {
  Client client(arguments);
  for (int i = 0; i < 1000; ++i) {
    CleXDSmb request;
    request.SetCommandAction(Command::Submit);
    request.SetLong(i);
    request.SetLong(1);
    CleXDSmb reply;
    if (client.call(request, reply) != 0) return 2;
    if (reply.FirstLong() != i + 1) return 3;
  }
  return 0;
}

class Exchange : public testing::TestWithParam<unsigned> {};

TEST_P(Exchange, AThousandSmallCalls) {
  kova::SetYieldLimitUs(GetParam());
  Conversation conversation;
  ASSERT_TRUE(conversation.created());
  auto child =
      kova::kit::startChild("asks_many_times", conversation.names(), {{"KOVA_YIELD_US", std::to_string(GetParam())}});
  ASSERT_TRUE(static_cast<bool>(child));
  EXPECT_EQ(serve(conversation), 1000);
  EXPECT_EQ(kova::kit::waitForChild(child), 0);
  kova::SetYieldLimitUs(kova::os::GoodLookUs());
}

INSTANTIATE_TEST_SUITE_P(YieldUs, Exchange, testing::Values(0u, 20u, 1000u));

KOVA_KIT_CHILD(asks_with_blocks) {
  Client client(arguments);
  for (std::size_t i = 2; i < arguments.size(); ++i) {
    const std::vector<char> block = knownBlock(std::stoul(arguments[i]));
    CleXDSmb request;
    request.SetErrorCode(static_cast<int>(i));
    request.BorrowVoidData(block.data(), static_cast<int>(block.size()));
    CleXDSmb reply;
    if (client.call(request, reply) != static_cast<int>(i)) return 2;
    int length = 0;
    const char* data = static_cast<const char*>(reply.GetVoidData(length));
    if (length != static_cast<int>(block.size())) return 3;
    if (!std::equal(block.begin(), block.end(), data)) return 4;
  }
  return 0;
}

TEST(ExchangeOfBlocks, ComeBackAsTheyWere) {
  Conversation conversation;
  ASSERT_TRUE(conversation.created());
  std::vector<std::string> arguments = conversation.names();
  // The messages are 52 bytes and the block on the way there, 56 and the block on the way back.
  for (const char* size : {"0", "1", "8136", "8137", "8140", "8141", "16332", "20971520", "20971520", "5"}) {
    arguments.emplace_back(size);
  }
  auto child = kova::kit::startChild("asks_with_blocks", arguments);
  ASSERT_TRUE(static_cast<bool>(child));
  EXPECT_EQ(serve(conversation), 10);
  EXPECT_EQ(kova::kit::waitForChild(child), 0);
}

TEST(ExchangeWithTwoClients, TheSecondIsServedWhenTheFirstHasGone) {
  Conversation conversation;
  ASSERT_TRUE(conversation.created());
  auto first = kova::kit::startChild("asks_many_times", conversation.names());
  ASSERT_TRUE(static_cast<bool>(first));
  EXPECT_EQ(serve(conversation), 1000);
  EXPECT_EQ(kova::kit::waitForChild(first), 0);
  ASSERT_TRUE(conversation.disconnect());
  auto second = kova::kit::startChild("asks_many_times", conversation.names());
  ASSERT_TRUE(static_cast<bool>(second));
  EXPECT_EQ(serve(conversation), 1000);
  EXPECT_EQ(kova::kit::waitForChild(second), 0);
}

// Of several clients of one request pipe, each has a reply pipe of its own; its place in the list travels in the
// request.
KOVA_KIT_CHILD(asks_while_another_is_served) {
  Client client(arguments);
  CleXDSmb request;
  request.SetLong(std::stoi(arguments.at(2)));
  CleXDSmb reply;
  return client.call(request, reply) == 0 && reply.FirstLong() == 7 ? 0 : 1;
}

// Answers one request of whichever client comes first and waits until that client has gone. Its place, or -1.
int serveWhoeverComes(KovaPipe& requests, KovaPipe* replies, int count) {
  const int connected = requests.ConnectPipe();
  CleXDSmb request;
  if ((connected != 0 && connected != 535) || ReceiveData(&requests, request) != 0) return -1;
  const int place = request.FirstLong();
  if (place < 0 || place >= count) return -1;
  replies[place].ConnectPipe();
  CleXDSmb reply;
  reply.SetLong(7);
  if (SendData(&replies[place], reply) != 0) return -1;
  const bool gone = ReceiveData(&requests, request) != 0;
  return gone && requests.DisconnectPipe() == 0 ? place : -1;
}

TEST(ExchangeWithTwoClients, BothAreServedOneAfterTheOther) {
  KovaPipe requests(kova::kit::scratchName());
  KovaPipe replies[] = {KovaPipe(kova::kit::scratchName()), KovaPipe(kova::kit::scratchName())};
  ASSERT_EQ(requests.CreatePipe(), 0);
  kova::os::Process children[2];
  for (int place : {0, 1}) {
    ASSERT_EQ(replies[place].CreatePipe(), 0);
    children[place] = kova::kit::startChild(
        "asks_while_another_is_served", {requests.GetPipeName(), replies[place].GetPipeName(), std::to_string(place)});
    ASSERT_TRUE(static_cast<bool>(children[place]));
  }
  const int first = serveWhoeverComes(requests, replies, 2);
  const int second = serveWhoeverComes(requests, replies, 2);
  EXPECT_TRUE((first == 0 && second == 1) || (first == 1 && second == 0)) << first << " and " << second;
  EXPECT_EQ(kova::kit::waitForChild(children[0]), 0);
  EXPECT_EQ(kova::kit::waitForChild(children[1]), 0);
}

}  // namespace
