// Takes elements out of a list; those behind them move up. The positions rise, and exist.
#ifndef KOVADX_ENGINE_ERASE_ELEMENTS_H
#define KOVADX_ENGINE_ERASE_ELEMENTS_H

#include <cstddef>
#include <span>
#include <utility>
#include <vector>

namespace kova::engine {

template <typename Element>
void eraseElements(std::vector<Element>* elements, std::span<const std::size_t> positions) {
  if (positions.empty()) return;
  auto next = positions.begin();
  auto kept = elements->begin() + static_cast<std::ptrdiff_t>(positions.front());
  for (std::size_t i = positions.front(); i < elements->size(); ++i) {
    if (next != positions.end() && *next == i) {
      ++next;
    } else {
      *kept++ = std::move((*elements)[i]);
    }
  }
  elements->erase(kept, elements->end());
}

}  // namespace kova::engine

#endif
