#include "transport/XPipeSuit.h"

#include "transport/XPipeManager.h"
#include "transport/XPipes.h"

XPipeSuit::XPipeSuit(const std::string& name, XPipeManager* manager) : name_(name), manager_(manager) {}

XPipeSuit::~XPipeSuit() {
  while (!sets_.empty()) sets_.pop_back();
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
