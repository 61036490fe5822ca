#include "programs/startx/engine_loss.h"

#include <cstdint>
#include <cstdio>
#include <mutex>
#include <thread>
#include <utility>

#include "config/never_destroyed.h"
#include "host/sync_syntax.h"
#include "platform/os/clock.h"
#include "platform/os/process.h"
#include "programs/common/parent_guard.h"
#include "transport/DXCmdDispatcher.h"

namespace kova::program {
namespace {

// What a script may still take to end by itself. Within two seconds nothing of the process is left.
constexpr std::uint32_t kGraceMs = 1000;

struct Loss {
  std::mutex mutex;
  bool isLost = false;
  bool wasReached = false;
  DXCmdDispatcher* commands = nullptr;
};

// Threads that nobody waits for use it until the process ends.
Loss& theLoss() {
  static NeverDestroyed<Loss> loss;
  return loss.object();
}

bool isFirst() {
  Loss& loss = theLoss();
  const std::lock_guard hold(loss.mutex);
  return !std::exchange(loss.isLost, true);
}

void killLater() {
  std::thread([] {
    os::SleepMs(kGraceMs);
    os::EndWithChildren();
  }).detach();
}

// The wait for a main thread that is in the middle of a script, or no longer takes any, is for a thread of its own.
void stopMain() {
  if (!GGetUseSyncDx()) return;
  std::thread([] { GStopSyncSyntax(); }).detach();
}

void stopCommands() {
  Loss& loss = theLoss();
  const std::lock_guard hold(loss.mutex);
  if (loss.commands != nullptr) loss.commands->cancel();
}

}  // namespace

void loseEngine(const std::string& why) {
  if (!isFirst()) return;
  try {
    killLater();  // First: the line may find nobody who takes it.
    tellEnd(why);
    stopMain();
    stopCommands();
  } catch (...) {
    os::EndWithChildren();
  }
}

void loseEngineOfPipe() {
  Loss& loss = theLoss();
  bool wasReached = false;
  {
    const std::lock_guard hold(loss.mutex);
    wasReached = loss.wasReached;
  }
  loseEngine(wasReached ? "startx: the engine has gone without a word"
                        : "startx: the engine can not be reached by its pipes");
}

bool beginToServe(DXCmdDispatcher* commands) {
  Loss& loss = theLoss();
  const std::lock_guard hold(loss.mutex);
  loss.commands = commands;
  return !loss.isLost;
}

void endServing() {
  Loss& loss = theLoss();
  const std::lock_guard hold(loss.mutex);
  loss.commands = nullptr;
}

void noteEngineReached() {
  Loss& loss = theLoss();
  const std::lock_guard hold(loss.mutex);
  loss.wasReached = true;
}

void endAfterLoss() {
  Loss& loss = theLoss();
  const std::lock_guard hold(loss.mutex);
  if (!loss.isLost) return;
  std::fflush(nullptr);
  os::EndWithChildren();
}

}  // namespace kova::program
