#include "engine/variables.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "engine/erase_elements.h"
#include "engine/move_element.h"

namespace kova::engine {
namespace {

// Grows by doubling, so that variables which are added one after the other cost no copy each.
void makeRoom(std::vector<Variable>* variables, std::size_t more) {
  const std::size_t needed = variables->size() + more;
  if (needed > variables->capacity()) variables->reserve(std::max(needed, 2 * variables->capacity()));
}

}  // namespace

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

// What may throw comes first, so that a failure changes nothing: the names, then the room.
void Variables::insert(std::size_t position, std::vector<Variable> variables) {
  std::size_t named = 0;
  try {
    for (; named < variables.size(); ++named) positions_.emplace(variables[named].name, 0);
    makeRoom(&variables_, variables.size());
  } catch (...) {
    while (named > 0) positions_.erase(variables[--named].name);
    throw;
  }
  variables_.insert(variables_.begin() + static_cast<std::ptrdiff_t>(position),
                    std::make_move_iterator(variables.begin()), std::make_move_iterator(variables.end()));
  renumber(position);
}

void Variables::erase(std::span<const std::size_t> positions) {
  if (positions.empty()) return;
  for (const std::size_t position : positions) positions_.erase(positions_.find(variables_[position].name));
  eraseElements(&variables_, positions);
  renumber(positions.front());
}

void Variables::move(std::size_t from, std::size_t to) {
  moveElement(&variables_, from, to);
  renumber(std::min(from, to));
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

void Variables::renumber(std::size_t first) {
  for (std::size_t i = first; i < variables_.size(); ++i) positions_.find(variables_[i].name)->second = i;
}

}  // namespace kova::engine
