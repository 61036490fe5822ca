// The conversation of a call, step by step.
#include "api/call_frame.h"

#include <functional>
#include <new>
#include <thread>

#include "api/guard.h"
#include "tests/api/client_test.h"
#include "transport/XPipeManager.h"
#include "transport/XPipeSuit.h"

namespace {

using kova::WireImage;
using kova::kit::Bytes;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class CallFrame : public kova::ClientTest {
 protected:
  // An engine that is late: it comes when the client has made its reply pipe, and answers there without having heard
  // anything.
  std::thread LateReply(const WireImage& reply) {
    return std::thread([bytes = reply.bytes()] {
      while (kova::fake::openPipeEnds(kReplyPipe) == 0) std::this_thread::yield();
      KovaPipe pipe(kReplyPipe);
      EXPECT_EQ(pipe.KOVACreateFile(), 0);
      unsigned long written = 0;
      EXPECT_EQ(pipe.WriteData(bytes.data(), static_cast<int>(bytes.size()), &written), 0);
      unsigned long read = 0;
      char byte = 0;
      pipe.ReadData(1, &byte, read);  // Until the client closes.
    });
  }
};

TEST_F(CallFrame, StatusCallWithoutAnEngineRunningTouchesNoPipe) {
  SetKovaRunning(false);
  double value = 5;
  EXPECT_EQ(GetSystemMissingValue(&value), 17);
  EXPECT_EQ(Submit("x", 1), 17);
  EXPECT_FALSE(IsBackendReady());
  EXPECT_EQ(value, 5);
  EXPECT_THAT(kova::fake::calls(), IsEmpty());
}

TEST_F(CallFrame, ValueCallGoesToTheEngineWithoutTheFlag) {
  SetKovaRunning(false);
  StartEngine({.longs = {9}});
  int code = -1;
  EXPECT_EQ(GetVariableCount(&code), 9);
  EXPECT_EQ(code, 0);
}

TEST_F(CallFrame, TriesTwentyTimesAndThenStillWaitsForAReply) {
  std::thread engine = LateReply({.longs = {9}});
  int code = -1;
  EXPECT_EQ(GetVariableCount(&code), 9);
  EXPECT_EQ(code, 0);
  EXPECT_EQ(CallsFor("AwaitServer", kRequestPipe), 20);
  EXPECT_EQ(kova::fake::callCount("SleepMs"), 20u);
  EXPECT_EQ(kova::fake::elapsedMs(), 2000u);
  const auto traced = Traced();
  EXPECT_EQ(std::count(traced.begin(), traced.end(), std::string(kRequestPipe) + " KOVACreateFile error code : 2."),
            20);
  EndConversation();
  engine.join();
}

TEST_F(CallFrame, WithoutAReplyPipeTheWaitEndsAtOnce) {
  kova::fake::fail("CreateMessagePipe", 5);
  int code = -1;
  GetVariableCount(&code);
  EXPECT_EQ(code, 6);
  EXPECT_EQ(KovaLastReceiveStatus(), 6);
  EXPECT_THAT(Traced(), Contains(std::string(kReplyPipe) + " created: error code : 99104."));
}

TEST_F(CallFrame, AnEngineThatComesAtTheTwentiethAttemptIsReached) {
  kova::fake::fail("AwaitServer", 2, 0, 19);
  StartEngine({.longs = {9}});
  int code = -1;
  EXPECT_EQ(GetVariableCount(&code), 9);
  EXPECT_EQ(kova::fake::elapsedMs(), 1900u);
  EXPECT_THAT(Requests(), SizeIs(1));
}

TEST_F(CallFrame, MakesTheReplyPipeOnceAndTracesIt) {
  StartEngine({.longs = {9}});
  GetVariableCount(nullptr);
  GetVariableCount(nullptr);
  const auto traced = Traced();
  EXPECT_EQ(std::count(traced.begin(), traced.end(), std::string(kReplyPipe) + " created: error code : 0."), 1);
  EXPECT_EQ(CallsFor("CreateMessagePipe", kReplyPipe), 1);
  EXPECT_EQ(CallsFor("OpenPipe", kRequestPipe), 1);
  EXPECT_EQ(CallsFor("OpenPipe", kReplyPipe), 1);
  EXPECT_THAT(Requests(), SizeIs(2));
}

TEST_F(CallFrame, OneSendAndOneReceivePerCall) {
  StartEngine({.longs = {9}});
  GetVariableCount(nullptr);
  const unsigned writes = kova::fake::callCount("WriteMessage");
  GetVariableCount(nullptr);
  EXPECT_EQ(kova::fake::callCount("WriteMessage"), writes + 2);  // The client's and the engine's.
}

TEST_F(CallFrame, AFailedSendStillWaitsForAReply) {
  StartEngine({.longs = {9}});
  GetVariableCount(nullptr);
  const unsigned writes = kova::fake::callCount("WriteMessage");
  kova::fake::fail("WriteMessage", 232);
  std::thread end([&] {
    while (kova::fake::callCount("WriteMessage") == writes) std::this_thread::yield();
    kova::fake::losePeer(kReplyPipe);
  });
  int code = -1;
  GetVariableCount(&code);
  end.join();
  EXPECT_EQ(code, 109);
  EXPECT_EQ(KovaLastReceiveStatus(), 109);
}

TEST_F(CallFrame, AnEngineThatDiesEndsTheCallWithTheReadsError) {
  StartEngine([](const Bytes&) { return Answer{{}, true}; });
  int code = -1;
  GetVariableCount(&code);
  EXPECT_EQ(code, 109);
  EXPECT_EQ(KovaLastReceiveStatus(), 109);
}

TEST_F(CallFrame, AReplyCutShortShowsInTheReceiveStatusAlone) {
  WireImage longReply{.longs = std::vector<std::int32_t>(5000, 9)};
  Bytes bytes = longReply.bytes();
  bytes.resize(8192);
  StartEngine([&](const Bytes&) { return Answer{bytes, true}; });
  int code = -1;
  GetVariableCount(&code);
  EXPECT_EQ(code, 0);
  EXPECT_EQ(KovaLastReceiveStatus(), 109);
}

struct BadReply {
  const char* label;
  Bytes bytes;
  int code;
};

TEST_F(CallFrame, BadRepliesEndInCodes) {
  Bytes fiftyOne(51, 0);
  fiftyOne[0] = 51;
  const BadReply rows[] = {
      {"four bytes FF", Bytes(4, '\xff'), 13},
      {"51 bytes", fiftyOne, 13},
      {"three bytes", Bytes(3, 0), 13},
  };
  const BadReply* row = rows;
  StartEngine([&](const Bytes&) { return Answer{row->bytes}; });
  for (; row != std::end(rows); ++row) {
    SCOPED_TRACE(row->label);
    int code = -1;
    GetVariableCount(&code);
    EXPECT_EQ(code, row->code);
    EXPECT_EQ(KovaLastReceiveStatus(), row->code);
  }
}

TEST_F(CallFrame, AWholeReplyClearsTheReceiveStatus) {
  kova::SetLastReceiveStatus(109);
  StartEngine({.error = 55});
  int code = -1;
  GetVariableCount(&code);
  EXPECT_EQ(code, 55);
  EXPECT_EQ(KovaLastReceiveStatus(), 0);
}

TEST_F(CallFrame, TextResultsShareOneBlock) {
  StartEngine([](const Bytes& request) {
    return Answer{WireImage{.texts = {"variable " + std::to_string(request[16])}}.bytes()};
  });
  const char* const first = GetVariableName(1, nullptr);
  EXPECT_STREQ(first, "variable 1");
  const char* const second = GetVariableName(2, nullptr);
  EXPECT_STREQ(second, "variable 2");
  EXPECT_EQ(first, second);
}

TEST_F(CallFrame, AFailedTextCallDropsTheSharedText) {
  StartEngine([](const Bytes& request) { return Answer{WireImage{.error = request[16], .texts = {"text"}}.bytes()}; });
  EXPECT_STREQ(GetVariableName(0, nullptr), "text");
  int code = -1;
  EXPECT_EQ(GetVariableName(55, &code), nullptr);
  EXPECT_EQ(code, 55);
}

struct CountRow {
  const char* label;
  int stated;
  int values;
  int labels;
  int expected;
};

TEST_F(CallFrame, LabelCountsAreWhatIsReallyThere) {
  const CountRow rows[] = {
      {"fewer labels", 3, 3, 2, 2}, {"fewer values", 3, 1, 3, 1},           {"more than stated", 1, 3, 3, 1},
      {"none", 0, 2, 2, 0},         {"negative count", -4, 2, 2, 0},        {"huge count", 0x7fffffff, 2, 2, 2},
      {"no labels", 2, 2, 0, 0},    {"as stated by everybody", 2, 2, 2, 2},
  };
  const CountRow* row = rows;
  StartEngine([&](const Bytes&) {
    const std::vector<std::string> values(static_cast<std::size_t>(row->values), "v");
    const std::vector<std::string> labels(static_cast<std::size_t>(row->labels), "l");
    return Answer{WireImage{.longs = {row->stated},
                            .doubles = std::vector<double>(values.size(), 1.0),
                            .texts = labels,
                            .lists = {values, labels}}
                      .bytes()};
  });
  for (; row != std::end(rows); ++row) {
    SCOPED_TRACE(row->label);
    double* numbers = nullptr;
    char** keys = nullptr;
    char** labels = nullptr;
    int count = -1;
    EXPECT_EQ(GetNValueLabels(0, &numbers, &labels, &count), 0);
    EXPECT_EQ(count, row->expected);
    EXPECT_EQ(FreeNValueLabels(numbers, labels, count), 0);
    labels = nullptr;
    EXPECT_EQ(GetCValueLabels(0, &keys, &labels, &count), 0);
    EXPECT_EQ(count, row->expected);
    EXPECT_EQ(labels != nullptr, row->expected > 0);
    EXPECT_EQ(FreeCValueLabels(keys, labels, count), 0);
  }
}

TEST_F(CallFrame, WithoutAPipeSetTheCallEndsAtOnce) {
  StartEngine({.longs = {9}});
  GetVariableCount(nullptr);
  GetXPipeManager()->getPipeSuit("TEST")->decreaseIndex();
  int code = -1;
  GetVariableCount(&code);
  EXPECT_EQ(code, 99104);
  EXPECT_THAT(Requests(), SizeIs(1));
  GetXPipeManager()->getPipeSuit("TEST")->increaseIndex();
}

TEST_F(CallFrame, NothingThrown) {
  EXPECT_EQ(kova::Guarded([]() -> int { throw std::bad_alloc(); }), 8);
  EXPECT_EQ(kova::Guarded([]() -> int { throw 1; }), 8);
  EXPECT_EQ(kova::Guarded([] { return 4; }), 4);
}

// An argument and a result that find no memory.
struct ThrowingResult {
  void take(const CleXDSmb&) const { throw std::bad_alloc(); }
};
struct Throwing {
  void append(CleXDSmb&) const { throw std::bad_alloc(); }
};

TEST_F(CallFrame, MemoryThatRunsOutEndsInEight) {
  int code = -1;
  EXPECT_EQ(kova::Tell(kova::Command::Submit, Throwing{}), 8);
  EXPECT_EQ(kova::Ask<const char*>(kova::Command::GetVariableName, &code, Throwing{}), nullptr);
  EXPECT_EQ(code, 8);
  StartEngine({.texts = {"text"}});
  EXPECT_EQ(kova::Tell(kova::Command::Submit, ThrowingResult{}), 8);
  code = -1;
  EXPECT_EQ(kova::Ask<const char*>(kova::Command::GetVariableName, &code, ThrowingResult{}), nullptr);
  EXPECT_EQ(code, 8);
}

}  // namespace
