// A byte buffer that a message or an item owns: copied deeply, moved cheaply, reused while it is large enough.
#ifndef KOVADX_MESSAGE_HELD_BYTES_H
#define KOVADX_MESSAGE_HELD_BYTES_H

#include <cstddef>

#include "message/block.h"

namespace kova {

class KOVADX_API HeldBytes {
 public:
  HeldBytes() = default;
  HeldBytes(const HeldBytes& other);
  HeldBytes& operator=(const HeldBytes& other);
  HeldBytes(HeldBytes&&) noexcept = default;
  HeldBytes& operator=(HeldBytes&&) noexcept = default;
  ~HeldBytes() = default;

  // Makes room for exactly `size` bytes with undefined content. Null, and nothing held, when there is no memory.
  char* resize(std::size_t size) { return block_.resize(size) ? block_.data() : nullptr; }
  void release() { block_.release(); }

  bool held() const { return block_.data() != nullptr; }
  char* data() const { return block_.data(); }
  std::size_t size() const { return block_.size(); }

 private:
  Block block_;
};

}  // namespace kova

#endif
