// What the platform classes do when the platform fails them, and how long they wait, in virtual time.
#include <gtest/gtest.h>

#include <atomic>

#include "platform/PlugInCriticalSection.h"
#include "platform/PlugInSynchEvent.h"
#include "platform/PlugInThreadHot.h"
#include "tests/os_fake/os_fake.h"

namespace {

using kova::fake::callCount;
using kova::fake::elapsedMs;
using kova::fake::fail;
using kova::os::kAccessDenied;
using kova::os::kNotEnoughMemory;

constexpr unsigned kNoLimit = 0xFFFFFFFF;

class PlatformFailures : public testing::Test {
 protected:
  PlatformFailures() { kova::fake::reset(); }
};

// Runs until its event is signalled, or for that time at most.
class Waiter : public PlugInThreadHot {
 public:
  explicit Waiter(std::atomic<bool>& ended, unsigned limitMs = kNoLimit) : ended_(ended), limitMs_(limitMs) {}
  ~Waiter() override { joinThread(); }
  PlugInSynchEvent stop{true, false, nullptr};

 protected:
  unsigned int Run() override {
    stop.WaitForSignal(limitMs_);
    ended_ = true;
    return 0;
  }

 private:
  std::atomic<bool>& ended_;
  unsigned limitMs_;
};

TEST_F(PlatformFailures, SubclassThatJoinsOutlivesItsThread) {
  std::atomic<bool> ended{false};
  {
    Waiter worker(ended, 5000);
    ASSERT_TRUE(worker.Start());
  }
  EXPECT_TRUE(ended);
  EXPECT_EQ(elapsedMs(), 5000u);
}

TEST_F(PlatformFailures, PlainWaitTakesThreeSeconds) {
  std::atomic<bool> ended{false};
  Waiter worker(ended);
  ASSERT_TRUE(worker.Start());
  EXPECT_TRUE(worker.WaitForStop());
  EXPECT_EQ(elapsedMs(), 3000u);
  EXPECT_FALSE(ended);
  EXPECT_FALSE(worker.HasThread());
  worker.stop.Signal();
}

TEST_F(PlatformFailures, DestructorGivesUpAfterThreeSeconds) {
  {
    PlugInThreadHot attached;
    EXPECT_TRUE(attached.Attach());
  }
  EXPECT_EQ(elapsedMs(), 3000u);
  EXPECT_EQ(callCount("WaitThread"), 1u);
}

TEST_F(PlatformFailures, AttachedObject) {
  PlugInThreadHot thread;
  thread.SetAutoDelete(true);
  EXPECT_TRUE(thread.Attach());
  EXPECT_TRUE(thread.HasThread());
  EXPECT_FALSE(thread.IsAutoDelete());
  EXPECT_FALSE(thread.Attach());
  EXPECT_FALSE(thread.Start());
  EXPECT_TRUE(thread.WaitForStop(10));
  EXPECT_FALSE(thread.HasThread());
}

TEST_F(PlatformFailures, JoinOfAnAttachedObjectReturnsAtOnce) {
  class Attached : public PlugInThreadHot {
   public:
    ~Attached() override { joinThread(); }
  };
  fail("WaitThread", kAccessDenied, 0, ~0u);
  Attached thread;
  EXPECT_TRUE(thread.Attach());
  EXPECT_EQ(callCount("WaitThread"), 0u);
}

TEST_F(PlatformFailures, StartWithoutAThreadLeavesTheObjectIdle) {
  fail("LaunchThread", kNotEnoughMemory);
  PlugInThreadHot thread;
  EXPECT_FALSE(thread.Start());
  EXPECT_FALSE(thread.HasThread());
  EXPECT_TRUE(thread.Start());
  EXPECT_TRUE(thread.WaitForStop());
}

TEST_F(PlatformFailures, WaitThatFailsIsTheOnlyOneToSayNo) {
  std::atomic<bool> ended{false};
  Waiter worker(ended);
  ASSERT_TRUE(worker.Start());
  fail("WaitThread", kAccessDenied);
  EXPECT_FALSE(worker.WaitForStop(10));
  EXPECT_TRUE(worker.HasThread());
  worker.stop.Signal();
}

TEST_F(PlatformFailures, MultipleWaitThatFails) {
  std::atomic<bool> ended{false};
  Waiter worker(ended);
  ASSERT_TRUE(worker.Start());
  PlugInThreadHot* threads[] = {&worker};
  fail("WaitThreads", kAccessDenied);
  EXPECT_FALSE(PlugInThreadHot::WaitForMultipleThreads(threads, 1));
  worker.stop.Signal();
}

TEST_F(PlatformFailures, TerminateThatFailsChangesNothing) {
  std::atomic<bool> ended{false};
  Waiter worker(ended);
  ASSERT_TRUE(worker.Start());
  fail("KillThread", kAccessDenied);
  EXPECT_FALSE(worker.Terminate());
  EXPECT_TRUE(worker.HasThread());
  worker.stop.Signal();
}

TEST_F(PlatformFailures, SecondStartClosesTheFirstHandle) {
  {
    PlugInThreadHot thread;
    ASSERT_TRUE(thread.Start());
    ASSERT_TRUE(thread.WaitForStop());
    EXPECT_EQ(callCount("CloseThread"), 0u);
    ASSERT_TRUE(thread.Start());
    EXPECT_EQ(callCount("CloseThread"), 1u);
    ASSERT_TRUE(thread.WaitForStop());
  }
  EXPECT_EQ(callCount("CloseThread"), 2u);
}

TEST_F(PlatformFailures, EventThatCouldNotBeMadeIgnoresEverything) {
  fail("CreateEventObject", kNotEnoughMemory);
  PlugInSynchEvent event(false, true, nullptr);
  EXPECT_EQ(event.Handle(), nullptr);
  event.Signal();
  event.Unsignal();
  event.WaitForSignal();
  event.WaitForSignal(1000);
  EXPECT_EQ(elapsedMs(), 0u);
  EXPECT_EQ(callCount("SetEventObject") + callCount("ResetEventObject") + callCount("WaitEventObject"), 0u);
}

TEST_F(PlatformFailures, WaitsLastAsLongAsTheyAreTold) {
  PlugInSynchEvent event(false, false, nullptr);
  event.WaitForSignal(1234);
  EXPECT_EQ(elapsedMs(), 1234u);
  event.WaitForSignal(0);
  EXPECT_EQ(elapsedMs(), 1234u);
}

TEST_F(PlatformFailures, LockThatCouldNotBeMadeDoesNothing) {
  fail("CreateLock", kNotEnoughMemory);
  PlugInCriticalSection section;
  section.Acquire();
  section.Release();
  const PlugInCriticalSection::Lock guard(&section);
  EXPECT_EQ(callCount("CloseLock"), 0u);
}

}  // namespace
