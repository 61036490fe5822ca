#include "suite_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "platform/os/clock.h"
#include "tests/kit/kit.h"
#include "transport/KovaPipe.h"
#include "transport/MonitorThread.h"

namespace kova::program {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kNoWords = "; words to the runtime: none heard, to the engine: none heard";

class SuiteViewTest : public testing::Test {
 protected:
  const std::string prefix_ = kit::scratchName();
  SuiteView view_{prefix_.substr(prefix_.find_last_of('\\') + 1)};

  // Waits until the state says so; how it came out.
  std::string stateWith(const std::string& part) const {
    std::string state = view_.state();
    for (int i = 0; i < 10000 && state.find(part) == std::string::npos; ++i) {
      os::SleepMs(1);
      state = view_.state();
    }
    return state;
  }
};

TEST_F(SuiteViewTest, ASuiteThatIsNotThereIsNotSeen) {
  EXPECT_EQ(view_.state(), std::string("engine not seen, runtime not seen") + kNoWords);
}

TEST_F(SuiteViewTest, EachPipeTellsOfTheSideThatMadeIt) {
  std::vector<std::unique_ptr<KovaPipe>> pipes;
  for (const char* suffix :
       {"_s", "_c", "P2C", "C2P", "0syntax", "0syntaxresult", "0xdapi", "0xdapiresult", "1xdapi"}) {
    pipes.push_back(std::make_unique<KovaPipe>(prefix_ + suffix));
    ASSERT_EQ(pipes.back()->CreatePipe(), 0);
  }
  EXPECT_EQ(view_.state(),
            "engine alive (_c C2P 0syntaxresult 0xdapi 1xdapi), runtime alive (_s P2C 0syntax 0xdapiresult)" +
                std::string(kNoWords));
  pipes.resize(1);
  EXPECT_THAT(view_.state(), StartsWith("engine not seen, runtime alive (_s);"));
}

TEST_F(SuiteViewTest, TheLookTakesNobodysPlace) {
  KovaPipe server(prefix_ + "_s");
  ASSERT_EQ(server.CreatePipe(), 0);
  for (int i = 0; i < 3; ++i) EXPECT_THAT(view_.state(), HasSubstr("runtime alive (_s)"));
  KovaPipe client(prefix_ + "_s");
  ASSERT_EQ(client.KOVACreateFile(), 0);
  EXPECT_EQ(server.ConnectPipe(), 535);
  for (int i = 0; i < 3; ++i) EXPECT_THAT(view_.state(), HasSubstr("runtime alive (_s)")) << "taken is there too";
  char area[8];
  unsigned long count = 0;
  ASSERT_EQ(client.WriteData("x", 1, nullptr), 0);
  EXPECT_EQ(server.ReadData(8, area, count), 0);
}

TEST_F(SuiteViewTest, WordsArePassedOnByTheMonitors) {
  ASSERT_EQ(view_.start(), os::kSuccess);
  MonitorThread toRuntime(prefix_ + "P2C", MonitorThread::kReader);
  MonitorThread toEngine(prefix_ + "C2P", MonitorThread::kReader);
  ASSERT_TRUE(toRuntime.Start() && toEngine.Start());
  MonitorThread engine(prefix_ + "P2C", MonitorThread::kWriter);
  ASSERT_TRUE(engine.Start());
  EXPECT_THAT(stateWith("alive, to"), EndsWith("; words to the runtime: alive, to the engine: none heard"));
  engine.stop();
  EXPECT_THAT(stateWith("goodbye"), HasSubstr("words to the runtime: goodbye, to the engine: none heard"));
  {
    KovaPipe runtime(prefix_ + "C2P");
    ASSERT_EQ(runtime.KOVACreateFile(), 0);
  }
  EXPECT_THAT(stateWith("vanished"), EndsWith("; words to the runtime: goodbye, to the engine: vanished"));
  EXPECT_THAT(stateWith("goodbye 2 s ago"), HasSubstr("words to the runtime: goodbye 2 s ago"));
}

TEST_F(SuiteViewTest, OneAtATimeListens) {
  ASSERT_EQ(view_.start(), os::kSuccess);
  SuiteView second(prefix_.substr(prefix_.find_last_of('\\') + 1));
  EXPECT_EQ(second.start(), os::kPipeBusy);
}

TEST_F(SuiteViewTest, WhatIsNoWordIsPassedOver) {
  ASSERT_EQ(view_.start(), os::kSuccess);
  for (const std::string& bytes :
       {std::string("abc"), std::string(8, 'x'), std::string(100, 'x'), std::string("\1\0\0\0", 4)}) {
    KovaPipe teller(prefix_ + "P2C_watch");
    while (teller.TryCreateFile() != 0) os::SleepMs(1);
    ASSERT_EQ(teller.WriteData(bytes.data(), static_cast<int>(bytes.size()), nullptr), 0);
  }
  EXPECT_THAT(stateWith("alive"), HasSubstr("words to the runtime: alive"));
}

}  // namespace
}  // namespace kova::program
