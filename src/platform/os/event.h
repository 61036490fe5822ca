// Events and recursive locks.
#ifndef KOVADX_PLATFORM_OS_EVENT_H
#define KOVADX_PLATFORM_OS_EVENT_H

#include <cstdint>

#include "platform/os/error.h"

namespace kova::os {

using EventHandle = void*;
using LockHandle = void*;

// Makes an event. A named one that exists in this process (on Windows: in this session) already is opened, its state
// kept, the two flags ignored. Name null: unnamed.
Error CreateEventObject(bool manualReset, bool initiallySet, const char* name, EventHandle* out);
Error CloseEventObject(EventHandle event);
Error SetEventObject(EventHandle event);
Error ResetEventObject(EventHandle event);

// Waits until the event is set, at most that time (0xFFFFFFFF: no limit); an auto-reset event is reset by it. 258 when
// the time is up.
Error WaitEventObject(EventHandle event, std::uint32_t timeoutMs);

// A recursive lock. Enter waits; TryEnter gives true when it got the lock, also when the thread held it already.
Error CreateLock(LockHandle* out);
void CloseLock(LockHandle lock);
void EnterLock(LockHandle lock);
bool TryEnterLock(LockHandle lock);
void LeaveLock(LockHandle lock);

}  // namespace kova::os

#endif
