#include "platform/posix/byte_pipe_posix.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <memory>

#include "platform/os/byte_pipe.h"
#include "platform/posix/descriptor_posix.h"
#include "platform/posix/error_posix.h"

namespace kova::os {
namespace {

struct End {
  Descriptor pipe;
  Descriptor peerGone;  // Reading end: readable, from then on for ever, once the peer was declared gone.
};

End* endOf(void* handle) { return static_cast<End*>(handle); }

// Holds SIGPIPE back from this thread, so that a write can not end the program. Two system calls while all goes well: a
// signal that the thread lets in is not pending.
class PipeSignalHeld {
 public:
  PipeSignalHeld() {
    sigemptyset(&pipeSignal_);
    sigaddset(&pipeSignal_, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipeSignal_, &before_);
    sigset_t pending;
    sigemptyset(&pending);
    if (sigismember(&before_, SIGPIPE) == 1) sigpending(&pending);
    wasPending_ = sigismember(&pending, SIGPIPE) == 1;
  }
  PipeSignalHeld(const PipeSignalHeld&) = delete;
  PipeSignalHeld& operator=(const PipeSignalHeld&) = delete;
  ~PipeSignalHeld() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

  // After a write that may have raised it.
  void take() {
    const timespec noTime = {};
    if (!wasPending_) sigtimedwait(&pipeSignal_, nullptr, &noTime);
  }

 private:
  sigset_t pipeSignal_;
  sigset_t before_;
  bool wasPending_ = false;
};

// 0 when a read will not wait, 109 when nothing is there and the peer was declared gone.
Error awaitBytes(const End& end) {
  pollfd entries[] = {{end.pipe.get(), POLLIN, 0}, {end.peerGone.get(), POLLIN, 0}};
  while (poll(entries, 2, -1) < 0) {
    if (errno != EINTR) return lastError();
  }
  if (entries[0].revents != 0) return kSuccess;
  // What came before the declaration may have come after the look at the pipe.
  return poll(entries, 1, 0) == 1 ? kSuccess : kBrokenPipe;
}

}  // namespace

int descriptorOfBytePipe(const void* handle) {
  return handle == nullptr ? -1 : static_cast<const End*>(handle)->pipe.get();
}

BytePipeEnd::~BytePipeEnd() { delete endOf(handle_); }

Error BytePipeEnd::Create(BytePipeEnd* reader, BytePipeEnd* writer) {
  int numbers[2];
  if (pipe2(numbers, O_CLOEXEC) != 0) return lastError();
  Descriptor in(numbers[0]);
  Descriptor out(numbers[1]);
  Descriptor peerGone(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
  if (!peerGone) return lastError();
  return orNoMemory([&] {
    auto readerEnd = std::make_unique<End>(End{std::move(in), std::move(peerGone)});
    auto writerEnd = std::make_unique<End>(End{std::move(out), Descriptor()});
    *reader = BytePipeEnd();
    *writer = BytePipeEnd();
    reader->handle_ = readerEnd.release();
    writer->handle_ = writerEnd.release();
    return kSuccess;
  });
}

Error BytePipeEnd::Read(void* buffer, std::uint32_t size, std::uint32_t* read) {
  *read = 0;
  if (handle_ == nullptr) return kInvalidHandle;
  const End& end = *endOf(handle_);
  ssize_t count = 0;
  do {
    const Error error = awaitBytes(end);
    if (error != kSuccess) return error;
    count = ::read(end.pipe.get(), buffer, size);
  } while (count < 0 && errno == EINTR);
  if (count < 0) return lastError();
  *read = static_cast<std::uint32_t>(count);
  return count == 0 ? kBrokenPipe : kSuccess;
}

Error BytePipeEnd::Write(const void* data, std::uint32_t size) {
  if (handle_ == nullptr) return kInvalidHandle;
  PipeSignalHeld signal;
  const char* next = static_cast<const char*>(data);
  while (size > 0) {
    const ssize_t count = ::write(endOf(handle_)->pipe.get(), next, size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) {
      const Error error = lastError();
      signal.take();
      return error;
    }
    next += count;
    size -= static_cast<std::uint32_t>(count);
  }
  return kSuccess;
}

void BytePipeEnd::DeclarePeerGone() {
  if (handle_ != nullptr && endOf(handle_)->peerGone) eventfd_write(endOf(handle_)->peerGone.get(), 1);
}

}  // namespace kova::os
