// Pipes without a name: bytes in one direction, from this process to a standard stream of one that it starts, or back.
//
// Results are Windows error numbers, 0 for success.
#ifndef KOVADX_PLATFORM_OS_BYTE_PIPE_H
#define KOVADX_PLATFORM_OS_BYTE_PIPE_H

#include <cstdint>
#include <utility>

#include "platform/os/error.h"

namespace kova::os {

// One end of such a pipe. Owns its handle, which no child process gets, save the one that Process::Start is told of.
// One thread at a time uses an end, save for DeclarePeerGone.
class BytePipeEnd {
 public:
  BytePipeEnd() = default;
  BytePipeEnd(BytePipeEnd&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  BytePipeEnd& operator=(BytePipeEnd&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  BytePipeEnd(const BytePipeEnd&) = delete;
  BytePipeEnd& operator=(const BytePipeEnd&) = delete;

  // Closes the end: the other one learns it when it has read what was written, or when it writes.
  ~BytePipeEnd();

  // Makes a pipe: what is written at the one end is read at the other.
  static Error Create(BytePipeEnd* reader, BytePipeEnd* writer);

  // Reads what has come, at most `size` bytes (more than 0), and waits for the first; *read is 0 on a failure. 109 when
  // everything is read and all writing ends are closed.
  Error Read(void* buffer, std::uint32_t size, std::uint32_t* read);

  // Writes all the bytes and waits while the pipe is full. 232 when the reading end is closed: no signal is raised.
  Error Write(const void* data, std::uint32_t size);

  // Reading end, on any thread: tells that nobody will write any more, although somebody may still hold a writing end.
  // The read under way and all later ones give what has come, then 109.
  void DeclarePeerGone();

  // True when an end is held.
  explicit operator bool() const { return handle_ != nullptr; }

 private:
  friend class Process;  // Whose children get the handle.

  void* handle_ = nullptr;
};

}  // namespace kova::os

#endif
