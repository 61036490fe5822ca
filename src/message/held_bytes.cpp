#include "message/held_bytes.h"

#include <cstring>
#include <new>

namespace kova {

HeldBytes::HeldBytes(const HeldBytes& other) { *this = other; }

HeldBytes& HeldBytes::operator=(const HeldBytes& other) {
  if (this == &other) return *this;
  if (!other.held()) {
    release();
    return *this;
  }
  char* const bytes = resize(other.size());
  if (bytes == nullptr) throw std::bad_alloc();
  std::memcpy(bytes, other.data(), other.size());
  return *this;
}

}  // namespace kova
