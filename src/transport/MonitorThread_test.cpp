#include "transport/MonitorThread.h"

#include <atomic>
#include <cstring>
#include <thread>

#include "tests/transport/traced_test.h"
#include "transport/DXCmdDispatcher.h"
#include "transport/KovaPipe.h"
#include "transport/XPipeManager.h"
#include "transport/XPipeSuit.h"
#include "transport/XPipes.h"
#include "transport/monitor_relay.h"

namespace {

using kova::fake::callCount;

const std::string kName = "\\\\.\\pipe\\1a2bPYTHONP2C";

std::atomic<int> callbacks{0};
std::atomic<MonitorThread*> calledFor{nullptr};
void countCallback(MonitorThread* monitor) {
  ++callbacks;
  calledFor = monitor;
}

template <typename Condition>
void await(const Condition& condition) {
  while (!condition()) std::this_thread::yield();
}

class MonitorThreadTest : public kova::TracedTest {
 protected:
  MonitorThreadTest() {
    kova::fake::setPatienceMs(1);
    callbacks = 0;
    calledFor = nullptr;
  }
};

int writeWord(KovaPipe& pipe, std::int32_t word) { return pipe.WriteData(&word, sizeof word, nullptr); }

// The next word of a writer, -1 when the read fails.
std::int32_t readWord(KovaPipe& pipe) {
  std::int32_t word = -1;
  unsigned long count = 0;
  return pipe.ReadData(sizeof word, &word, count) == 0 && count == sizeof word ? word : -1;
}

TEST_F(MonitorThreadTest, BeginsStopped) {
  const MonitorThread writer(kName, MonitorThread::kWriter);
  EXPECT_TRUE(writer.isStopped());
  EXPECT_TRUE(writer.isNormalEnd());
  EXPECT_TRUE(writer.isPeerAlive());
  EXPECT_EQ(kova::fake::openPipeEnds(), 0u);
  const MonitorThread reader(kName, MonitorThread::kReader);
  EXPECT_TRUE(reader.isStopped());
  EXPECT_TRUE(reader.isNormalEnd());
  EXPECT_FALSE(reader.isPeerAlive());
  EXPECT_EQ(kova::fake::openPipeEnds(kName.c_str()), 1u) << "the reader creates the pipe";
}

TEST_F(MonitorThreadTest, AWriterWritesAliveEverySecondAndOneGoodbye) {
  KovaPipe pipe(kName);
  ASSERT_EQ(pipe.CreatePipe(), 0);
  auto writer = std::make_unique<MonitorThread>(kName, MonitorThread::kWriter);
  writer->setEndCallback(countCallback);
  ASSERT_TRUE(writer->Start());
  pipe.ConnectPipe();
  EXPECT_EQ(readWord(pipe), 1);
  const std::uint64_t first = kova::fake::elapsedMs();
  EXPECT_EQ(readWord(pipe), 1);
  EXPECT_EQ(readWord(pipe), 1);
  EXPECT_GE(kova::fake::elapsedMs() - first, 1000u);
  kova::fake::setPatienceMs(10000);  // Time for the goodbye.
  writer->stop();
  std::int32_t word = 1;
  while (word == 1) word = readWord(pipe);
  EXPECT_EQ(word, 3);
  EXPECT_TRUE(writer->isStopped());
  EXPECT_TRUE(writer->isNormalEnd());
  writer.reset();
  EXPECT_EQ(readWord(pipe), -1) << "nothing behind the goodbye";
  EXPECT_EQ(callbacks, 0);
}

TEST_F(MonitorThreadTest, AWriterThatFindsNoReaderEndsNormally) {
  auto writer = std::make_unique<MonitorThread>(kName, MonitorThread::kWriter);
  writer->setEndCallback(countCallback);
  ASSERT_TRUE(writer->Start());
  await([&] { return !writer->HasThread(); });
  EXPECT_EQ(callCount("AwaitServer"), 20u);
  EXPECT_EQ(kova::fake::elapsedMs(), 1900u);
  EXPECT_FALSE(writer->isPeerAlive());
  EXPECT_TRUE(writer->isNormalEnd());
  EXPECT_TRUE(writer->isStopped());
  EXPECT_EQ(callbacks, 0);
  writer.reset();
  EXPECT_EQ(callCount("SweepStalePipes"), 1u) << "a reader that was killed before it came to it leaves its pipe";
}

TEST_F(MonitorThreadTest, AWriterWhoseReaderVanishesTellsSoOnce) {
  auto pipe = std::make_unique<KovaPipe>(kName);
  ASSERT_EQ(pipe->CreatePipe(), 0);
  MonitorThread writer(kName, MonitorThread::kWriter);
  writer.setEndCallback(countCallback);
  ASSERT_TRUE(writer.Start());
  pipe->ConnectPipe();
  EXPECT_EQ(readWord(*pipe), 1);
  pipe.reset();
  await([&] { return !writer.HasThread(); });
  EXPECT_FALSE(writer.isNormalEnd());
  EXPECT_FALSE(writer.isPeerAlive());
  EXPECT_TRUE(writer.isStopped());
  EXPECT_EQ(callbacks, 1);
  EXPECT_EQ(calledFor, &writer);
}

TEST_F(MonitorThreadTest, AWriterThatIsStoppedAtOnceStillSaysGoodbye) {
  KovaPipe pipe(kName);
  ASSERT_EQ(pipe.CreatePipe(), 0);
  MonitorThread writer(kName, MonitorThread::kWriter);
  writer.stop();
  EXPECT_TRUE(writer.isStopped());
  ASSERT_TRUE(writer.Start());
  pipe.ConnectPipe();
  EXPECT_EQ(readWord(pipe), 3);
  await([&] { return !writer.HasThread(); });
}

// The stop meets the thread before it has begun, while it opens the pipe, and between two words.
TEST_F(MonitorThreadTest, AWriterThatIsStoppedAtAnyStageSaysGoodbye) {
  kova::fake::setPatienceMs(10000);
  for (int round = 0; round < 300; ++round) {
    KovaPipe pipe(kName);
    ASSERT_EQ(pipe.CreatePipe(), 0);
    {
      MonitorThread writer(kName, MonitorThread::kWriter);
      ASSERT_TRUE(writer.Start());
      for (int i = 0; i < round % 30; ++i) std::this_thread::yield();
      writer.stop();
    }
    pipe.ConnectPipe();
    std::int32_t word = 1;
    while (word == 1) word = readWord(pipe);
    ASSERT_EQ(word, 3) << round;
  }
}

TEST_F(MonitorThreadTest, AWriterIsReleasedFromAReaderThatNeverReads) {
  KovaPipe pipe(kName);
  ASSERT_EQ(pipe.CreatePipe(), 0);
  MonitorThread writer(kName, MonitorThread::kWriter);
  writer.setEndCallback(countCallback);
  kova::fake::setPatienceMs(0);
  ASSERT_TRUE(writer.Start());
  await([] { return callCount("WriteMessage") >= 2049; });  // 8192 bytes of words and one.
  writer.stop();
  await([&] { return !writer.HasThread(); });
  EXPECT_TRUE(writer.isNormalEnd());
  EXPECT_EQ(callbacks, 0);
}

TEST_F(MonitorThreadTest, AReaderTakesTheWordsThatItKnows) {
  MonitorThread reader(kName, MonitorThread::kReader);
  reader.setEndCallback(countCallback);
  ASSERT_TRUE(reader.Start());
  KovaPipe pipe(kName);
  ASSERT_EQ(pipe.KOVACreateFile(), 0);
  const auto afterRead = [&](const auto& write) {
    const unsigned before = callCount("ReadMessage");
    write();
    await([&] { return callCount("ReadMessage") > before; });
  };
  await([] { return callCount("ReadMessage") == 1; });
  EXPECT_FALSE(reader.isStopped());
  afterRead([&] { ASSERT_EQ(pipe.WriteData("\1", 1, nullptr), 0); });
  afterRead([&] { ASSERT_EQ(pipe.WriteData("", 0, nullptr), 0); });
  afterRead([&] { ASSERT_EQ(writeWord(pipe, 7), 0); });
  EXPECT_FALSE(reader.isPeerAlive()) << "neither is a word";
  afterRead([&] { ASSERT_EQ(writeWord(pipe, 1), 0); });
  EXPECT_TRUE(reader.isPeerAlive());
  afterRead([&] { ASSERT_EQ(writeWord(pipe, 7), 0); });
  afterRead([&] { ASSERT_EQ(writeWord(pipe, 0), 0); });
  EXPECT_TRUE(reader.isPeerAlive());
  ASSERT_EQ(writeWord(pipe, 3), 0);
  await([&] { return !reader.HasThread(); });
  EXPECT_FALSE(reader.isPeerAlive());
  EXPECT_TRUE(reader.isNormalEnd());
  EXPECT_TRUE(reader.isStopped());
  EXPECT_EQ(callbacks, 0);
}

TEST_F(MonitorThreadTest, APartOfALongMessageIsNoWord) {
  MonitorThread reader(kName, MonitorThread::kReader);
  ASSERT_TRUE(reader.Start());
  KovaPipe pipe(kName);
  ASSERT_EQ(pipe.KOVACreateFile(), 0);
  std::string message(2, '\0');
  message += std::string("\3\0\0\0", 4);
  kova::fake::shortNextRead(2);
  ASSERT_EQ(pipe.WriteData(message.data(), 6, nullptr), 0);
  ASSERT_EQ(writeWord(pipe, 1), 0);
  await([&] { return reader.isPeerAlive(); });
  EXPECT_FALSE(reader.isStopped());
}

TEST_F(MonitorThreadTest, AReaderWhosePeerVanishesTellsSoOnce) {
  MonitorThread reader(kName, MonitorThread::kReader);
  reader.setEndCallback(countCallback);
  ASSERT_TRUE(reader.Start());
  {
    KovaPipe pipe(kName);
    ASSERT_EQ(pipe.KOVACreateFile(), 0);
    ASSERT_EQ(writeWord(pipe, 1), 0);
    await([&] { return reader.isPeerAlive(); });
  }
  await([&] { return !reader.HasThread(); });
  EXPECT_FALSE(reader.isNormalEnd());
  EXPECT_FALSE(reader.isPeerAlive());
  EXPECT_EQ(callbacks, 1);
  EXPECT_EQ(calledFor, &reader);
}

TEST_F(MonitorThreadTest, AReaderWithoutAPipeEndsAsWithoutAPeer) {
  kova::fake::fail("CreateMessagePipe", 5);
  MonitorThread reader(kName, MonitorThread::kReader);
  reader.setEndCallback(countCallback);
  ASSERT_TRUE(reader.Start());
  await([&] { return !reader.HasThread(); });
  EXPECT_FALSE(reader.isNormalEnd());
  EXPECT_EQ(callbacks, 1);
}

// The destructor meets the thread at every stage: not started, on its way, waiting for its peer, reading.
TEST_F(MonitorThreadTest, DestructionWaitsForTheThread) {
  for (int round = 0; round < 60; ++round) {
    auto reader = std::make_unique<MonitorThread>(kName, MonitorThread::kReader);
    auto writer = std::make_unique<MonitorThread>(kName, MonitorThread::kWriter);
    reader->setEndCallback(countCallback);
    if (round % 3 != 0) reader->Start();
    if (round % 3 == 2) writer->Start();
    for (int i = 0; i < 4 * round; ++i) std::this_thread::yield();
    reader->stop();
    reader.reset();
    writer.reset();
  }
  EXPECT_EQ(callbacks, 0) << "who is stopped does not call";
  EXPECT_EQ(kova::fake::openPipeEnds(), 0u);
}

TEST_F(MonitorThreadTest, ACallbackMayStopItsMonitor) {
  MonitorThread reader(kName, MonitorThread::kReader);
  reader.setEndCallback([](MonitorThread* monitor) {
    monitor->stop();
    ++callbacks;
  });
  ASSERT_TRUE(reader.Start());
  KovaPipe(kName).OpenPipeToUnBlockWrite();
  await([&] { return !reader.HasThread(); });
  EXPECT_EQ(callbacks, 1);
}

TEST_F(MonitorThreadTest, AnOnlookerIsToldEveryWord) {
  KovaPipe onlooker(kova::onlookerPipeName(kName));
  ASSERT_EQ(onlooker.GetPipeName(), kName + "_watch");
  ASSERT_EQ(onlooker.CreatePipe(), 0);
  const auto told = [&] {
    onlooker.ConnectPipe();
    const std::int32_t word = readWord(onlooker);
    onlooker.DisconnectPipe();
    return word;
  };
  MonitorThread reader(kName, MonitorThread::kReader);
  ASSERT_TRUE(reader.Start());
  auto pipe = std::make_unique<KovaPipe>(kName);
  ASSERT_EQ(pipe->KOVACreateFile(), 0);
  ASSERT_EQ(writeWord(*pipe, 1), 0);
  EXPECT_EQ(told(), 1);
  std::thread waits([&] { EXPECT_EQ(told(), 0) << "vanished"; });
  await([] { return callCount("AcceptPeer") == 3; });  // The reader's, and twice the onlooker's.
  pipe.reset();
  waits.join();
}

TEST_F(MonitorThreadTest, WithoutAnOnlookerNothingIsTraced) {
  kova::tellOnlooker(kName, 1);
  KovaPipe onlooker(kova::onlookerPipeName(kName));
  ASSERT_EQ(onlooker.CreatePipe(), 0);
  kova::fake::fail("OpenPipe", 231);
  kova::tellOnlooker(kName, 1);
  EXPECT_EQ(callCount("WriteMessage"), 0u);
  EXPECT_THAT(Traced(), testing::IsEmpty());
}

class SuiteMonitors : public MonitorThreadTest {
 protected:
  XPipeManager manager_{"C:\\temp\\", "1a2b"};
};

TEST_F(SuiteMonitors, StartOnceAndAreFound) {
  XPipeSuit suit("PYTHON", &manager_);
  EXPECT_EQ(suit.getMonitor(true), nullptr);
  EXPECT_EQ(suit.stopMonitor(true), 0);
  MonitorThread* const reader = suit.startMonitor(true, nullptr);
  EXPECT_EQ(suit.startMonitor(true, nullptr), reader);
  EXPECT_EQ(suit.getMonitor(true), reader);
  EXPECT_EQ(suit.getMonitor(false), nullptr);
  EXPECT_EQ(kova::fake::openPipeEnds(kName.c_str()), 1u);
  EXPECT_TRUE(reader->HasThread());
  EXPECT_EQ(suit.stopMonitor(true), 0);
  EXPECT_TRUE(reader->isStopped());
}

TEST_F(SuiteMonitors, AreTheTwoOfARuntimesProcess) {
  const std::string c2p = "\\\\.\\pipe\\1a2bPYTHONC2P";
  MonitorThread engineWriter(kName, MonitorThread::kWriter);
  MonitorThread engineReader(c2p, MonitorThread::kReader);
  ASSERT_TRUE(engineReader.Start());
  auto suit = std::make_unique<XPipeSuit>("PYTHON", &manager_);
  MonitorThread* const reader = suit->startMonitor(true, reinterpret_cast<void*>(&countCallback));
  MonitorThread* const writer = suit->startMonitor(false, nullptr);
  ASSERT_TRUE(engineWriter.Start());
  await([&] { return reader->isPeerAlive() && engineReader.isPeerAlive(); });
  EXPECT_TRUE(writer->isPeerAlive());
  suit->stopMonitor(false);
  await([&] { return !engineReader.HasThread(); });
  EXPECT_TRUE(engineReader.isNormalEnd()) << "a goodbye";
  kova::fake::losePeer(kName.c_str());
  await([] { return callbacks == 1; });
  EXPECT_EQ(calledFor, reader);
  engineWriter.stop();
}

TEST_F(SuiteMonitors, AndTheControlChannelGoWithTheirSuite) {
  {
    XPipeSuit suit("PYTHON", &manager_);
    suit.increaseIndex();
    suit.getXPipes()->GetXDAPIPipe()->CreatePipe();
    suit.startMonitor(true, nullptr);
    DXCmdDispatcher* const dispatcher = suit.getCmdDispatcher(true);
    EXPECT_EQ(suit.getCmdDispatcher(false), dispatcher) << "whatever the flag";
    EXPECT_EQ(kova::fake::openPipeEnds("\\\\.\\pipe\\1a2bPYTHON_s"), 1u);
    EXPECT_EQ(kova::fake::openPipeEnds("\\\\.\\pipe\\1a2bPYTHON_c"), 0u);
    Traced();
  }
  std::vector<std::string> closed = Traced();
  std::erase_if(closed, [](const std::string& line) { return line.find(" ClosePipe") == std::string::npos; });
  EXPECT_THAT(closed, testing::ElementsAre("\\\\.\\pipe\\1a2bPYTHON0xdapi ClosePipe error code : 0.",
                                           "\\\\.\\pipe\\1a2bPYTHON_s ClosePipe error code : 0.",
                                           kName + " ClosePipe error code : 0."));
}

}  // namespace
