#include "transport/KovaPipe.h"

#include <functional>
#include <thread>

#include "platform/os/named_pipe.h"
#include "tests/transport/traced_test.h"

namespace {

using kova::fake::callCount;
using kova::fake::fail;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string kName = "\\\\.\\pipe\\1234PYTHON0xdapi";

class KovaPipeTest : public kova::TracedTest {
 protected:
  // Server and client end of one connection.
  void Join() {
    ASSERT_EQ(server_.CreatePipe(), 0);
    ASSERT_EQ(client_.KOVACreateFile(), 0);
  }

  // Reads messages until `bytes` bytes came; their sizes.
  static std::vector<int> SizesRead(KovaPipe& pipe, int bytes) {
    std::vector<int> sizes;
    std::vector<char> area(100000);
    while (bytes > 0) {
      unsigned long read = 0;
      if (pipe.ReadData(static_cast<int>(area.size()), area.data(), read) != 0) break;
      sizes.push_back(static_cast<int>(read));
      bytes -= static_cast<int>(read);
    }
    return sizes;
  }

  KovaPipe server_{kName};
  KovaPipe client_{kName};
};

TEST_F(KovaPipeTest, ANewPipeHasNameButNoHandle) {
  const KovaPipe unnamed;
  EXPECT_EQ(unnamed.GetPipeName(), "");
  EXPECT_EQ(server_.GetPipeName(), kName);
  for (const KovaPipe* pipe : {&unnamed, static_cast<const KovaPipe*>(&server_)}) {
    EXPECT_FALSE(pipe->HasPipe());
    EXPECT_FALSE(pipe->IsPipeCreated());
    EXPECT_FALSE(pipe->IsWritePipeConnected());
  }
}

TEST_F(KovaPipeTest, NameIsReplacedAndGivenWithItsLength) {
  server_.SetPipeName("\\\\.\\pipe\\other");
  int length = 0;
  EXPECT_STREQ(server_.GetPipeName(length), "\\\\.\\pipe\\other");
  EXPECT_EQ(length, 14);
}

TEST_F(KovaPipeTest, CreateWithoutNameCreatesNothing) {
  KovaPipe unnamed;
  EXPECT_EQ(unnamed.CreatePipe(), 99106);
  EXPECT_EQ(callCount("CreateMessagePipe"), 0u);
  EXPECT_FALSE(unnamed.IsPipeCreated());
  EXPECT_THAT(Traced(), IsEmpty());
}

TEST_F(KovaPipeTest, CreateMakesAServerEnd) {
  EXPECT_EQ(server_.CreatePipe(), 0);
  EXPECT_TRUE(server_.HasPipe());
  EXPECT_TRUE(server_.IsPipeCreated());
  EXPECT_FALSE(server_.IsWritePipeConnected());
  EXPECT_THAT(kova::fake::calls(), testing::Contains("CreateMessagePipe " + kName));
}

TEST_F(KovaPipeTest, TryingToOpenNeverWaits) {
  EXPECT_EQ(client_.TryCreateFile(), 99104);
  EXPECT_THAT(Traced(), ElementsAre(kName + " KOVACreateFile error code : 2."));
  server_.CreatePipe();
  EXPECT_EQ(client_.TryCreateFile(), 0);
  KovaPipe second(kName);
  EXPECT_EQ(second.TryCreateFile(), 231);
  EXPECT_FALSE(second.HasPipe());
  fail("OpenPipe", 231);
  client_.ClosePipe();
  server_.DisconnectPipe();
  Traced();
  fail("AwaitServer", 121);
  EXPECT_EQ(client_.TryCreateFile(), 231);
  EXPECT_THAT(Traced(), IsEmpty()) << "a pipe that is taken is no failure";
}

TEST_F(KovaPipeTest, AGonePeerIsNotWaitedFor) {
  server_.DeclarePeerGone();
  server_.CreatePipe();
  client_.KOVACreateFile();
  client_.WriteData("x", 1, nullptr);
  server_.DeclarePeerGone();
  EXPECT_EQ(server_.ConnectPipe(), 535);
  char area[8];
  unsigned long read = 0;
  EXPECT_EQ(server_.ReadData(8, area, read), 0);
  EXPECT_EQ(server_.ReadData(8, area, read), 109);
  EXPECT_EQ(server_.DisconnectPipe(), 0);
  server_.DeclarePeerGone();
  EXPECT_EQ(server_.ConnectPipe(), 109);
}

TEST_F(KovaPipeTest, CreatingAgainReleasesTheEarlierEnd) {
  server_.CreatePipe();
  EXPECT_EQ(server_.CreatePipe(), 0);
  EXPECT_EQ(kova::fake::openPipeEnds(kName.c_str()), 1u);
}

struct FailureCase {
  const char* label;
  const char* function;
  kova::os::Error error;
  bool joined;
  std::function<int(KovaPipe& server, KovaPipe& client)> operation;
  int result;
  const char* record;  // What follows the pipe's name; null for none.
};

int readSome(KovaPipe& pipe) {
  char area[8];
  unsigned long read = 0;
  return pipe.ReadData(sizeof area, area, read);
}

int writeSome(KovaPipe& pipe) {
  char byte = 'x';
  unsigned long written = 0;
  return pipe.WriteData(&byte, 1, &written);
}

const FailureCase kFailures[] = {
    {"create", "CreateMessagePipe", 5, false, [](KovaPipe&, KovaPipe& c) { return c.CreatePipe(); }, 99104,
     " CreateNamedPipe error code : 5."},
    {"connect", "AcceptPeer", 995, false, [](KovaPipe& s, KovaPipe&) { return s.ConnectPipe(); }, 995,
     " ConnectPipe error code : 995."},
    {"connectAfterClient", "AcceptPeer", 535, true, [](KovaPipe& s, KovaPipe&) { return s.ConnectPipe(); }, 535,
     " ConnectPipe error code : 535."},
    {"openWait", "AwaitServer", 2, false, [](KovaPipe&, KovaPipe& c) { return c.KOVACreateFile(); }, 99104,
     " KOVACreateFile error code : 2."},
    {"open", "OpenPipe", 231, false, [](KovaPipe&, KovaPipe& c) { return c.KOVACreateFile(); }, 99104, nullptr},
    {"openToReadWait", "AwaitServer", 5, false, [](KovaPipe&, KovaPipe& c) { return c.KOVACreateFileR(); }, 5,
     " KOVACreateFileR error code : 5."},
    {"openToRead", "OpenPipe", 231, false, [](KovaPipe&, KovaPipe& c) { return c.KOVACreateFileR(); }, 99104,
     " KOVACreateFileR error code : 231."},
    {"readMode", "SetMessageReadMode", 233, true, [](KovaPipe&, KovaPipe& c) { return c.ChangeReadMode(); }, 99104,
     " ChangeReadMode error code : 233."},
    {"unblockMode", "SetNoWaitMode", 233, true, [](KovaPipe&, KovaPipe& c) { return c.ChangeToUnBlockMode(); }, 99104,
     " ChangeToUnBlockMode error code : 233."},
    {"read", "ReadMessage", 109, true, [](KovaPipe& s, KovaPipe&) { return readSome(s); }, 109,
     " ReadData error code : 109."},
    {"readPart", "ReadMessage", 234, true, [](KovaPipe& s, KovaPipe&) { return readSome(s); }, 234,
     " ReadData error code : 234."},
    {"write", "WriteMessage", 232, true, [](KovaPipe&, KovaPipe& c) { return writeSome(c); }, 99104,
     " WriteData error code : 232."},
    {"flush", "FlushMessages", 109, true, [](KovaPipe&, KovaPipe& c) { return c.FlushPipe(); }, 0, nullptr},
    {"connectNothing", "AcceptPeer", 6, false, [](KovaPipe&, KovaPipe& c) { return c.ConnectPipe(); }, 6,
     " ConnectPipe error code : 6."},
    {"readNothing", "ReadMessage", 6, false, [](KovaPipe&, KovaPipe& c) { return readSome(c); }, 6,
     " ReadData error code : 6."},
    {"writeNothing", "WriteMessage", 6, false, [](KovaPipe&, KovaPipe& c) { return writeSome(c); }, 99104,
     " WriteData error code : 6."},
    {"readModeOfNothing", "SetMessageReadMode", 6, false, [](KovaPipe&, KovaPipe& c) { return c.ChangeReadMode(); },
     99104, " ChangeReadMode error code : 6."},
    {"unblockModeOfNothing", "SetNoWaitMode", 6, false, [](KovaPipe&, KovaPipe& c) { return c.ChangeToUnBlockMode(); },
     99104, " ChangeToUnBlockMode error code : 6."},
};

class KovaPipeFailure : public KovaPipeTest, public testing::WithParamInterface<FailureCase> {};

TEST_P(KovaPipeFailure, GivesItsCodeAndOneRecord) {
  const FailureCase& row = GetParam();
  ASSERT_EQ(server_.CreatePipe(), 0);
  if (row.joined) {
    ASSERT_EQ(client_.KOVACreateFile(), 0);
  }
  fail(row.function, row.error);
  EXPECT_EQ(row.operation(server_, client_), row.result);
  if (row.record == nullptr) {
    EXPECT_THAT(Traced(), IsEmpty());
  } else {
    EXPECT_THAT(Traced(), ElementsAre(kName + row.record));
  }
}

INSTANTIATE_TEST_SUITE_P(Operations, KovaPipeFailure, testing::ValuesIn(kFailures),
                         [](const auto& row) { return std::string(row.param.label); });

TEST_F(KovaPipeTest, AFailedCreateOrOpenLeavesNoPipe) {
  fail("CreateMessagePipe", 5);
  server_.CreatePipe();
  EXPECT_FALSE(server_.HasPipe());
  EXPECT_FALSE(server_.IsPipeCreated());
  EXPECT_EQ(client_.KOVACreateFile(), 99104);
  EXPECT_FALSE(client_.HasPipe());
  Traced();
  EXPECT_EQ(client_.ClosePipe(), 0);
  EXPECT_THAT(Traced(), IsEmpty());
}

TEST_F(KovaPipeTest, OpeningForReadingWaitsForThePipeToComeIntoBeing) {
  server_.CreatePipe();
  fail("AwaitServer", 2, 0, 3);
  EXPECT_EQ(client_.KOVACreateFileR(), 0);
  EXPECT_EQ(callCount("AwaitServer"), 4u);
  EXPECT_EQ(kova::fake::elapsedMs(), 300u);
  EXPECT_EQ(writeSome(client_), 99104) << "opened for reading only";
  EXPECT_EQ(writeSome(server_), 0);
  EXPECT_EQ(readSome(client_), 0);
}

TEST_F(KovaPipeTest, OpeningForReadingGivesUpAfter101Waits) {
  EXPECT_EQ(client_.KOVACreateFileR(), 99104);
  EXPECT_EQ(callCount("AwaitServer"), 101u);
  EXPECT_EQ(callCount("SleepMs"), 100u);
  EXPECT_EQ(kova::fake::elapsedMs(), 10000u);
  const auto records = Traced();
  EXPECT_THAT(records, SizeIs(100));
  EXPECT_THAT(records, Each(kName + " KOVACreateFileR error code : 2."));
}

TEST_F(KovaPipeTest, OpeningForReadingThatFailsOtherwiseEndsAtOnce) {
  fail("AwaitServer", 2, 0, 2);
  fail("AwaitServer", 5, 2);
  EXPECT_EQ(client_.KOVACreateFileR(), 5);
  EXPECT_EQ(callCount("SleepMs"), 2u);
  EXPECT_THAT(Traced(),
              ElementsAre(kName + " KOVACreateFileR error code : 2.", kName + " KOVACreateFileR error code : 2.",
                          kName + " KOVACreateFileR error code : 5."));
}

TEST_F(KovaPipeTest, ASecondClientWaitsUntilTheServerIsFree) {
  Join();
  KovaPipe second(kName);
  std::thread opener([&second] { EXPECT_EQ(second.KOVACreateFile(), 0); });
  EXPECT_EQ(server_.ConnectPipe(), 535);
  EXPECT_EQ(server_.DisconnectPipe(), 0);
  const int connected = server_.ConnectPipe();
  EXPECT_TRUE(connected == 0 || connected == 535) << connected;
  opener.join();
  EXPECT_EQ(writeSome(second), 0);
  EXPECT_EQ(readSome(server_), 0);
}

TEST_F(KovaPipeTest, ConnectAfterTheClientGives535AndIsAskedOnce) {
  server_.CreatePipe();
  EXPECT_EQ(client_.OpenPipeToWrite(), 0);
  EXPECT_EQ(server_.ConnectPipe(), 535);
  EXPECT_FALSE(server_.IsWritePipeConnected());
  EXPECT_EQ(server_.ConnectPipe(), 0);
  EXPECT_EQ(callCount("AcceptPeer"), 1u);
  EXPECT_THAT(Traced(), ElementsAre(kName + " ConnectPipe error code : 535."));
}

TEST_F(KovaPipeTest, ASuccessfulConnectSetsTheFlag) {
  Join();
  server_.ConnectPipe();
  server_.DisconnectPipe();
  // The second client can only come once the server accepts again, so this wait always ends with 0.
  KovaPipe second(kName);
  std::thread opener([&second] { second.KOVACreateFile(); });
  EXPECT_EQ(server_.ConnectPipe(), 0);
  EXPECT_TRUE(server_.IsWritePipeConnected());
  opener.join();
}

TEST_F(KovaPipeTest, ABlockedConnectIsReleasedFromASecondObject) {
  server_.CreatePipe();
  std::thread waiting([this] { server_.ConnectPipe(); });
  KovaPipe releaser(kName);
  EXPECT_EQ(releaser.OpenPipeToUnBlockWrite(), 0);
  waiting.join();
  EXPECT_TRUE(releaser.IsWritePipeConnected());
  EXPECT_EQ(server_.ClosePipe(), 0);
  EXPECT_FALSE(server_.HasPipe());
}

TEST_F(KovaPipeTest, OpenToWriteReplacesTheHandleWithoutClosingIt) {
  const std::string name = "\\\\.\\pipe\\replaced";
  KovaPipe pipe(name);
  pipe.CreatePipe();
  EXPECT_EQ(pipe.OpenPipeToUnBlockWrite(), 0);
  EXPECT_EQ(kova::fake::openPipeEnds(name.c_str()), 2u);
  EXPECT_EQ(pipe.ClosePipe(), 0);
  EXPECT_EQ(kova::fake::openPipeEnds(name.c_str()), 1u);
  LosesEnds(1);
}

TEST(KovaPipeOpenToWrite, SucceedsAndSetsTheFlagWhateverTheOutcome) {
  kova::fake::reset();
  const std::vector<int (KovaPipe::*)()> operations = {&KovaPipe::OpenPipeToWrite, &KovaPipe::OpenPipeToUnBlockWrite};
  for (const auto operation : operations) {
    KovaPipe nobody("\\\\.\\pipe\\nobody");
    EXPECT_EQ((nobody.*operation)(), 0);
    EXPECT_TRUE(nobody.IsWritePipeConnected());
    EXPECT_FALSE(nobody.HasPipe());
    EXPECT_EQ(nobody.DisconnectPipe(), 99104);
  }
  EXPECT_EQ(callCount("AwaitServer"), 0u) << "it must not wait";
}

TEST_F(KovaPipeTest, OpenToReadDoesNothing) {
  server_.CreatePipe();
  EXPECT_EQ(client_.OpenPipeToRead(), 0);
  EXPECT_EQ(client_.OpenPipeToUnBlockRead(), 0);
  EXPECT_FALSE(client_.HasPipe());
  EXPECT_EQ(callCount("OpenPipe"), 0u);
}

TEST_F(KovaPipeTest, DisconnectWithoutConnectDoesNothing) {
  server_.CreatePipe();
  EXPECT_EQ(server_.DisconnectPipe(), 0);
  EXPECT_EQ(callCount("DisconnectPeer"), 0u);
}

TEST_F(KovaPipeTest, DisconnectClearsTheFlagsAlsoWhenItFails) {
  Join();
  server_.ConnectPipe();
  Traced();
  fail("DisconnectPeer", 233);
  EXPECT_EQ(server_.DisconnectPipe(), 99104);
  EXPECT_EQ(server_.DisconnectPipe(), 0);
  EXPECT_EQ(callCount("DisconnectPeer"), 1u);
  EXPECT_THAT(Traced(), IsEmpty());
}

TEST_F(KovaPipeTest, CloseClearsTheFlagsAndIsTracedOnce) {
  Join();
  server_.ConnectPipe();
  Traced();
  EXPECT_EQ(server_.ClosePipe(), 0);
  EXPECT_FALSE(server_.HasPipe());
  EXPECT_FALSE(server_.IsPipeCreated());
  EXPECT_FALSE(server_.IsWritePipeConnected());
  EXPECT_EQ(server_.ClosePipe(), 0);
  EXPECT_THAT(Traced(), ElementsAre(kName + " ClosePipe error code : 0."));
}

TEST_F(KovaPipeTest, CloseOfAPipeThatWasNeverOpenedIsNotTraced) {
  EXPECT_EQ(client_.ClosePipe(), 0);
  EXPECT_THAT(Traced(), IsEmpty());
}

TEST_F(KovaPipeTest, DestructionClosesThePipe) {
  {
    KovaPipe pipe(kName);
    pipe.CreatePipe();
  }
  EXPECT_EQ(kova::fake::openPipeEnds(kName.c_str()), 0u);
  EXPECT_THAT(Traced(), ElementsAre(kName + " ClosePipe error code : 0."));
}

TEST_F(KovaPipeTest, DestructionDeletesAPlainFileOfTheName) {
  const auto path = std::filesystem::temp_directory_path() / ("kova_pipe_" + std::to_string(std::random_device{}()));
  std::ofstream(path) << "x";
  ASSERT_TRUE(std::filesystem::exists(path));
  { const KovaPipe pipe(path.string()); }
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(KovaPipeTest, DestructionOfAClientLeavesTheServerReachable) {
  server_.CreatePipe();
  {
    KovaPipe first(kName);
    ASSERT_EQ(first.KOVACreateFile(), 0);
    server_.ConnectPipe();
  }
  server_.DisconnectPipe();
  std::thread opener([this] { EXPECT_EQ(client_.KOVACreateFile(), 0); });
  const int connected = server_.ConnectPipe();
  EXPECT_TRUE(connected == 0 || connected == 535) << connected;
  opener.join();
}

TEST_F(KovaPipeTest, ReadWithoutHandleGives6AndNoCount) {
  char area[4];
  unsigned long read = 77;
  EXPECT_EQ(client_.ReadData(sizeof area, area, read), 6);
  EXPECT_EQ(read, 0u);
}

TEST_F(KovaPipeTest, ReadBeforeAClientCameGives536) {
  server_.CreatePipe();
  EXPECT_EQ(readSome(server_), 536);
  EXPECT_THAT(Traced(), ElementsAre(kName + " ReadData error code : 536."));
}

TEST_F(KovaPipeTest, ReadAfterThePeerClosedGives109) {
  Join();
  client_.ClosePipe();
  EXPECT_EQ(readSome(server_), 109);
  EXPECT_EQ(writeSome(server_), 99104);
}

TEST_F(KovaPipeTest, AMessageThatDoesNotFitIsReadInParts) {
  Join();
  ASSERT_EQ(client_.WriteData("abcdef", 6, nullptr), 0);
  char area[4] = {};
  unsigned long read = 0;
  EXPECT_EQ(server_.ReadData(4, area, read), 234);
  EXPECT_EQ(read, 4u);
  EXPECT_EQ(server_.ReadData(-1, area, read), 234) << "a negative size is none";
  EXPECT_EQ(read, 0u);
  EXPECT_EQ(server_.ReadData(4, area, read), 0);
  EXPECT_EQ(std::string(area, read), "ef");
}

TEST_F(KovaPipeTest, UnBlockModeGives232WithoutData) {
  Join();
  EXPECT_EQ(server_.ChangeToUnBlockMode(), 0);
  EXPECT_EQ(readSome(server_), 232);
  EXPECT_EQ(client_.ChangeReadMode(), 0);
}

struct ChunkCase {
  const char* label;
  int length;
  std::vector<int> sizes;
};

class KovaPipeChunks : public KovaPipeTest, public testing::WithParamInterface<ChunkCase> {};

TEST_P(KovaPipeChunks, AreAtMost8192Bytes) {
  Join();
  std::vector<char> data(static_cast<std::size_t>(GetParam().length), 'x');
  unsigned long written = 77;
  std::thread writer([&] { EXPECT_EQ(client_.WriteData(data.data(), GetParam().length, &written), 0); });
  EXPECT_EQ(SizesRead(server_, GetParam().length), GetParam().sizes);
  writer.join();
  EXPECT_EQ(static_cast<int>(written), GetParam().sizes.back());
}

const ChunkCase kChunks[] = {
    {"one", 1, {1}},
    {"full", 8192, {8192}},
    {"oneMore", 8193, {8192, 1}},
    {"twoFull", 16384, {8192, 8192}},
    {"many", 20000, {8192, 8192, 3616}},
};
INSTANTIATE_TEST_SUITE_P(Lengths, KovaPipeChunks, testing::ValuesIn(kChunks),
                         [](const auto& row) { return std::string(row.param.label); });

TEST_F(KovaPipeTest, WriteOfNothingIsOneEmptyMessage) {
  Join();
  unsigned long count = 77;
  EXPECT_EQ(client_.WriteData("", 0, &count), 0);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(callCount("WriteMessage"), 1u);
  char area[4];
  count = 77;
  EXPECT_EQ(server_.ReadData(sizeof area, area, count), 0);
  EXPECT_EQ(count, 0u);
}

TEST_F(KovaPipeTest, WriteOfANegativeLengthFails) {
  Join();
  EXPECT_EQ(client_.WriteData("x", -1, nullptr), 99104);
  EXPECT_EQ(callCount("WriteMessage"), 0u);
  EXPECT_THAT(Traced(), ElementsAre(kName + " WriteData error code : 13."));
}

TEST_F(KovaPipeTest, WriteStopsAtTheChunkThatFails) {
  Join();
  fail("WriteMessage", 232, 1);
  const std::vector<char> data(8193, 'x');
  EXPECT_EQ(client_.WriteData(data.data(), 8193, nullptr), 99104);
  EXPECT_EQ(callCount("WriteMessage"), 2u);
  EXPECT_THAT(SizesRead(server_, 8192), ElementsAre(8192));
  EXPECT_THAT(Traced(), ElementsAre(kName + " WriteData error code : 232."));
}

TEST_F(KovaPipeTest, FlushAlwaysSucceeds) {
  EXPECT_EQ(client_.FlushPipe(), 0);
  Join();
  EXPECT_EQ(client_.FlushPipe(), 0);
  EXPECT_EQ(callCount("FlushMessages"), 1u);
}

}  // namespace
