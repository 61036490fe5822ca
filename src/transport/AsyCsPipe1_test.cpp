#include "transport/AsyCsPipe1.h"

#include <functional>
#include <stdexcept>
#include <thread>

#include "message/CleXDSmb.h"
#include "tests/transport/traced_test.h"
#include "transport/KovaPipe.h"
#include "transport/message_exchange.h"

namespace {

using kova::fake::callCount;
using kova::fake::elapsedMs;
using kova::fake::openPipeEnds;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

const std::string kBase = "\\\\.\\pipe\\1a2bPYTHON";
const std::string kServerRead = kBase + "_s";
const std::string kClientRead = kBase + "_c";

// Answers with what the test tells, and keeps count.
class ScriptedVisitor : public AsyCsPipe1::Visitor {
 public:
  explicit ScriptedVisitor(std::function<int(CleXDSmb&, CleXDSmb&)> answer) : answer_(std::move(answer)) {}
  int VisitReceiver(CleXDSmb& request, CleXDSmb& reply) override {
    ++visits_;
    return answer_(request, reply);
  }
  int visits() const { return visits_; }

 private:
  std::function<int(CleXDSmb&, CleXDSmb&)> answer_;
  int visits_ = 0;
};

class AsyCsPipe1Test : public kova::TracedTest {
 protected:
  AsyCsPipe1Test() { kova::fake::setPatienceMs(1); }
};

// Both ends, connected.
struct Channel {
  Channel() {
    std::thread other([this] { serverConnected = server.connectClient(); });
    clientConnected = client.connectServer();
    other.join();
  }
  AsyCsPipe1 server{kBase, true};
  AsyCsPipe1 client{kBase, false};
  int serverConnected = -1;
  int clientConnected = -1;
};

std::vector<std::string> only(std::vector<std::string> lines, const std::string& part) {
  std::erase_if(lines, [&](const std::string& line) { return line.find(part) == std::string::npos; });
  return lines;
}

TEST_F(AsyCsPipe1Test, AServerIsSeenFromItsBirthToItsEnd) {
  EXPECT_FALSE(AsyCsPipe1::isServerThere(kBase));
  {
    const AsyCsPipe1 client(kBase, false);
    EXPECT_FALSE(AsyCsPipe1::isServerThere(kBase));
    AsyCsPipe1 server(kBase, true);
    EXPECT_TRUE(AsyCsPipe1::isServerThere(kBase));
  }
  EXPECT_FALSE(AsyCsPipe1::isServerThere(kBase));
}

TEST_F(AsyCsPipe1Test, EachSideCreatesThePipeThatItReads) {
  const AsyCsPipe1 server(kBase, true);
  EXPECT_EQ(openPipeEnds(kServerRead.c_str()), 1u);
  EXPECT_EQ(openPipeEnds(kClientRead.c_str()), 0u);
  EXPECT_TRUE(server.isServer());
  const AsyCsPipe1 client(kBase, false);
  EXPECT_EQ(openPipeEnds(kClientRead.c_str()), 1u);
  EXPECT_FALSE(client.isServer());
}

TEST_F(AsyCsPipe1Test, AnOpenObjectIsNotOpenedAgain) {
  AsyCsPipe1 server(kBase, true);
  EXPECT_EQ(server.openPipe(), 0);
  EXPECT_EQ(callCount("CreateMessagePipe"), 1u);
}

TEST_F(AsyCsPipe1Test, APipeThatCanNotBeCreatedIsFoundByTheFirstRead) {
  kova::fake::fail("CreateMessagePipe", 5);
  AsyCsPipe1 server(kBase, true);
  EXPECT_EQ(server.openPipe(), 0);
  EXPECT_THAT(Traced(), ElementsAre(kServerRead + " CreateNamedPipe error code : 5."));
  ScriptedVisitor never([](CleXDSmb&, CleXDSmb&) { return 0; });
  EXPECT_EQ(server.receive(&never), 99104) << "the reply has nowhere to go";
  EXPECT_THAT(Traced(), testing::Contains("AsyCsPipe1:receive: ReceiveData error code : 6."));
  EXPECT_EQ(never.visits(), 0);
}

TEST_F(AsyCsPipe1Test, TheServerOpensThenWaits) {
  AsyCsPipe1 server(kBase, true);
  AsyCsPipe1 client(kBase, false);
  KovaPipe early(kServerRead);
  ASSERT_EQ(early.KOVACreateFile(), 0);
  EXPECT_EQ(server.connectClient(), 535) << "a client that was faster";
  EXPECT_THAT(Traced(),
              ElementsAre("AsyCsPipe1 KOVACreateFile A", "AsyCsPipe1 KOVACreateFile B", "AsyCsPipe1 S ConnectPipe A",
                          kServerRead + " ConnectPipe error code : 535.", "AsyCsPipe1 S ConnectPipe B"));
}

TEST_F(AsyCsPipe1Test, TheClientWaitsThenOpens) {
  AsyCsPipe1 server(kBase, true);
  AsyCsPipe1 client(kBase, false);
  KovaPipe early(kClientRead);
  ASSERT_EQ(early.KOVACreateFile(), 0);
  EXPECT_EQ(client.connectServer(), 0);
  EXPECT_THAT(Traced(),
              ElementsAre("AsyCsPipe1 C ConnectPipe A", kClientRead + " ConnectPipe error code : 535.",
                          "AsyCsPipe1 C ConnectPipe B", "AsyCsPipe1 KOVACreateFile A", "AsyCsPipe1 KOVACreateFile B"));
}

TEST_F(AsyCsPipe1Test, BothSidesMeet) {
  for (int round = 0; round < 50; ++round) {
    Channel channel;
    EXPECT_THAT(channel.serverConnected, testing::AnyOf(0, 535));
    EXPECT_EQ(channel.clientConnected, 0);
  }
}

TEST_F(AsyCsPipe1Test, AConnectedServerDoesNotWaitAgain) {
  AsyCsPipe1 server(kBase, true);
  AsyCsPipe1 client(kBase, false);
  std::thread waits([&] { server.connectClient(); });
  ASSERT_EQ(client.connectServer(), 0);
  waits.join();
  Traced();
  EXPECT_THAT(server.connectClient(), testing::AnyOf(0, 535));
  EXPECT_EQ(callCount("AcceptPeer"), 2u) << "one for each side";
}

TEST_F(AsyCsPipe1Test, APeerThatNeverComesIsGivenUpAfter20Attempts) {
  AsyCsPipe1 server(kBase, true);
  EXPECT_EQ(server.connectClient(), 99104);
  EXPECT_EQ(callCount("AwaitServer"), 20u);
  EXPECT_EQ(elapsedMs(), 21000u);
  const std::vector<std::string> traced = Traced();
  EXPECT_EQ(traced.front(), "AsyCsPipe1 KOVACreateFile A");
  EXPECT_EQ(only(traced, " KOVACreateFile error code : 2.").size(), 20u);
  EXPECT_EQ(traced.back(), "AsyCsPipe1 KOVACreateFile B");
}

TEST_F(AsyCsPipe1Test, AnOpenPipeIsNotOpenedAgain) {
  AsyCsPipe1 server(kBase, true);
  KovaPipe open(kServerRead);
  ASSERT_EQ(open.KOVACreateFile(), 0);
  Traced();
  EXPECT_EQ(server.createPipeFile(&open), 0);
  EXPECT_THAT(Traced(), IsEmpty());
  EXPECT_EQ(server.createPipeFile(nullptr), 99104) << "an end that is missing";
}

TEST_F(AsyCsPipe1Test, APipeThatAnotherHasTakenIsWaitedFor) {
  AsyCsPipe1 server(kBase, true);
  KovaPipe taken(kClientRead);
  KovaPipe first(kClientRead);
  ASSERT_EQ(taken.CreatePipe(), 0);
  ASSERT_EQ(first.KOVACreateFile(), 0);
  ASSERT_EQ(taken.ConnectPipe(), 535);
  int opened = -1;
  KovaPipe second(kClientRead);
  std::thread opener([&] { opened = server.createPipeFile(&second); });
  while (callCount("AwaitServer") < 5) std::this_thread::yield();
  first.ClosePipe();
  taken.DisconnectPipe();
  taken.ConnectPipe();
  opener.join();
  EXPECT_EQ(opened, 0);
}

TEST_F(AsyCsPipe1Test, AHandlersMinus1EndsTheLoopAfterItsReply) {
  Channel channel;
  Traced();
  ScriptedVisitor visitor([](CleXDSmb& request, CleXDSmb& reply) {
    reply.SetErrorCode(request.FirstLong());
    return request.FirstLong() == 7 ? -1 : 5;
  });
  int received = -1;
  std::thread loop([&] { received = channel.server.receive(&visitor); });
  for (const int value : {3, 0, 7}) {
    CleXDSmb request;
    CleXDSmb reply;
    request.SetLong(value);
    EXPECT_EQ(channel.client.send(request, reply), value) << "the reply's own code";
  }
  loop.join();
  EXPECT_EQ(received, 0);
  EXPECT_EQ(visitor.visits(), 3);
  const std::vector<std::string> traced = Traced();
  EXPECT_THAT(
      only(traced, "AsyCsPipe1:receive:"),
      ElementsAre("AsyCsPipe1:receive: ReceiveData error code : 0.", "AsyCsPipe1:receive: SendData error code : 0.",
                  "AsyCsPipe1:receive: ReceiveData error code : 0.", "AsyCsPipe1:receive: SendData error code : 0.",
                  "AsyCsPipe1:receive: ReceiveData error code : 0.", "AsyCsPipe1:receive: SendData error code : 0."));
  EXPECT_THAT(only(traced, "AsyCsPipe1:send:"),
              ElementsAre("AsyCsPipe1:send: SendData error code : 0.", "AsyCsPipe1:send: ReceiveData error code : 3.",
                          "AsyCsPipe1:send: SendData error code : 0.", "AsyCsPipe1:send: ReceiveData error code : 0.",
                          "AsyCsPipe1:send: SendData error code : 0.", "AsyCsPipe1:send: ReceiveData error code : 7."));
}

TEST_F(AsyCsPipe1Test, AHandlerMayBeAFunction) {
  Channel channel;
  Traced();
  int received = -1;
  std::thread loop([&] {
    received = channel.server.receive([](CleXDSmb& request, CleXDSmb& reply) {
      reply.SetLong(request.FirstLong() + 1);
      return -1;
    });
  });
  CleXDSmb request;
  CleXDSmb reply;
  request.SetLong(41);
  EXPECT_EQ(channel.client.send(request, reply), 0);
  loop.join();
  EXPECT_EQ(reply.FirstLong(), 42);
  EXPECT_EQ(received, 0);
  EXPECT_THAT(only(Traced(), "AsyCsPipe1: "),
              ElementsAre("AsyCsPipe1: ReceiveData error code : 0.", "AsyCsPipe1: SendData error code : 0."));
}

TEST_F(AsyCsPipe1Test, ARequestWithACodeGetsAnEmptyReply) {
  Channel channel;
  ScriptedVisitor visitor([](CleXDSmb&, CleXDSmb& reply) {
    reply.SetErrorCode(9);
    return -1;
  });
  std::thread loop([&] { channel.server.receive(&visitor); });
  CleXDSmb request;
  CleXDSmb reply;
  request.SetErrorCode(5);
  EXPECT_EQ(channel.client.send(request, reply), 0);
  EXPECT_EQ(visitor.visits(), 0);
  request.SetErrorCode(0);
  EXPECT_EQ(channel.client.send(request, reply), 9) << "and the loop goes on";
  loop.join();
}

TEST_F(AsyCsPipe1Test, WithoutAHandlerEveryReplyIsEmpty) {
  Channel channel;
  std::thread loop([&] { channel.server.receive(static_cast<AsyCsPipe1::Visitor*>(nullptr)); });
  CleXDSmb request;
  CleXDSmb reply;
  request.SetLong(1);
  EXPECT_EQ(channel.client.send(request, reply), 0);
  EXPECT_TRUE(reply.GetLongData().GetData().empty());
  channel.server.cancel();
  loop.join();
}

TEST_F(AsyCsPipe1Test, AHandlerThatThrowsIsAnsweredWith8) {
  Channel channel;
  ScriptedVisitor visitor([](CleXDSmb& request, CleXDSmb&) -> int {
    if (request.FirstLong() == 1) throw std::runtime_error("broken");
    return -1;
  });
  std::thread loop([&] { channel.server.receive(&visitor); });
  CleXDSmb request;
  CleXDSmb reply;
  request.SetLong(1);
  EXPECT_EQ(channel.client.send(request, reply), 8);
  EXPECT_EQ(channel.client.send(request, reply), 0);
  loop.join();
}

// The client's side by hand: its own pipe, and a connection to the server's.
struct HandmadeClient {
  explicit HandmadeClient(AsyCsPipe1& server) {
    replies.CreatePipe();
    std::thread other([&server] { server.connectClient(); });
    replies.ConnectPipe();
    requests.KOVACreateFile();
    other.join();
  }
  KovaPipe replies{kClientRead};
  KovaPipe requests{kServerRead};
};

TEST_F(AsyCsPipe1Test, AFailedReceiveIsAnsweredWithAnEmptyReplyUntilItHasFailed100Times) {
  AsyCsPipe1 server(kBase, true);
  HandmadeClient client(server);
  const std::uint64_t before = elapsedMs();
  client.requests.ClosePipe();
  ScriptedVisitor visitor([](CleXDSmb&, CleXDSmb&) { return 0; });
  EXPECT_EQ(server.receive(&visitor), 109);
  EXPECT_EQ(visitor.visits(), 0);
  EXPECT_EQ(elapsedMs() - before, 990u);
  CleXDSmb reply;
  for (int i = 0; i < 100; ++i) EXPECT_EQ(ReceiveData(&client.replies, reply), 0);
  EXPECT_EQ(openPipeEnds(kServerRead.c_str()), 1u);
}

TEST_F(AsyCsPipe1Test, EmptyMessagesAreNoFailuresOfTheOtherSide) {
  AsyCsPipe1 server(kBase, true);
  HandmadeClient client(server);
  std::thread loop([&] {
    ScriptedVisitor visitor([](CleXDSmb&, CleXDSmb&) { return -1; });
    EXPECT_EQ(server.receive(&visitor), 0);
  });
  for (int i = 0; i < 150; ++i) {
    CleXDSmb reply;
    ASSERT_EQ(client.requests.WriteData("", 0, nullptr), 0);
    ASSERT_EQ(ReceiveData(&client.replies, reply), 0);
  }
  CleXDSmb request;
  CleXDSmb reply;
  EXPECT_EQ(SendData(&client.requests, request), 0);
  EXPECT_EQ(ReceiveData(&client.replies, reply), 0);
  loop.join();
  EXPECT_EQ(elapsedMs(), 0u) << "nobody paused";
}

TEST_F(AsyCsPipe1Test, ALoopEndsWhenItsReplyCanNotBeSent) {
  AsyCsPipe1 server(kBase, true);
  HandmadeClient client(server);
  CleXDSmb request;
  ASSERT_EQ(SendData(&client.requests, request), 0);
  client.replies.ClosePipe();
  ScriptedVisitor visitor([](CleXDSmb&, CleXDSmb&) { return 0; });
  EXPECT_EQ(server.receive(&visitor), 99104);
  EXPECT_EQ(visitor.visits(), 1);
}

TEST_F(AsyCsPipe1Test, AFailedSendIsReturnedWithoutAReceive) {
  AsyCsPipe1 client(kBase, false);
  CleXDSmb request;
  CleXDSmb reply;
  EXPECT_EQ(client.send(request, reply), 99104);
  EXPECT_THAT(Traced(), ElementsAre(kServerRead + " KOVACreateFile error code : 2.",
                                    "AsyCsPipe1:send: SendData error code : 99104."));
}

TEST_F(AsyCsPipe1Test, ClosingClosesBothAndOpeningMakesNewOnes) {
  Channel channel;
  EXPECT_EQ(channel.client.closePipe(), 0);
  EXPECT_EQ(openPipeEnds(kClientRead.c_str()), 1u) << "the server's own end is left";
  EXPECT_EQ(channel.client.closePipe(), 0) << "nothing is open";
  EXPECT_EQ(channel.client.openPipe(), 0);
  EXPECT_EQ(openPipeEnds(kClientRead.c_str()), 2u);
}

TEST_F(AsyCsPipe1Test, AFailedDisconnectLeavesBothOpen) {
  Channel channel;
  kova::fake::fail("DisconnectPeer", 31);
  EXPECT_EQ(channel.client.closePipe(), 99104);
  EXPECT_EQ(openPipeEnds(), 4u);
}

// A thread in each of the waits, met by the cancel at whatever stage it has reached.
TEST_F(AsyCsPipe1Test, EveryWaitCanBeEnded) {
  for (int round = 0; round < 40; ++round) {
    auto server = std::make_unique<AsyCsPipe1>(kBase, true);
    auto client = std::make_unique<AsyCsPipe1>(kBase, false);
    AsyCsPipe1* const waits = round % 2 == 0 ? server.get() : client.get();
    if (round % 2 == 0) client.reset();
    std::thread waiter([&] { round % 2 == 0 ? waits->connectClient() : waits->connectServer(); });
    for (int i = 0; i < round * 5; ++i) std::this_thread::yield();
    waits->cancel();
    waiter.join();
    CleXDSmb request;
    CleXDSmb reply;
    EXPECT_EQ(waits->send(request, reply) == 0, false);
  }
}

TEST_F(AsyCsPipe1Test, DestructionReleasesAReceiver) {
  for (int round = 0; round < 40; ++round) {
    auto channel = std::make_unique<Channel>();
    AsyCsPipe1* const server = &channel->server;
    const unsigned before = callCount("ReadMessage");
    std::thread loop([server] { EXPECT_NE(server->receive(static_cast<AsyCsPipe1::Visitor*>(nullptr)), 0); });
    while (callCount("ReadMessage") == before) std::this_thread::yield();
    channel.reset();
    loop.join();
  }
}

TEST_F(AsyCsPipe1Test, AnEndedPeerEndsTheWaitsForIt) {
  AsyCsPipe1 client(kBase, false);
  std::thread waiter([&] { EXPECT_EQ(client.connectServer(), 109); });
  client.peerHasEnded();
  waiter.join();
  EXPECT_LT(elapsedMs(), 300u) << "no 20 attempts";
  CleXDSmb request;
  CleXDSmb reply;
  EXPECT_EQ(client.send(request, reply), 99104) << "there is nobody";
}

TEST_F(AsyCsPipe1Test, WhatAnEndedPeerHasSentIsReceived) {
  AsyCsPipe1 server(kBase, true);
  HandmadeClient client(server);
  CleXDSmb request;
  ASSERT_EQ(SendData(&client.requests, request), 0);
  server.peerHasEnded();
  ScriptedVisitor visitor([](CleXDSmb&, CleXDSmb&) { return 0; });
  EXPECT_EQ(server.receive(&visitor), 109);
  EXPECT_EQ(visitor.visits(), 1);
}

TEST_F(AsyCsPipe1Test, NewPipesAwaitANewPeer) {
  AsyCsPipe1 client(kBase, false);
  client.peerHasEnded();
  ASSERT_EQ(client.closePipe(), 0);
  ASSERT_EQ(client.openPipe(), 0);
  AsyCsPipe1 server(kBase, true);
  std::thread other([&] { EXPECT_THAT(server.connectClient(), testing::AnyOf(0, 535)); });
  EXPECT_EQ(client.connectServer(), 0);
  other.join();
}

}  // namespace
