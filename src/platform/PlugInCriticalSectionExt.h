// A recursive lock that can be tried without waiting, and asked by any thread whether it is held: what it knows about
// its holder is guarded by a lock of its own. For hosts; nothing inside the library depends on it.
#ifndef KOVADX_PLATFORM_PLUGINCRITICALSECTIONEXT_H
#define KOVADX_PLATFORM_PLUGINCRITICALSECTIONEXT_H

#include <cstdint>

#include "export.h"
#include "platform/PlugInCriticalSection.h"

class KOVADX_API PlugInCriticalSectionExt : public PlugInCriticalSection {
 public:
  // The scope guard of a try: remembers whether it got the lock, and gives it up at its end only then.
  class KOVADX_API TryLock {
   public:
    explicit TryLock(PlugInCriticalSectionExt* section);
    TryLock(const TryLock&) = delete;
    TryLock& operator=(const TryLock&) = delete;
    ~TryLock();

    bool Succeeded() const { return section_ != nullptr; }

   private:
    PlugInCriticalSectionExt* section_;
  };

  PlugInCriticalSectionExt() = default;
  ~PlugInCriticalSectionExt() override = default;

  void Acquire() override;
  void Release() override;

  // Takes the lock when it is free or the caller's own (then it needs one more Release). False at once otherwise.
  bool TryAcquire();

  // True while any thread holds the lock.
  bool IsHeld();

 protected:
  // The thread that holds the lock, 0 when it is free; and how often it has acquired it.
  std::uint32_t extOwner();
  std::int32_t extDepth();

 private:
  void noteAcquired();

  PlugInCriticalSection guard_;
  std::uint32_t extOwner_ = 0;
  std::int32_t extDepth_ = 0;
};

#endif
