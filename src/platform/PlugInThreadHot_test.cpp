#include "platform/PlugInThreadHot.h"

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <utility>

#include "platform/os/clock.h"
#include "platform/os/thread.h"

namespace {

constexpr unsigned kLongMs = 60000;

// Runs what the test gives; its destructor joins, as that of every real subclass does.
class Worker : public PlugInThreadHot {
 public:
  explicit Worker(std::function<unsigned int()> work) : work_(std::move(work)) {}
  ~Worker() override { joinThread(); }
  using PlugInThreadHot::joinThread;

 protected:
  unsigned int Run() override { return work_(); }

 private:
  std::function<unsigned int()> work_;
};

// A gate that a Run waits at. Not the standard library's semaphore: there, a release may be lost on Windows.
class Gate {
 public:
  explicit Gate(int open) : open_(open) {}

  void acquire() {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [this] { return open_ > 0; });
    --open_;
  }
  void release() {
    const std::lock_guard<std::mutex> lock(mutex_);
    ++open_;
    changed_.notify_one();
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  int open_;
};

TEST(PlugInThreadHot, StartsIdle) {
  PlugInThreadHot thread;
  EXPECT_FALSE(thread.HasThread());
  EXPECT_FALSE(thread.IsAutoDelete());
  EXPECT_EQ(thread.GetReturnValue(), 0u);
  EXPECT_TRUE(thread.WaitForStop());
  EXPECT_TRUE(thread.WaitForStop(0));
  EXPECT_FALSE(thread.Terminate());
  EXPECT_FALSE(thread.Suspend());
  EXPECT_FALSE(thread.Resume());
}

TEST(PlugInThreadHot, BaseRunReturnsAtOnce) {
  PlugInThreadHot thread;
  ASSERT_TRUE(thread.Start());
  EXPECT_TRUE(thread.WaitForStop(kLongMs));
  EXPECT_EQ(thread.GetReturnValue(), 0u);
}

TEST(PlugInThreadHot, RunsOnAnotherThreadAndKeepsItsResult) {
  std::uint32_t id = 0;
  Worker worker([&] {
    id = kova::os::CurrentThreadId();
    return 7u;
  });
  ASSERT_TRUE(worker.Start());
  worker.joinThread();
  EXPECT_FALSE(worker.HasThread());
  EXPECT_EQ(worker.GetReturnValue(), 7u);
  EXPECT_NE(id, 0u);
  EXPECT_NE(id, kova::os::CurrentThreadId());
}

bool argumentWasCalled = false;
unsigned long long callArgument(unsigned long long) {
  argumentWasCalled = true;
  return 1;
}

TEST(PlugInThreadHot, ArgumentOfStartIsIgnored) {
  Worker worker([] { return 7u; });
  ASSERT_TRUE(worker.Start(&callArgument));
  worker.joinThread();
  EXPECT_FALSE(argumentWasCalled);
  EXPECT_EQ(worker.GetReturnValue(), 7u);
}

TEST(PlugInThreadHot, SecondStartIsRefusedWhileTheFirstRuns) {
  Gate gate(0);
  Worker worker([&] {
    gate.acquire();
    return 0u;
  });
  ASSERT_TRUE(worker.Start());
  EXPECT_TRUE(worker.HasThread());
  EXPECT_FALSE(worker.Start());
  gate.release();
  worker.joinThread();
  EXPECT_TRUE(worker.Start());
  gate.release();
}

// Tells when its thread no longer touches it, which a closed handle can not.
class AnnouncingWorker : public Worker {
 public:
  AnnouncingWorker(std::function<unsigned int()> work, Gate& ended) : Worker(std::move(work)), ended_(ended) {}
  ~AnnouncingWorker() override { joinThread(); }

 protected:
  unsigned int Entry() override {
    Gate& ended = ended_;
    const unsigned int result = Worker::Entry();
    ended.release();
    return result;
  }

 private:
  Gate& ended_;
};

TEST(PlugInThreadHot, ThreadCountsAsStoppedWhenTheWaitsTimeIsUp) {
  Gate gate(0);
  Gate ended(0);
  std::atomic<int> runs{0};
  AnnouncingWorker worker(
      [&] {
        ++runs;
        gate.acquire();
        return 0u;
      },
      ended);
  ASSERT_TRUE(worker.Start());
  EXPECT_TRUE(worker.WaitForStop(10));
  EXPECT_FALSE(worker.HasThread());
  EXPECT_TRUE(worker.Start()) << "a second thread beside the first";
  EXPECT_TRUE(worker.HasThread());
  gate.release();
  gate.release();
  ended.acquire();
  ended.acquire();
  EXPECT_EQ(runs, 2);
}

TEST(PlugInThreadHot, JoinWaitsForTheRealEndOfAThreadThatCountsAsStopped) {
  Gate gate(0);
  bool ended = false;
  Worker worker([&] {
    gate.acquire();
    ended = true;
    return 3u;
  });
  ASSERT_TRUE(worker.Start());
  EXPECT_TRUE(worker.WaitForStop(0));
  gate.release();
  worker.joinThread();
  EXPECT_TRUE(ended);
  EXPECT_EQ(worker.GetReturnValue(), 3u);
  worker.joinThread();
}

TEST(PlugInThreadHot, TenThousandStarts) {
  std::atomic<int> runs{0};
  Worker worker([&] {
    ++runs;
    return 0u;
  });
  for (int i = 0; i < 10000; ++i) {
    ASSERT_TRUE(worker.Start()) << i;
    ASSERT_TRUE(worker.WaitForStop(kLongMs)) << i;
    ASSERT_FALSE(worker.HasThread()) << i;
  }
  EXPECT_EQ(runs, 10000);
}

// Deletes itself, and tells what its thread's exit code will be once it is gone.
class SelfDeleting : public PlugInThreadHot {
 public:
  SelfDeleting(std::atomic<int>& deleted, std::atomic<unsigned>& exitCode, Gate& done)
      : deleted_(deleted), exitCode_(exitCode), done_(done) {
    SetAutoDelete(true);
  }
  ~SelfDeleting() override {
    joinThread();
    ++deleted_;
  }

 protected:
  unsigned int Run() override { return 7; }
  unsigned int Entry() override {
    std::atomic<unsigned>& exitCode = exitCode_;
    Gate& done = done_;
    const unsigned int result = PlugInThreadHot::Entry();
    exitCode = result;
    done.release();
    return result;
  }

 private:
  std::atomic<int>& deleted_;
  std::atomic<unsigned>& exitCode_;
  Gate& done_;
};

TEST(PlugInThreadHot, SelfDeletingObjectsAreGoneAfterRun) {
  std::atomic<int> deleted{0};
  std::atomic<unsigned> exitCode{0};
  Gate done(0);
  for (int i = 0; i < 1000; ++i) {
    auto* const thread = new SelfDeleting(deleted, exitCode, done);
    ASSERT_TRUE(thread->IsAutoDelete());
    ASSERT_TRUE(thread->Start());
    done.acquire();
    ASSERT_EQ(deleted, i + 1);
  }
  EXPECT_EQ(exitCode, 7u);
}

TEST(PlugInThreadHot, ExceptionOfRunStaysInTheThread) {
  Worker standard([]() -> unsigned int { throw std::runtime_error("of Run"); });
  ASSERT_TRUE(standard.Start());
  standard.joinThread();
  EXPECT_EQ(standard.GetReturnValue(), 8u);
  EXPECT_FALSE(standard.HasThread());
  Worker other([]() -> unsigned int { throw 42; });
  ASSERT_TRUE(other.Start());
  other.joinThread();
  EXPECT_EQ(other.GetReturnValue(), 8u);
}

TEST(PlugInThreadHot, TerminateEndsASleepingThread) {
  Gate running(0);
  Worker worker([&] {
    running.release();
    kova::os::SleepMs(kLongMs);
    return 1u;
  });
  ASSERT_TRUE(worker.Start());
  running.acquire();
  EXPECT_TRUE(worker.Terminate());
  EXPECT_FALSE(worker.HasThread());
  worker.joinThread();
  EXPECT_EQ(worker.GetReturnValue(), 0u);
  EXPECT_FALSE(worker.Terminate());
}

TEST(PlugInThreadHot, SuspendAndResumeWorkWhereThePlatformHasThem) {
  Gate gate(0);
  Worker worker([&] {
    gate.acquire();
    return 0u;
  });
  ASSERT_TRUE(worker.Start());
  const bool canSuspend = worker.Suspend();
  EXPECT_EQ(worker.Resume(), canSuspend);
  gate.release();
}

TEST(PlugInThreadHot, MultipleWaitNeedsARunningThread) {
  Worker idle([] { return 0u; });
  PlugInThreadHot* threads[] = {&idle};
  EXPECT_FALSE(PlugInThreadHot::WaitForMultipleThreads(threads, 0));
  EXPECT_FALSE(PlugInThreadHot::WaitForMultipleThreads(threads, -1, 10));
  EXPECT_FALSE(PlugInThreadHot::WaitForMultipleThreads(threads, 1));
  EXPECT_FALSE(PlugInThreadHot::WaitForMultipleThreads(threads, 1, kLongMs));
}

// Never says itself that it has ended.
class SilentWorker : public Worker {
 public:
  using Worker::Worker;
  ~SilentWorker() override { joinThread(); }

 protected:
  unsigned int Entry() override { return Run(); }
};

TEST(PlugInThreadHot, MultipleWaitWaitsForAllThatRun) {
  Gate firstGate(0);
  Gate secondGate(0);
  Worker idle([] { return 0u; });
  SilentWorker first([&] {
    firstGate.acquire();
    return 0u;
  });
  SilentWorker second([&] {
    secondGate.acquire();
    return 0u;
  });
  ASSERT_TRUE(first.Start());
  ASSERT_TRUE(second.Start());
  PlugInThreadHot* threads[] = {&first, &idle, &second};
  EXPECT_FALSE(PlugInThreadHot::WaitForMultipleThreads(threads, 3, 10));
  secondGate.release();
  EXPECT_FALSE(PlugInThreadHot::WaitForMultipleThreads(threads, 3, 10)) << "one of them still runs";
  firstGate.release();
  EXPECT_TRUE(PlugInThreadHot::WaitForMultipleThreads(threads, 3));
  EXPECT_TRUE(PlugInThreadHot::WaitForMultipleThreads(threads, 3, 0));
  EXPECT_TRUE(first.HasThread()) << "the wait changes no flag";
  EXPECT_TRUE(second.HasThread());
}

TEST(PlugInThreadHot, AttachRefusesAnObjectWithAHandle) {
  Worker worker([] { return 0u; });
  ASSERT_TRUE(worker.Start());
  worker.joinThread();
  EXPECT_FALSE(worker.Attach()) << "the handle of the finished thread is still there";
}

}  // namespace
