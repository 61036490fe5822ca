#include "platform/os/event.h"

#include <pthread.h>

#include <map>
#include <mutex>
#include <new>
#include <string>

#include "platform/posix/error_posix.h"
#include "platform/posix/monotonic_posix.h"

namespace kova::os {
namespace {

struct Event {
  Event(bool manual, bool initiallySet, const char* text) : manualReset(manual), set(initiallySet) {
    if (text != nullptr) name = text;
  }

  const bool manualReset;
  bool set;
  std::string name;
  unsigned handles = 1;  // Guarded by the table's mutex.
  Monitor monitor;
};

// The named events of this process. Never destroyed, for threads that outlive main.
struct EventTable {
  std::mutex mutex;
  std::map<std::string, Event*> named;
};

EventTable& table() {
  static EventTable* const theTable = new EventTable;
  return *theTable;
}

Event* openNamed(bool manualReset, bool initiallySet, const char* name) {
  const std::lock_guard<std::mutex> hold(table().mutex);
  Event*& place = table().named[name];
  if (place == nullptr) {
    place = new Event(manualReset, initiallySet, name);
  } else {
    ++place->handles;
  }
  return place;
}

}  // namespace

Error CreateEventObject(bool manualReset, bool initiallySet, const char* name, EventHandle* out) {
  const bool named = name != nullptr && *name != '\0';
  *out = named ? openNamed(manualReset, initiallySet, name) : new Event(manualReset, initiallySet, nullptr);
  return kSuccess;
}

Error CloseEventObject(EventHandle handle) {
  if (handle == nullptr) return kInvalidHandle;
  Event* const event = static_cast<Event*>(handle);
  if (!event->name.empty()) {
    const std::lock_guard<std::mutex> hold(table().mutex);
    if (--event->handles > 0) return kSuccess;
    table().named.erase(event->name);
  }
  delete event;
  return kSuccess;
}

Error SetEventObject(EventHandle handle) {
  if (handle == nullptr) return kInvalidHandle;
  Event* const event = static_cast<Event*>(handle);
  const Monitor::Hold hold(event->monitor);
  event->set = true;
  // Woken with the mutex held: the thread that is woken may close the event as soon as it has the mutex.
  if (event->manualReset) {
    event->monitor.wakeAll();
  } else {
    event->monitor.wakeOne();
  }
  return kSuccess;
}

Error ResetEventObject(EventHandle handle) {
  if (handle == nullptr) return kInvalidHandle;
  Event* const event = static_cast<Event*>(handle);
  const Monitor::Hold hold(event->monitor);
  event->set = false;
  return kSuccess;
}

Error WaitEventObject(EventHandle handle, std::uint32_t timeoutMs) {
  if (handle == nullptr) return kInvalidHandle;
  Event* const event = static_cast<Event*>(handle);
  const Monitor::Hold hold(event->monitor);
  if (!event->monitor.waitFor(timeoutMs, [event] { return event->set; })) return kWaitTimeout;
  if (!event->manualReset) event->set = false;
  return kSuccess;
}

Error CreateLock(LockHandle* out) {
  pthread_mutexattr_t attributes;
  pthread_mutexattr_init(&attributes);
  pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
  auto* const lock = new pthread_mutex_t;
  const int result = pthread_mutex_init(lock, &attributes);
  pthread_mutexattr_destroy(&attributes);
  if (result == 0) {
    *out = lock;
  } else {
    delete lock;
  }
  return errorOfErrno(result);
}

void CloseLock(LockHandle lock) {
  auto* const mutex = static_cast<pthread_mutex_t*>(lock);
  pthread_mutex_destroy(mutex);
  delete mutex;
}

void EnterLock(LockHandle lock) { pthread_mutex_lock(static_cast<pthread_mutex_t*>(lock)); }

bool TryEnterLock(LockHandle lock) { return pthread_mutex_trylock(static_cast<pthread_mutex_t*>(lock)) == 0; }

void LeaveLock(LockHandle lock) { pthread_mutex_unlock(static_cast<pthread_mutex_t*>(lock)); }

}  // namespace kova::os
