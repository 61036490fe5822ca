// Puts an element of a list to another position; those between the two move by one. Both positions exist.
#ifndef KOVADX_ENGINE_MOVE_ELEMENT_H
#define KOVADX_ENGINE_MOVE_ELEMENT_H

#include <algorithm>
#include <cstddef>
#include <vector>

namespace kova::engine {

template <typename Element>
void moveElement(std::vector<Element>* elements, std::size_t from, std::size_t to) {
  const auto at = [elements](std::size_t position) {
    return elements->begin() + static_cast<std::ptrdiff_t>(position);
  };
  if (from < to) std::rotate(at(from), at(from) + 1, at(to) + 1);
  if (to < from) std::rotate(at(to), at(from), at(from) + 1);
}

}  // namespace kova::engine

#endif
