#include "transport/XPipeSuit.h"

#include "transport/DXCmdDispatcher.h"
#include "transport/MonitorThread.h"
#include "transport/XPipeManager.h"
#include "transport/XPipes.h"

XPipeSuit::XPipeSuit(const std::string& name, XPipeManager* manager) : name_(name), manager_(manager) {}

XPipeSuit::~XPipeSuit() {
  while (!sets_.empty()) sets_.pop_back();
  dispatcher_.reset();
  parentToChild_.reset();
  childToParent_.reset();
}

std::string XPipeSuit::getPipeNamePrefix() const { return "\\\\.\\pipe\\" + manager_->getPipePid() + name_; }

void XPipeSuit::increaseIndex() {
  ++index_;
  while (static_cast<int>(sets_.size()) < index_ + 1) {
    sets_.push_back(std::make_unique<XPipes>(getPipeNamePrefix() + std::to_string(index_)));
  }
}

void XPipeSuit::decreaseIndex() {
  const int before = index_--;
  if (sets_.size() > 1 && static_cast<int>(sets_.size()) > before) sets_.pop_back();
}

XPipes* XPipeSuit::getXPipes() { return getXPipes(index_); }

XPipes* XPipeSuit::getXPipes(int index) {
  if (index < 0 || index > index_ || index >= static_cast<int>(sets_.size())) return nullptr;
  return sets_[static_cast<std::size_t>(index)].get();
}

XPipes* XPipeSuit::getLastXPipes() {
  if (index_ >= 0) return getXPipes();
  return sets_.empty() ? nullptr : sets_.front().get();
}

DXCmdDispatcher* XPipeSuit::getCmdDispatcher(bool flag) {
  if (!dispatcher_) dispatcher_ = std::make_unique<DXCmdDispatcher>(getPipeNamePrefix(), flag);
  return dispatcher_.get();
}

void XPipeSuit::dropCmdDispatcher() { dispatcher_.reset(); }

MonitorThread* XPipeSuit::startMonitor(bool parentToChild, void* context) {
  std::unique_ptr<MonitorThread>& place = monitor(parentToChild);
  if (place) return place.get();
  const int role = parentToChild ? MonitorThread::kReader : MonitorThread::kWriter;
  place = std::make_unique<MonitorThread>(getPipeNamePrefix() + (parentToChild ? "P2C" : "C2P"), role);
  place->setEndCallback(reinterpret_cast<MonitorThread::EndCallback>(context));
  place->Start();
  return place.get();
}

int XPipeSuit::stopMonitor(bool parentToChild) {
  if (MonitorThread* const present = getMonitor(parentToChild)) present->stop();
  return 0;
}

MonitorThread* XPipeSuit::getMonitor(bool parentToChild) { return monitor(parentToChild).get(); }
