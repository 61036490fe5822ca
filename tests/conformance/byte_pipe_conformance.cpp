// Pipes without a name, within this process and as the standard streams of a child, which is a named function of this
// very program.
#include "platform/os/byte_pipe.h"

#include <thread>

#include "platform/os/process.h"
#include "tests/conformance/seam_fixture.h"

namespace kova::conformance {
namespace {

Received receive(os::BytePipeEnd& end, std::uint32_t size = kArea) {
  std::string area(size, '?');
  std::uint32_t count = 12345;
  Received result;
  result.error = end.Read(area.data(), size, &count);
  EXPECT_LE(count, size) << "the count is always stored";
  result.bytes = area.substr(0, count);
  return result;
}

Error send(os::BytePipeEnd& end, const std::string& bytes) {
  return end.Write(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
}

// All that comes until the end, and what the end looks like.
Received receiveAll(os::BytePipeEnd& end) {
  Received all;
  while (all.error == os::kSuccess) {
    const Received part = receive(end);
    all.error = part.error;
    all.bytes += part.bytes;
  }
  return all;
}

class BytePipes : public SeamTest {
 protected:
  BytePipes() { EXPECT_EQ(os::BytePipeEnd::Create(&reader_, &writer_), os::kSuccess); }

  static void close(os::BytePipeEnd& end) { os::BytePipeEnd closing = std::move(end); }

  os::BytePipeEnd reader_;
  os::BytePipeEnd writer_;
};

TEST_F(BytePipes, CarryBytesInOrder) {
  EXPECT_EQ(send(writer_, "one"), os::kSuccess);
  EXPECT_EQ(receive(reader_), (Received{os::kSuccess, "one"}));
  EXPECT_EQ(send(writer_, "two and three"), os::kSuccess);
  EXPECT_EQ(receive(reader_, 4), (Received{os::kSuccess, "two "})) << "the rest stays";
  EXPECT_EQ(receive(reader_), (Received{os::kSuccess, "and three"}));
}

TEST_F(BytePipes, KnowNoBorderBetweenWrites) {
  EXPECT_EQ(send(writer_, "on"), os::kSuccess);
  EXPECT_EQ(send(writer_, "e\nand"), os::kSuccess);
  close(writer_);
  EXPECT_EQ(receiveAll(reader_), (Received{os::kBrokenPipe, "one\nand"}));
}

TEST_F(BytePipes, WritingNothingIsNoEnd) {
  EXPECT_EQ(writer_.Write("", 0), os::kSuccess);
  EXPECT_EQ(send(writer_, "x"), os::kSuccess);
  EXPECT_EQ(receive(reader_), (Received{os::kSuccess, "x"}));
}

TEST_F(BytePipes, AReaderWaitsForTheFirstByte) {
  Received received;
  std::thread waiter([&] { received = receive(reader_); });
  EXPECT_EQ(send(writer_, "late"), os::kSuccess);
  waiter.join();
  EXPECT_EQ(received, (Received{os::kSuccess, "late"}));
}

TEST_F(BytePipes, AWriterWaitsForRoom) {
  const std::string sent = pattern(1 << 20);
  Error written = os::kGeneralFailure;
  std::thread writing([&] {
    written = send(writer_, sent);
    close(writer_);
  });
  EXPECT_TRUE(receiveAll(reader_) == (Received{os::kBrokenPipe, sent}));
  writing.join();
  EXPECT_EQ(written, os::kSuccess);
}

TEST_F(BytePipes, EndWithTheirWriter) {
  EXPECT_EQ(send(writer_, "last"), os::kSuccess);
  close(writer_);
  EXPECT_EQ(receive(reader_), (Received{os::kSuccess, "last"}));
  for (int i = 0; i < 2; ++i) EXPECT_EQ(receive(reader_), (Received{os::kBrokenPipe, ""}));
}

TEST_F(BytePipes, AWaitEndsWithTheWriter) {
  Received received;
  std::thread waiter([&] { received = receive(reader_); });
  close(writer_);
  waiter.join();
  EXPECT_EQ(received, (Received{os::kBrokenPipe, ""}));
}

TEST_F(BytePipes, WithoutAReaderGive232) {
  close(reader_);
  for (int i = 0; i < 2; ++i) EXPECT_EQ(send(writer_, "x"), os::kNoData);
}

TEST_F(BytePipes, AWriteUnderWayEndsWithTheReader) {
  const std::string sent = pattern(1 << 20);
  Error written = os::kSuccess;
  std::thread writing([&] { written = send(writer_, sent); });
  EXPECT_EQ(receive(reader_, 1), (Received{os::kSuccess, sent.substr(0, 1)}));
  close(reader_);
  writing.join();
  EXPECT_EQ(written, os::kNoData);
}

TEST_F(BytePipes, APeerDeclaredGoneIsReadToItsEnd) {
  EXPECT_EQ(send(writer_, "what has come"), os::kSuccess);
  reader_.DeclarePeerGone();
  EXPECT_EQ(receive(reader_, 5), (Received{os::kSuccess, "what "}));
  EXPECT_EQ(receive(reader_), (Received{os::kSuccess, "has come"}));
  for (int i = 0; i < 2; ++i) EXPECT_EQ(receive(reader_), (Received{os::kBrokenPipe, ""}));
}

TEST_F(BytePipes, ADeclarationEndsAWaitAtEveryStage) {
  for (int patience = 0; patience < 100; ++patience) {
    os::BytePipeEnd reader;
    os::BytePipeEnd writer;
    ASSERT_EQ(os::BytePipeEnd::Create(&reader, &writer), os::kSuccess);
    Received received;
    std::thread waiter([&] { received = receive(reader); });
    for (int i = 0; i < patience; ++i) std::this_thread::yield();
    reader.DeclarePeerGone();
    waiter.join();
    ASSERT_EQ(received, (Received{os::kBrokenPipe, ""})) << patience;
  }
}

TEST_F(BytePipes, NoneGive6) {
  os::BytePipeEnd none;
  EXPECT_FALSE(none);
  EXPECT_EQ(receive(none), (Received{os::kInvalidHandle, ""}));
  EXPECT_EQ(none.Write("x", 1), os::kInvalidHandle);
  none.DeclarePeerGone();
}

TEST_F(BytePipes, AreMovedWithTheirEnds) {
  os::BytePipeEnd other = std::move(writer_);
  EXPECT_FALSE(writer_);
  EXPECT_TRUE(other);
  EXPECT_EQ(send(other, "moved"), os::kSuccess);
  EXPECT_EQ(receive(reader_), (Received{os::kSuccess, "moved"}));
}

TEST_F(BytePipes, AreMadeInPlaceOfOthers) {
  os::BytePipeEnd first = std::move(writer_);
  ASSERT_EQ(os::BytePipeEnd::Create(&first, &writer_), os::kSuccess);
  EXPECT_EQ(receive(reader_), (Received{os::kBrokenPipe, ""})) << "the only writing end was replaced";
}

// The other ends of a child's standard streams.
class Consoles : public SeamTest {
 protected:
  Consoles() {
    EXPECT_EQ(os::BytePipeEnd::Create(&childsInput_, &input_), os::kSuccess);
    EXPECT_EQ(os::BytePipeEnd::Create(&output_, &childsOutput_), os::kSuccess);
  }

  // Starts a child function and keeps none of the ends that are the child's.
  void start(const std::string& name, const std::vector<std::string>& arguments = {}) {
    os::ProcessStart start = kit::childStart(name, arguments);
    start.input = &childsInput_;
    start.output = &childsOutput_;
    start.isApart = true;
    ASSERT_EQ(os::Process::Start(start, &child_), os::kSuccess);
    EXPECT_TRUE(childsInput_) << "the ends stay the caller's";
    EXPECT_TRUE(childsOutput_);
    os::BytePipeEnd(std::move(childsInput_));
    os::BytePipeEnd(std::move(childsOutput_));
  }

  // Reads until that many bytes have come.
  std::string received(std::size_t size) {
    std::string bytes;
    while (bytes.size() < size) {
      const Received part = receive(output_, static_cast<std::uint32_t>(size - bytes.size()));
      if (part.error != os::kSuccess) return bytes + " and error " + std::to_string(part.error);
      bytes += part.bytes;
    }
    return bytes;
  }

  os::BytePipeEnd childsInput_;
  os::BytePipeEnd input_;
  os::BytePipeEnd output_;
  os::BytePipeEnd childsOutput_;
  os::Process child_;
};

// Answers every text that ends with a period, until its input ends.
KOVA_KIT_CHILD(answers) {
  for (std::string text = readOwnInput('.'); !text.empty(); text = readOwnInput('.')) {
    writeOwnOutput("<" + text);
    writeOwnErrors(">");
  }
  return 17;
}

TEST_F(Consoles, TalkThroughTheirStandardStreams) {
  start("answers");
  EXPECT_EQ(send(input_, "one."), os::kSuccess);
  EXPECT_EQ(received(5), "<one>");
  EXPECT_EQ(send(input_, "two.th"), os::kSuccess);
  EXPECT_EQ(received(5), "<two>");
  EXPECT_EQ(send(input_, "ree."), os::kSuccess);
  EXPECT_EQ(received(7), "<three>");
  os::BytePipeEnd(std::move(input_));
  EXPECT_EQ(receiveAll(output_), (Received{os::kBrokenPipe, ""})) << "its end is the end of its output";
  EXPECT_EQ(kit::waitForChild(child_), 17);
}

TEST_F(Consoles, ThatHaveEndedReadNoMore) {
  start("answers");
  EXPECT_EQ(child_.Terminate(), os::kSuccess);
  EXPECT_EQ(kit::waitForChild(child_), kit::kBackend.terminatedCode);
  EXPECT_EQ(send(input_, "x."), os::kNoData);
  EXPECT_EQ(receiveAll(output_), (Received{os::kBrokenPipe, ""}));
}

// Starts another that has its streams too, and is not killed with it.
KOVA_KIT_CHILD(leaves_its_streams_to_another) {
  os::Process other = kit::startChild("holds_streams", {arguments.at(0)});
  writeOwnOutput("said");
  return other ? 19 : 1;
}

KOVA_KIT_CHILD(holds_streams) {
  Pipe pipe;
  if (pipe.open(arguments.at(0)) != os::kSuccess) return 1;
  if (pipe.write("here") != os::kSuccess) return 2;
  receive(pipe);
  return 0;
}

TEST_F(Consoles, WhoseStreamsAStrangerHoldsCanBeDeclaredGone) {
  Pipe server;
  const std::string name = kit::scratchName();
  ASSERT_EQ(server.create(name), os::kSuccess);
  os::ProcessStart start = kit::childStart("leaves_its_streams_to_another", {name});
  start.output = &childsOutput_;
  ASSERT_EQ(os::Process::Start(start, &child_), os::kSuccess);
  os::BytePipeEnd(std::move(childsOutput_));
  server.accept();
  EXPECT_EQ(receive(server), (Received{os::kSuccess, "here"}));
  EXPECT_EQ(kit::waitForChild(child_), 19);
  Received received;
  std::thread waiter([&] { received = receiveAll(output_); });
  output_.DeclarePeerGone();
  waiter.join();
  EXPECT_EQ(received, (Received{os::kBrokenPipe, "said"}));
  EXPECT_EQ(server.write("end"), os::kSuccess) << "the stranger is still there";
  EXPECT_EQ(receive(server), (Received{os::kBrokenPipe, ""}));
}

// A copy of an end in another child would hide that this process has closed it.
TEST_F(Consoles, GetNoCopyOfOtherPipes) {
  os::BytePipeEnd reader;
  os::BytePipeEnd writer;
  ASSERT_EQ(os::BytePipeEnd::Create(&reader, &writer), os::kSuccess);
  start("answers");
  os::BytePipeEnd(std::move(writer));
  EXPECT_EQ(receive(reader), (Received{os::kBrokenPipe, ""}));
  os::BytePipeEnd(std::move(input_));
  EXPECT_EQ(kit::waitForChild(child_), 17);
}

TEST_F(Consoles, WithoutAnEndGive6) {
  const os::BytePipeEnd none;
  os::ProcessStart start = kit::childStart("answers");
  start.input = &none;
  EXPECT_EQ(os::Process::Start(start, &child_), os::kInvalidHandle);
  start.input = nullptr;
  start.output = &none;
  EXPECT_EQ(os::Process::Start(start, &child_), os::kInvalidHandle);
  EXPECT_FALSE(child_);
}

}  // namespace
}  // namespace kova::conformance
