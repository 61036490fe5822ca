#include "api/client_state.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

#include "config/never_destroyed.h"

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
  char* const earlier = sharedText.exchange(nullptr);
  char* const block = static_cast<char*>(std::realloc(earlier, text.size() + 1));
  if (!block) {
    std::free(earlier);
    throw std::bad_alloc();
  }
  std::memcpy(block, text.c_str(), text.size() + 1);
  std::free(sharedText.exchange(block));
  return block;
}

void DropSharedText() { std::free(sharedText.exchange(nullptr)); }

ClientIdentity& StoredIdentity() {
  static NeverDestroyed<ClientIdentity> identity;
  return identity.object();
}

}  // namespace kova
