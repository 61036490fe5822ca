#include "transport/XPipeManager.h"

#include <algorithm>

#include "transport/XPipeSuit.h"

namespace {

XPipeManager* currentManager = nullptr;

template <typename Suits>
auto findSuit(Suits& suits, const std::string& name) {
  return std::find_if(suits.begin(), suits.end(), [&name](const auto& suit) { return suit->XName() == name; });
}

}  // namespace

XPipeManager::XPipeManager(const std::string& pipePath, const std::string& pipePid)
    : pipePath_(pipePath), pipePid_(pipePid) {}

XPipeManager::~XPipeManager() = default;

XPipeSuit* XPipeManager::getPipeSuit(const std::string& name) {
  const auto found = findSuit(suits_, name);
  if (found != suits_.end()) return found->get();
  return suits_.emplace_back(std::make_unique<XPipeSuit>(name, this)).get();
}

void XPipeManager::removePipeSuit(const std::string& name) {
  const auto found = findSuit(suits_, name);
  if (found != suits_.end()) suits_.erase(found);
}

void XPipeManager::cleanup() { suits_.clear(); }

XPipeManager* GetXPipeManager() { return currentManager; }

void SetXPipeManager(XPipeManager* manager) { currentManager = manager; }
