// Finds the name that somebody probably meant.
#ifndef KOVADX_ENGINE_NEAR_NAME_H
#define KOVADX_ENGINE_NEAR_NAME_H

#include <cstddef>
#include <string>
#include <string_view>

namespace kova::engine {

// Is shown one candidate after the other and keeps the nearest. One thread at a time uses it; it refers to the name.
class NearName {
 public:
  explicit NearName(std::string_view name) : name_(name) {}

  void look(std::string_view candidate);

  // The candidate that fewest letters part from the name, at most two of them and fewer than the name has; else the
  // first one that begins with the name, when that has three letters or more. Empty when there is none.
  const std::string& found() const { return nearest_.empty() ? longer_ : nearest_; }

 private:
  std::string_view name_;
  std::string nearest_;
  std::string longer_;
  std::size_t least_ = 3;
};

}  // namespace kova::engine

#endif
