// One owned descriptor.
#ifndef KOVADX_PLATFORM_POSIX_DESCRIPTOR_POSIX_H
#define KOVADX_PLATFORM_POSIX_DESCRIPTOR_POSIX_H

#include <unistd.h>

#include <utility>

namespace kova::os {

class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { reset(); }

  int get() const { return number_; }
  int release() { return std::exchange(number_, -1); }
  void reset() {
    if (number_ >= 0) close(std::exchange(number_, -1));
  }
  explicit operator bool() const { return number_ >= 0; }

 private:
  int number_ = -1;
};

}  // namespace kova::os

#endif
