#include "platform/PlugInCriticalSectionExt.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "platform/os/thread.h"

namespace {

class OpenSection : public PlugInCriticalSectionExt {
 public:
  using PlugInCriticalSectionExt::extDepth;
  using PlugInCriticalSectionExt::extOwner;
};

template <class Work>
void onAnotherThread(Work work) {
  std::thread(work).join();
}

TEST(PlugInCriticalSectionExt, KnowsItsHolder) {
  OpenSection section;
  EXPECT_FALSE(section.IsHeld());
  section.Acquire();
  section.Acquire();
  EXPECT_EQ(section.extOwner(), kova::os::CurrentThreadId());
  EXPECT_EQ(section.extDepth(), 2);
  onAnotherThread([&] { EXPECT_TRUE(section.IsHeld()); });
  section.Release();
  EXPECT_TRUE(section.IsHeld());
  EXPECT_EQ(section.extOwner(), kova::os::CurrentThreadId());
  section.Release();
  EXPECT_FALSE(section.IsHeld());
  EXPECT_EQ(section.extOwner(), 0u);
  EXPECT_EQ(section.extDepth(), 0);
}

TEST(PlugInCriticalSectionExt, TryFailsAtOnceWhileAnotherThreadHoldsIt) {
  OpenSection section;
  section.Acquire();
  onAnotherThread([&] {
    EXPECT_FALSE(section.TryAcquire());
    const PlugInCriticalSectionExt::TryLock guard(&section);
    EXPECT_FALSE(guard.Succeeded());
  });
  EXPECT_EQ(section.extDepth(), 1) << "a guard without the lock releases nothing";
  section.Release();
  onAnotherThread([&] {
    EXPECT_TRUE(section.TryAcquire());
    section.Release();
  });
}

TEST(PlugInCriticalSectionExt, TryByTheHolderNeedsItsOwnRelease) {
  OpenSection section;
  EXPECT_TRUE(section.TryAcquire());
  EXPECT_TRUE(section.TryAcquire());
  EXPECT_EQ(section.extDepth(), 2);
  section.Release();
  onAnotherThread([&] { EXPECT_FALSE(section.TryAcquire()); });
  section.Release();
  EXPECT_FALSE(section.IsHeld());
}

TEST(PlugInCriticalSectionExt, TryGuardReleasesWhatItGot) {
  OpenSection section;
  {
    const PlugInCriticalSectionExt::TryLock guard(&section);
    EXPECT_TRUE(guard.Succeeded());
    EXPECT_TRUE(section.IsHeld());
  }
  EXPECT_FALSE(section.IsHeld());
}

TEST(PlugInCriticalSectionExt, PlainGuardTakesTheWholeLock) {
  OpenSection section;
  const PlugInCriticalSection::Lock guard(&section);
  EXPECT_EQ(section.extDepth(), 1);
}

TEST(PlugInCriticalSectionExt, ThreeThreadsNeverBlockEachOtherForGood) {
  constexpr int kRounds = 10000;
  PlugInCriticalSectionExt section;
  int counter = 0;
  int tried = 0;
  const auto acquire = [&] {
    for (int i = 0; i < kRounds; ++i) {
      const PlugInCriticalSection::Lock outer(&section);
      const PlugInCriticalSection::Lock inner(&section);
      ++counter;
    }
  };
  const auto attempt = [&] {
    for (int i = 0; i < kRounds; ++i) {
      const PlugInCriticalSectionExt::TryLock guard(&section);
      if (!guard.Succeeded()) continue;
      ++counter;
      ++tried;
    }
  };
  std::thread first(acquire);
  std::thread second(acquire);
  attempt();
  first.join();
  second.join();
  EXPECT_EQ(counter, 2 * kRounds + tried);
  EXPECT_FALSE(section.IsHeld());
}

}  // namespace
