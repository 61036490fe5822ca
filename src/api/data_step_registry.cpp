#include "api/data_step_registry.h"

#include <algorithm>
#include <utility>

namespace kova {

DatastepDataSmb* DataStepRegistry::find(std::string_view name) {
  if (lastRecord_ && lastName_ == name) return lastRecord_;
  ++searches_;
  const auto found = std::find(names_.begin(), names_.end(), name);
  if (found == names_.end()) return nullptr;
  lastName_ = name;
  lastRecord_ = records_[static_cast<std::size_t>(found - names_.begin())].get();
  return lastRecord_;
}

DatastepDataSmb* DataStepRegistry::add(std::string_view name, DatastepDataSmb record) {
  auto kept = std::make_unique<DatastepDataSmb>(std::move(record));
  names_.emplace_back(name);
  try {
    records_.push_back(std::move(kept));
  } catch (...) {
    names_.pop_back();
    throw;
  }
  return records_.back().get();
}

void DataStepRegistry::clear() {
  names_.clear();
  records_.clear();
  lastName_.clear();
  lastRecord_ = nullptr;
}

}  // namespace kova
