#include "transport/watched_wait.h"

#include <thread>
#include <utility>

#include "platform/os/process.h"
#include "tests/transport/traced_test.h"
#include "transport/DXCmdDispatcher.h"
#include "transport/KovaPipe.h"

namespace {

using kova::PeerWatch;
using kova::WatchedWait;

const std::string kName = "\\\\.\\pipe\\1a2bPYTHON0syntaxresult";

class WatchedWaitTest : public kova::TracedTest {
 protected:
  WatchedWaitTest() {
    kova::fake::setPatienceMs(1);
    kova::fake::Program program;
    program.runsForMs = 0xFFFFFFFF;
    kova::fake::registerProgram("peer", program);
    kova::os::ProcessStart start;
    start.program = "peer";
    EXPECT_EQ(kova::os::Process::Start(start, &peer_), 0u);
  }
  void endPeer() { ASSERT_TRUE(kova::fake::endProgram(peer_.Id(), 0)); }

  kova::os::Process peer_;
};

TEST_F(WatchedWaitTest, AConnectEndsWithItsPeersProcess) {
  PeerWatch watch(peer_.Id());
  ASSERT_TRUE(watch.isWatching());
  EXPECT_FALSE(watch.hasEnded());
  KovaPipe pipe(kName);
  ASSERT_EQ(pipe.CreatePipe(), 0);
  std::thread waiter([&] {
    const WatchedWait wait(&watch, &pipe);
    EXPECT_EQ(pipe.ConnectPipe(), 109);
  });
  endPeer();
  waiter.join();
  EXPECT_TRUE(watch.hasEnded());
}

TEST_F(WatchedWaitTest, AProcessThatHadEndedBeforeCountsToo) {
  PeerWatch watch(peer_.Id());
  endPeer();
  KovaPipe pipe(kName);
  ASSERT_EQ(pipe.CreatePipe(), 0);
  const WatchedWait wait(&watch, &pipe);
  EXPECT_EQ(pipe.ConnectPipe(), 109);
}

TEST_F(WatchedWaitTest, WhatThePeerHasWrittenIsReadFirst) {
  PeerWatch watch(peer_.Id());
  KovaPipe pipe(kName);
  ASSERT_EQ(pipe.CreatePipe(), 0);
  KovaPipe peersEnd(kName);  // Stays open, as in a process that the peer has started.
  ASSERT_EQ(peersEnd.KOVACreateFile(), 0);
  ASSERT_EQ(peersEnd.WriteData("ready", 5, nullptr), 0);
  endPeer();
  const WatchedWait wait(&watch, &pipe);
  EXPECT_EQ(pipe.ConnectPipe(), 535);
  char area[8];
  unsigned long count = 0;
  EXPECT_EQ(pipe.ReadData(8, area, count), 0);
  EXPECT_EQ(count, 5u);
  EXPECT_EQ(pipe.ReadData(8, area, count), 109);
}

TEST_F(WatchedWaitTest, ACommandsAnswerIsNotWaitedForWhenThePeerHasEnded) {
  PeerWatch watch(peer_.Id());
  const std::string name = "\\\\.\\pipe\\1a2bPYTHON";
  DXCmdDispatcher engine(name, false);
  KovaPipe peersRead(name + "_s");  // Both stay open.
  KovaPipe peersWrite(name + "_c");
  ASSERT_EQ(peersRead.CreatePipe(), 0);
  ASSERT_EQ(peersWrite.KOVACreateFile(), 0);
  const WatchedWait wait(&watch, &engine);
  ASSERT_EQ(engine.connectPeer(), 0);
  std::thread sender([&] { EXPECT_EQ(engine.sendCmd(DXCmdDispatcher::kSetupDXRun), 109); });
  endPeer();
  sender.join();
}

// The writing end lives on, as in a process that the peer has started.
TEST_F(WatchedWaitTest, AReadOfBytesEndsWithThePeersProcess) {
  PeerWatch watch(peer_.Id());
  kova::os::BytePipeEnd reader;
  kova::os::BytePipeEnd writer;
  ASSERT_EQ(kova::os::BytePipeEnd::Create(&reader, &writer), 0u);
  ASSERT_EQ(writer.Write("last", 4), 0u);
  char area[8];
  std::uint32_t count = 0;
  {
    const WatchedWait wait(&watch, &reader);
    EXPECT_EQ(reader.Read(area, sizeof area, &count), 0u);
    EXPECT_EQ(count, 4u);
  }
  std::thread ending([&] { endPeer(); });
  {
    const WatchedWait wait(&watch, &reader);
    EXPECT_EQ(reader.Read(area, sizeof area, &count), 109u);
    EXPECT_EQ(count, 0u);
  }
  ending.join();
  ASSERT_EQ(writer.Write("late", 4), 0u);
  const WatchedWait wait(&watch, &reader);
  EXPECT_EQ(reader.Read(area, sizeof area, &count), 0u) << "what has come counts";
  EXPECT_EQ(reader.Read(area, sizeof area, &count), 109u);
}

TEST_F(WatchedWaitTest, WithoutAWatchAReadOfBytesLastsUntilTheWriterGoes) {
  kova::os::BytePipeEnd reader;
  kova::os::BytePipeEnd writer;
  ASSERT_EQ(kova::os::BytePipeEnd::Create(&reader, &writer), 0u);
  const WatchedWait wait(nullptr, &reader);
  endPeer();
  std::thread leaving([end = std::move(writer)]() mutable { end = {}; });
  char area[8];
  std::uint32_t count = 0;
  EXPECT_EQ(reader.Read(area, sizeof area, &count), 109u);
  leaving.join();
}

TEST_F(WatchedWaitTest, OnlyTheWaitsThatLastAreEnded) {
  PeerWatch watch(peer_.Id());
  KovaPipe pipe(kName);
  ASSERT_EQ(pipe.CreatePipe(), 0);
  { const WatchedWait wait(&watch, &pipe); }
  endPeer();
  while (!watch.hasEnded()) std::this_thread::yield();
  KovaPipe late(kName);
  std::thread other([&] { EXPECT_EQ(late.KOVACreateFile(), 0); });
  const int connected = pipe.ConnectPipe();
  EXPECT_TRUE(connected == 0 || connected == 535) << connected;
  other.join();
}

TEST_F(WatchedWaitTest, AWatchGoesWhileItsProcessRuns) {
  for (int round = 0; round < 100; ++round) PeerWatch watch(peer_.Id());
  EXPECT_EQ(kova::fake::callCount("ProcessWatch::Wait"), 100u);
}

TEST_F(WatchedWaitTest, AProcessThatCanNotBeWatchedLeavesTheWaitsAsTheyAre) {
  for (const char* step : {"ProcessWatch::Open", "LaunchThread"}) {
    kova::fake::fail(step, 5);
    PeerWatch watch(peer_.Id());
    EXPECT_FALSE(watch.isWatching()) << step;
    EXPECT_FALSE(watch.hasEnded());
    KovaPipe pipe(kName);
    const WatchedWait wait(&watch, &pipe);
    const WatchedWait without(nullptr, &pipe);
  }
}

}  // namespace
