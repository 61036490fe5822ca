#include "platform/PlugInSynchEvent.h"

#include <cstdint>

#include "platform/os/event.h"

using namespace kova;

namespace {

constexpr std::uint32_t kNoLimit = 0xFFFFFFFF;

}  // namespace

PlugInSynchEvent::PlugInSynchEvent(bool manualReset, bool initiallySignalled, const char* name)
    : manualReset_(manualReset) {
  if (os::CreateEventObject(manualReset_, initiallySignalled, name, &event_) != os::kSuccess) event_ = nullptr;
}

PlugInSynchEvent::~PlugInSynchEvent() {
  if (event_ != nullptr) os::CloseEventObject(event_);
}

void PlugInSynchEvent::Signal() {
  if (event_ != nullptr) os::SetEventObject(event_);
}

void PlugInSynchEvent::Unsignal() {
  if (event_ != nullptr) os::ResetEventObject(event_);
}

void PlugInSynchEvent::WaitForSignal() { WaitForSignal(kNoLimit); }

void PlugInSynchEvent::WaitForSignal(unsigned int milliseconds) {
  if (event_ != nullptr) os::WaitEventObject(event_, milliseconds);
}

void* PlugInSynchEvent::Handle() const { return event_; }

void PlugInSynchEvent::SignalAndWaitForReply() {
  const PlugInCriticalSection::Lock signalGuard(&signalLock_);
  // The reply event is there before anybody can answer, so the answer is never lost.
  PlugInSynchEvent* const reply = ReplyEvent();
  Signal();
  reply->WaitForSignal();
  ClearReplyEvent();
}

void PlugInSynchEvent::Reply() {
  // Signalled under the lock: the asker deletes the reply event under it as soon as it wakes.
  const PlugInCriticalSection::Lock replyGuard(&replyLock_);
  ReplyEvent()->Signal();
}

PlugInSynchEvent* PlugInSynchEvent::ReplyEvent() {
  const PlugInCriticalSection::Lock replyGuard(&replyLock_);
  if (!replyEvent_) replyEvent_ = std::make_unique<PlugInSynchEvent>(false, false, nullptr);
  return replyEvent_.get();
}

void PlugInSynchEvent::ClearReplyEvent() {
  const PlugInCriticalSection::Lock replyGuard(&replyLock_);
  replyEvent_.reset();
}
