// One heap buffer of a message's size: move-only, not zero-filled, made by malloc.
//
// Large blocks are worth keeping: a fresh buffer of 20 MiB costs thousands of page faults. A large block that is
// released goes into a process-wide place for one spare block, and the next `take` that it is large enough for gets it.
// A block has one owner and is used by one thread at a time; `take` and the destructor may run on any threads at once.
#ifndef KOVADX_MESSAGE_BLOCK_H
#define KOVADX_MESSAGE_BLOCK_H

#include <cstddef>
#include <utility>

#include "export.h"

namespace kova {

class KOVADX_API Block {
 public:
  // Blocks from this size on are kept as the spare one, up to the other size: memory that nobody uses stays bounded.
  static constexpr std::size_t kSmallestKept = std::size_t{64} << 10;
  static constexpr std::size_t kLargestKept = std::size_t{64} << 20;

  Block() = default;
  Block(Block&& other) noexcept
      : data_(std::exchange(other.data_, nullptr)),
        size_(std::exchange(other.size_, 0)),
        capacity_(std::exchange(other.capacity_, 0)) {}
  Block& operator=(Block&& other) noexcept {
    if (this == &other) return *this;
    release();
    data_ = std::exchange(other.data_, nullptr);
    size_ = std::exchange(other.size_, 0);
    capacity_ = std::exchange(other.capacity_, 0);
    return *this;
  }
  Block(const Block&) = delete;
  Block& operator=(const Block&) = delete;
  ~Block() {
    if (data_ != nullptr) giveBack();
  }

  // A block of `size` bytes with undefined content; its data() is null when there is no memory. A size of 0 gives a
  // block whose data() is not null.
  static Block take(std::size_t size);
  // Takes over a buffer that the caller made with malloc. It is released with free and never kept as the spare block.
  static Block adopt(void* data, std::size_t size);

  char* data() const { return data_; }
  std::size_t size() const { return size_; }
  // How far the block may grow in place, at least size(); 0 for an adopted one.
  std::size_t capacity() const { return capacity_; }

  // Makes the block `size` bytes long: in place when the capacity suffices, else with a new buffer. The content is
  // undefined afterwards. False when there is no memory; the block is empty then.
  bool resize(std::size_t size);
  // Leaves the block empty. Inline, because a message has several blocks and most of them are empty.
  void release() {
    if (data_ != nullptr) giveBack();
    data_ = nullptr;
    size_ = 0;
    capacity_ = 0;
  }

 private:
  Block(char* data, std::size_t size, std::size_t capacity) : data_(data), size_(size), capacity_(capacity) {}
  void giveBack();

  char* data_ = nullptr;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace kova

#endif
