#include "host/XManager.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "trace/DxTracer.h"
#include "transport/XPipeManager.h"
#include "transport/XPipeSuit.h"

namespace {

XManager* theManager = nullptr;

// The pipes of a runner's language; null without a pipe manager.
XPipeSuit* suiteOf(const DriveX& runner) {
  XPipeManager* const manager = GetXPipeManager();
  return manager != nullptr ? manager->getPipeSuit(runner.XName()) : nullptr;
}

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

void XManager::addKovaDX(DriveX* runner) {
  if (runner == nullptr) return;
  std::unique_ptr<DriveX> taken(runner);
  if (DxTracer* const tracer = GetDxTracer()) tracer->setXName(runner->XName());
  if (XPipeSuit* const suite = suiteOf(*runner)) {
    suite->increaseIndex();
    runner->setIndex(suite->getIndex());
  }
  runners_.push_back(std::move(taken));
}

DriveX* XManager::getBackKovaDX() const { return runners_.empty() ? nullptr : runners_.back().get(); }

bool XManager::releaseRunners() const {
  for (const auto& runner : runners_) runner->release();
  return std::all_of(runners_.begin(), runners_.end(), [](const auto& runner) { return runner->isStopped(); });
}

void XManager::destoryKovaDX(DriveX* runner) {
  if (runner == nullptr || runner != getBackKovaDX()) return;
  runner->endThread();  // It uses the pipes that go with the index.
  if (XPipeSuit* const suite = suiteOf(*runner)) suite->decreaseIndex();
  runners_.pop_back();
}

void XManager::cleanup() {
  // A thread that still runs uses its host.
  for (auto runner = runners_.rbegin(); runner != runners_.rend(); ++runner) (*runner)->endThread();
  stopX();
  while (DriveX* const runner = getBackKovaDX()) destoryKovaDX(runner);
}

XManager* GetXManager() { return theManager; }

void SetXManager(XManager* manager) { theManager = manager; }
