// An event, with a handshake built in: one thread asks and waits for a reply, another one answers. The object owns its
// event. No operation reports a failure: an event that could not be made ignores signals, and waits for it return at
// once.
#ifndef KOVADX_PLATFORM_PLUGINSYNCHEVENT_H
#define KOVADX_PLATFORM_PLUGINSYNCHEVENT_H

#include <memory>

#include "export.h"
#include "platform/PlugInCriticalSection.h"

class KOVADX_API PlugInSynchEvent {
 public:
  // An event that a wait resets, or one that stays signalled until Unsignal (manual reset). Name null: unnamed. A named
  // event that exists already is opened as it is.
  PlugInSynchEvent(bool manualReset, bool initiallySignalled, const char* name);
  PlugInSynchEvent(const PlugInSynchEvent&) = delete;
  PlugInSynchEvent& operator=(const PlugInSynchEvent&) = delete;
  virtual ~PlugInSynchEvent();

  void Signal();
  void Unsignal();

  // Waits for the signal, without limit or at most that many milliseconds. Neither tells which of the two ended it; who
  // needs to know waits on the handle.
  void WaitForSignal();
  void WaitForSignal(unsigned int milliseconds);

  // The platform's event; null when it could not be made. Owned by the object.
  void* Handle() const;

  // The asker: signals this event and waits without limit for one reply. Several askers take turns. A reply that was
  // given before anybody asked answers the next asker at once.
  void SignalAndWaitForReply();
  // The answerer: gives one reply, after it has waited for this event and done its work. Any number of threads may.
  void Reply();

 protected:
  // The reply event, made when there is none. Owned by this object; the asker takes it away when it has its reply.
  PlugInSynchEvent* ReplyEvent();
  // Drops a reply that nobody waits for. Not to be called while somebody waits.
  void ClearReplyEvent();

 private:
  bool manualReset_;
  void* event_ = nullptr;
  PlugInCriticalSection signalLock_;  // Held by the asker through the whole exchange; taken before the reply lock.
  PlugInCriticalSection replyLock_;   // Guards the pointer below; never held while waiting.
  std::unique_ptr<PlugInSynchEvent> replyEvent_;
};

#endif
