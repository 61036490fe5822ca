// The raw block of a message: adopted from the caller, allocated here, borrowed, or part of a received buffer.
#ifndef KOVADX_MESSAGE_VOID_DATA_H
#define KOVADX_MESSAGE_VOID_DATA_H

#include <cstddef>

#include "message/block.h"

namespace kova {

// Owned by its message. Copies are deep, whatever the source held. Every operation that sets a block first releases
// the one before; lengths below 0 count as 0.
class KOVADX_API VoidData {
 public:
  VoidData() = default;
  VoidData(const VoidData& other);
  VoidData& operator=(const VoidData& other);
  VoidData(VoidData&& other) noexcept;
  VoidData& operator=(VoidData&& other) noexcept;
  ~VoidData() = default;

  // Takes over a malloc block; null or a length of 0 means none (a block is released even then).
  void adopt(void* data, int length);
  // Makes room for `size` bytes and holds none of them yet. False when there is no memory.
  bool allocate(int size);
  // Copies what fits of n bytes behind those held.
  void append(const void* data, int n);
  // Points at bytes of the caller, who keeps them.
  void borrow(const void* data, int length);
  // Points at bytes inside `owner`, which is kept until this data is released.
  void keepInside(Block&& owner, char* data, int length);
  // Holds a copy of the bytes. False when there is no memory.
  bool copyOf(const void* data, int length);
  void release();

  void* data() const { return data_; }
  int length() const { return length_; }

 private:
  Block owner_;
  char* data_ = nullptr;
  int length_ = 0;
  int room_ = 0;  // Bytes that `append` may fill, the filled ones included; 0 for a block that is not ours to fill.
};

}  // namespace kova

#endif
