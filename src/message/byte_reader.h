// Reads fields one behind the other and never beyond what is there.
#ifndef KOVADX_MESSAGE_BYTE_READER_H
#define KOVADX_MESSAGE_BYTE_READER_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "message/byte_writer.h"

namespace kova {

// Points into a buffer of the caller. Each read checks in 64 bits that the field is there; a read that fails stores
// nothing and moves nothing. Of a message that was cut short only the first `arrived` of the bytes are the sender's,
// the rest is zeros: those read as numbers and texts like any others, but no list is filled with items made of them
// alone.
class ByteReader {
 public:
  ByteReader(const void* begin, std::int64_t available) : ByteReader(begin, available, available) {}
  ByteReader(const void* begin, std::int64_t available, std::int64_t arrived)
      : at_(static_cast<const char*>(begin)), left_(available), missing_(available - arrived) {}

  bool readInt(std::int32_t& value) { return read(&value, sizeof value); }
  bool readDouble(double& value) { return read(&value, sizeof value); }

  // A count is believed only when that many items, each of at least `smallestItem` bytes, fit in what is left.
  bool readCount(std::int64_t smallestItem, std::int32_t& count) {
    std::int32_t value = 0;
    if (left_ < kIntLength) return false;
    std::memcpy(&value, at_, sizeof value);
    if (value < 0 || value * smallestItem > left_ - kIntLength) return false;
    skip(kIntLength);
    count = value;
    return true;
  }

  // Whether the next field begins with a byte that the sender wrote.
  bool hasArrived() const { return left_ > missing_; }
  // How many of `count` items, each of at least `smallestItem` bytes, can begin with such a byte: a list's first room.
  std::size_t likely(std::int32_t count, std::int64_t smallestItem) const {
    const std::int64_t most = hasArrived() ? (left_ - missing_) / smallestItem + 1 : 0;
    return static_cast<std::size_t>(count < most ? count : most);
  }

  // A byte length and that many bytes, which stay where they lie.
  bool readText(const char*& bytes, std::int32_t& length) {
    if (!readCount(1, length)) return false;
    bytes = at_;
    skip(length);
    return true;
  }

  // Exactly `length` bytes into `target`, which may be null when `length` is 0.
  bool read(void* target, std::int64_t length) {
    if (left_ < length) return false;
    if (length > 0) std::memcpy(target, at_, static_cast<std::size_t>(length));
    skip(length);
    return true;
  }

  const char* position() const { return at_; }
  std::int64_t left() const { return left_; }

 private:
  static constexpr std::int64_t kIntLength = 4;

  void skip(std::int64_t length) {
    at_ += length;
    left_ -= length;
  }

  const char* at_;
  std::int64_t left_;
  std::int64_t missing_;
};

}  // namespace kova

#endif
