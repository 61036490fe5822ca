#include "api/client_state.h"

#include <cstdlib>
#include <cstring>
#include <new>

#include "config/never_destroyed.h"

namespace kova {
namespace {

std::atomic<bool> hostCreatedHere = false;
std::atomic<PeerWatch*> engineWatch = nullptr;
std::atomic<int> lastReceiveStatus = 0;
std::atomic<unsigned short*> wideText = nullptr;

// The shared text in one heap block: its room, then as many bytes.
struct SharedText {
  std::size_t room;

  char* text() { return reinterpret_cast<char*>(this + 1); }
};
std::atomic<SharedText*> sharedText = nullptr;

// A block with that much room: the earlier one when it suffices, else a new one in its place. Null without memory.
SharedText* roomFor(std::size_t size, SharedText* earlier) {
  if (earlier && earlier->room >= size) return earlier;
  std::free(earlier);
  auto* const block = static_cast<SharedText*>(std::malloc(sizeof(SharedText) + size));
  if (block) block->room = size;
  return block;
}

}  // namespace

void SetEngineRunning(bool running) { engineRunningFlag.store(running, std::memory_order_relaxed); }

bool IsHostCreatedHere() { return hostCreatedHere.load(std::memory_order_relaxed); }

void SetHostCreatedHere(bool created) { hostCreatedHere.store(created, std::memory_order_relaxed); }

PeerWatch* EngineWatch() { return engineWatch.load(std::memory_order_acquire); }

void SetEngineWatch(PeerWatch* watch) { engineWatch.store(watch, std::memory_order_release); }

int LastReceiveStatus() { return lastReceiveStatus.load(std::memory_order_relaxed); }

void SetLastReceiveStatus(int status) { lastReceiveStatus.store(status, std::memory_order_relaxed); }

char* KeepSharedText(const std::string& text) {
  SharedText* const block = roomFor(text.size() + 1, sharedText.exchange(nullptr));
  if (!block) throw std::bad_alloc();
  std::memcpy(block->text(), text.c_str(), text.size() + 1);
  std::free(sharedText.exchange(block));
  return block->text();
}

void DropSharedText() { std::free(sharedText.exchange(nullptr)); }

const unsigned short* KeepWideText(const WideUnit* text) {
  const std::size_t units = text ? std::char_traits<WideUnit>::length(text) : 0;
  auto* const copy = static_cast<unsigned short*>(std::calloc(units + 1, sizeof(WideUnit)));
  if (!copy) throw std::bad_alloc();
  if (units > 0) std::memcpy(copy, text, units * sizeof(WideUnit));
  std::free(wideText.exchange(copy));
  return copy;
}

void DropWideText() { std::free(wideText.exchange(nullptr)); }

ClientIdentity& StoredIdentity() {
  static NeverDestroyed<ClientIdentity> identity;
  return identity.object();
}

}  // namespace kova
