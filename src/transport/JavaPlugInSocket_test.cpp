#include "transport/JavaPlugInSocket.h"

#include <functional>
#include <limits>
#include <numeric>
#include <thread>

#include "tests/transport/socket_test_kit.h"
#include "tests/transport/traced_test.h"

namespace {

namespace os = kova::os;

using kova::fake::callCount;
using kova::fake::fail;
using kova::fake::socketNumber;
using testing::ElementsAre;
using testing::IsEmpty;

class JavaPlugInSocketTest : public kova::TracedTest {
 protected:
  JavaPlugInSocketTest() { socketsBefore_ = kova::fake::openSockets(); }

  ~JavaPlugInSocketTest() override {
    peer_.close();
    socket_.CloseSocket();
    EXPECT_EQ(kova::fake::openSockets(), socketsBefore_ + leftSockets_) << "sockets left open";
    // The peer's own start is given back later.
    EXPECT_EQ(callCount("StartSockets") - kova::fake::callCount("StopSockets"), 1U) << "the library was left started";
  }

  void Join() {
    ASSERT_EQ(socket_.CreateSocket(), 0);
    ASSERT_TRUE(peer_.connect(socket_.GetSocketPort()));
    ASSERT_EQ(socket_.AcceptSocket(), 0);
    Traced();
  }

  std::pair<int, std::string> Read(int size = 100) {
    std::string area(100, '?');
    unsigned long count = 12345;
    const int result = socket_.ReadData(area.data(), size, count);
    return {result, area.substr(0, count)};
  }

  int Write(const std::string& bytes, unsigned long* written = nullptr) {
    unsigned long count = 0;
    const int result = socket_.WriteData(bytes.data(), static_cast<int>(bytes.size()), count);
    if (written != nullptr) *written = count;
    return result;
  }

  // The listed calls of that name, with what stands behind it.
  static std::vector<std::string> Calls(const std::string& name) {
    std::vector<std::string> found;
    for (const std::string& call : kova::fake::calls()) {
      if (call.rfind(name + " ", 0) == 0) found.push_back(call.substr(name.size() + 1));
    }
    return found;
  }

  kova::SocketPeer peer_;
  JavaPlugInSocket socket_;
  unsigned socketsBefore_ = 0;
  unsigned leftSockets_ = 0;
};

TEST_F(JavaPlugInSocketTest, ANewObjectHasNoPort) { EXPECT_EQ(socket_.GetSocketPort(), 0); }

TEST_F(JavaPlugInSocketTest, ListensOnEveryInterfaceForFivePeers) {
  EXPECT_EQ(socket_.CreateSocket(4711), 0);
  EXPECT_THAT(Calls("Socket::Bind"), ElementsAre("0.0.0.0:4711"));
  EXPECT_THAT(Calls("Socket::Listen"), ElementsAre("5"));
  EXPECT_THAT(Calls("StartSockets"), ElementsAre("2.2", "2.2")) << "the peer's and the socket's own";
  EXPECT_THAT(Traced(), IsEmpty());
}

TEST_F(JavaPlugInSocketTest, AGivenPortIsNotRecorded) {
  EXPECT_EQ(socket_.CreateSocket(4711), 0);
  EXPECT_EQ(socket_.GetSocketPort(), 0);
  socket_.SetSocketPort(99);
  EXPECT_EQ(socket_.CreateSocket(4712), 0);
  EXPECT_EQ(socket_.GetSocketPort(), 99);
  EXPECT_TRUE(peer_.connect(4712));
}

TEST_F(JavaPlugInSocketTest, AChosenPortIsRecorded) {
  EXPECT_EQ(socket_.CreateSocket(), 0);
  EXPECT_NE(socket_.GetSocketPort(), 0);
  EXPECT_THAT(Calls("Socket::Bind"), ElementsAre("0.0.0.0:0"));
  EXPECT_TRUE(peer_.connect(socket_.GetSocketPort()));
}

struct CreateFailure {
  const char* label;
  const char* function;
  int result;
  unsigned stops;
};

class CreateFails : public JavaPlugInSocketTest, public testing::WithParamInterface<CreateFailure> {};

TEST_P(CreateFails, WithItsCodeAndLeavesNothingOpen) {
  fail(GetParam().function, 8);
  EXPECT_EQ(socket_.CreateSocket(), GetParam().result);
  EXPECT_EQ(callCount("StopSockets"), GetParam().stops);
  EXPECT_EQ(kova::fake::openSockets(), socketsBefore_);
  EXPECT_EQ(socket_.GetSocketPort(), 0);
  EXPECT_THAT(Traced(), IsEmpty());
  if (std::string(GetParam().function) == "StartSockets") {
    // The call was counted, but nothing was started.
    EXPECT_EQ(socket_.CreateSocket(), 0);
    socket_.CloseSocket();
    os::StopSockets();
  }
}

const CreateFailure kCreateFailures[] = {
    {"start", "StartSockets", 99122, 0},    {"socket", "Socket::Open", 99121, 1},    {"bind", "Socket::Bind", 99122, 1},
    {"listen", "Socket::Listen", 99122, 1}, {"portQuery", "Socket::Port", 99122, 1},
};
INSTANTIATE_TEST_SUITE_P(Rows, CreateFails, testing::ValuesIn(kCreateFailures),
                         [](const auto& row) { return std::string(row.param.label); });

TEST_F(JavaPlugInSocketTest, AnotherVersionOfTheLibraryIsNotTaken) {
  for (const int version : {0x0101, 0x0002, 0x0302}) {
    kova::fake::setSocketVersion(static_cast<std::uint16_t>(version));
    const unsigned stops = callCount("StopSockets");
    EXPECT_EQ(socket_.CreateSocket(4711), 99122) << version;
    EXPECT_EQ(callCount("StopSockets"), stops + 1);
  }
  EXPECT_EQ(callCount("Socket::Open"), 0U);
}

TEST_F(JavaPlugInSocketTest, APortOutOfRangeOrInUseGives99122) {
  for (const int port : {-1, 65536, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
    EXPECT_EQ(socket_.CreateSocket(port), 99122) << port;
  }
  EXPECT_EQ(socket_.CreateSocket(65535), 0);
  JavaPlugInSocket second;
  EXPECT_EQ(second.CreateSocket(65535), 99122);
}

TEST_F(JavaPlugInSocketTest, CreatingAgainClosesWhatIsHeld) {
  Join();
  EXPECT_EQ(socket_.CreateSocket(), 0);
  EXPECT_EQ(peer_.receive(1), "") << "the earlier connection has ended";
  EXPECT_EQ(kova::fake::openSockets(), socketsBefore_ + 2) << "the peer's and the listening one";
  EXPECT_THAT(Traced(), IsEmpty());
}

TEST_F(JavaPlugInSocketTest, AcceptWaitsForItsPeer) {
  ASSERT_EQ(socket_.CreateSocket(), 0);
  std::thread peer([this] { EXPECT_TRUE(peer_.connect(socket_.GetSocketPort())); });
  EXPECT_EQ(socket_.AcceptSocket(), 0);
  peer.join();
}

TEST_F(JavaPlugInSocketTest, AFailedAcceptClosesTheListeningSocket) {
  for (const char* function : {"Socket::Await", "Socket::Accept"}) {
    ASSERT_EQ(socket_.CreateSocket(), 0);
    kova::SocketPeer peer;
    ASSERT_TRUE(peer.connect(socket_.GetSocketPort()));
    fail(function, 10024);
    const unsigned stops = callCount("StopSockets");
    EXPECT_EQ(socket_.AcceptSocket(), 99121) << function;
    EXPECT_EQ(callCount("StopSockets"), stops + 1);
    EXPECT_FALSE(kova::SocketPeer().connect(socket_.GetSocketPort()));
    EXPECT_EQ(socket_.AcceptSocket(), 99121) << "without a listening socket";
  }
  EXPECT_THAT(Traced(), IsEmpty());
}

TEST_F(JavaPlugInSocketTest, OnePeerIsTakenInAndStays) {
  Join();
  kova::SocketPeer second;
  ASSERT_TRUE(second.connect(socket_.GetSocketPort()));
  EXPECT_EQ(socket_.AcceptSocket(), 99121);
  EXPECT_EQ(socket_.AwaitPeer(0), 99121);
  EXPECT_EQ(Write("hello"), 0);
  EXPECT_EQ(peer_.receive(5), "hello");
}

TEST_F(JavaPlugInSocketTest, APeerIsAwaitedInSteps) {
  kova::fake::setPatienceMs(1);
  ASSERT_EQ(socket_.CreateSocket(), 0);
  const std::uint64_t start = kova::fake::elapsedMs();
  EXPECT_EQ(socket_.AwaitPeer(0), 258);
  EXPECT_EQ(socket_.AwaitPeer(-5), 258);
  EXPECT_EQ(kova::fake::elapsedMs(), start);
  EXPECT_EQ(socket_.AwaitPeer(1050), 258);
  EXPECT_EQ(kova::fake::elapsedMs(), start + 1050);
  ASSERT_TRUE(peer_.connect(socket_.GetSocketPort()));
  EXPECT_EQ(socket_.AwaitPeer(1000), 0);
  EXPECT_EQ(socket_.AcceptSocket(), 0);
}

TEST_F(JavaPlugInSocketTest, WithoutAListeningSocketNobodyIsAwaited) {
  EXPECT_EQ(socket_.AwaitPeer(1000), 99121);
  EXPECT_EQ(socket_.AcceptSocket(), 99121);
}

TEST_F(JavaPlugInSocketTest, ReadsWhatHasCome) {
  Join();
  ASSERT_TRUE(peer_.send("abcdef"));
  EXPECT_EQ(Read(4), std::make_pair(0, std::string("abcd")));
  EXPECT_EQ(Read(4), std::make_pair(0, std::string("ef")));
  EXPECT_THAT(Calls("Socket::Receive"), ElementsAre("4", "4")) << "one receive a read";
}

TEST_F(JavaPlugInSocketTest, AnEndedStreamReadsAsNothing) {
  Join();
  peer_.close();
  for (int i = 0; i < 3; ++i) EXPECT_EQ(Read(), std::make_pair(0, std::string()));
  EXPECT_THAT(Traced(), IsEmpty());
}

TEST_F(JavaPlugInSocketTest, AFailedReadClosesTheConnectionAndIsTracedWithThePlatformsNumber) {
  Join();
  ASSERT_TRUE(peer_.send("never read"));
  fail("Socket::Receive", os::kConnectionReset);
  const unsigned stops = callCount("StopSockets");
  EXPECT_EQ(Read(), std::make_pair(99122, std::string()));
  EXPECT_EQ(callCount("StopSockets"), stops + 1);
  EXPECT_THAT(Traced(), ElementsAre("ReadData error code : " + std::to_string(socketNumber(10054)) + "."));
  EXPECT_EQ(peer_.receive(1), "") << "the peer is told";
  EXPECT_EQ(Read(), std::make_pair(99122, std::string()));
  EXPECT_THAT(Traced(), ElementsAre("ReadData error code : " + std::to_string(socketNumber(6)) + "."));
}

TEST_F(JavaPlugInSocketTest, APeerThatBreaksOffFailsTheRead) {
  Join();
  ASSERT_TRUE(peer_.send("last"));
  peer_.close();
  kova::fake::breakEndedStreams();
  EXPECT_EQ(Read(), std::make_pair(0, std::string("last")));
  EXPECT_EQ(Read(), std::make_pair(99122, std::string()));
  EXPECT_THAT(Traced(), ElementsAre("ReadData error code : " + std::to_string(socketNumber(10054)) + "."));
}

TEST_F(JavaPlugInSocketTest, AFailedWriteClosesTheConnectionAndIsTracedWithThePlatformsNumber) {
  Join();
  fail("Socket::Send", os::kConnectionReset, 1);
  const unsigned stops = callCount("StopSockets");
  unsigned long written = 0;
  EXPECT_EQ(Write(std::string(10000, 'x'), &written), 99122);
  EXPECT_EQ(written, 8192U);
  EXPECT_EQ(callCount("StopSockets"), stops + 1);
  EXPECT_THAT(Traced(), ElementsAre("WriteData error code : " + std::to_string(socketNumber(10054)) + "."));
  EXPECT_EQ(peer_.receive(10000).size(), 8192U);
  EXPECT_EQ(Write("x"), 99122);
  EXPECT_THAT(Traced(), ElementsAre("WriteData error code : " + std::to_string(socketNumber(6)) + "."));
}

TEST_F(JavaPlugInSocketTest, SizesThatAreNoneFailWithoutAskingThePlatform) {
  Join();
  EXPECT_EQ(Read(-1), std::make_pair(99122, std::string()));
  EXPECT_THAT(Traced(), ElementsAre("ReadData error code : 13."));
  unsigned long written = 0;
  EXPECT_EQ(socket_.WriteData("x", -1, written), 99122);
  EXPECT_EQ(callCount("Socket::Receive") + callCount("Socket::Send"), 0U);
}

struct WriteCase {
  const char* label;
  int length;
  std::vector<std::string> sends;
};

class Written : public JavaPlugInSocketTest, public testing::WithParamInterface<WriteCase> {};

TEST_P(Written, GoesOutInPiecesOf8192Bytes) {
  Join();
  std::string bytes(static_cast<std::size_t>(GetParam().length), '\0');
  std::iota(bytes.begin(), bytes.end(), '\0');
  unsigned long written = 0;
  EXPECT_EQ(Write(bytes, &written), 0);
  EXPECT_EQ(written, bytes.size());
  EXPECT_EQ(Calls("Socket::Send"), GetParam().sends);
  EXPECT_TRUE(peer_.receive(bytes.size()) == bytes);
}

const WriteCase kWritten[] = {
    {"nothing", 0, {"0"}},
    {"oneByte", 1, {"1"}},
    {"onePiece", 8192, {"8192"}},
    {"oneByteMore", 8193, {"8192", "1"}},
    {"twoPieces", 16384, {"8192", "8192"}},
    {"twentyThousand", 20000, {"8192", "8192", "3616"}},
};
INSTANTIATE_TEST_SUITE_P(Rows, Written, testing::ValuesIn(kWritten),
                         [](const auto& row) { return std::string(row.param.label); });

TEST_F(JavaPlugInSocketTest, AShortSendIsContinuedWhereItEnded) {
  Join();
  std::string bytes(20000, '\0');
  std::iota(bytes.begin(), bytes.end(), '\0');
  kova::fake::shortNextSend(5000);
  unsigned long written = 0;
  EXPECT_EQ(Write(bytes, &written), 0);
  EXPECT_EQ(written, 20000U);
  EXPECT_THAT(Calls("Socket::Send"), ElementsAre("8192", "8192", "6808"));
  EXPECT_TRUE(peer_.receive(20000) == bytes);
}

TEST_F(JavaPlugInSocketTest, AShortLastSendIsTheLast) {
  Join();
  kova::fake::shortNextSend(3);
  unsigned long written = 0;
  EXPECT_EQ(Write("12345", &written), 0);
  EXPECT_EQ(written, 3U);
}

TEST_F(JavaPlugInSocketTest, TheWrittenCountIsAddedTo) {
  Join();
  unsigned long written = 7;
  EXPECT_EQ(socket_.WriteData("abc", 3, written), 0);
  EXPECT_EQ(written, 10U);
}

TEST_F(JavaPlugInSocketTest, WithoutBytesNothingIsSent) {
  unsigned long written = 7;
  EXPECT_EQ(socket_.WriteData(nullptr, 5, written), 0) << "not even a connection is needed";
  EXPECT_EQ(written, 7U);
  Join();
  EXPECT_EQ(socket_.WriteData(nullptr, 5, written), 0);
  EXPECT_EQ(callCount("Socket::Send"), 0U);
}

TEST_F(JavaPlugInSocketTest, ClosingEndsBothSockets) {
  Join();
  const unsigned stops = callCount("StopSockets");
  EXPECT_EQ(socket_.CloseSocket(), 0);
  EXPECT_EQ(callCount("StopSockets"), stops + 1);
  EXPECT_EQ(peer_.receive(1), "");
  EXPECT_FALSE(kova::SocketPeer().connect(socket_.GetSocketPort()));
  EXPECT_THAT(Traced(), IsEmpty());
}

// The labels stand this way round on purpose.
TEST_F(JavaPlugInSocketTest, AFailedCloseIsTracedWithItsResult) {
  Join();
  fail("Socket::Close", 6);
  EXPECT_EQ(socket_.CloseSocket(), 0) << "the result is the listening socket's";
  EXPECT_THAT(Traced(), ElementsAre("CloseServerSocket error code : -1."));
  ASSERT_EQ(socket_.CreateSocket(), 0);
  ASSERT_TRUE(kova::SocketPeer().connect(socket_.GetSocketPort()));
  ASSERT_EQ(socket_.AcceptSocket(), 0);
  fail("Socket::Close", 6, 1);
  EXPECT_EQ(socket_.CloseSocket(), -1);
  EXPECT_THAT(Traced(), ElementsAre("CloseClientSocket error code : -1."));
}

TEST_F(JavaPlugInSocketTest, WhatIsNotOpenCanNotBeClosed) {
  ASSERT_EQ(socket_.CreateSocket(), 0);
  EXPECT_EQ(socket_.CloseSocket(), 0);
  EXPECT_THAT(Traced(), ElementsAre("CloseServerSocket error code : -1."));
  EXPECT_EQ(socket_.CloseSocket(), -1);
  EXPECT_THAT(Traced(), ElementsAre("CloseServerSocket error code : -1.", "CloseClientSocket error code : -1."));
}

TEST_F(JavaPlugInSocketTest, ReadingMayGoOnAfterACloseAndANewStart) {
  Join();
  ASSERT_TRUE(peer_.send("never read"));
  fail("Socket::Receive", 10054);
  EXPECT_EQ(Read().first, 99122);
  EXPECT_EQ(socket_.CloseSocket(), 0);
  peer_.close();
  Join();
  ASSERT_TRUE(peer_.send("again"));
  EXPECT_EQ(Read(), std::make_pair(0, std::string("again")));
}

TEST_F(JavaPlugInSocketTest, DestructionClosesNothing) {
  unsigned closes = 0;
  unsigned stops = 0;
  {
    JavaPlugInSocket forgotten;
    ASSERT_EQ(forgotten.CreateSocket(), 0);
    ASSERT_TRUE(peer_.connect(forgotten.GetSocketPort()));
    ASSERT_EQ(forgotten.AcceptSocket(), 0);
    stops = callCount("StopSockets");
    closes = callCount("Socket::Close");
  }
  EXPECT_EQ(callCount("StopSockets"), stops);
  EXPECT_EQ(callCount("Socket::Close"), closes);
  EXPECT_TRUE(peer_.send("still there"));
  leftSockets_ = 2;
  os::StopSockets();
}

TEST_F(JavaPlugInSocketTest, ACancelledWaitFails) {
  kova::fake::setPatienceMs(1);
  for (const bool before : {true, false}) {
    ASSERT_EQ(socket_.CreateSocket(), 0);
    if (before) socket_.CancelWait();
    std::thread canceller([&] {
      if (!before) socket_.CancelWait();
    });
    EXPECT_EQ(socket_.AcceptSocket(), 99121);
    canceller.join();
  }
  EXPECT_THAT(Traced(), IsEmpty());
}

TEST_F(JavaPlugInSocketTest, ACancelledReadAndWriteFail) {
  Join();
  socket_.CancelWait();
  EXPECT_EQ(Read(), std::make_pair(99122, std::string()));
  EXPECT_THAT(Traced(), ElementsAre("ReadData error code : 995."));
  socket_.CloseSocket();
  peer_.close();
  Join();
  socket_.CancelWait();
  EXPECT_EQ(Write("x"), 99122);
  EXPECT_THAT(Traced(), ElementsAre("WriteData error code : 995."));
}

TEST_F(JavaPlugInSocketTest, AReadThatWaitsIsWoken) {
  kova::fake::setPatienceMs(1);
  Join();
  std::thread canceller([this] {
    while (callCount("Socket::Await") < 3) std::this_thread::yield();
    socket_.CancelWait();
  });
  EXPECT_EQ(Read(), std::make_pair(99122, std::string()));
  canceller.join();
  EXPECT_THAT(Traced(), ElementsAre("ReadData error code : 995."));
}

TEST_F(JavaPlugInSocketTest, AWriteThatWaitsIsWoken) {
  Join();
  std::thread canceller([this] {
    while (callCount("Socket::Send") < 9) std::this_thread::yield();
    socket_.CancelWait();
  });
  EXPECT_EQ(Write(std::string(1000000, 'x')), 99122) << "nobody reads";
  canceller.join();
}

TEST(JavaExtSocket, IsNullUntilOneIsSet) {
  EXPECT_EQ(GetJavaExtSocket(), nullptr);
  kova::fake::reset();
  {
    JavaPlugInSocket socket;
    SetavaExtSocket(&socket);
    EXPECT_EQ(GetJavaExtSocket(), &socket);
    SetavaExtSocket(nullptr);
  }
  EXPECT_EQ(GetJavaExtSocket(), nullptr);
}

}  // namespace
