#include "platform/PlugInCriticalSection.h"

#include "platform/os/event.h"
#include "platform/os/thread.h"

using namespace kova;

PlugInCriticalSection::Lock::Lock(PlugInCriticalSection* section) : section_(section) { section_->Acquire(); }

PlugInCriticalSection::Lock::~Lock() { section_->Release(); }

PlugInCriticalSection::PlugInCriticalSection() { os::CreateLock(&section_); }

PlugInCriticalSection::PlugInCriticalSection(const PlugInCriticalSection&) : PlugInCriticalSection() {}

PlugInCriticalSection& PlugInCriticalSection::operator=(const PlugInCriticalSection&) { return *this; }

PlugInCriticalSection::~PlugInCriticalSection() {
  if (section_ == nullptr) return;
  if (held_ && owner_ == os::CurrentThreadId()) {
    noteLeaving();
    os::LeaveLock(section_);
  }
  os::CloseLock(section_);
}

// A platform that could not make the lock leaves nothing to enter or leave; the calls then do nothing.
void PlugInCriticalSection::Acquire() {
  if (section_ == nullptr) return;
  os::EnterLock(section_);
  noteEntered();
}

void PlugInCriticalSection::Release() {
  if (section_ == nullptr) return;
  noteLeaving();
  os::LeaveLock(section_);
}

bool PlugInCriticalSection::tryEnter() {
  if (section_ == nullptr || !os::TryEnterLock(section_)) return false;
  noteEntered();
  return true;
}

void PlugInCriticalSection::noteEntered() {
  if (depth_ < 1) owner_ = os::CurrentThreadId();
  held_ = true;
  ++depth_;
}

void PlugInCriticalSection::noteLeaving() {
  held_ = false;
  if (depth_ == 1) owner_ = 0;
  --depth_;
}
