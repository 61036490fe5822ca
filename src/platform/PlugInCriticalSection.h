// A recursive lock that knows its holder. Each object owns one lock of the platform. The holder may acquire again; each
// Acquire needs one Release by the same thread. Every lock is taken through the scope guard, so that it is given up
// when an exception passes.
#ifndef KOVADX_PLATFORM_PLUGINCRITICALSECTION_H
#define KOVADX_PLATFORM_PLUGINCRITICALSECTION_H

#include <cstdint>

#include "export.h"

class KOVADX_API PlugInCriticalSection {
 public:
  // The scope guard: acquires at its birth, releases at its end. The lock must outlive it.
  class KOVADX_API Lock {
   public:
    explicit Lock(PlugInCriticalSection* section);
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
    virtual ~Lock();

   private:
    PlugInCriticalSection* section_;
  };

  PlugInCriticalSection();
  // A copy is a free lock of its own: a lock can not be shared by value. Assignment changes nothing.
  PlugInCriticalSection(const PlugInCriticalSection& other);
  PlugInCriticalSection& operator=(const PlugInCriticalSection& other);
  // Gives the lock up once when the destroying thread holds it.
  virtual ~PlugInCriticalSection();

  // Waits until the lock is free or the caller's own, and takes it.
  virtual void Acquire();
  // Gives up one Acquire of the calling thread.
  virtual void Release();

 protected:
  // As Acquire, but false at once when another thread holds the lock.
  bool tryEnter();

  // For diagnostics. Written only by the thread that holds the lock; a reader without it sees what may be past.
  std::uint32_t owner() const { return owner_; }
  std::int32_t depth() const { return depth_; }

 private:
  void noteEntered();
  void noteLeaving();

  // Deliberate: cleared by the first Release, also when the lock is still held from an outer Acquire.
  bool held_ = false;
  void* section_ = nullptr;
  std::uint32_t owner_ = 0;
  std::int32_t depth_ = 0;
};

#endif
