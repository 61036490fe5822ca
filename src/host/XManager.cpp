#include "host/XManager.h"

#include <memory>
#include <utility>

namespace {

XManager* theManager = nullptr;

}  // namespace

XManager::XManager() = default;

XManager::~XManager() { cleanup(); }

void XManager::addStatisticsX(const std::string& name, StatisticsX* host) {
  std::unique_ptr<StatisticsX> taken(host);
  std::unique_ptr<StatisticsX>& entry = hosts_[name];
  if (entry.get() == host) {
    static_cast<void>(taken.release());
    return;
  }
  // The old host ends before anyone can see the new one; its destructor finds no host of its name.
  std::exchange(entry, nullptr).reset();
  entry = std::move(taken);
}

StatisticsX* XManager::getStatisticsX(const std::string& name) const {
  const auto found = hosts_.find(name);
  return found == hosts_.end() ? nullptr : found->second.get();
}

void XManager::destoryStatisticsX(const std::string& name) { hosts_.erase(name); }

void XManager::stopX() {
  for (auto& [name, host] : hosts_) host.reset();
  hosts_.clear();
}

void XManager::cleanup() { stopX(); }

XManager* GetXManager() { return theManager; }

void SetXManager(XManager* manager) { theManager = manager; }
