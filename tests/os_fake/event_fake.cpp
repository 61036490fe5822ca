// Events in memory; locks are the standard library's.
#include "platform/os/event.h"

#include <map>
#include <mutex>
#include <set>
#include <string>

#include "tests/os_fake/fake_kernel.h"

namespace kova::os {

using fake::Call;
using fake::Logged;

namespace {

struct Event {
  std::string name;
  bool manualReset;
  bool set;
  unsigned users;
};

struct Events {
  std::set<Event*> all;
  std::map<std::string, Event*> named;
};

Events& events() {
  static Events* const theEvents = new Events;
  return *theEvents;
}

Event* eventOf(EventHandle handle) {
  Event* const event = static_cast<Event*>(handle);
  return events().all.count(event) ? event : nullptr;
}

std::recursive_mutex* mutexOf(LockHandle lock) { return static_cast<std::recursive_mutex*>(lock); }

}  // namespace

Error CreateEventObject(bool manualReset, bool initiallySet, const char* name, EventHandle* out) {
  const Call call("CreateEventObject", name);
  if (call.failure()) return *call.failure();
  if (name) {
    const auto found = events().named.find(name);
    if (found != events().named.end()) {
      ++found->second->users;
      *out = found->second;
      return kSuccess;
    }
  }
  Event* const event = new Event{name ? name : "", manualReset, initiallySet, 1};
  events().all.insert(event);
  if (name) events().named[name] = event;
  *out = event;
  return kSuccess;
}

Error CloseEventObject(EventHandle handle) {
  const Call call("CloseEventObject");
  if (call.failure()) return *call.failure();
  Event* const event = eventOf(handle);
  if (!event) return kInvalidHandle;
  if (--event->users > 0) return kSuccess;
  const auto found = events().named.find(event->name);
  if (found != events().named.end() && found->second == event) events().named.erase(found);
  events().all.erase(event);
  delete event;
  return kSuccess;
}

Error SetEventObject(EventHandle handle) {
  const Call call("SetEventObject");
  if (call.failure()) return *call.failure();
  Event* const event = eventOf(handle);
  if (!event) return kInvalidHandle;
  event->set = true;
  Call::notify();
  return kSuccess;
}

Error ResetEventObject(EventHandle handle) {
  const Call call("ResetEventObject");
  if (call.failure()) return *call.failure();
  Event* const event = eventOf(handle);
  if (!event) return kInvalidHandle;
  event->set = false;
  return kSuccess;
}

Error WaitEventObject(EventHandle handle, std::uint32_t timeoutMs) {
  Call call("WaitEventObject");
  if (call.failure()) return *call.failure();
  Event* const event = eventOf(handle);
  if (!event) return kInvalidHandle;
  if (!call.waitFor(timeoutMs, [event] { return event->set; })) return kWaitTimeout;
  if (!event->manualReset) event->set = false;
  return kSuccess;
}

Error CreateLock(LockHandle* out) {
  const Call call("CreateLock");
  if (call.failure()) return *call.failure();
  *out = new std::recursive_mutex;
  return kSuccess;
}

void CloseLock(LockHandle lock) {
  const Call call("CloseLock");
  delete mutexOf(lock);
}

void EnterLock(LockHandle lock) { mutexOf(lock)->lock(); }

bool TryEnterLock(LockHandle lock) {
  const Call call("TryEnterLock", Logged::CountOnly);
  return !call.failure() && mutexOf(lock)->try_lock();
}

void LeaveLock(LockHandle lock) { mutexOf(lock)->unlock(); }

}  // namespace kova::os
