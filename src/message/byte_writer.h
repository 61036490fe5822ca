// Writes fields one behind the other into a buffer whose exact size was computed before.
#ifndef KOVADX_MESSAGE_BYTE_WRITER_H
#define KOVADX_MESSAGE_BYTE_WRITER_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kova {

// The wire is little-endian. A platform of the other order needs a swap in ByteReader and ByteWriter and nowhere else.
static_assert(std::endian::native == std::endian::little);

// Points into a buffer of the caller, who guarantees the room.
class ByteWriter {
 public:
  explicit ByteWriter(char* begin) : at_(begin) {}

  void putInt(std::int32_t value) { put(&value, sizeof value); }
  void putDouble(double value) { put(&value, sizeof value); }
  void putCount(std::size_t count) { putInt(static_cast<std::int32_t>(count)); }
  void putText(const char* bytes, std::size_t length) {
    putCount(length);
    if (length <= kShort) return putShort(bytes, length);
    put(bytes, length);
  }
  // `bytes` may be null when `length` is 0.
  void put(const void* bytes, std::size_t length) {
    if (length == 0) return;
    std::memcpy(at_, bytes, length);
    at_ += length;
  }
  const char* position() const { return at_; }

 private:
  static constexpr std::size_t kShort = 16;

  // Most texts are names of a few bytes. Two overlapping copies of a fixed size are cheaper than a call of memcpy.
  void putShort(const char* bytes, std::size_t length) {
    if (length >= sizeof(std::uint64_t)) {
      putOverlapping<std::uint64_t>(bytes, length);
    } else if (length >= sizeof(std::uint32_t)) {
      putOverlapping<std::uint32_t>(bytes, length);
    } else {
      for (std::size_t i = 0; i < length; ++i) at_[i] = bytes[i];
    }
    at_ += length;
  }
  template <typename Word>
  void putOverlapping(const char* bytes, std::size_t length) {
    Word first;
    Word last;
    std::memcpy(&first, bytes, sizeof first);
    std::memcpy(&last, bytes + length - sizeof last, sizeof last);
    std::memcpy(at_, &first, sizeof first);
    std::memcpy(at_ + length - sizeof last, &last, sizeof last);
  }

  char* at_;
};

}  // namespace kova

#endif
