#include "transport/interruption.h"

namespace kova {

Interruption::Stay::Stay(Interruption* interruption) : interruption_(interruption) {
  const std::lock_guard<std::mutex> hold(interruption_->mutex_);
  ++interruption_->stays_;
}

Interruption::Stay::~Stay() {
  // Woken with the mutex held: whoever is woken may destroy the object as soon as it has the mutex.
  const std::lock_guard<std::mutex> hold(interruption_->mutex_);
  if (--interruption_->stays_ == 0) interruption_->left_.notify_all();
}

void Interruption::request(Reason reason) {
  const std::lock_guard<std::mutex> hold(mutex_);
  if (reason_ != Reason::GivenUp) reason_ = reason;
  ended_.Signal();
}

void Interruption::withdraw() {
  const std::lock_guard<std::mutex> hold(mutex_);
  if (reason_ == Reason::GivenUp) return;
  reason_ = Reason::None;
  ended_.Unsignal();
}

Interruption::Reason Interruption::reason() const {
  const std::lock_guard<std::mutex> hold(mutex_);
  return reason_;
}

Interruption::Reason Interruption::wait(std::uint32_t milliseconds) {
  if (reason() == Reason::None) ended_.WaitForSignal(milliseconds);
  return reason();
}

void Interruption::awaitNobody() {
  std::unique_lock<std::mutex> hold(mutex_);
  left_.wait(hold, [this] { return stays_ == 0; });
}

}  // namespace kova
