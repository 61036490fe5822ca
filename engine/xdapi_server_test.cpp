// The server with real pipes, and clients that behave and that do not.
#include "engine/xdapi_server.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <memory>
#include <vector>

#include "engine/data_package.h"
#include "engine/engine.h"
#include "platform/os/clock.h"
#include "platform/os/process.h"
#include "tests/kit/backend_traits.h"
#include "transport/message_exchange.h"

namespace kova::engine {
namespace {

// The client's side of one conversation, without the client library.
class RawClient {
 public:
  explicit RawClient(const std::string& baseName) : requests_(baseName + "xdapi"), replies_(baseName + "xdapiresult") {
    EXPECT_EQ(replies_.CreatePipe(), 0);
    EXPECT_EQ(requests_.KOVACreateFile(), 0);
  }

  void write(const std::vector<char>& bytes) {
    EXPECT_EQ(requests_.WriteData(bytes.data(), static_cast<int>(bytes.size()), nullptr), 0);
  }

  // The result of reading a reply.
  int read(CleXDSmb* reply) {
    const int connected = replies_.ConnectPipe();
    EXPECT_TRUE(connected == 0 || connected == 535) << connected;
    return ReceiveData(&replies_, *reply, true);
  }

  CleXDSmb ask(Command command, int position) {
    CleXDSmb request;
    request.SetCommandAction(command);
    request.SetLong(position);
    EXPECT_EQ(SendData(&requests_, request, false), 0);
    CleXDSmb reply;
    read(&reply);
    return reply;
  }

  // The code of the reply to a command with this text.
  int askFor(const char* text, Command command) {
    CleXDSmb request;
    request.SetCommandAction(command);
    request.SetString(text);
    EXPECT_EQ(SendData(&requests_, request, false), 0);
    CleXDSmb reply;
    read(&reply);
    return reply.GetErrorCode();
  }

  // Tells that the server has dropped this client: its end of the request pipe is broken.
  void expectDropped() {
    char byte = 0;
    unsigned long count = 0;
    EXPECT_EQ(requests_.ReadData(1, &byte, count), static_cast<int>(kit::kBackend.readAfterDisconnect));
  }

  void close() {
    requests_.ClosePipe();
    replies_.ClosePipe();
  }

 private:
  KovaPipe requests_;
  KovaPipe replies_;
};

class XdapiServerTest : public testing::Test {
 protected:
  XdapiServerTest() {
    DataSet penguins;
    std::string problem;
    EXPECT_TRUE(readDataPackage(KOVA_SOURCE_DIR "/examples/penguins", &penguins, &problem)) << problem;
    engine_.open(std::move(penguins));
  }

  std::string scratchBase() {
    return XdapiServer::baseName(os::CurrentProcessId(), "SRV" + std::to_string(++names_) + "I", 0);
  }

  std::unique_ptr<XdapiServer> serve(const std::string& baseName) {
    auto server = std::make_unique<XdapiServer>(
        baseName, [this](const CleXDSmb& request, CleXDSmb& reply) { engine_.perform(request, reply); });
    EXPECT_EQ(server->start(), 0);
    return server;
  }

  void expectServes(const std::string& baseName) {
    RawClient client(baseName);
    EXPECT_EQ(client.ask(Command::GetVariableCount, 0).FirstLong(), 7);
  }

  static void expectStopsWithinASecond(XdapiServer* server) {
    const std::uint64_t start = os::TickMs();
    server->stop();
    EXPECT_LT(os::TickMs() - start, 1000U);
  }

  Engine engine_;
  static inline int names_ = 0;
};

std::vector<char> bytesOf(CleXDSmb& message) {
  EXPECT_EQ(message.ContructSendData(), 0);
  int length = 0;
  const char* bytes = message.GetSendBuf(length);
  return {bytes, bytes + length};
}

// As many bytes as asked for, the first four stating the total length.
std::vector<char> bytesStating(std::int32_t total, std::size_t size) {
  std::vector<char> bytes(size, 0);
  std::memcpy(bytes.data(), &total, std::min(size, sizeof total));
  return bytes;
}

TEST(XdapiServerNames, AreMadeOfProcessInstanceAndIndex) {
  EXPECT_EQ(XdapiServer::baseName(0x2a, "EXTERNAL", 0), "\\\\.\\pipe\\002aEXTERNAL0");
  EXPECT_EQ(XdapiServer::baseName(0x12345, "R", 2), "\\\\.\\pipe\\12345R2");
}

TEST_F(XdapiServerTest, AnswersOneRequestAfterTheOther) {
  const std::string base = scratchBase();
  const auto server = serve(base);
  RawClient client(base);
  for (int i = 0; i < 100; ++i) EXPECT_STREQ(client.ask(Command::GetVariableName, 6).FirstString(), "sex");
}

TEST_F(XdapiServerTest, AnUnknownCodeIsAnsweredAndTheConversationGoesOn) {
  const std::string base = scratchBase();
  const auto server = serve(base);
  RawClient client(base);
  EXPECT_EQ(client.ask(static_cast<Command>(4711), 0).GetErrorCode(), 98001);
  EXPECT_EQ(client.ask(Command::GetVariableCount, 0).FirstLong(), 7);
}

TEST_F(XdapiServerTest, ServesOneClientAfterTheOther) {
  const std::string base = scratchBase();
  const auto server = serve(base);
  for (int i = 0; i < 20; ++i) expectServes(base);
}

TEST_F(XdapiServerTest, TellsOfEachClientThatHasGone) {
  const std::string base = scratchBase();
  std::atomic<int> gone{0};
  XdapiServer server(
      base, [this](const CleXDSmb& request, CleXDSmb& reply) { engine_.perform(request, reply); },
      [this, &gone] {
        engine_.leave();
        ++gone;
      });
  ASSERT_EQ(server.start(), 0);
  for (int i = 1; i <= 2; ++i) {
    RawClient client(base);
    EXPECT_EQ(client.ask(Command::HasCursor, 0).FirstLong(), 0) << "the cursor of the client before has gone with it";
    EXPECT_EQ(client.askFor("r", Command::MakeCaseCursor), 0);
    EXPECT_EQ(client.ask(Command::HasCursor, 0).FirstLong(), 1);
    client.close();
    while (gone < i) os::YieldThread();
  }
}

TEST_F(XdapiServerTest, TwoServersServeTwoClientsAtOnce) {
  const std::string first = scratchBase();
  const std::string second = scratchBase();
  const auto firstServer = serve(first);
  const auto secondServer = serve(second);
  const auto askOften = [](const std::string& base) {
    RawClient client(base);
    for (int i = 0; i < 300; ++i) {
      ASSERT_STREQ(client.ask(Command::GetVariableLabel, 0).FirstString(), "Penguin species");
    }
  };
  std::thread other(askOften, second);
  askOften(first);
  other.join();
}

TEST_F(XdapiServerTest, ASecondClientWaitsForTheFirst) {
  const std::string base = scratchBase();
  const auto server = serve(base);
  auto first = std::make_unique<RawClient>(base);
  EXPECT_EQ(first->ask(Command::GetVariableCount, 0).FirstLong(), 7);
  // The second client asks while the first still has the server; it makes its reply pipe once the first has gone.
  std::atomic<bool> firstGone{false};
  std::thread second([&] {
    KovaPipe requests(base + "xdapi");
    ASSERT_EQ(requests.KOVACreateFile(), 0);
    while (!firstGone) os::YieldThread();
    KovaPipe replies(base + "xdapiresult");
    ASSERT_EQ(replies.CreatePipe(), 0);
    CleXDSmb request;
    request.SetCommandAction(Command::GetVariableCount);
    ASSERT_EQ(SendData(&requests, request, false), 0);
    const int connected = replies.ConnectPipe();
    ASSERT_TRUE(connected == 0 || connected == 535) << connected;
    CleXDSmb reply;
    ASSERT_EQ(ReceiveData(&replies, reply, true), 0);
    EXPECT_EQ(reply.FirstLong(), 7);
  });
  EXPECT_EQ(first->ask(Command::GetVariableCount, 0).FirstLong(), 7);
  first.reset();
  firstGone = true;
  second.join();
}

TEST_F(XdapiServerTest, DropsAClientThatSendsNoMessageAndServesTheNext) {
  struct Row {
    const char* label;
    std::vector<char> bytes;
  };
  const Row rows[] = {
      {"no bytes", {}},
      {"three bytes", std::vector<char>(3, 1)},
      {"four bytes", bytesStating(4, 4)},
      {"a length of 51", bytesStating(51, 51)},
      {"less than it sends", bytesStating(52, 60)},
      {"a negative length", bytesStating(-1, 52)},
      {"the smallest length", bytesStating(static_cast<std::int32_t>(0x80000000U), 52)},
  };
  const std::string base = scratchBase();
  const auto server = serve(base);
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    {
      RawClient client(base);
      client.write(row.bytes);
      client.expectDropped();
    }
    expectServes(base);
  }
}

TEST_F(XdapiServerTest, AClientThatGoesInTheMiddleOfARequestEndsItsConversationOnly) {
  const std::string base = scratchBase();
  const auto server = serve(base);
  CleXDSmb request;
  request.SetCommandAction(Command::Submit);
  request.SetString(std::string(100000, 'x'));
  const std::vector<char> bytes = bytesOf(request);
  for (const std::size_t size : {std::size_t{12}, std::size_t{52}, std::size_t{8192}, std::size_t{8192 * 5}}) {
    RawClient client(base);
    client.write({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)});
    client.close();
    expectServes(base);
  }
  EXPECT_EQ(engine_.htmlOutput().find("xxxx"), std::string::npos) << "half a request was carried out";
}

TEST_F(XdapiServerTest, AnOversizedLengthEndsWithItsClient) {
  const std::string base = scratchBase();
  const auto server = serve(base);
  {
    RawClient client(base);
    client.write(bytesStating(2147483647, 8192));
  }
  expectServes(base);
}

TEST_F(XdapiServerTest, AClientThatNeverReadsItsReplyIsLetGo) {
  const std::string base = scratchBase();
  const auto server = serve(base);
  for (int i = 0; i < 10; ++i) {
    RawClient client(base);
    CleXDSmb request;
    request.SetCommandAction(Command::GetVariableCount);
    client.write(bytesOf(request));
    client.close();
  }
  expectServes(base);
}

TEST_F(XdapiServerTest, ARequestWithoutAReplyPipeEndsTheConversation) {
  const std::string base = scratchBase();
  const auto server = serve(base);
  {
    KovaPipe requests(base + "xdapi");
    ASSERT_EQ(requests.KOVACreateFile(), 0);
    CleXDSmb request;
    request.SetCommandAction(Command::GetVariableCount);
    ASSERT_EQ(SendData(&requests, request, false), 0);
    char byte = 0;
    unsigned long count = 0;
    EXPECT_EQ(requests.ReadData(1, &byte, count), static_cast<int>(kit::kBackend.readAfterDisconnect));
  }
  expectServes(base);
}

TEST_F(XdapiServerTest, StopsWhileNobodyHasCome) {
  const auto server = serve(scratchBase());
  expectStopsWithinASecond(server.get());
}

TEST_F(XdapiServerTest, StopsWhileAClientSaysNothing) {
  const std::string base = scratchBase();
  const auto server = serve(base);
  RawClient client(base);
  EXPECT_EQ(client.ask(Command::GetVariableCount, 0).FirstLong(), 7);
  expectStopsWithinASecond(server.get());
}

TEST_F(XdapiServerTest, StopsWhileAClientHasSentHalfARequest) {
  const std::string base = scratchBase();
  const auto server = serve(base);
  RawClient client(base);
  client.write(bytesStating(100000, 8192));
  expectStopsWithinASecond(server.get());
}

TEST_F(XdapiServerTest, StopsWhileAClientDoesNotReadALargeReply) {
  const std::string base = scratchBase();
  std::atomic<bool> asked{false};
  XdapiServer server(base, [&](const CleXDSmb&, CleXDSmb& reply) {
    reply.SetString(std::string(20 << 20, 'x'));
    asked = true;
  });
  ASSERT_EQ(server.start(), 0);
  RawClient client(base);
  CleXDSmb request;
  request.SetCommandAction(Command::GetVariableCount);
  client.write(bytesOf(request));
  while (!asked) os::YieldThread();
  expectStopsWithinASecond(&server);
}

// Another visitor has the one place in the reply pipe.
TEST_F(XdapiServerTest, StopsWhileItWaitsToOpenTheReplyPipe) {
  const std::string base = scratchBase();
  std::atomic<bool> asked{false};
  XdapiServer server(base, [&](const CleXDSmb&, CleXDSmb&) { asked = true; });
  ASSERT_EQ(server.start(), 0);
  RawClient client(base);
  KovaPipe visitor(base + "xdapiresult");
  ASSERT_EQ(visitor.KOVACreateFile(), 0);
  CleXDSmb request;
  request.SetCommandAction(Command::GetVariableCount);
  client.write(bytesOf(request));
  while (!asked) os::YieldThread();
  expectStopsWithinASecond(&server);
}

TEST_F(XdapiServerTest, AReplyPipeThatIsTakenIsOpenedOnceItIsFree) {
  const std::string base = scratchBase();
  std::atomic<bool> asked{false};
  XdapiServer server(base, [&](const CleXDSmb& question, CleXDSmb& reply) {
    engine_.perform(question, reply);
    asked = true;
  });
  ASSERT_EQ(server.start(), 0);
  KovaPipe replies(base + "xdapiresult");
  ASSERT_EQ(replies.CreatePipe(), 0);
  KovaPipe visitor(base + "xdapiresult");
  ASSERT_EQ(visitor.KOVACreateFile(), 0);
  KovaPipe requests(base + "xdapi");
  CleXDSmb request;
  request.SetCommandAction(Command::GetVariableCount);
  ASSERT_EQ(SendData(&requests, request, false), 0);
  while (!asked) os::YieldThread();
  EXPECT_EQ(replies.ConnectPipe(), 535) << "the visitor came first";
  visitor.ClosePipe();
  ASSERT_EQ(replies.DisconnectPipe(), 0);
  const int connected = replies.ConnectPipe();
  EXPECT_TRUE(connected == 0 || connected == 535) << connected;
  CleXDSmb reply;
  EXPECT_EQ(ReceiveData(&replies, reply, true), 0);
  EXPECT_EQ(reply.FirstLong(), 7);
}

TEST_F(XdapiServerTest, AStopWithALimitTellsOfARequestThatGoesOn) {
  const std::string base = scratchBase();
  std::atomic<bool> asked{false};
  std::atomic<bool> mayEnd{false};
  XdapiServer server(base, [&](const CleXDSmb&, CleXDSmb&) {
    asked = true;
    while (!mayEnd) os::YieldThread();
  });
  ASSERT_EQ(server.start(), 0);
  RawClient client(base);
  CleXDSmb request;
  request.SetCommandAction(Command::GetVariableCount);
  client.write(bytesOf(request));
  while (!asked) os::YieldThread();
  EXPECT_FALSE(server.stop(1));
  mayEnd = true;
  EXPECT_TRUE(server.stop(60000));
}

TEST_F(XdapiServerTest, StopsTwiceAndWithoutAStart) {
  const std::string base = scratchBase();
  XdapiServer server(base, [](const CleXDSmb&, CleXDSmb&) {});
  server.stop();
  ASSERT_EQ(server.start(), 0);
  server.stop();
  server.stop();
  ASSERT_EQ(server.start(), 0) << "the name is free again";
}

// A client that has made its reply pipe and waits there for the server's first word.
class GreetedClient {
 public:
  explicit GreetedClient(const std::string& baseName)
      : requests_(baseName + "xdapi"), replies_(baseName + "xdapiresult") {
    EXPECT_EQ(replies_.CreatePipe(), 0);
  }

  // The code of the next message; that of the transport when none came.
  int read(CleXDSmb* message) {
    const int connected = replies_.ConnectPipe();
    EXPECT_TRUE(connected == 0 || connected == 535) << connected;
    return ReceiveData(&replies_, *message, true);
  }

  int ask(Command command, CleXDSmb* reply) {
    if (!requests_.HasPipe()) requests_.KOVACreateFile();
    CleXDSmb request;
    request.SetCommandAction(command);
    EXPECT_EQ(SendData(&requests_, request, false), 0);
    return read(reply);
  }

  bool canCome() { return requests_.KOVACreateFile() == 0; }

  void leave() {
    replies_.DisconnectPipe();
    replies_.ClosePipe();
  }

 private:
  KovaPipe requests_;
  KovaPipe replies_;
};

TEST_F(XdapiServerTest, GreetsAClientThatWaitsAndServesIt) {
  const std::string base = scratchBase();
  GreetedClient client(base);
  XdapiServer server(base, [this](const CleXDSmb& request, CleXDSmb& reply) { engine_.perform(request, reply); });
  ASSERT_EQ(server.start(0), 0);
  CleXDSmb greeting;
  EXPECT_EQ(client.read(&greeting), 0);
  for (int i = 0; i < 3; ++i) {
    CleXDSmb reply;
    EXPECT_EQ(client.ask(Command::GetVariableCount, &reply), 0);
    EXPECT_EQ(reply.FirstLong(), 7);
  }
}

TEST_F(XdapiServerTest, ARefusalStaysUntilItsClientHasLeft) {
  const std::string base = scratchBase();
  GreetedClient client(base);
  XdapiServer server(base, [](const CleXDSmb&, CleXDSmb&) {});
  std::atomic<bool> hasLeft{false};
  std::thread starting([&] {
    EXPECT_EQ(server.start(98095), 98095);
    EXPECT_TRUE(hasLeft);
  });
  CleXDSmb greeting;
  EXPECT_EQ(client.read(&greeting), 98095);
  hasLeft = true;
  client.leave();
  starting.join();
  EXPECT_FALSE(client.canCome());
}

TEST_F(XdapiServerTest, AGreetingThatReachesNobodyServesNobody) {
  const std::string base = scratchBase();
  XdapiServer server(base, [](const CleXDSmb&, CleXDSmb&) {});
  for (const int code : {0, 98095}) EXPECT_EQ(server.start(code), 99104);
  GreetedClient client(base);
  EXPECT_FALSE(client.canCome());
  EXPECT_EQ(server.start(0), 0) << "this one is reached";
}

TEST_F(XdapiServerTest, EndsAfterTheReplyThatItWasTold) {
  const std::string base = scratchBase();
  std::atomic<int> gone{0};
  XdapiServer* self = nullptr;
  XdapiServer server(
      base,
      [&self](const CleXDSmb& request, CleXDSmb& reply) {
        if (request.GetCommandAction() == Command::StopKova) self->endAfterReply();
        reply.SetLong(1);
      },
      [&gone] { ++gone; });
  self = &server;
  for (int life = 1; life <= 3; ++life) {
    ASSERT_EQ(server.start(), 0);
    RawClient client(base);
    EXPECT_EQ(client.ask(Command::IsBackendReady, 0).FirstLong(), 1);
    EXPECT_EQ(gone, life - 1);
    EXPECT_EQ(client.ask(Command::StopKova, 0).FirstLong(), 1) << "it is answered";
    client.expectDropped();
    EXPECT_TRUE(server.stop(60000));
    EXPECT_EQ(gone, life);
    EXPECT_EQ(KovaPipe(base + "xdapi").KOVACreateFile(), 99104) << "no other client is taken in";
  }
}

TEST_F(XdapiServerTest, SendsALargeReplyWhole) {
  const std::string base = scratchBase();
  XdapiServer server(base, [&](const CleXDSmb&, CleXDSmb& reply) { reply.SetString(std::string(5 << 20, 'x')); });
  ASSERT_EQ(server.start(), 0);
  RawClient client(base);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(client.ask(Command::GetVariableCount, 0).GetSingleString().size(), std::size_t{5 << 20});
  }
}

}  // namespace
}  // namespace kova::engine
