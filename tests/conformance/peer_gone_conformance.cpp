// What an end does that was told that its peer is gone.
#include <string>
#include <thread>

#include "tests/conformance/seam_fixture.h"

namespace kova::conformance {
namespace {

class PeerGone : public SeamTest {
 protected:
  std::string name_ = kit::scratchName();
};

Error declareGone(const Pipe& pipe) { return os::DeclarePeerGone(pipe.get()); }

// The declaration meets the waiter before its wait and at every stage of its way into it.
TEST_F(PeerGone, EndsAnAcceptWithoutAClient) {
  for (int patience = 0; patience < 200; ++patience) {
    Pipe server;
    ASSERT_EQ(server.create(name_), os::kSuccess);
    Error accepted = os::kSuccess;
    std::thread acceptor([&] { accepted = server.accept(); });
    for (int i = 0; i < patience; ++i) std::this_thread::yield();
    ASSERT_EQ(declareGone(server), os::kSuccess);
    acceptor.join();
    ASSERT_EQ(accepted, os::kBrokenPipe) << patience;
    ASSERT_EQ(server.accept(), os::kBrokenPipe) << "and so every later one";
    ASSERT_EQ(receive(server), (Received{os::kBrokenPipe, ""}));
  }
}

TEST_F(PeerGone, EndsAReadWithoutAMessage) {
  for (int patience = 0; patience < 200; ++patience) {
    Connection pipe(name_);
    Received received;
    std::thread reader([&] { received = receive(pipe.server); });
    for (int i = 0; i < patience; ++i) std::this_thread::yield();
    ASSERT_EQ(declareGone(pipe.server), os::kSuccess);
    reader.join();
    ASSERT_EQ(received, (Received{os::kBrokenPipe, ""})) << patience;
  }
}

TEST_F(PeerGone, EndsAClientsRead) {
  Connection pipe(name_);
  Received received;
  std::thread reader([&] { received = receive(pipe.client); });
  ASSERT_EQ(declareGone(pipe.client), os::kSuccess);
  reader.join();
  EXPECT_EQ(received, (Received{os::kBrokenPipe, ""}));
}

TEST_F(PeerGone, WhatHasComeIsReadFirst) {
  Connection pipe(name_);
  ASSERT_EQ(pipe.client.write("first"), os::kSuccess);
  ASSERT_EQ(pipe.client.write("second"), os::kSuccess);
  ASSERT_EQ(declareGone(pipe.server), os::kSuccess);
  EXPECT_EQ(receive(pipe.server, 3), (Received{os::kMoreData, "fir"}));
  EXPECT_EQ(tryReceive(pipe.server), (Received{os::kSuccess, "st"}));
  EXPECT_EQ(receive(pipe.server), (Received{os::kSuccess, "second"}));
  EXPECT_EQ(receive(pipe.server), (Received{os::kBrokenPipe, ""}));
  EXPECT_EQ(tryReceive(pipe.server), (Received{os::kBrokenPipe, ""}));
}

TEST_F(PeerGone, AClientThatHasComeIsTakenIn) {
  Pipe server;
  ASSERT_EQ(server.create(name_), os::kSuccess);
  {
    Pipe client;
    ASSERT_EQ(client.open(name_), os::kSuccess);
    ASSERT_EQ(client.write("last words"), os::kSuccess);
  }
  ASSERT_EQ(declareGone(server), os::kSuccess);
  EXPECT_EQ(server.accept(), os::kPipeConnected);
  EXPECT_EQ(receive(server), (Received{os::kSuccess, "last words"}));
  EXPECT_EQ(receive(server), (Received{os::kBrokenPipe, ""}));
}

TEST_F(PeerGone, WritesGoOn) {
  Connection pipe(name_);
  ASSERT_EQ(declareGone(pipe.server), os::kSuccess);
  EXPECT_EQ(pipe.server.write("goodbye"), os::kSuccess);
  EXPECT_EQ(receive(pipe.client), (Received{os::kSuccess, "goodbye"}));
}

TEST_F(PeerGone, ADisconnectMakesReadyForTheNextPeer) {
  Connection pipe(name_);
  ASSERT_EQ(declareGone(pipe.server), os::kSuccess);
  EXPECT_EQ(receive(pipe.server), (Received{os::kBrokenPipe, ""}));
  ASSERT_EQ(pipe.server.disconnect(), os::kSuccess);
  pipe.client.close();
  std::thread acceptor([&] { EXPECT_THAT(pipe.server.accept(), testing::AnyOf(os::kSuccess, os::kPipeConnected)); });
  Pipe second;
  Error opened = os::kPipeBusy;
  while (opened == os::kPipeBusy) {
    ASSERT_EQ(os::AwaitServer(name_.c_str(), os::kWaitForever), os::kSuccess);
    opened = second.open(name_);
  }
  acceptor.join();
  ASSERT_EQ(opened, os::kSuccess);
  std::thread writer([&] { EXPECT_EQ(second.write("second"), os::kSuccess); });
  EXPECT_EQ(receive(pipe.server), (Received{os::kSuccess, "second"}));
  writer.join();
}

TEST_F(PeerGone, ACancelledEndStaysCancelled) {
  Connection pipe(name_);
  ASSERT_EQ(pipe.server.cancel(), os::kSuccess);
  ASSERT_EQ(declareGone(pipe.server), os::kSuccess);
  EXPECT_EQ(receive(pipe.server), (Received{os::kOperationAborted, ""}));
  EXPECT_EQ(pipe.server.accept(), os::kOperationAborted);
}

TEST_F(PeerGone, AHandleIsNeeded) { EXPECT_EQ(os::DeclarePeerGone(nullptr), os::kInvalidHandle); }

}  // namespace
}  // namespace kova::conformance
