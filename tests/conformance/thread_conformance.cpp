// Threads.
#include "platform/os/thread.h"

#include <atomic>
#include <thread>

#include "platform/os/event.h"
#include "tests/conformance/seam_fixture.h"

namespace kova::conformance {
namespace {

constexpr std::uint32_t kNoLimit = 0xFFFFFFFF;

// A thread that tells its number, and waits for an event before it ends with a code.
struct Worker {
  Worker() {
    EXPECT_EQ(os::CreateEventObject(true, false, nullptr, &begun), os::kSuccess);
    EXPECT_EQ(os::CreateEventObject(true, false, nullptr, &mayEnd), os::kSuccess);
    EXPECT_EQ(os::LaunchThread(&body, this, &handle), os::kSuccess);
  }
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;
  ~Worker() {
    release();
    EXPECT_EQ(os::WaitThread(handle, kNoLimit, nullptr), os::kSuccess);
    EXPECT_EQ(os::CloseThread(handle), os::kSuccess);
    os::CloseEventObject(begun);
    os::CloseEventObject(mayEnd);
  }
  void release() { os::SetEventObject(mayEnd); }
  void awaitBegin() { EXPECT_EQ(os::WaitEventObject(begun, kNoLimit), os::kSuccess); }

  static std::uint32_t body(void* argument) {
    auto* const worker = static_cast<Worker*>(argument);
    worker->id = os::CurrentThreadId();
    os::SetEventObject(worker->begun);
    os::WaitEventObject(worker->mayEnd, kNoLimit);
    return worker->code;
  }

  os::EventHandle begun = nullptr;
  os::EventHandle mayEnd = nullptr;
  os::ThreadHandle handle = nullptr;
  std::atomic<std::uint32_t> id{0};
  std::atomic<std::uint32_t> code{7};
};

class Threads : public SeamTest {};

TEST_F(Threads, EndWithTheBodysCode) {
  Worker worker;
  worker.code = 0x80000001;
  worker.release();
  std::uint32_t code = 0;
  EXPECT_EQ(os::WaitThread(worker.handle, kNoLimit, &code), os::kSuccess);
  EXPECT_EQ(code, 0x80000001);
  code = 0;
  EXPECT_EQ(os::WaitThread(worker.handle, 0, &code), os::kSuccess) << "an ended thread can be waited for again";
  EXPECT_EQ(code, 0x80000001);
}

TEST_F(Threads, ThatRunGive258) {
  Worker worker;
  std::uint32_t code = 5;
  EXPECT_EQ(os::WaitThread(worker.handle, 0, &code), os::kWaitTimeout);
  EXPECT_EQ(os::WaitThread(worker.handle, 10, &code), os::kWaitTimeout);
  EXPECT_EQ(code, 5u) << "untouched on failure";
}

TEST_F(Threads, HaveANumberEach) {
  Worker one;
  Worker two;
  one.awaitBegin();
  two.awaitBegin();
  EXPECT_NE(one.id, 0u);
  EXPECT_NE(one.id, two.id);
  EXPECT_NE(one.id, os::CurrentThreadId());
  EXPECT_EQ(os::CurrentThreadId(), os::CurrentThreadId());
}

TEST_F(Threads, AreWaitedForTogether) {
  Worker one;
  Worker two;
  const os::ThreadHandle both[] = {one.handle, two.handle};
  EXPECT_EQ(os::WaitThreads(both, 2, 10), os::kWaitTimeout);
  one.release();
  EXPECT_EQ(os::WaitThread(one.handle, kNoLimit, nullptr), os::kSuccess);
  EXPECT_EQ(os::WaitThreads(both, 2, 10), os::kWaitTimeout) << "one of them still runs";
  two.release();
  EXPECT_EQ(os::WaitThreads(both, 2, kNoLimit), os::kSuccess);
}

TEST_F(Threads, MayBeClosedWhileTheyRun) {
  os::EventHandle done = nullptr;
  ASSERT_EQ(os::CreateEventObject(false, false, nullptr, &done), os::kSuccess);
  os::ThreadHandle thread = nullptr;
  const auto body = [](void* event) -> std::uint32_t {
    os::SetEventObject(event);
    return 0;
  };
  ASSERT_EQ(os::LaunchThread(body, done, &thread), os::kSuccess);
  EXPECT_EQ(os::CloseThread(thread), os::kSuccess);
  EXPECT_EQ(os::WaitEventObject(done, kNoLimit), os::kSuccess);
  os::CloseEventObject(done);
}

TEST_F(Threads, ThatAreKilledEndWithAllBitsSet) {
  Worker worker;
  worker.awaitBegin();
  EXPECT_EQ(os::KillThread(worker.handle), os::kSuccess);
  std::uint32_t code = 0;
  EXPECT_EQ(os::WaitThread(worker.handle, kNoLimit, &code), os::kSuccess);
  EXPECT_EQ(code, 0xFFFFFFFF);
}

TEST_F(Threads, ThatHaveEndedKeepTheirCodeWhenKilled) {
  Worker worker;
  worker.release();
  EXPECT_EQ(os::WaitThread(worker.handle, kNoLimit, nullptr), os::kSuccess);
  EXPECT_EQ(os::KillThread(worker.handle), kit::kBackend.killEndedThread);
  std::uint32_t code = 0;
  EXPECT_EQ(os::WaitThread(worker.handle, 0, &code), os::kSuccess);
  EXPECT_EQ(code, 7u);
}

TEST_F(Threads, ArePausedWhereThePlatformCan) {
  Worker worker;
  worker.awaitBegin();
  EXPECT_EQ(os::PauseThread(worker.handle), kit::kBackend.pauseThread);
  EXPECT_EQ(os::ContinueThread(worker.handle), kit::kBackend.pauseThread);
}

TEST_F(Threads, TheCallersOwnHandleStandsForARunningThread) {
  const os::ThreadHandle own = os::CurrentThreadHandle();
  EXPECT_NE(own, nullptr);
  EXPECT_EQ(os::WaitThread(own, 0, nullptr), os::kWaitTimeout);
  EXPECT_EQ(os::WaitThread(own, 10, nullptr), os::kWaitTimeout);
  EXPECT_EQ(os::WaitThreads(&own, 1, 0), os::kWaitTimeout);
  EXPECT_EQ(os::CloseThread(own), os::kSuccess);
}

TEST_F(Threads, NoHandleGives6) {
  const os::ThreadHandle none = nullptr;
  EXPECT_EQ(os::WaitThread(none, 0, nullptr), os::kInvalidHandle);
  EXPECT_EQ(os::WaitThreads(&none, 1, 0), os::kInvalidHandle);
  EXPECT_EQ(os::KillThread(none), os::kInvalidHandle);
  EXPECT_EQ(os::CloseThread(none), os::kInvalidHandle);
}

}  // namespace
}  // namespace kova::conformance
