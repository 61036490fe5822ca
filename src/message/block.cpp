#include "message/block.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace kova {
namespace {

// The place for one spare block. The block's capacity stands in its own first bytes while it waits here.
class SpareBlock {
 public:
  constexpr SpareBlock() = default;
  SpareBlock(const SpareBlock&) = delete;
  SpareBlock& operator=(const SpareBlock&) = delete;
  ~SpareBlock() { std::free(waiting_.exchange(nullptr)); }

  // The spare block when it is large enough, else null. One that is too small is freed: larger ones are asked for now.
  char* take(std::size_t size, std::size_t& capacity) {
    char* const data = waiting_.exchange(nullptr, std::memory_order_acquire);
    if (data == nullptr) return nullptr;
    capacity = capacityOf(data);
    if (capacity >= size) return data;
    std::free(data);
    return nullptr;
  }

  // Keeps the larger one of the block waiting here and this one; frees the other.
  void give(char* data, std::size_t capacity) {
    std::memcpy(data, &capacity, sizeof capacity);
    char* other = waiting_.exchange(nullptr, std::memory_order_acquire);
    if (other != nullptr && capacityOf(other) > capacity) std::swap(other, data);
    std::free(other);
    std::free(waiting_.exchange(data, std::memory_order_acq_rel));
  }

 private:
  static std::size_t capacityOf(const char* data) {
    std::size_t capacity = 0;
    std::memcpy(&capacity, data, sizeof capacity);
    return capacity;
  }

  std::atomic<char*> waiting_ = nullptr;
};

constinit SpareBlock spareBlock;

}  // namespace

Block Block::take(std::size_t size) {
  std::size_t capacity = size;
  char* data = size >= kSmallestKept ? spareBlock.take(size, capacity) : nullptr;
  if (data != nullptr) return Block(data, size, capacity);
  data = static_cast<char*>(std::malloc(size > 0 ? size : 1));
  return data != nullptr ? Block(data, size, size) : Block();
}

Block Block::adopt(void* data, std::size_t size) { return Block(static_cast<char*>(data), size, 0); }

bool Block::resize(std::size_t size) {
  if (data_ != nullptr && size <= capacity_) {
    size_ = size;
    return true;
  }
  release();
  *this = take(size);
  return data_ != nullptr;
}

void Block::giveBack() {
  if (capacity_ >= kSmallestKept && capacity_ <= kLargestKept) {
    spareBlock.give(data_, capacity_);
  } else {
    std::free(data_);
  }
}

}  // namespace kova
