// How the two ends of a pipe come together, and how they part.
#include <filesystem>
#include <string>
#include <thread>

#include "platform/os/clock.h"
#include "tests/conformance/seam_fixture.h"

namespace kova::conformance {
namespace {

constexpr Error kInvalidName = 123;

class Rendezvous : public SeamTest {
 protected:
  std::string name_ = kit::scratchName();
};

TEST_F(Rendezvous, ANewServerTakesAClientAndItsFirstMessageBeforeItAccepts) {
  Pipe server;
  Pipe client;
  ASSERT_EQ(server.create(name_), os::kSuccess);
  ASSERT_EQ(os::AwaitServer(name_.c_str(), os::kWaitForever), os::kSuccess);
  ASSERT_EQ(client.open(name_), os::kSuccess);
  const std::string first = pattern(kArea);
  ASSERT_EQ(client.write(first), os::kSuccess);
  EXPECT_EQ(server.accept(), os::kPipeConnected);
  EXPECT_TRUE(receive(server) == (Received{os::kSuccess, first}));
}

TEST_F(Rendezvous, ASecondAcceptOfTheSameClientGives535) {
  Connection pipe(name_);
  EXPECT_EQ(pipe.server.accept(), os::kPipeConnected);
}

TEST_F(Rendezvous, AClientThatCameBeforeTheAcceptCanBeReadAtOnce) {
  Pipe server;
  Pipe client;
  ASSERT_EQ(server.create(name_), os::kSuccess);
  ASSERT_EQ(client.open(name_), os::kSuccess);
  ASSERT_EQ(client.write("early"), os::kSuccess);
  EXPECT_EQ(receive(server), (Received{os::kSuccess, "early"}));
  EXPECT_EQ(server.accept(), os::kPipeConnected);
}

TEST_F(Rendezvous, AClientThatCameBeforeTheAcceptCanBeWrittenToAtOnce) {
  Pipe server;
  Pipe client;
  ASSERT_EQ(server.create(name_), os::kSuccess);
  ASSERT_EQ(client.open(name_), os::kSuccess);
  ASSERT_EQ(server.write("early"), os::kSuccess);
  EXPECT_EQ(receive(client), (Received{os::kSuccess, "early"}));
}

// Whether a client comes before or during the accept is a race; with more and more patience it comes during it.
TEST_F(Rendezvous, AnAcceptThatWaitsForItsClientGives0) {
  bool waited = false;
  for (int patience = 1; patience < 100000 && !waited; patience *= 2) {
    Pipe server;
    Pipe client;
    ASSERT_EQ(server.create(name_), os::kSuccess);
    Error accepted = 1;
    std::thread acceptor([&] { accepted = server.accept(); });
    for (int i = 0; i < patience; ++i) std::this_thread::yield();
    ASSERT_EQ(client.open(name_), os::kSuccess);
    acceptor.join();
    ASSERT_THAT(accepted, testing::AnyOf(os::kSuccess, os::kPipeConnected));
    waited = accepted == os::kSuccess;
  }
  EXPECT_TRUE(waited);
}

TEST_F(Rendezvous, AServerWithoutAClientGives536) {
  Pipe server;
  ASSERT_EQ(server.create(name_), os::kSuccess);
  EXPECT_EQ(receive(server), (Received{os::kPipeListening, ""}));
  EXPECT_EQ(tryReceive(server), (Received{os::kPipeListening, ""}));
  EXPECT_EQ(server.write("x"), os::kPipeListening);
}

TEST_F(Rendezvous, ANameThatNobodyServesGives2AtOnce) {
  Pipe client;
  EXPECT_EQ(os::AwaitServer(name_.c_str(), os::kWaitForever), os::kFileNotFound);
  EXPECT_EQ(client.open(name_), os::kFileNotFound);
  EXPECT_EQ(client.get(), nullptr) << "untouched on failure";
}

TEST_F(Rendezvous, AServerTakesItsNameWithIt) {
  Pipe client;
  {
    Pipe server;
    ASSERT_EQ(server.create(name_), os::kSuccess);
  }
  EXPECT_EQ(os::AwaitServer(name_.c_str(), 0), os::kFileNotFound);
  EXPECT_EQ(client.open(name_), os::kFileNotFound);
}

TEST_F(Rendezvous, AClientThatClosesLeavesTheNameToTheNext) {
  Connection pipe(name_);
  pipe.client.close();
  ASSERT_EQ(pipe.server.disconnect(), os::kSuccess);
  Pipe second;
  std::thread opener([&] {
    Error error = os::kPipeBusy;
    while (error == os::kPipeBusy) {
      ASSERT_EQ(os::AwaitServer(name_.c_str(), os::kWaitForever), os::kSuccess);
      error = second.open(name_);
    }
    EXPECT_EQ(error, os::kSuccess);
    EXPECT_EQ(second.write("second"), os::kSuccess);
  });
  EXPECT_THAT(pipe.server.accept(), testing::AnyOf(os::kSuccess, os::kPipeConnected));
  opener.join();
  EXPECT_EQ(receive(pipe.server), (Received{os::kSuccess, "second"}));
}

// The second client is let in, or waits, or is told "busy" and tries again; it is never lost.
TEST_F(Rendezvous, ClientsOfABusyServerWaitForTheirTurn) {
  constexpr int kClients = 4;
  Pipe server;
  ASSERT_EQ(server.create(name_), os::kSuccess);
  std::vector<std::thread> clients;
  for (int i = 0; i < kClients; ++i) {
    clients.emplace_back([this, i] {
      Pipe client;
      Error error = os::kPipeBusy;
      while (error == os::kPipeBusy) {
        ASSERT_EQ(os::AwaitServer(name_.c_str(), os::kWaitForever), os::kSuccess);
        error = client.open(name_);
      }
      ASSERT_EQ(error, os::kSuccess);
      ASSERT_EQ(client.write(std::to_string(i)), os::kSuccess);
      EXPECT_EQ(receive(client), (Received{os::kSuccess, "served " + std::to_string(i)}));
      EXPECT_EQ(client.write("seen"), os::kSuccess);
    });
  }
  std::string served;
  for (int i = 0; i < kClients; ++i) {
    EXPECT_THAT(server.accept(), testing::AnyOf(os::kSuccess, os::kPipeConnected));
    const Received request = receive(server);
    served += request.bytes;
    EXPECT_EQ(server.write("served " + request.bytes), os::kSuccess);
    EXPECT_EQ(receive(server), (Received{os::kSuccess, "seen"}));
    EXPECT_EQ(server.disconnect(), os::kSuccess);
  }
  for (std::thread& client : clients) client.join();
  EXPECT_THAT(served, testing::UnorderedElementsAre('0', '1', '2', '3'));
}

TEST_F(Rendezvous, AnOpenThatGivesUpNeverWaitsForAnEarlyClientsTurn) {
  Pipe server;
  Pipe early;
  Pipe late;
  ASSERT_EQ(server.create(name_), os::kSuccess);
  ASSERT_EQ(early.open(name_, os::PipeAccess::ReadWrite, os::WhenTaken::GiveUp), os::kSuccess);
  EXPECT_EQ(late.open(name_, os::PipeAccess::ReadWrite, os::WhenTaken::GiveUp), os::kPipeBusy);
  EXPECT_EQ(late.get(), nullptr) << "untouched on failure";
  EXPECT_EQ(server.accept(), os::kPipeConnected) << "the early client has its place";
}

TEST_F(Rendezvous, AnOpenThatGivesUpNeverWaitsBehindAnotherVisitor) {
  Connection pipe(name_);
  Pipe second;
  Pipe third;
  EXPECT_EQ(second.open(name_, os::PipeAccess::ReadWrite, os::WhenTaken::GiveUp), kit::kBackend.openBehindClient);
  EXPECT_EQ(third.open(name_, os::PipeAccess::ReadWrite, os::WhenTaken::GiveUp), os::kPipeBusy);
  EXPECT_EQ(third.get(), nullptr) << "untouched on failure";
}

// The open alone does not wait. Whether the reader waits already when it is written to is a race that it must not lose.
TEST_F(Rendezvous, AnEndThatWasOpenedToGiveUpWaitsInItsReads) {
  Pipe server;
  Pipe client;
  ASSERT_EQ(server.create(name_), os::kSuccess);
  ASSERT_EQ(client.open(name_, os::PipeAccess::ReadWrite, os::WhenTaken::GiveUp), os::kSuccess);
  ASSERT_EQ(server.accept(), os::kPipeConnected);
  for (int round = 0; round < 100; ++round) {
    Received received;
    std::thread reader([&] { received = receive(client); });
    for (int i = 0; i < 10; ++i) std::this_thread::yield();
    EXPECT_EQ(server.write("late"), os::kSuccess);
    reader.join();
    ASSERT_EQ(received, (Received{os::kSuccess, "late"})) << round;
  }
}

TEST_F(Rendezvous, NoNameGives123) {
  os::NativeHandle none = nullptr;
  EXPECT_EQ(os::CreateMessagePipe(nullptr, kArea, &none), kInvalidName);
  EXPECT_EQ(os::OpenPipe(nullptr, os::PipeAccess::ReadWrite, os::WhenTaken::Wait, &none), kInvalidName);
  EXPECT_EQ(os::AwaitServer(nullptr, 0), kInvalidName);
  EXPECT_EQ(none, nullptr) << "untouched on failure";
}

TEST_F(Rendezvous, TheFolderOfThePipesIsToldByItsFullPath) {
  const std::string folder = os::PipeFolder();
  EXPECT_EQ(!folder.empty(), kit::kBackend.pipesHaveFolder);
  EXPECT_TRUE(folder.empty() || std::filesystem::path(folder).is_absolute()) << folder;
}

KOVA_KIT_CHILD(leaves_pipe) {
  Pipe left;
  Pipe parent;
  if (left.create(arguments.at(1)) != os::kSuccess || parent.open(arguments.at(0)) != os::kSuccess) return 1;
  if (parent.write("here") != os::kSuccess) return 2;
  receive(parent);
  return 0;
}

// The check after each test sees a file that is left.
TEST_F(Rendezvous, WhatAKilledProcessLeavesIsSweptAwayAndNothingElse) {
  Pipe server;
  ASSERT_EQ(server.create(name_), os::kSuccess);
  os::Process child = kit::startChild("leaves_pipe", {name_, name_ + "left"});
  ASSERT_TRUE(child);
  server.accept();
  ASSERT_EQ(receive(server), (Received{os::kSuccess, "here"}));
  EXPECT_EQ(os::SweepStalePipes("kova_kit"), os::kSuccess);
  EXPECT_EQ(os::AwaitServer((name_ + "left").c_str(), 0), os::kSuccess) << "it is in use";
  ASSERT_EQ(child.Terminate(), os::kSuccess);
  int code = 0;
  ASSERT_EQ(child.Wait(os::kWaitForever, &code), os::kSuccess);
  EXPECT_EQ(os::SweepStalePipes("kova_kit"), os::kSuccess);
  EXPECT_NE(os::AwaitServer(name_.c_str(), 0), os::kFileNotFound) << "it still serves its name";
  EXPECT_EQ(os::AwaitServer((name_ + "left").c_str(), 0), os::kFileNotFound);
}

TEST_F(Rendezvous, ASecondInstanceIsAMatterOfThePlatform) {
  Pipe first;
  Pipe second;
  ASSERT_EQ(first.create(name_), os::kSuccess);
  EXPECT_EQ(second.create(name_), kit::kBackend.secondInstance);
  Pipe client;
  EXPECT_EQ(client.open(name_), os::kSuccess) << "the first one still serves the name";
}

TEST_F(Rendezvous, ANameCanBeMadeAgainAfterItsServerClosed) {
  for (int i = 0; i < 3; ++i) {
    Connection pipe(name_);
    ASSERT_EQ(pipe.client.write("x"), os::kSuccess);
    EXPECT_EQ(receive(pipe.server), (Received{os::kSuccess, "x"}));
  }
}

TEST_F(Rendezvous, LongNamesThatDifferAtTheirEndAreTwoPipes) {
  const std::string common = name_ + std::string(180, 'n');
  Connection one(common + "1");
  Connection two(common + "2");
  ASSERT_EQ(one.client.write("one"), os::kSuccess);
  ASSERT_EQ(two.client.write("two"), os::kSuccess);
  EXPECT_EQ(receive(two.server), (Received{os::kSuccess, "two"}));
  EXPECT_EQ(receive(one.server), (Received{os::kSuccess, "one"}));
}

TEST_F(Rendezvous, DisconnectWithoutAClientSucceeds) {
  Pipe server;
  ASSERT_EQ(server.create(name_), os::kSuccess);
  EXPECT_EQ(server.disconnect(), os::kSuccess);
  EXPECT_EQ(server.disconnect(), os::kSuccess);
}

TEST_F(Rendezvous, DisconnectDoesNotEndAnAccept) {
  Pipe server;
  Pipe client;
  ASSERT_EQ(server.create(name_), os::kSuccess);
  Error accepted = os::kGeneralFailure;
  std::thread acceptor([&] { accepted = server.accept(); });
  for (int i = 0; i < 100; ++i) std::this_thread::yield();
  EXPECT_EQ(server.disconnect(), os::kSuccess);
  Error opened = os::kPipeBusy;
  while (opened == os::kPipeBusy) opened = client.open(name_);
  acceptor.join();
  EXPECT_EQ(opened, os::kSuccess);
  EXPECT_THAT(accepted, testing::AnyOf(os::kSuccess, os::kPipeConnected));
}

TEST_F(Rendezvous, ADisconnectedServerReads233) {
  Connection pipe(name_);
  ASSERT_EQ(pipe.client.write("never read"), os::kSuccess);
  ASSERT_EQ(pipe.server.disconnect(), os::kSuccess);
  EXPECT_EQ(receive(pipe.server), (Received{os::kPipeNotConnected, ""}));
  EXPECT_EQ(tryReceive(pipe.server), (Received{os::kPipeNotConnected, ""}));
  EXPECT_EQ(pipe.server.write("x"), kit::kBackend.writeAfterOwnDisconnect);
}

TEST_F(Rendezvous, ADisconnectedClientIsToldSo) {
  Connection pipe(name_);
  ASSERT_EQ(pipe.server.write("last"), os::kSuccess);
  ASSERT_EQ(pipe.server.disconnect(), os::kSuccess);
  if (!kit::kBackend.disconnectDropsUnread) {
    EXPECT_EQ(receive(pipe.client), (Received{os::kSuccess, "last"}));
  }
  EXPECT_EQ(receive(pipe.client), (Received{kit::kBackend.readAfterDisconnect, ""}));
  EXPECT_EQ(pipe.client.write("x"), kit::kBackend.writeAfterDisconnect);
  EXPECT_EQ(os::SetMessageReadMode(pipe.client.get()), os::kPipeNotConnected);
}

TEST_F(Rendezvous, TheRestOfAMessageGoesWithItsClient) {
  Connection pipe(name_);
  ASSERT_EQ(pipe.client.write("0123456789"), os::kSuccess);
  EXPECT_EQ(receive(pipe.server, 4), (Received{os::kMoreData, "0123"}));
  ASSERT_EQ(pipe.server.disconnect(), os::kSuccess);
  EXPECT_EQ(receive(pipe.server), (Received{os::kPipeNotConnected, ""}));
  pipe.client.close();
  Pipe second;
  std::thread opener([&] {
    Error error = os::kPipeBusy;
    while (error == os::kPipeBusy) {
      os::YieldThread();
      error = second.open(name_);
    }
    EXPECT_EQ(error, os::kSuccess);
    EXPECT_EQ(second.write("new"), os::kSuccess);
  });
  EXPECT_THAT(pipe.server.accept(), testing::AnyOf(os::kSuccess, os::kPipeConnected));
  EXPECT_EQ(receive(pipe.server), (Received{os::kSuccess, "new"}));
  opener.join();
}

TEST_F(Rendezvous, DisconnectReleasesAReader) {
  Connection pipe(name_);
  Received received;
  std::thread reader([&] { received = receive(pipe.server); });
  EXPECT_EQ(pipe.server.disconnect(), os::kSuccess);
  reader.join();
  EXPECT_EQ(received, (Received{os::kPipeNotConnected, ""}));
}

TEST_F(Rendezvous, CancelReleasesAnAccept) {
  Pipe server;
  ASSERT_EQ(server.create(name_), os::kSuccess);
  Error accepted = os::kSuccess;
  std::thread acceptor([&] { accepted = server.accept(); });
  EXPECT_EQ(server.cancel(), os::kSuccess);
  acceptor.join();
  EXPECT_EQ(accepted, os::kOperationAborted);
  EXPECT_EQ(server.accept(), os::kOperationAborted) << "and so every later wait";
}

TEST_F(Rendezvous, CancelReleasesAServersRead) {
  Connection pipe(name_);
  Received received;
  std::thread reader([&] { received = receive(pipe.server); });
  EXPECT_EQ(pipe.server.cancel(), os::kSuccess);
  reader.join();
  EXPECT_EQ(received, (Received{os::kOperationAborted, ""}));
  EXPECT_EQ(receive(pipe.server), (Received{os::kOperationAborted, ""})) << "and so every later wait";
}

TEST_F(Rendezvous, CancelReleasesAClientsRead) {
  Connection pipe(name_);
  Received received;
  std::thread reader([&] { received = receive(pipe.client); });
  EXPECT_EQ(pipe.client.cancel(), os::kSuccess);
  reader.join();
  EXPECT_EQ(received, (Received{os::kOperationAborted, ""}));
}

TEST_F(Rendezvous, CancelReleasesAClientsWrite) {
  Connection pipe(name_);
  Error written = os::kSuccess;
  std::thread writer([&] {
    while (written == os::kSuccess) written = pipe.client.write(pattern(8192));
  });
  EXPECT_EQ(pipe.client.cancel(), os::kSuccess);
  writer.join();
  EXPECT_EQ(written, os::kOperationAborted);
  EXPECT_EQ(pipe.client.write("x"), os::kOperationAborted) << "and so every later write";
}

// The cancel meets the waiter at every stage of its way into the wait.
TEST_F(Rendezvous, CancelIsNeverMissed) {
  for (int patience = 0; patience < 200; ++patience) {
    Connection pipe(name_);
    Received received;
    std::thread reader([&] { received = receive(pipe.server); });
    for (int i = 0; i < patience; ++i) std::this_thread::yield();
    ASSERT_EQ(pipe.server.cancel(), os::kSuccess);
    reader.join();
    ASSERT_EQ(received, (Received{os::kOperationAborted, ""})) << patience;
  }
}

TEST_F(Rendezvous, NothingStaysOpenAfterManyRounds) {
  const auto round = [this] {
    Connection pipe(name_);
    Pipe absent;
    EXPECT_EQ(absent.open(kit::scratchName()), os::kFileNotFound);
    EXPECT_EQ(pipe.client.write("xy"), os::kSuccess);
    EXPECT_EQ(receive(pipe.server, 1), (Received{os::kMoreData, "x"}));
    EXPECT_EQ(pipe.server.disconnect(), os::kSuccess);
  };
  round();
  const int before = kit::openHandleCount();
  for (int i = 0; i < 50; ++i) round();
  EXPECT_LE(kit::openHandleCount(), before + kit::kBackend.handleTolerance);
}

}  // namespace
}  // namespace kova::conformance
