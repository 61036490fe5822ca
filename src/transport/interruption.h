// How the waits of one object are ended from outside. Its operations ask before they wait, wait here where they only
// let time pass, and are counted while they last, so that the object is not destroyed under them.
//
// The object whose operations these are owns it. Any thread may use it.
#ifndef KOVADX_TRANSPORT_INTERRUPTION_H
#define KOVADX_TRANSPORT_INTERRUPTION_H

#include <condition_variable>
#include <cstdint>
#include <mutex>

#include "platform/PlugInSynchEvent.h"

namespace kova {

class Interruption {
 public:
  // Why waits end: the object is being given up, for good, or the process at the other side has ended.
  enum class Reason { None, GivenUp, PeerEnded };

  // One thread's stay in an operation.
  class Stay {
   public:
    explicit Stay(Interruption* interruption);
    Stay(const Stay&) = delete;
    Stay& operator=(const Stay&) = delete;
    ~Stay();

   private:
    Interruption* interruption_;
  };

  // Ends the waits under way and to come. A second reason does not take the place of GivenUp.
  void request(Reason reason);

  // Lets waits be waited out again, unless the object was given up.
  void withdraw();

  Reason reason() const;

  // Waits for that time, or until the waits are ended; tells why they are.
  Reason wait(std::uint32_t milliseconds);

  // Waits until no thread stays in an operation.
  void awaitNobody();

 private:
  mutable std::mutex mutex_;  // Of the next two.
  Reason reason_ = Reason::None;
  unsigned stays_ = 0;
  std::condition_variable left_;
  PlugInSynchEvent ended_{true, false, nullptr};
};

}  // namespace kova

#endif
