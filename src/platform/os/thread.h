// Threads.
#ifndef KOVADX_PLATFORM_OS_THREAD_H
#define KOVADX_PLATFORM_OS_THREAD_H

#include <cstdint>

#include "platform/os/error.h"

namespace kova::os {

using ThreadHandle = void*;
using ThreadBody = std::uint32_t (*)(void* argument);

// The calling thread's number: the same for its whole life, 0 for none.
std::uint32_t CurrentThreadId();

// Starts a thread that runs body(argument); what that returns is its exit code. The handle must be closed; closing
// neither ends the thread nor waits for it.
Error LaunchThread(ThreadBody body, void* argument, ThreadHandle* out);
Error CloseThread(ThreadHandle thread);

// Waits until the thread has ended, at most that time (0xFFFFFFFF: no limit): 258 when it still runs. *exitCode may be
// null.
Error WaitThread(ThreadHandle thread, std::uint32_t timeoutMs, std::uint32_t* exitCode);

// Waits until all have ended, or the time is up: 258.
Error WaitThreads(const ThreadHandle* threads, std::uint32_t count, std::uint32_t timeoutMs);

// Ends the thread where it stands (POSIX: at its next system call that can be cancelled); its exit code is then
// 0xFFFFFFFF. What it held stays held: for a process about to end. A body that catches everything must throw on what is
// no exception of its own, since on POSIX the thread's frames are unwound.
Error KillThread(ThreadHandle thread);

// Stops and continues a thread. 50 where the platform has no such call.
Error PauseThread(ThreadHandle thread);
Error ContinueThread(ThreadHandle thread);

// A handle that stands for the calling thread and is valid on it alone.
ThreadHandle CurrentThreadHandle();

}  // namespace kova::os

#endif
