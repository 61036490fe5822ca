// Waits on a pipe that end when the process at the other side ends. A pipe that this side has created does not tell by
// itself when nobody can come to it any more, nor when a copy of the peer's end lives on in a process that the peer has
// started.
#ifndef KOVADX_TRANSPORT_WATCHED_WAIT_H
#define KOVADX_TRANSPORT_WATCHED_WAIT_H

#include <cstdint>
#include <functional>
#include <memory>

#include "platform/os/byte_pipe.h"

class DXCmdDispatcher;
class KovaPipe;

namespace kova {

// Watches one process, on a thread of its own. Whoever started that process, or lives by it, owns the watch, from when
// the process is known to live until nothing waits for it any more. Any thread may use it.
class PeerWatch {
 public:
  explicit PeerWatch(std::uint32_t processId);
  PeerWatch(const PeerWatch&) = delete;
  PeerWatch& operator=(const PeerWatch&) = delete;

  // Ends at once, whether the process still runs or not. No WatchedWait may be left.
  ~PeerWatch();

  // False when the process can not be watched; waits then last as long as without a watch.
  bool isWatching() const;

  // True once the process has been seen to end.
  bool hasEnded() const;

 private:
  friend class WatchedWait;
  class Watcher;

  std::unique_ptr<Watcher> watcher_;
};

// While one of these lives, the waits on a pipe, or on a control channel, end when the watched process does: what the
// process has still done counts, and 109 comes after that. Made before the wait, on the thread that will wait; the pipe
// must outlive it. Without a watch (null) it does nothing.
class WatchedWait {
 public:
  WatchedWait(PeerWatch* watch, KovaPipe* pipe);
  WatchedWait(PeerWatch* watch, DXCmdDispatcher* dispatcher);
  WatchedWait(PeerWatch* watch, os::BytePipeEnd* readingEnd);
  WatchedWait(const WatchedWait&) = delete;
  WatchedWait& operator=(const WatchedWait&) = delete;
  ~WatchedWait();

 private:
  void begin();

  PeerWatch* watch_;
  std::function<void()> release_;
};

}  // namespace kova

#endif
