// Events and locks.
#include "platform/os/event.h"

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "platform/os/clock.h"
#include "tests/conformance/seam_fixture.h"

namespace kova::conformance {
namespace {

constexpr std::uint32_t kNoLimit = 0xFFFFFFFF;

class Event {
 public:
  explicit Event(bool manualReset, bool initiallySet = false, const char* name = nullptr) {
    EXPECT_EQ(os::CreateEventObject(manualReset, initiallySet, name, &handle_), os::kSuccess);
  }
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;
  ~Event() { close(); }

  void set() { EXPECT_EQ(os::SetEventObject(handle_), os::kSuccess); }
  void reset() { EXPECT_EQ(os::ResetEventObject(handle_), os::kSuccess); }
  Error wait(std::uint32_t timeoutMs) { return os::WaitEventObject(handle_, timeoutMs); }
  void close() {
    if (handle_ != nullptr) {
      EXPECT_EQ(os::CloseEventObject(handle_), os::kSuccess);
    }
    handle_ = nullptr;
  }

 private:
  os::EventHandle handle_ = nullptr;
};

class Events : public SeamTest {};

TEST_F(Events, AnUnsetOneTimesOut) {
  Event event(false);
  EXPECT_EQ(event.wait(0), os::kWaitTimeout);
  const std::uint64_t before = os::TickMs();
  EXPECT_EQ(event.wait(20), os::kWaitTimeout);
  EXPECT_GE(os::TickMs() - before, 19u);
}

TEST_F(Events, AnAutoResetOneReleasesOneWait) {
  Event event(false);
  event.set();
  event.set();
  EXPECT_EQ(event.wait(kNoLimit), os::kSuccess);
  EXPECT_EQ(event.wait(0), os::kWaitTimeout);
}

TEST_F(Events, AManualResetOneStaysSet) {
  Event event(true);
  event.set();
  EXPECT_EQ(event.wait(kNoLimit), os::kSuccess);
  EXPECT_EQ(event.wait(0), os::kSuccess);
  event.reset();
  EXPECT_EQ(event.wait(0), os::kWaitTimeout);
}

TEST_F(Events, BeginInTheGivenState) {
  Event automatic(false, true);
  EXPECT_EQ(automatic.wait(0), os::kSuccess);
  EXPECT_EQ(automatic.wait(0), os::kWaitTimeout);
  Event manual(true, true);
  EXPECT_EQ(manual.wait(0), os::kSuccess);
  EXPECT_EQ(manual.wait(0), os::kSuccess);
}

TEST_F(Events, WakeAWaitingThread) {
  Event asked(false);
  Event answered(false);
  std::thread answerer([&] {
    EXPECT_EQ(asked.wait(kNoLimit), os::kSuccess);
    answered.set();
  });
  asked.set();
  EXPECT_EQ(answered.wait(kNoLimit), os::kSuccess);
  answerer.join();
}

TEST_F(Events, AManualResetOneWakesAllAnAutoResetOneOneByOne) {
  for (const bool manualReset : {true, false}) {
    Event event(manualReset);
    std::vector<std::thread> waiters;
    for (int i = 0; i < 4; ++i) {
      waiters.emplace_back([&] {
        EXPECT_EQ(event.wait(kNoLimit), os::kSuccess);
        if (!manualReset) event.set();  // Hands it on to the next.
      });
    }
    event.set();
    for (std::thread& waiter : waiters) waiter.join();
  }
}

TEST_F(Events, OfOneNameAreOne) {
  const std::string name = "kova_conformance_event_" + kit::scratchName().substr(9);
  Event first(true, false, name.c_str());
  Event second(false, true, name.c_str());
  EXPECT_EQ(first.wait(0), os::kWaitTimeout) << "the state is kept";
  second.set();
  EXPECT_EQ(first.wait(0), os::kSuccess);
  EXPECT_EQ(first.wait(0), os::kSuccess) << "the flags of the second are ignored";
  first.close();
  EXPECT_EQ(second.wait(0), os::kSuccess) << "lives as long as one handle does";
  second.close();
  Event fresh(true, false, name.c_str());
  EXPECT_EQ(fresh.wait(0), os::kWaitTimeout);
}

TEST_F(Events, NoHandleGives6) {
  EXPECT_EQ(os::SetEventObject(nullptr), os::kInvalidHandle);
  EXPECT_EQ(os::ResetEventObject(nullptr), os::kInvalidHandle);
  EXPECT_EQ(os::WaitEventObject(nullptr, 0), os::kInvalidHandle);
  EXPECT_EQ(os::CloseEventObject(nullptr), os::kInvalidHandle);
}

class Locks : public SeamTest {
 protected:
  Locks() { EXPECT_EQ(os::CreateLock(&lock_), os::kSuccess); }
  ~Locks() override { os::CloseLock(lock_); }

  bool anotherThreadGetsIt() {
    bool got = false;
    std::thread([&] {
      got = os::TryEnterLock(lock_);
      if (got) os::LeaveLock(lock_);
    }).join();
    return got;
  }

  os::LockHandle lock_ = nullptr;
};

TEST_F(Locks, AreRecursive) {
  os::EnterLock(lock_);
  os::EnterLock(lock_);
  EXPECT_TRUE(os::TryEnterLock(lock_));
  os::LeaveLock(lock_);
  os::LeaveLock(lock_);
  EXPECT_FALSE(anotherThreadGetsIt()) << "entered three times, left twice";
  os::LeaveLock(lock_);
  EXPECT_TRUE(anotherThreadGetsIt());
}

TEST_F(Locks, KeepOtherThreadsOut) {
  constexpr int kRounds = 10000;
  int counter = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int round = 0; round < kRounds; ++round) {
        os::EnterLock(lock_);
        ++counter;
        os::LeaveLock(lock_);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(counter, 4 * kRounds);
}

}  // namespace
}  // namespace kova::conformance
