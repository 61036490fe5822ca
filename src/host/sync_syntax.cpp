#include "host/sync_syntax.h"

#include <atomic>
#include <cstdint>

#include "config/never_destroyed.h"
#include "platform/PlugInCriticalSection.h"
#include "platform/PlugInSynchEvent.h"
#include "platform/os/error.h"

namespace kova {
namespace {

// What caller and running thread share. The caller holds the lock from its request until it has the result; the running
// thread never takes it, and touches the fields between request and done alone.
struct Meeting {
  PlugInCriticalSection lock;
  std::vector<std::string> pending;
  std::uint32_t result = 0;
  bool stop = false;
  PlugInSynchEvent request{true, false, nullptr};
  PlugInSynchEvent done{true, false, nullptr};
};

Meeting& meeting() {
  static NeverDestroyed<Meeting> theMeeting;
  return theMeeting.object();
}

std::atomic<bool> useSync = false;

// Called with the lock held.
int resultOfRequest(Meeting& m) {
  m.request.Signal();
  m.done.WaitForSignal();
  m.done.Unsignal();
  return static_cast<int>(m.result);
}

int resultOfRun(const std::function<int(std::vector<std::string>&)>& run, const std::vector<std::string>& pending) {
  try {
    std::vector<std::string> lines = pending;
    return run(lines);
  } catch (...) {
    // The caller waits for an answer, whatever became of the run.
    return os::kNotEnoughMemory;
  }
}

}  // namespace

void serveSyncSyntax(const std::function<int(std::vector<std::string>& lines)>& run) {
  Meeting& m = meeting();
  bool stops = false;
  while (!stops) {
    m.request.WaitForSignal();
    m.request.Unsignal();
    stops = m.stop;
    m.result = stops ? 0 : static_cast<std::uint32_t>(resultOfRun(run, m.pending));
    // Before the answer: with it the next caller may come, and its wish to stop must not be lost.
    m.stop = false;
    m.done.Signal();
  }
}

}  // namespace kova

using namespace kova;

int GRunSyncSyntax(std::vector<std::string>& lines) {
  Meeting& m = meeting();
  const PlugInCriticalSection::Lock guard(&m.lock);
  m.pending = lines;
  return resultOfRequest(m);
}

int GStopSyncSyntax() {
  Meeting& m = meeting();
  const PlugInCriticalSection::Lock guard(&m.lock);
  m.stop = true;
  return resultOfRequest(m);
}

bool GGetUseSyncDx() { return useSync; }

void GSetUseSyncDx(bool use) { useSync = use; }
