#include "platform/PlugInCriticalSectionExt.h"

#include "platform/os/thread.h"

// The guard is only ever taken for the two fields: no thread waits for the lock itself while it holds the guard, and no
// thread that wants the guard is waited for by one that holds it. Taking them the other way round can deadlock three
// threads.

PlugInCriticalSectionExt::TryLock::TryLock(PlugInCriticalSectionExt* section)
    : section_(section->TryAcquire() ? section : nullptr) {}

PlugInCriticalSectionExt::TryLock::~TryLock() {
  if (section_ != nullptr) section_->Release();
}

void PlugInCriticalSectionExt::Acquire() {
  PlugInCriticalSection::Acquire();
  noteAcquired();
}

void PlugInCriticalSectionExt::Release() {
  {
    const Lock guard(&guard_);
    if (extDepth_ == 1) extOwner_ = 0;
    --extDepth_;
  }
  PlugInCriticalSection::Release();
}

bool PlugInCriticalSectionExt::TryAcquire() {
  if (!tryEnter()) return false;
  noteAcquired();
  return true;
}

bool PlugInCriticalSectionExt::IsHeld() { return extDepth() > 0; }

std::uint32_t PlugInCriticalSectionExt::extOwner() {
  const Lock guard(&guard_);
  return extOwner_;
}

std::int32_t PlugInCriticalSectionExt::extDepth() {
  const Lock guard(&guard_);
  return extDepth_;
}

void PlugInCriticalSectionExt::noteAcquired() {
  const Lock guard(&guard_);
  ++extDepth_;
  extOwner_ = kova::os::CurrentThreadId();
}
