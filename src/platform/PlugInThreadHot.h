// The base of every worker thread: a subclass overrides Run. The object owns its thread's handle, not its thread. It is
// idle (no thread), running, or finished (the handle is kept until it is destroyed or started again).
//
// Start, Terminate and the waits may be called on any thread but the new one. An object that deletes itself is not
// touched by other threads after Start. A subclass whose Run uses its fields stops its loop and calls joinThread in its
// own destructor: this base's destructor is too late for it, and does not wait for ever.
#ifndef KOVADX_PLATFORM_PLUGINTHREADHOT_H
#define KOVADX_PLATFORM_PLUGINTHREADHOT_H

#include <atomic>
#include <cstdint>

#include "export.h"
#include "platform/PlugInCriticalSection.h"

class KOVADX_API PlugInThreadHot {
 public:
  PlugInThreadHot();
  PlugInThreadHot(const PlugInThreadHot&) = delete;
  PlugInThreadHot& operator=(const PlugInThreadHot&) = delete;

 protected:
  // The body of the thread: calls Run, keeps its result as the return value, which is also the thread's exit code, and
  // deletes the object when that was asked for. An exception of Run ends the thread with 8.
  virtual unsigned int Entry();

 public:
  // Waits up to 3000 ms for a running thread and closes the handle. Deliberate: a thread that still runs then keeps
  // running.
  virtual ~PlugInThreadHot();

  // Ends the thread where it stands; its exit code is then 0xFFFFFFFF. False when there is none or it could not be
  // ended. What the thread held stays held. Nothing in the library uses it.
  virtual bool Terminate();

 protected:
  // The work of the thread. This one returns 0 at once.
  virtual unsigned int Run();

 public:
  // Starts the thread and returns true when it runs; false when one is running already or none could be made. The
  // thread begins only when Start no longer touches the object. The argument is ignored: a thread always runs Entry.
  bool Start(unsigned long long (*ignored)(unsigned long long) = nullptr);

  // Makes the calling thread the object's own, which turns self-deletion off. False when the object has a handle. Only
  // that thread may use the object then.
  bool Attach();

  // Stops and continues the thread; false where the platform has no such call, or without a thread.
  bool Suspend();
  bool Resume();

  // Waits at most that many milliseconds for the thread's end (3000 in the first form). Deliberate: when the time is up
  // the thread counts as stopped all the same, so that Start makes a second one; false only when the wait itself
  // failed. Who must know that the thread has ended uses joinThread.
  bool WaitForStop();
  bool WaitForStop(unsigned int milliseconds);

  // Waits until all those of the threads that are running have ended; without limit in the first form. False when none
  // is running, when the time is up, or when the wait failed. They still count as running afterwards, until their Entry
  // says otherwise.
  static bool WaitForMultipleThreads(PlugInThreadHot** threads, int count);
  static bool WaitForMultipleThreads(PlugInThreadHot** threads, int count, unsigned int milliseconds);

  // True from Start until Run has returned or the thread counts as stopped.
  bool HasThread() const;
  bool IsAutoDelete() const;
  // Whether the object deletes itself when Run has returned; set before Start.
  void SetAutoDelete(bool autoDelete);
  // What Run returned; 0 before.
  unsigned int GetReturnValue() const;

 protected:
  // Waits without limit for the real end of the thread that was started last, also when it counts as stopped. Returns
  // at once without one, for an attached thread, and while an object deletes itself.
  void joinThread();

 private:
  void SetHasThread(bool hasThread);
  void closeThread();
  static std::uint32_t threadMain(void* argument);

  void* thread_ = nullptr;
  // Atomic, since Entry clears it without the lock.
  std::atomic<bool> hasThread_{false};
  PlugInCriticalSection lock_;
  std::atomic<bool> autoDelete_{false};
  std::atomic<std::uint32_t> returnValue_{0};
};

#endif
