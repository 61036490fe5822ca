// What threads are on this platform beyond the seam's contract.
#include "platform/os/thread.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/os/clock.h"
#include "platform/os/named_pipe.h"
#include "tests/kit/kit.h"

namespace kova::os {
namespace {

// Tells that it was unwound: what a cancelled thread owns in its frames is given back.
struct Unwound {
  explicit Unwound(bool* mark) : mark_(mark) {}
  ~Unwound() { *mark_ = true; }
  bool* mark_;
};

TEST(PosixThread, OneThatSleepsIsKilled) {
  bool unwound = false;
  const auto body = [](void* mark) -> std::uint32_t {
    const Unwound scope(static_cast<bool*>(mark));
    SleepMs(1000000000);
    return 1;
  };
  ThreadHandle thread = nullptr;
  ASSERT_EQ(LaunchThread(body, &unwound, &thread), kSuccess);
  EXPECT_EQ(KillThread(thread), kSuccess);
  std::uint32_t code = 0;
  EXPECT_EQ(WaitThread(thread, 0xFFFFFFFF, &code), kSuccess);
  EXPECT_EQ(code, 0xFFFFFFFF);
  EXPECT_TRUE(unwound);
  EXPECT_EQ(CloseThread(thread), kSuccess);
}

TEST(PosixThread, OneThatReadsAPipeIsKilled) {
  const std::string name = kit::scratchName();
  NativeHandle server = nullptr;
  ASSERT_EQ(CreateMessagePipe(name.c_str(), 8192, &server), kSuccess);
  const auto body = [](void* pipe) -> std::uint32_t { return AcceptPeer(pipe); };
  ThreadHandle thread = nullptr;
  ASSERT_EQ(LaunchThread(body, server, &thread), kSuccess);
  EXPECT_EQ(KillThread(thread), kSuccess);
  std::uint32_t code = 0;
  EXPECT_EQ(WaitThread(thread, 0xFFFFFFFF, &code), kSuccess);
  EXPECT_EQ(code, 0xFFFFFFFF);
  EXPECT_EQ(CloseThread(thread), kSuccess);
  EXPECT_EQ(ClosePipeHandle(server), kSuccess);
}

TEST(PosixThread, WaitingForOneselfWithoutLimitIsRefused) {
  EXPECT_EQ(WaitThread(CurrentThreadHandle(), 0xFFFFFFFF, nullptr), 1131u);
}

}  // namespace
}  // namespace kova::os
