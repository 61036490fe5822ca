#include "engine/variables.h"

#include <utility>

namespace kova::engine {

Variables::Variables(std::initializer_list<Variable> variables) {
  for (const Variable& variable : variables) push_back(variable);
}

std::optional<std::size_t> Variables::find(std::string_view name) const {
  const auto found = positions_.find(name);
  if (found == positions_.end()) return std::nullopt;
  return found->second;
}

void Variables::push_back(Variable variable) {
  std::string name = variable.name;
  variables_.push_back(std::move(variable));
  try {
    positions_.emplace(std::move(name), variables_.size() - 1);
  } catch (...) {
    variables_.pop_back();
    throw;
  }
}

// What may throw comes first, so that a failure changes nothing.
void Variables::rename(std::size_t position, std::string name) {
  std::string& old = variables_[position].name;
  if (!sameName(old, name)) {
    positions_.emplace(name, position);
    positions_.erase(positions_.find(old));
  }
  old = std::move(name);
}

}  // namespace kova::engine
