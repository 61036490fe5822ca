// What the tests of the conformance set share. They are written against the seam's headers alone and run on every
// backend; what a backend may do differently stands in tests/kit/backend_traits.h.
#ifndef KOVADX_TESTS_CONFORMANCE_SEAM_FIXTURE_H
#define KOVADX_TESTS_CONFORMANCE_SEAM_FIXTURE_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "platform/os/named_pipe.h"
#include "tests/kit/backend_traits.h"
#include "tests/kit/kit.h"

namespace kova::conformance {

using os::Error;

constexpr std::uint32_t kArea = 8192;

// Puts the fake backend into its first state; nothing on the others.
void resetBackend();

// The standard streams of a child function, as its program has them. A text read ends before that character, or at the
// end of the input.
std::string readOwnInput(char end);
void writeOwnOutput(const std::string& bytes);
void writeOwnErrors(const std::string& bytes);

class SeamTest : public testing::Test {
 protected:
  SeamTest() { resetBackend(); }
};

// One pipe end, closed when it goes.
class Pipe {
 public:
  Pipe() = default;
  Pipe(Pipe&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Pipe& operator=(Pipe&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  ~Pipe() { close(); }

  Error create(const std::string& name) { return os::CreateMessagePipe(name.c_str(), kArea, &handle_); }
  Error open(const std::string& name, os::PipeAccess access = os::PipeAccess::ReadWrite,
             os::WhenTaken whenTaken = os::WhenTaken::Wait) {
    return os::OpenPipe(name.c_str(), access, whenTaken, &handle_);
  }
  Error accept() { return os::AcceptPeer(handle_); }
  Error disconnect() { return os::DisconnectPeer(handle_); }
  Error cancel() { return os::CancelPipeWait(handle_); }
  Error write(const std::string& message);
  Error close() { return handle_ == nullptr ? os::kSuccess : os::ClosePipeHandle(std::exchange(handle_, nullptr)); }

  os::NativeHandle get() const { return handle_; }

 private:
  os::NativeHandle handle_ = nullptr;
};

// What one read gave.
struct Received {
  Error error = os::kSuccess;
  std::string bytes;

  bool operator==(const Received& other) const { return error == other.error && bytes == other.bytes; }
};
void PrintTo(const Received& received, std::ostream* out);

Received receive(const Pipe& pipe, std::uint32_t size = kArea);
Received tryReceive(const Pipe& pipe, std::uint32_t size = kArea);

// Bytes of that length that differ from place to place and by their seed.
std::string pattern(std::size_t length, unsigned seed = 0);

// A server end with a client that it has accepted.
struct Connection {
  explicit Connection(const std::string& pipeName = kit::scratchName());

  std::string name;
  Pipe server;
  Pipe client;
};

}  // namespace kova::conformance

#endif
