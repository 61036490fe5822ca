#include "api/data_step_registry.h"

#include <algorithm>
#include <utility>

namespace kova {

DatastepDataSmb* DataStepRegistry::find(std::string_view name) noexcept {
  if (last_ < names_.size() && names_[last_] == name) return records_[last_].get();
  ++searches_;
  const auto found = std::find(names_.begin(), names_.end(), name);
  if (found == names_.end()) return nullptr;
  last_ = static_cast<std::size_t>(found - names_.begin());
  return records_[last_].get();
}

DatastepDataSmb* DataStepRegistry::add(std::string_view name, DatastepDataSmb record) {
  auto kept = std::make_unique<DatastepDataSmb>(std::move(record));
  // Room first, so that both lists grow or none does.
  records_.reserve(records_.size() + 1);
  names_.emplace_back(name);
  records_.push_back(std::move(kept));
  last_ = names_.size() - 1;
  return records_.back().get();
}

void DataStepRegistry::clear() {
  names_.clear();
  records_.clear();
  last_ = 0;
}

}  // namespace kova
