// A growing list of plain numbers that is cheap at both ends of its range: a few values need no allocation at all, and
// room for many is given with undefined content, so that bytes can be copied into it once. (Zero-filling first would
// cost more than half of the copy itself.)
#ifndef KOVADX_MESSAGE_PLAIN_LIST_H
#define KOVADX_MESSAGE_PLAIN_LIST_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

namespace kova {

// A value type: copies are deep. Growing may throw std::bad_alloc and leaves the list as it was then. `clear` keeps the
// room. Pointers into the list are valid until it grows or moves.
template <typename T>
class PlainList {
 public:
  static_assert(std::is_trivially_copyable_v<T>);

  PlainList() = default;
  PlainList(const PlainList& other) { append(other.data(), other.size_); }
  PlainList& operator=(const PlainList& other) {
    if (this == &other) return *this;
    clear();
    append(other.data(), other.size_);
    return *this;
  }
  PlainList(PlainList&& other) noexcept { take(other); }
  PlainList& operator=(PlainList&& other) noexcept {
    if (this == &other) return *this;
    std::free(heap_);
    take(other);
    return *this;
  }
  ~PlainList() { std::free(heap_); }

  void push_back(T value) { *grow(1) = value; }
  // The source must not lie in the list itself.
  void append(const T* values, std::size_t count) {
    T* const place = grow(count);
    if (count > 0) std::memcpy(place, values, count * sizeof(T));
  }
  // Makes the list longer by `count` undefined values and returns the first of them.
  T* grow(std::size_t count) {
    if (count > capacity_ - size_) enlarge(count);
    T* const place = data() + size_;
    size_ += count;
    return place;
  }
  void clear() { size_ = 0; }

  bool empty() const { return size_ == 0; }
  std::size_t size() const { return size_; }
  T* data() { return heap_ != nullptr ? heap_ : near_; }
  const T* data() const { return heap_ != nullptr ? heap_ : near_; }
  T& operator[](std::size_t index) { return data()[index]; }
  const T& operator[](std::size_t index) const { return data()[index]; }
  const T& front() const { return *data(); }
  const T* begin() const { return data(); }
  const T* end() const { return data() + size_; }

 private:
  static constexpr std::size_t kNear = 32 / sizeof(T);
  static constexpr std::size_t kSmallestHeap = 256 / sizeof(T);
  static constexpr std::size_t kMost = PTRDIFF_MAX / sizeof(T);

  void enlarge(std::size_t count) {
    if (count > kMost - size_) throw std::bad_alloc();
    const std::size_t wanted = std::min(std::max({size_ + count, 2 * capacity_, kSmallestHeap}), kMost);
    auto* const larger = static_cast<T*>(std::realloc(heap_, wanted * sizeof(T)));
    if (larger == nullptr) throw std::bad_alloc();
    if (heap_ == nullptr && size_ > 0) std::memcpy(larger, near_, size_ * sizeof(T));
    heap_ = larger;
    capacity_ = wanted;
  }

  void take(PlainList& other) {
    heap_ = std::exchange(other.heap_, nullptr);
    size_ = std::exchange(other.size_, 0);
    capacity_ = std::exchange(other.capacity_, kNear);
    std::memcpy(near_, other.near_, sizeof near_);
  }

  T* heap_ = nullptr;  // Made by malloc; null while the values fit into `near_`.
  std::size_t size_ = 0;
  std::size_t capacity_ = kNear;
  T near_[kNear] = {};
};

}  // namespace kova

#endif
