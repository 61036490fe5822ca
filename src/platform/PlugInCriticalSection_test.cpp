#include "platform/PlugInCriticalSection.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <thread>

#include "platform/os/thread.h"

namespace {

class OpenSection : public PlugInCriticalSection {
 public:
  using PlugInCriticalSection::depth;
  using PlugInCriticalSection::owner;
  using PlugInCriticalSection::tryEnter;
};

// Whether another thread could take the lock now.
bool isFree(OpenSection& section) {
  bool entered = false;
  std::thread([&] {
    entered = section.tryEnter();
    if (entered) section.Release();
  }).join();
  return entered;
}

TEST(PlugInCriticalSection, StartsFree) {
  OpenSection section;
  EXPECT_EQ(section.owner(), 0u);
  EXPECT_EQ(section.depth(), 0);
  EXPECT_TRUE(isFree(section));
}

TEST(PlugInCriticalSection, ThreeTimesAcquiredThreeTimesReleased) {
  OpenSection section;
  for (std::int32_t depth = 1; depth <= 3; ++depth) {
    section.Acquire();
    EXPECT_EQ(section.owner(), kova::os::CurrentThreadId());
    EXPECT_EQ(section.depth(), depth);
  }
  for (std::int32_t depth = 2; depth >= 0; --depth) {
    EXPECT_FALSE(isFree(section));
    section.Release();
    EXPECT_EQ(section.depth(), depth);
  }
  EXPECT_EQ(section.owner(), 0u);
  EXPECT_TRUE(isFree(section));
}

TEST(PlugInCriticalSection, TryEntersAFreeOrAnOwnLockOnly) {
  OpenSection section;
  EXPECT_TRUE(section.tryEnter());
  EXPECT_TRUE(section.tryEnter());
  EXPECT_EQ(section.depth(), 2);
  EXPECT_FALSE(isFree(section));
  section.Release();
  section.Release();
  EXPECT_TRUE(isFree(section));
}

TEST(PlugInCriticalSection, KeepsThreadsApart) {
  PlugInCriticalSection section;
  int counter = 0;
  const auto count = [&] {
    for (int i = 0; i < 10000; ++i) {
      const PlugInCriticalSection::Lock guard(&section);
      ++counter;
    }
  };
  std::thread other(count);
  count();
  other.join();
  EXPECT_EQ(counter, 20000);
}

TEST(PlugInCriticalSection, GuardReleasesWhenAnExceptionPasses) {
  OpenSection section;
  try {
    const PlugInCriticalSection::Lock guard(&section);
    EXPECT_FALSE(isFree(section));
    throw std::runtime_error("passes");
  } catch (const std::runtime_error&) {
    EXPECT_EQ(section.depth(), 0);
  }
  EXPECT_TRUE(isFree(section));
}

TEST(PlugInCriticalSection, GuardWorksThroughTheVirtualOperations) {
  class Counting : public PlugInCriticalSection {
   public:
    void Acquire() override { ++acquired; }
    void Release() override { ++released; }
    int acquired = 0;
    int released = 0;
  };
  Counting section;
  {
    const PlugInCriticalSection::Lock guard(&section);
    EXPECT_EQ(section.acquired, 1);
    EXPECT_EQ(section.released, 0);
  }
  EXPECT_EQ(section.released, 1);
}

TEST(PlugInCriticalSection, CopyIsALockOfItsOwn) {
  OpenSection section;
  section.Acquire();
  OpenSection copy(section);
  EXPECT_EQ(copy.depth(), 0);
  EXPECT_TRUE(isFree(copy));
  copy = section;
  EXPECT_TRUE(isFree(copy));
  EXPECT_FALSE(isFree(section));
  section.Release();
}

TEST(PlugInCriticalSection, DestroyedByItsHolderItIsGivenUpFirst) {
  // A lock destroyed while it is held is what the thread checker reports.
  OpenSection section;
  section.Acquire();
}

}  // namespace
