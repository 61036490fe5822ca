#include "api/client_state.h"

#include <atomic>
#include <cstdlib>

#include "api/caller_memory.h"

namespace kova {
namespace {

std::atomic<bool> engineRunning = false;
std::atomic<int> lastReceiveStatus = 0;
std::atomic<char*> sharedText = nullptr;

}  // namespace

bool IsEngineRunning() { return engineRunning.load(std::memory_order_relaxed); }

void SetEngineRunning(bool running) { engineRunning.store(running, std::memory_order_relaxed); }

int LastReceiveStatus() { return lastReceiveStatus.load(std::memory_order_relaxed); }

void SetLastReceiveStatus(int status) { lastReceiveStatus.store(status, std::memory_order_relaxed); }

const char* KeepSharedText(const std::string& text) {
  char* const copy = CopyForCaller(text);
  std::free(sharedText.exchange(copy));
  return copy;
}

void DropSharedText() { std::free(sharedText.exchange(nullptr)); }

ClientIdentity& StoredIdentity() {
  static ClientIdentity* const identity = new ClientIdentity;
  return *identity;
}

}  // namespace kova
