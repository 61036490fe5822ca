#include "transport/DXCmdDispatcher.h"

#include <thread>
#include <utility>

#include "message/CleXDSmb.h"
#include "tests/transport/traced_test.h"

namespace {

using Key = DXCmdDispatcher::CmdKey;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string kName = "\\\\.\\pipe\\1a2bPYTHON";

// Keeps what it was asked and answers with the low byte of the key.
class KeepingVisitor : public DXCmdDispatcherVisitor {
 public:
  int cmdDispatcher(Key key, const std::vector<std::string>& args) override {
    commands.emplace_back(key, args);
    return key & 0xFF;
  }
  std::vector<std::pair<int, std::vector<std::string>>> commands;
};

class DXCmdDispatcherTest : public kova::TracedTest {};

TEST_F(DXCmdDispatcherTest, KeysAreTheWires) {
  EXPECT_EQ(DXCmdDispatcher::kStopDX, 1146667010);
  EXPECT_EQ(DXCmdDispatcher::kSetupDXRun, 1146667011);
  EXPECT_EQ(DXCmdDispatcher::kExitDxRun, 1146667012);
  EXPECT_EQ(DXCmdDispatcher::kRunDX, 1146667013);
  EXPECT_EQ(DXCmdDispatcher::kTestCmdst, 1146667263);
  EXPECT_EQ(kova::kUnknownControlCommand, 99119);
}

TEST_F(DXCmdDispatcherTest, TheRuntimesSideCreatesTheServersPipe) {
  const DXCmdDispatcher runtime(kName, true);
  EXPECT_EQ(kova::fake::openPipeEnds((kName + "_s").c_str()), 1u);
  EXPECT_EQ(kova::fake::openPipeEnds((kName + "_c").c_str()), 0u);
  const DXCmdDispatcher engine(kName, false);
  EXPECT_EQ(kova::fake::openPipeEnds((kName + "_c").c_str()), 1u);
}

TEST_F(DXCmdDispatcherTest, CommandsReachTheVisitorAndTheirResultsComeBack) {
  DXCmdDispatcher runtime(kName, true);
  DXCmdDispatcher engine(kName, false);
  KeepingVisitor visitor;
  int received = -1;
  std::thread other([&] {
    EXPECT_THAT(runtime.connectPeer(), testing::AnyOf(0, 535));
    received = runtime.receiveCmd(&visitor);
  });
  EXPECT_EQ(engine.connectPeer(), 0);
  Traced();
  EXPECT_EQ(engine.sendCmd(DXCmdDispatcher::kTestCmdst), 0xFF);
  EXPECT_EQ(engine.sendCmd(DXCmdDispatcher::kSetupDXRun, {"one", "", "three"}), 3);
  EXPECT_EQ(engine.sendCmd(static_cast<Key>(-2)), 0xFE);
  EXPECT_EQ(engine.sendCmd(DXCmdDispatcher::kStopDX), 0) << "whatever the handler gave";
  other.join();
  EXPECT_EQ(received, 0);
  using Args = std::vector<std::string>;
  EXPECT_THAT(visitor.commands,
              ElementsAre(std::pair(1146667263, Args{}), std::pair(1146667011, Args{"one", "", "three"}),
                          std::pair(-2, Args{}), std::pair(1146667010, Args{})));
  std::vector<std::string> traced = Traced();
  std::erase_if(traced, [](const std::string& line) { return !line.starts_with("cmd ") && line != "kStopDX"; });
  EXPECT_THAT(traced, ElementsAre("cmd NO: 1146667263", "cmd return: 255", "cmd NO: 1146667011", "cmd return: 3",
                                  "cmd NO: -2", "cmd return: 254", "cmd NO: 1146667010", "kStopDX", "cmd return: 0"));
}

TEST_F(DXCmdDispatcherTest, WithoutAPeerACommandGivesTheSendsCode) {
  DXCmdDispatcher engine(kName, false);
  EXPECT_EQ(engine.sendCmd(DXCmdDispatcher::kTestCmdst), 99104);
  EXPECT_EQ(Traced().back(), "cmd return: 99104");
}

TEST_F(DXCmdDispatcherTest, AHandlersMinus1EndsTheLoopWhateverTheKey) {
  class Ending : public DXCmdDispatcherVisitor {
    int cmdDispatcher(Key, const std::vector<std::string>&) override { return -1; }
  };
  DXCmdDispatcher runtime(kName, true);
  DXCmdDispatcher engine(kName, false);
  std::thread other([&] {
    Ending visitor;
    runtime.connectPeer();
    EXPECT_EQ(runtime.receiveCmd(&visitor), 0);
  });
  EXPECT_EQ(engine.connectPeer(), 0);
  EXPECT_EQ(engine.sendCmd(static_cast<Key>(0)), -1);
  other.join();
}

TEST_F(DXCmdDispatcherTest, CancelReleasesAThreadThatWaits) {
  DXCmdDispatcher engine(kName, false);
  std::thread waiter([&] { engine.connectPeer(); });
  engine.cancel();
  waiter.join();
  EXPECT_EQ(engine.sendCmd(DXCmdDispatcher::kTestCmdst) == 0, false);
}

class VisitorTest : public kova::TracedTest {
 protected:
  int visit(DXCmdDispatcherVisitor& visitor) { return visitor.VisitReceiver(request_, reply_); }
  CleXDSmb request_;
  CleXDSmb reply_;
};

TEST_F(VisitorTest, TheBaseAnswers0) {
  DXCmdDispatcherVisitor base;
  request_.SetLong(DXCmdDispatcher::kRunDX);
  EXPECT_EQ(visit(base), 0);
  EXPECT_EQ(reply_.GetErrorCode(), 0);
}

TEST_F(VisitorTest, AResultIsTheRepliesCodeToo) {
  KeepingVisitor visitor;
  request_.SetLong(DXCmdDispatcher::kRunDX);
  request_.SetString("arg");
  EXPECT_EQ(visit(visitor), 5);
  EXPECT_EQ(reply_.GetErrorCode(), 5);
  EXPECT_EQ(visitor.commands.front().second, std::vector<std::string>{"arg"});
  EXPECT_THAT(Traced(), IsEmpty());
}

TEST_F(VisitorTest, StopIsAnswered0AndEndsTheLoop) {
  KeepingVisitor visitor;
  request_.SetLong(DXCmdDispatcher::kStopDX);
  reply_.SetErrorCode(7);
  EXPECT_EQ(visit(visitor), -1);
  EXPECT_EQ(reply_.GetErrorCode(), 0);
  EXPECT_EQ(visitor.commands.size(), 1u);
  EXPECT_THAT(Traced(), ElementsAre("kStopDX"));
}

TEST_F(VisitorTest, ARequestWithoutExactlyOneNumberIsNotHandled) {
  KeepingVisitor visitor;
  reply_.SetErrorCode(7);
  EXPECT_EQ(visit(visitor), 0);
  request_.SetLong(DXCmdDispatcher::kRunDX);
  request_.SetLong(DXCmdDispatcher::kRunDX);
  EXPECT_EQ(visit(visitor), 0);
  EXPECT_EQ(reply_.GetErrorCode(), 7) << "untouched";
  EXPECT_THAT(visitor.commands, IsEmpty());
}

}  // namespace
