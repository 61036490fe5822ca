// Watching processes end. A child is a named function of this very program.
#include "platform/os/process_watch.h"

#include <thread>

#include "platform/os/process.h"
#include "tests/conformance/seam_fixture.h"

namespace kova::conformance {
namespace {

class Watches : public SeamTest {
 protected:
  Watches() { EXPECT_EQ(server_.create(name_), os::kSuccess); }

  // A child that runs until its end of the pipe is closed, or it is ended.
  os::Process startWaitingChild() {
    os::Process child = kit::startChild("waits_for_the_pipe_to_close", {name_});
    server_.accept();
    EXPECT_EQ(receive(server_), (Received{os::kSuccess, "here"}));
    return child;
  }

  std::string name_ = kit::scratchName();
  Pipe server_;
};

KOVA_KIT_CHILD(waits_for_the_pipe_to_close) {
  Pipe pipe;
  if (pipe.open(arguments.at(0)) != os::kSuccess) return 1;
  if (pipe.write("here") != os::kSuccess) return 2;
  receive(pipe);
  return 9;
}

TEST_F(Watches, SeeAProcessThatIsEnded) {
  os::Process child = startWaitingChild();
  os::ProcessWatch watch;
  ASSERT_EQ(os::ProcessWatch::Open(child.Id(), &watch), os::kSuccess);
  EXPECT_TRUE(static_cast<bool>(watch));
  Error seen = os::kGeneralFailure;
  std::thread waiter([&] { seen = watch.Wait(); });
  EXPECT_EQ(child.Terminate(), os::kSuccess);
  waiter.join();
  EXPECT_EQ(seen, os::kSuccess);
  EXPECT_EQ(watch.Wait(), os::kSuccess) << "and so every later wait";
  EXPECT_EQ(watch.Cancel(), os::kSuccess);
  kit::waitForChild(child);
}

TEST_F(Watches, LeaveTheExitCodeToOthers) {
  os::Process child = startWaitingChild();
  os::ProcessWatch watch;
  ASSERT_EQ(os::ProcessWatch::Open(child.Id(), &watch), os::kSuccess);
  server_.close();
  EXPECT_EQ(watch.Wait(), os::kSuccess);
  EXPECT_EQ(kit::waitForChild(child), 9);
}

TEST_F(Watches, CanBeCancelledAtEveryStage) {
  os::Process child = startWaitingChild();
  for (int patience = 0; patience < 100; ++patience) {
    os::ProcessWatch watch;
    ASSERT_EQ(os::ProcessWatch::Open(child.Id(), &watch), os::kSuccess);
    Error seen = os::kSuccess;
    std::thread waiter([&] { seen = watch.Wait(); });
    for (int i = 0; i < patience; ++i) std::this_thread::yield();
    ASSERT_EQ(watch.Cancel(), os::kSuccess);
    waiter.join();
    ASSERT_EQ(seen, os::kOperationAborted) << patience;
    ASSERT_EQ(watch.Wait(), os::kOperationAborted);
  }
  server_.close();
  EXPECT_EQ(kit::waitForChild(child), 9);
}

TEST_F(Watches, TakeAProcessThatIsNotThereForEnded) {
  os::Process child = startWaitingChild();
  const std::uint32_t id = child.Id();
  server_.close();
  EXPECT_EQ(kit::waitForChild(child), 9);
  child = os::Process();
  os::ProcessWatch watch;
  ASSERT_EQ(os::ProcessWatch::Open(id, &watch), os::kSuccess);
  EXPECT_EQ(watch.Wait(), os::kSuccess);
}

TEST_F(Watches, CanWatchTheirOwnProcess) {
  os::ProcessWatch watch;
  ASSERT_EQ(os::ProcessWatch::Open(os::CurrentProcessId(), &watch), os::kSuccess);
  ASSERT_EQ(watch.Cancel(), os::kSuccess);
  EXPECT_EQ(watch.Wait(), os::kOperationAborted);
}

KOVA_KIT_CHILD(watches_its_parent) {
  Pipe pipe;
  if (pipe.open(arguments.at(0)) != os::kSuccess) return 1;
  os::ProcessWatch watch;
  if (os::ProcessWatch::OpenParent(&watch) != os::kSuccess) return 2;
  if (pipe.write("watching") != os::kSuccess) return 3;
  if (watch.Wait() != os::kSuccess) return 4;
  if (pipe.write("parent gone") != os::kSuccess) return 5;
  receive(pipe);
  return 0;
}

KOVA_KIT_CHILD(is_watched_by_its_child) {
  os::Process child = kit::startChild("watches_its_parent", {arguments.at(0)});
  return kit::waitForChild(child);
}

TEST_F(Watches, SeeTheParentEnd) {
  os::Process child = kit::startChild("is_watched_by_its_child", {name_});
  ASSERT_TRUE(child);
  server_.accept();
  ASSERT_EQ(receive(server_), (Received{os::kSuccess, "watching"}));
  EXPECT_EQ(child.Terminate(), os::kSuccess);
  EXPECT_EQ(receive(server_), (Received{os::kSuccess, "parent gone"}));
  EXPECT_EQ(server_.write("end"), os::kSuccess);
  EXPECT_EQ(receive(server_), (Received{os::kBrokenPipe, ""}));
  EXPECT_EQ(kit::waitForChild(child), kit::kBackend.terminatedCode);
}

TEST_F(Watches, OfTheParentCanBeCancelled) {
  os::Process child = kit::startChild("cancels_the_watch_of_its_parent");
  EXPECT_EQ(kit::waitForChild(child), 11);
}

KOVA_KIT_CHILD(cancels_the_watch_of_its_parent) {
  os::ProcessWatch watch;
  if (os::ProcessWatch::OpenParent(&watch) != os::kSuccess) return 1;
  if (watch.Cancel() != os::kSuccess) return 2;
  return watch.Wait() == os::kOperationAborted ? 11 : 3;
}

TEST_F(Watches, WithoutAProcessGive6) {
  os::ProcessWatch watch;
  EXPECT_FALSE(static_cast<bool>(watch));
  EXPECT_EQ(watch.Wait(), os::kInvalidHandle);
  EXPECT_EQ(watch.Cancel(), os::kInvalidHandle);
}

}  // namespace
}  // namespace kova::conformance
