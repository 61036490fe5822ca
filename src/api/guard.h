// Where exceptions end: every exported function that may throw runs its body in here.
#ifndef KOVADX_API_GUARD_H
#define KOVADX_API_GUARD_H

#include <utility>

namespace kova {

// What a call gives when memory runs out, the one reason for which the library's own code throws.
constexpr int kNotEnoughMemory = 8;

// The body's result, or 8 when it throws.
template <class Body>
int Guarded(Body&& body) noexcept {
  try {
    return std::forward<Body>(body)();
  } catch (...) {
    return kNotEnoughMemory;
  }
}

}  // namespace kova

#endif
