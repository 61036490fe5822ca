#include "host/StatisticsX.h"

#include "tests/transport/traced_test.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

int post(const char*, int) { return 0; }

// A runtime that notes what it is asked, and answers what the test tells.
class Host : public StatisticsX {
 public:
  explicit Host(bool kovaDrive) : StatisticsX(kovaDrive) {}

  int answer = 0;
  bool wasRunning = false;
  std::vector<std::string> asked;

 protected:
  int note(const char* what) {
    asked.emplace_back(what);
    wasRunning = isRunning();
    return answer;
  }
  int x_init_embedded_x(int argc, char**) override { return note(argc == 2 ? "init 2" : "init"); }
  int x_execute_x(char* syntax) override { return note(syntax); }
  int x_stop_embedded_x() override { return note("stop"); }
  int x_pre_action() override { return note("pre"); }
  int x_post_action() override { return note("post"); }
  void x_setup_dxcallback(void* callback) override { note(callback ? "callback" : "no callback"); }
  void x_set_post_kova_output(PostOutput function) override { note(function == post ? "output" : "other output"); }
  int x_get_library_lock() override { return note("lock"); }
  int x_release_library_lock() override { return note("unlock"); }
};

// One that leaves all that may be left.
class PlainHost : public StatisticsX {
 public:
  PlainHost() : StatisticsX(true) {}

 protected:
  int x_init_embedded_x(int, char**) override { return 0; }
  int x_execute_x(char*) override { return 0; }
  int x_stop_embedded_x() override { return 0; }
  int x_pre_action() override { return 0; }
  int x_post_action() override { return 0; }
};

class StatisticsXTest : public kova::TracedTest {
 protected:
  char syntax_[4] = "run";
  Host host_{true};
};

TEST_F(StatisticsXTest, BeginsWithAllFlagsClear) {
  EXPECT_TRUE(host_.isKovaDrive());
  EXPECT_FALSE(Host(false).isKovaDrive());
  EXPECT_FALSE(host_.isIntialized());
  EXPECT_FALSE(host_.isRunning());
  EXPECT_FALSE(host_.hasLock());
  EXPECT_FALSE(host_.isR());
}

TEST_F(StatisticsXTest, RefusesToWorkUninitialised) {
  EXPECT_EQ(host_.execute_x(syntax_), 99115);
  EXPECT_EQ(host_.pre_action(), 99115);
  EXPECT_EQ(host_.post_action(), 99115);
  EXPECT_EQ(host_.stop_embedded_x(), 0);
  EXPECT_FALSE(host_.isRunning());
  EXPECT_THAT(host_.asked, IsEmpty());
  EXPECT_THAT(
      Traced(),
      ElementsAre("StatisticsX::execute_x error code : 99115.", "StatisticsX::pre_action error code : 99115.",
                  "StatisticsX::post_action error code : 99115.", "StatisticsX::stop_embedded_x error code : 0."));
}

TEST_F(StatisticsXTest, RunsThroughItsLife) {
  EXPECT_EQ(host_.init_embedded_x(2, nullptr), 0);
  EXPECT_TRUE(host_.isIntialized());
  EXPECT_EQ(host_.pre_action(), 0);
  host_.answer = 4;
  EXPECT_EQ(host_.execute_x(syntax_), 4);
  EXPECT_TRUE(host_.wasRunning);
  EXPECT_FALSE(host_.isRunning());
  EXPECT_EQ(host_.post_action(), 4);
  EXPECT_EQ(host_.stop_embedded_x(), 4);
  EXPECT_FALSE(host_.isIntialized());
  EXPECT_THAT(host_.asked, ElementsAre("init 2", "pre", "run", "post", "stop"));
  EXPECT_THAT(Traced(),
              ElementsAre("StatisticsX::init_embedded_x error code : 0.", "StatisticsX::pre_action error code : 0.",
                          "StatisticsX::execute_x error code : 4.", "StatisticsX::post_action error code : 4.",
                          "StatisticsX::stop_embedded_x error code : 4."));
}

TEST_F(StatisticsXTest, AFailedStartLeavesItUninitialised) {
  host_.answer = 99114;
  EXPECT_EQ(host_.init_embedded_x(0, nullptr), 99114);
  EXPECT_FALSE(host_.isIntialized());
  EXPECT_THAT(Traced(), ElementsAre("StatisticsX::init_embedded_x error code : 99114."));
}

TEST_F(StatisticsXTest, WithoutDrivingNothingIsStartedOrStopped) {
  Host host(false);
  host.answer = 5;
  EXPECT_EQ(host.init_embedded_x(0, nullptr), 0);
  EXPECT_TRUE(host.isIntialized());
  EXPECT_EQ(host.stop_embedded_x(), 0);
  EXPECT_FALSE(host.isIntialized());
  EXPECT_THAT(host.asked, IsEmpty());
}

TEST_F(StatisticsXTest, ASecondStartDoesNothing) {
  host_.init_embedded_x(0, nullptr);
  Traced();
  EXPECT_EQ(host_.init_embedded_x(0, nullptr), 0);
  EXPECT_THAT(Traced(), IsEmpty());
  EXPECT_THAT(host_.asked, ElementsAre("init"));
}

TEST_F(StatisticsXTest, RIsStartedAgain) {
  host_.setR(true);
  EXPECT_EQ(host_.init_embedded_x(0, nullptr), 0);
  EXPECT_THAT(Traced(), ElementsAre("StatisticsX::init_embedded_R", "StatisticsX::init_embedded_x error code : 0."));
  host_.answer = 3;
  EXPECT_EQ(host_.init_embedded_x(0, nullptr), 3);
  EXPECT_FALSE(host_.isIntialized());
  EXPECT_THAT(Traced(), ElementsAre("StatisticsX::init_embedded_R", "StatisticsX::init_embedded_x error code : 3."));
}

TEST_F(StatisticsXTest, HandsOnCallbackAndOutputInEveryState) {
  int table = 0;
  host_.setup_dxcallback(&table);
  host_.set_post_kova_output(post);
  EXPECT_THAT(host_.asked, ElementsAre("callback", "output"));
  EXPECT_THAT(Traced(), ElementsAre("StatisticsX::setup_dxcallback", "StatisticsX::x_set_post_kova_output"));
}

TEST_F(StatisticsXTest, TheLockIsTheHostsOwn) {
  host_.answer = 6;
  EXPECT_EQ(host_.get_library_lock(), 6);
  EXPECT_FALSE(host_.hasLock());
  EXPECT_EQ(host_.release_library_lock(), 6);
  host_.setLock(true);
  EXPECT_TRUE(host_.hasLock());
  EXPECT_THAT(host_.asked, ElementsAre("lock", "unlock"));
  EXPECT_THAT(Traced(), IsEmpty());
}

TEST_F(StatisticsXTest, WhatAHostMayLeaveDoesNothing) {
  PlainHost host;
  host.setup_dxcallback(nullptr);
  host.set_post_kova_output(nullptr);
  EXPECT_EQ(host.get_library_lock(), 0);
  EXPECT_EQ(host.release_library_lock(), 0);
  host.setIntialized(true);
  EXPECT_TRUE(host.isIntialized());
}

// Engines built elsewhere call through the slots, so their order is a part of the interface. The first slots are the
// two of the destructor.
TEST_F(StatisticsXTest, SlotsStandInTheirOrder) {
  using Simple = int (*)(StatisticsX*);
  host_.init_embedded_x(0, nullptr);
  host_.asked.clear();
  void** const slots = *reinterpret_cast<void***>(static_cast<StatisticsX*>(&host_));
  for (const int slot : {4, 5, 6, 9, 10}) reinterpret_cast<Simple>(slots[slot])(&host_);
  reinterpret_cast<int (*)(StatisticsX*, int, char**)>(slots[2])(&host_, 2, nullptr);
  reinterpret_cast<int (*)(StatisticsX*, char*)>(slots[3])(&host_, syntax_);
  reinterpret_cast<void (*)(StatisticsX*, void*)>(slots[7])(&host_, this);
  reinterpret_cast<void (*)(StatisticsX*, StatisticsX::PostOutput)>(slots[8])(&host_, post);
  EXPECT_THAT(host_.asked, ElementsAre("stop", "pre", "post", "lock", "unlock", "init 2", "run", "callback", "output"));
}

}  // namespace
