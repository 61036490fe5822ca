#include "platform/os/event.h"

#include <new>

#include "platform/win32/system_win32.h"

namespace kova::os {

Error CreateEventObject(bool manualReset, bool initiallySet, const char* name, EventHandle* out) {
  const HANDLE event = CreateEventA(nullptr, manualReset, initiallySet, name);
  if (event == nullptr) return lastError();
  *out = event;
  return kSuccess;
}

Error CloseEventObject(EventHandle event) { return resultOf(CloseHandle(event)); }

Error SetEventObject(EventHandle event) { return resultOf(SetEvent(event)); }

Error ResetEventObject(EventHandle event) { return resultOf(ResetEvent(event)); }

Error WaitEventObject(EventHandle event, std::uint32_t timeoutMs) {
  const DWORD result = WaitForSingleObject(event, timeoutMs);
  return result == WAIT_FAILED ? lastError() : result;  // WAIT_TIMEOUT is 258.
}

Error CreateLock(LockHandle* out) {
  auto* const section = new (std::nothrow) CRITICAL_SECTION;
  if (section == nullptr) return kNotEnoughMemory;
  InitializeCriticalSection(section);
  *out = section;
  return kSuccess;
}

void CloseLock(LockHandle lock) {
  auto* const section = static_cast<CRITICAL_SECTION*>(lock);
  if (section == nullptr) return;
  DeleteCriticalSection(section);
  delete section;
}

void EnterLock(LockHandle lock) { EnterCriticalSection(static_cast<CRITICAL_SECTION*>(lock)); }

bool TryEnterLock(LockHandle lock) { return TryEnterCriticalSection(static_cast<CRITICAL_SECTION*>(lock)) != 0; }

void LeaveLock(LockHandle lock) { LeaveCriticalSection(static_cast<CRITICAL_SECTION*>(lock)); }

}  // namespace kova::os
