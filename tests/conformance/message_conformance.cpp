// Messages: their bounds, and how reads and writes tell what became of the peer.
#include <string>
#include <thread>

#include "tests/conformance/seam_fixture.h"

namespace kova::conformance {
namespace {

class Messages : public SeamTest {
 protected:
  Connection pipe_;
};

TEST_F(Messages, KeepTheirBoundsInOrder) {
  const std::string sent[] = {"a", pattern(100), pattern(4096, 1), "end"};
  for (const std::string& message : sent) ASSERT_EQ(pipe_.client.write(message), os::kSuccess);
  for (const std::string& message : sent) EXPECT_EQ(receive(pipe_.server), (Received{os::kSuccess, message}));
}

TEST_F(Messages, GoBothWays) {
  ASSERT_EQ(pipe_.client.write("request"), os::kSuccess);
  EXPECT_EQ(receive(pipe_.server), (Received{os::kSuccess, "request"}));
  ASSERT_EQ(pipe_.server.write("reply"), os::kSuccess);
  EXPECT_EQ(receive(pipe_.client), (Received{os::kSuccess, "reply"}));
}

TEST_F(Messages, FillTheReadAreaExactly) {
  const std::string message = pattern(kArea);
  ASSERT_EQ(pipe_.client.write(message), os::kSuccess);
  EXPECT_EQ(receive(pipe_.server), (Received{os::kSuccess, message}));
}

TEST_F(Messages, LargerThanTheAreaGive234AndKeepTheRest) {
  ASSERT_EQ(pipe_.client.write("0123456789abcdefghij++"), os::kSuccess);
  ASSERT_EQ(pipe_.client.write("next"), os::kSuccess);
  EXPECT_EQ(receive(pipe_.server, 10), (Received{os::kMoreData, "0123456789"}));
  EXPECT_EQ(receive(pipe_.server, 10), (Received{os::kMoreData, "abcdefghij"}));
  EXPECT_EQ(receive(pipe_.server, 10), (Received{os::kSuccess, "++"}));
  EXPECT_EQ(receive(pipe_.server, 10), (Received{os::kSuccess, "next"}));
}

TEST_F(Messages, RestThatFitsExactlyEndsTheMessage) {
  ASSERT_EQ(pipe_.client.write("01234567"), os::kSuccess);
  EXPECT_EQ(receive(pipe_.server, 4), (Received{os::kMoreData, "0123"}));
  EXPECT_EQ(tryReceive(pipe_.server, 4), (Received{os::kSuccess, "4567"}));
  EXPECT_EQ(tryReceive(pipe_.server, 4), (Received{os::kNoData, ""}));
}

TEST_F(Messages, RestOutlivesTheWriter) {
  ASSERT_EQ(pipe_.client.write("01234567"), os::kSuccess);
  EXPECT_EQ(receive(pipe_.server, 5), (Received{os::kMoreData, "01234"}));
  pipe_.client.close();
  EXPECT_EQ(receive(pipe_.server, 5), (Received{os::kSuccess, "567"}));
  EXPECT_EQ(receive(pipe_.server, 5), (Received{os::kBrokenPipe, ""}));
}

TEST_F(Messages, MuchLargerThanTheBufferArriveInPieces) {
  const std::string message = pattern(65536 + 100);
  std::thread writer([&] { EXPECT_EQ(pipe_.client.write(message), os::kSuccess); });
  std::string all;
  Received piece = receive(pipe_.server);
  while (piece.error == os::kMoreData) {
    EXPECT_EQ(piece.bytes.size(), kArea);
    all += piece.bytes;
    piece = receive(pipe_.server);
  }
  writer.join();
  EXPECT_EQ(piece.error, os::kSuccess);
  EXPECT_TRUE(all + piece.bytes == message);
}

TEST_F(Messages, WriterWaitsWhileThePipeIsFull) {
  constexpr unsigned kCount = 300;
  std::thread writer([&] {
    for (unsigned i = 0; i < kCount; ++i) ASSERT_EQ(pipe_.client.write(pattern(kArea, i)), os::kSuccess);
  });
  for (unsigned i = 0; i < kCount; ++i) {
    const Received received = receive(pipe_.server);
    ASSERT_EQ(received.error, os::kSuccess) << i;
    ASSERT_TRUE(received.bytes == pattern(kArea, i)) << i;
  }
  writer.join();
}

TEST_F(Messages, OfNoBytesAreMessagesAndNoEnd) {
  ASSERT_EQ(pipe_.client.write(""), os::kSuccess);
  ASSERT_EQ(pipe_.client.write("x"), os::kSuccess);
  EXPECT_EQ(receive(pipe_.server), (Received{os::kSuccess, ""}));
  EXPECT_EQ(receive(pipe_.server), (Received{os::kSuccess, "x"}));
}

TEST_F(Messages, OfNoBytesAreSeenByALookWhereThePlatformCan) {
  ASSERT_EQ(pipe_.client.write(""), os::kSuccess);
  EXPECT_EQ(tryReceive(pipe_.server), (Received{kit::kBackend.lookAtEmptyMessage, ""}));
  if (kit::kBackend.lookAtEmptyMessage != os::kSuccess) {
    EXPECT_EQ(receive(pipe_.server), (Received{os::kSuccess, ""}));
  }
  EXPECT_EQ(tryReceive(pipe_.server), (Received{os::kNoData, ""}));
}

TEST_F(Messages, OfNoBytesAheadOfOthersOutliveTheWriter) {
  ASSERT_EQ(pipe_.client.write(""), os::kSuccess);
  ASSERT_EQ(pipe_.client.write("x"), os::kSuccess);
  pipe_.client.close();
  EXPECT_EQ(receive(pipe_.server), (Received{os::kSuccess, ""}));
  EXPECT_EQ(receive(pipe_.server), (Received{os::kSuccess, "x"}));
  EXPECT_EQ(receive(pipe_.server), (Received{os::kBrokenPipe, ""}));
}

TEST_F(Messages, ALookGives232WithoutOne) {
  EXPECT_EQ(tryReceive(pipe_.server), (Received{os::kNoData, ""}));
  EXPECT_EQ(tryReceive(pipe_.client), (Received{os::kNoData, ""}));
}

TEST_F(Messages, NoWaitModeMakesReadsLooks) {
  ASSERT_EQ(os::SetNoWaitMode(pipe_.server.get()), os::kSuccess);
  EXPECT_EQ(receive(pipe_.server), (Received{os::kNoData, ""}));
  ASSERT_EQ(pipe_.client.write("now"), os::kSuccess);
  EXPECT_EQ(receive(pipe_.server), (Received{os::kSuccess, "now"}));
  pipe_.client.close();
  EXPECT_EQ(receive(pipe_.server), (Received{os::kBrokenPipe, ""}));
}

TEST_F(Messages, AreWaitedFor) {
  std::thread writer([&] { EXPECT_EQ(pipe_.client.write("late"), os::kSuccess); });
  EXPECT_EQ(receive(pipe_.server), (Received{os::kSuccess, "late"}));
  writer.join();
}

TEST_F(Messages, ServerReads109WhenTheClientHasClosed) {
  ASSERT_EQ(pipe_.client.write("last"), os::kSuccess);
  pipe_.client.close();
  EXPECT_EQ(receive(pipe_.server), (Received{os::kSuccess, "last"}));
  EXPECT_EQ(receive(pipe_.server), (Received{os::kBrokenPipe, ""}));
  EXPECT_EQ(tryReceive(pipe_.server), (Received{os::kBrokenPipe, ""}));
}

TEST_F(Messages, ClientReads109WhenTheServerHasClosed) {
  ASSERT_EQ(pipe_.server.write("last"), os::kSuccess);
  pipe_.server.close();
  EXPECT_EQ(receive(pipe_.client), (Received{os::kSuccess, "last"}));
  EXPECT_EQ(receive(pipe_.client), (Received{os::kBrokenPipe, ""}));
}

TEST_F(Messages, AWaitingReaderGets109WhenThePeerCloses) {
  std::thread closer([&] { pipe_.client.close(); });
  EXPECT_EQ(receive(pipe_.server), (Received{os::kBrokenPipe, ""}));
  closer.join();
}

TEST_F(Messages, APeerThatClosesWithUnreadMessagesEndsTheReadTheSameWay) {
  ASSERT_EQ(pipe_.server.write("never read"), os::kSuccess);
  ASSERT_EQ(pipe_.client.write("last"), os::kSuccess);
  pipe_.client.close();
  EXPECT_EQ(receive(pipe_.server), (Received{os::kSuccess, "last"}));
  EXPECT_EQ(receive(pipe_.server), (Received{os::kBrokenPipe, ""}));
}

TEST_F(Messages, AWriteToAClosedPeerGives232) {
  pipe_.client.close();
  EXPECT_EQ(pipe_.server.write("x"), os::kNoData);
  EXPECT_EQ(pipe_.server.write("y"), os::kNoData);
}

TEST_F(Messages, AWriteToAClosedServerGives232) {
  pipe_.server.close();
  EXPECT_EQ(pipe_.client.write("x"), os::kNoData);
}

TEST_F(Messages, AWriteAfterAResetGives232) {
  ASSERT_EQ(pipe_.server.write("never read"), os::kSuccess);
  pipe_.client.close();
  EXPECT_EQ(pipe_.server.write("x"), os::kNoData);
  EXPECT_EQ(receive(pipe_.server), (Received{os::kBrokenPipe, ""}));
}

TEST_F(Messages, MessageReadModeIsTheStateOfANewEnd) {
  EXPECT_EQ(os::SetMessageReadMode(pipe_.client.get()), os::kSuccess);
  EXPECT_EQ(os::SetMessageReadMode(pipe_.server.get()), os::kSuccess);
}

TEST_F(Messages, FlushSucceedsWhenAllIsRead) {
  ASSERT_EQ(pipe_.client.write("x"), os::kSuccess);
  EXPECT_EQ(receive(pipe_.server), (Received{os::kSuccess, "x"}));
  EXPECT_EQ(os::FlushMessages(pipe_.client.get()), os::kSuccess);
}

TEST_F(SeamTest, AReadOnlyClientReadsAndMayNotWrite) {
  const std::string name = kit::scratchName();
  Pipe server;
  Pipe client;
  ASSERT_EQ(server.create(name), os::kSuccess);
  ASSERT_EQ(client.open(name, os::PipeAccess::Read), os::kSuccess);
  ASSERT_EQ(server.accept(), os::kPipeConnected);
  ASSERT_EQ(server.write("x"), os::kSuccess);
  EXPECT_EQ(receive(client), (Received{os::kSuccess, "x"}));
  EXPECT_EQ(client.write("y"), os::kAccessDenied);
}

TEST_F(SeamTest, NoHandleGives6) {
  const Pipe none;
  std::uint32_t count = 7;
  EXPECT_EQ(receive(none), (Received{os::kInvalidHandle, ""}));
  EXPECT_EQ(tryReceive(none), (Received{os::kInvalidHandle, ""}));
  EXPECT_EQ(os::WriteMessage(nullptr, "x", 1, &count), os::kInvalidHandle);
  EXPECT_EQ(count, 7u);
  EXPECT_EQ(os::AcceptPeer(nullptr), os::kInvalidHandle);
  EXPECT_EQ(os::DisconnectPeer(nullptr), os::kInvalidHandle);
  EXPECT_EQ(os::ClosePipeHandle(nullptr), os::kInvalidHandle);
  EXPECT_EQ(os::SetMessageReadMode(nullptr), os::kInvalidHandle);
  EXPECT_EQ(os::SetNoWaitMode(nullptr), os::kInvalidHandle);
  EXPECT_EQ(os::FlushMessages(nullptr), os::kInvalidHandle);
  EXPECT_EQ(os::CancelPipeWait(nullptr), os::kInvalidHandle);
}

}  // namespace
}  // namespace kova::conformance
