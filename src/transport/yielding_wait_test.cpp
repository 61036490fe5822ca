#include "transport/yielding_wait.h"

#include "tests/transport/traced_test.h"
#include "transport/KovaPipe.h"

namespace {

using kova::fake::callCount;

struct LimitCase {
  const char* label;
  const char* text;
  unsigned limit;
};

class YieldLimit : public testing::TestWithParam<LimitCase> {};

TEST_P(YieldLimit, IsRead) { EXPECT_EQ(kova::ParseYieldLimit(GetParam().text), GetParam().limit); }

const LimitCase kLimits[] = {
    {"unset", nullptr, 20},
    {"empty", "", 20},
    {"zero", "0", 0},
    {"some", "35", 35},
    {"largest", "1000", 1000},
    {"aboveTheLargest", "1001", 1000},
    {"overflow", "99999999999999999999", 1000},
    {"negative", "-1", 20},
    {"word", "fast", 20},
    {"unit", "20us", 20},
    {"blank", " 5", 20},
};
INSTANTIATE_TEST_SUITE_P(Texts, YieldLimit, testing::ValuesIn(kLimits),
                         [](const auto& row) { return std::string(row.param.label); });

class YieldingWait : public kova::TracedTest {
 protected:
  YieldingWait() {
    server_.CreatePipe();
    client_.KOVACreateFile();
  }

  int Read() {
    char area[8];
    unsigned long read = 0;
    return server_.ReadData(sizeof area, area, read);
  }

  KovaPipe server_{"\\\\.\\pipe\\yield"};
  KovaPipe client_{"\\\\.\\pipe\\yield"};
};

TEST_F(YieldingWait, LimitIsBounded) {
  kova::SetYieldLimitUs(5000);
  EXPECT_EQ(kova::YieldLimitUs(), 1000u);
}

TEST_F(YieldingWait, WithoutALimitIsOneBlockingRead) {
  client_.WriteData("x", 1, nullptr);
  EXPECT_EQ(Read(), 0);
  EXPECT_EQ(callCount("ReadMessage"), 1u);
  EXPECT_EQ(callCount("TryReadMessage"), 0u);
  EXPECT_EQ(callCount("TickUs"), 0u);
}

TEST_F(YieldingWait, AMessageThatIsThereIsTakenAtTheFirstLook) {
  kova::SetYieldLimitUs(20);
  client_.WriteData("x", 1, nullptr);
  EXPECT_EQ(Read(), 0);
  EXPECT_EQ(callCount("TryReadMessage"), 1u);
  EXPECT_EQ(callCount("YieldThread"), 0u);
  EXPECT_EQ(callCount("ReadMessage"), 0u);
}

TEST_F(YieldingWait, BlocksAfterTheLimit) {
  kova::SetYieldLimitUs(20);
  kova::fake::fail("ReadMessage", 995);
  EXPECT_EQ(Read(), 995);
  EXPECT_EQ(callCount("ReadMessage"), 1u);
  EXPECT_EQ(callCount("YieldThread"), 20u) << "each yield takes a microsecond of the virtual time";
}

TEST(YieldPacer, LetsEveryWaitLookAtFirst) {
  kova::YieldPacer pacer;
  for (int i = 0; i < 100; ++i) {
    EXPECT_TRUE(pacer.mayLook());
    pacer.noteYield(kova::YieldPacer::kLongYieldUs);
  }
}

// How many waits block after a yield that took long.
unsigned blockedAfterALongYield(kova::YieldPacer& pacer) {
  pacer.noteYield(kova::YieldPacer::kLongYieldUs + 1);
  unsigned blocked = 0;
  while (!pacer.mayLook()) ++blocked;
  return blocked;
}

TEST(YieldPacer, BlocksTwiceAsLongAfterEachLongYield) {
  kova::YieldPacer pacer;
  EXPECT_EQ(blockedAfterALongYield(pacer), 64u);
  EXPECT_EQ(blockedAfterALongYield(pacer), 128u);
  for (int i = 0; i < 20; ++i) blockedAfterALongYield(pacer);
  EXPECT_EQ(blockedAfterALongYield(pacer), 65536u);
}

TEST(YieldPacer, WaitsThatPassWellShortenThePause) {
  kova::YieldPacer pacer;
  blockedAfterALongYield(pacer);
  for (int i = 0; i < 10; ++i) pacer.noteYield(5);
  EXPECT_EQ(blockedAfterALongYield(pacer), 118u);
  for (int i = 0; i < 1000; ++i) pacer.noteYield(5);
  EXPECT_EQ(blockedAfterALongYield(pacer), 64u);
}

TEST_F(YieldingWait, AnErrorEndsTheLooks) {
  kova::SetYieldLimitUs(20);
  client_.ClosePipe();
  EXPECT_EQ(Read(), 109);
  EXPECT_EQ(callCount("TryReadMessage"), 1u);
  EXPECT_EQ(callCount("ReadMessage"), 0u);
}

TEST_F(YieldingWait, APartIsTakenToo) {
  kova::SetYieldLimitUs(20);
  client_.WriteData("123456789", 9, nullptr);
  EXPECT_EQ(Read(), 234);
  EXPECT_EQ(Read(), 0);
}

}  // namespace
