// The variables of a data set in their order, with an index of their names.
//
// A plain value that owns them; its data set holds it. One thread at a time uses it.
#ifndef KOVADX_ENGINE_VARIABLES_H
#define KOVADX_ENGINE_VARIABLES_H

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "engine/text_rules.h"
#include "engine/variable.h"

namespace kova::engine {

class Variables {
 public:
  Variables() = default;
  Variables(std::initializer_list<Variable> variables);

  std::size_t size() const { return variables_.size(); }
  const Variable& operator[](std::size_t position) const { return variables_[position]; }
  const Variable& at(std::size_t position) const { return variables_.at(position); }
  auto begin() const { return variables_.begin(); }
  auto end() const { return variables_.end(); }

  // The position of the variable that has this name.
  std::optional<std::size_t> find(std::string_view name) const;

  // Adds a variable behind the others; its name must be new.
  void push_back(Variable variable);

  // Adds variables in front of the one at a position, which may be size(). Their names must be new and differ.
  void insert(std::size_t position, std::vector<Variable> variables);

  // Positions rise. Throws nothing.
  void erase(std::span<const std::size_t> positions);

  // Puts a variable to another position; those between the two move by one.
  void move(std::size_t from, std::size_t to);

  // The variable to be changed in anything but its name, for which there is rename.
  Variable& change(std::size_t position) { return variables_[position]; }

  // The name must be new, but may differ from the old one in case alone.
  void rename(std::size_t position, std::string name);

  bool operator==(const Variables& other) const { return variables_ == other.variables_; }

 private:
  void renumber(std::size_t first);

  std::vector<Variable> variables_;
  std::unordered_map<std::string, std::size_t, NameHash, NameEqual> positions_;
};

}  // namespace kova::engine

#endif
