// Ending a system call that another thread is blocked in.
#ifndef KOVADX_PLATFORM_WIN32_BLOCKING_CALL_WIN32_H
#define KOVADX_PLATFORM_WIN32_BLOCKING_CALL_WIN32_H

#include <mutex>

#include "platform/win32/system_win32.h"

namespace kova::os {

// Ends the call of the thread whose number blockedThread() tells, with the guard held; 0 tells that there is none, or
// none any more. A cancel that comes just before the thread enters the system is lost, so it is repeated until the
// thread has left. The thread must take the guard to leave: then a cancel never meets its next call.
template <class BlockedThread>
void endBlockingCall(std::mutex& guard, BlockedThread blockedThread) {
  for (;;) {
    {
      const std::lock_guard<std::mutex> lock(guard);
      const DWORD id = blockedThread();
      const HANDLE thread = id == 0 ? nullptr : OpenThread(THREAD_TERMINATE, FALSE, id);
      if (thread == nullptr) return;
      CancelSynchronousIo(thread);
      CloseHandle(thread);
    }
    Sleep(1);
  }
}

}  // namespace kova::os

#endif
