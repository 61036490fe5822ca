#include "platform/win32/byte_pipe_win32.h"

#include <algorithm>
#include <mutex>
#include <new>
#include <utility>

#include "platform/os/byte_pipe.h"
#include "platform/win32/blocking_call_win32.h"

namespace kova::os {
namespace {

constexpr DWORD kRoom = 64 << 10;  // What a pipe takes in before its reader reads.

struct End {
  explicit End(HANDLE systemHandle) : handle(systemHandle) {}
  End(const End&) = delete;
  End& operator=(const End&) = delete;
  ~End() { CloseHandle(handle); }

  const HANDLE handle;

  std::mutex guard;  // Of the next two.
  DWORD blockedThread = 0;
  bool peerGone = false;
};

End* endOf(void* handle) { return static_cast<End*>(handle); }

// Says for its life that this thread may be blocked in a read, unless there is nobody to wait for.
class Blocked {
 public:
  explicit Blocked(End& end) : end_(end) {
    const std::lock_guard<std::mutex> lock(end_.guard);
    mayWait_ = !end_.peerGone;
    if (mayWait_) end_.blockedThread = GetCurrentThreadId();
  }
  Blocked(const Blocked&) = delete;
  Blocked& operator=(const Blocked&) = delete;
  ~Blocked() {
    const std::lock_guard<std::mutex> lock(end_.guard);
    end_.blockedThread = 0;
  }

  bool mayWait() const { return mayWait_; }

 private:
  End& end_;
  bool mayWait_ = false;
};

// As the system reads: the wait for the first byte may be cancelled, and a write of no bytes is read as such.
Error readOnce(HANDLE handle, void* buffer, DWORD size, DWORD* count) {
  return resultOf(ReadFile(handle, buffer, size, count, nullptr));
}

Error readWhatHasCome(HANDLE handle, void* buffer, DWORD size, DWORD* count) {
  DWORD available = 0;
  const Error error = resultOf(PeekNamedPipe(handle, nullptr, 0, nullptr, &available, nullptr));
  if (error) return error;
  return available == 0 ? kBrokenPipe : readOnce(handle, buffer, std::min(size, available), count);
}

Error readSome(End& end, void* buffer, DWORD size, DWORD* count) {
  {
    const Blocked blocked(end);
    if (blocked.mayWait()) {
      const Error error = readOnce(end.handle, buffer, size, count);
      if (error != kOperationAborted) return error;
    }
  }
  return readWhatHasCome(end.handle, buffer, size, count);
}

}  // namespace

HANDLE systemHandleOfBytePipe(const void* handle) {
  return handle == nullptr ? nullptr : static_cast<const End*>(handle)->handle;
}

BytePipeEnd::~BytePipeEnd() { delete endOf(handle_); }

Error BytePipeEnd::Create(BytePipeEnd* reader, BytePipeEnd* writer) {
  HANDLE in = nullptr;
  HANDLE out = nullptr;
  if (!CreatePipe(&in, &out, nullptr, kRoom)) return lastError();
  BytePipeEnd newReader;
  BytePipeEnd newWriter;
  newReader.handle_ = new (std::nothrow) End(in);
  if (!newReader) CloseHandle(in);
  newWriter.handle_ = new (std::nothrow) End(out);
  if (!newWriter) CloseHandle(out);
  if (!newReader || !newWriter) return kNotEnoughMemory;
  *reader = std::move(newReader);
  *writer = std::move(newWriter);
  return kSuccess;
}

Error BytePipeEnd::Read(void* buffer, std::uint32_t size, std::uint32_t* read) {
  *read = 0;
  if (handle_ == nullptr) return kInvalidHandle;
  DWORD count = 0;
  Error error = kSuccess;
  while (error == kSuccess && count == 0) error = readSome(*endOf(handle_), buffer, size, &count);
  if (error == kSuccess) *read = count;
  return error;
}

Error BytePipeEnd::Write(const void* data, std::uint32_t size) {
  if (handle_ == nullptr) return kInvalidHandle;
  const char* next = static_cast<const char*>(data);
  while (size > 0) {
    DWORD count = 0;
    if (!WriteFile(endOf(handle_)->handle, next, size, &count, nullptr)) {
      const Error error = lastError();
      return error == kBrokenPipe ? kNoData : error;
    }
    next += count;
    size -= count;
  }
  return kSuccess;
}

void BytePipeEnd::DeclarePeerGone() {
  if (handle_ == nullptr) return;
  End* const end = endOf(handle_);
  {
    const std::lock_guard<std::mutex> lock(end->guard);
    end->peerGone = true;
  }
  endBlockingCall(end->guard, [end] { return end->blockedThread; });
}

}  // namespace kova::os
