#include "transport/watched_wait.h"

#include <algorithm>
#include <mutex>
#include <vector>

#include "platform/PlugInThreadHot.h"
#include "platform/os/process_watch.h"
#include "transport/DXCmdDispatcher.h"
#include "transport/KovaPipe.h"

namespace kova {

class PeerWatch::Watcher : public PlugInThreadHot {
 public:
  using Release = std::function<void()>;

  explicit Watcher(std::uint32_t processId) {
    if (os::ProcessWatch::Open(processId, &process_) == os::kSuccess && !Start()) process_ = os::ProcessWatch();
  }
  ~Watcher() override {
    process_.Cancel();
    joinThread();
  }

  bool isWatching() const { return static_cast<bool>(process_); }

  bool hasEnded() const {
    const std::lock_guard<std::mutex> hold(mutex_);
    return ended_;
  }

  // From now on `release` is called when the process ends, at once when it has; it must stay until it is removed.
  void add(const Release* release) {
    const std::lock_guard<std::mutex> hold(mutex_);
    releases_.push_back(release);
    if (ended_) (*release)();
  }

  // When this returns the call is over, or will not come.
  void remove(const Release* release) {
    const std::lock_guard<std::mutex> hold(mutex_);
    std::erase(releases_, release);
  }

 protected:
  unsigned int Run() override {
    if (process_.Wait() != os::kSuccess) return 0;
    const std::lock_guard<std::mutex> hold(mutex_);
    ended_ = true;
    for (const Release* release : releases_) (*release)();
    return 0;
  }

 private:
  os::ProcessWatch process_;
  mutable std::mutex mutex_;  // Of the next two. Held during the calls: what they release needs nothing of it.
  bool ended_ = false;
  std::vector<const Release*> releases_;
};

PeerWatch::PeerWatch(std::uint32_t processId) : watcher_(std::make_unique<Watcher>(processId)) {}

PeerWatch::~PeerWatch() = default;

bool PeerWatch::isWatching() const { return watcher_->isWatching(); }

bool PeerWatch::hasEnded() const { return watcher_->hasEnded(); }

WatchedWait::WatchedWait(PeerWatch* watch, KovaPipe* pipe)
    : watch_(watch), release_([pipe] { pipe->DeclarePeerGone(); }) {
  begin();
}

WatchedWait::WatchedWait(PeerWatch* watch, DXCmdDispatcher* dispatcher)
    : watch_(watch), release_([dispatcher] { dispatcher->peerHasEnded(); }) {
  begin();
}

WatchedWait::WatchedWait(PeerWatch* watch, os::BytePipeEnd* readingEnd)
    : watch_(watch), release_([readingEnd] { readingEnd->DeclarePeerGone(); }) {
  begin();
}

WatchedWait::~WatchedWait() {
  if (watch_ != nullptr) watch_->watcher_->remove(&release_);
}

void WatchedWait::begin() {
  if (watch_ != nullptr) watch_->watcher_->add(&release_);
}

}  // namespace kova
