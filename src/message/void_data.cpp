#include "message/void_data.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace kova {

VoidData::VoidData(const VoidData& other) { *this = other; }

VoidData& VoidData::operator=(const VoidData& other) {
  if (this == &other) return *this;
  release();
  if (other.data_ == nullptr) return *this;
  if (!allocate(std::max(other.room_, other.length_))) throw std::bad_alloc();
  append(other.data_, other.length_);
  return *this;
}

VoidData::VoidData(VoidData&& other) noexcept { *this = std::move(other); }

VoidData& VoidData::operator=(VoidData&& other) noexcept {
  if (this == &other) return *this;
  owner_ = std::move(other.owner_);
  data_ = std::exchange(other.data_, nullptr);
  length_ = std::exchange(other.length_, 0);
  room_ = std::exchange(other.room_, 0);
  return *this;
}

void VoidData::adopt(void* data, int length) {
  release();
  Block block = Block::adopt(data, static_cast<std::size_t>(std::max(length, 0)));
  if (data != nullptr && length > 0) keepInside(std::move(block), static_cast<char*>(data), length);
}

bool VoidData::allocate(int size) {
  release();
  if (size <= 0) return true;
  Block block = Block::take(static_cast<std::size_t>(size));
  char* const data = block.data();
  if (data == nullptr) return false;
  keepInside(std::move(block), data, 0);
  room_ = size;
  return true;
}

void VoidData::append(const void* data, int n) {
  const int fitting = std::min(n, room_ - length_);
  if (data == nullptr || fitting <= 0) return;
  std::memcpy(data_ + length_, data, static_cast<std::size_t>(fitting));
  length_ += fitting;
}

void VoidData::borrow(const void* data, int length) {
  release();
  if (data == nullptr || length <= 0) return;
  // The bytes are only read: what may be written is told by `room_`.
  data_ = static_cast<char*>(const_cast<void*>(data));
  length_ = length;
}

void VoidData::keepInside(Block&& owner, char* data, int length) {
  release();
  owner_ = std::move(owner);
  data_ = data;
  length_ = length;
}

bool VoidData::copyOf(const void* data, int length) {
  if (!allocate(length)) return false;
  append(data, length);
  return true;
}

void VoidData::release() {
  owner_.release();
  data_ = nullptr;
  length_ = 0;
  room_ = 0;
}

}  // namespace kova
