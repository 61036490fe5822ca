// A client in another language, written from the documented rules alone, is served.
#include <algorithm>
#include <string>
#include <vector>

#include "platform/os/named_pipe.h"
#include "tests/kit/kit.h"

#include <gtest/gtest.h>

namespace kova {
namespace {

constexpr std::uint32_t kChunk = 8192;

struct Row {
  const char* label;
  const char* nameEnd;
  std::size_t length;
  std::size_t packets;
};

class IndependentClient : public testing::TestWithParam<Row> {};

std::vector<std::string> readPackets(os::NativeHandle server, std::size_t total) {
  std::vector<std::string> packets;
  for (std::size_t received = 0; received < total; received += packets.back().size()) {
    std::string area(kChunk, '\0');
    std::uint32_t count = 0;
    const os::Error error = os::ReadMessage(server, area.data(), kChunk, &count);
    EXPECT_EQ(error, os::kSuccess);
    if (error != os::kSuccess) break;
    packets.push_back(area.substr(0, count));
  }
  return packets;
}

TEST_P(IndependentClient, SendsInChunksAndIsAnswered) {
  const std::string name = kit::scratchName() + GetParam().nameEnd;
  os::NativeHandle server = nullptr;
  ASSERT_EQ(os::CreateMessagePipe(name.c_str(), kChunk, &server), os::kSuccess);
  os::ProcessStart start;
  start.program = "python3";
  start.arguments = {KOVA_SOURCE_DIR "/tests/conformance/independent_client.py", name,
                     std::to_string(GetParam().length)};
  os::Process client;
  ASSERT_EQ(os::Process::Start(start, &client), os::kSuccess);
  os::AcceptPeer(server);
  const std::vector<std::string> packets = readPackets(server, GetParam().length);
  EXPECT_EQ(packets.size(), GetParam().packets);
  for (const std::string& packet : packets) {
    std::uint32_t written = 0;
    EXPECT_EQ(os::WriteMessage(server, packet.data(), static_cast<std::uint32_t>(packet.size()), &written), 0u);
  }
  EXPECT_EQ(kit::waitForChild(client), 0);
  EXPECT_EQ(os::ClosePipeHandle(server), os::kSuccess);
}

const std::string kLongEnd(200, 'x');

const Row kRows[] = {
    {"Small", "", 60, 1},
    {"ExactlyOneChunk", "", 8192, 1},
    {"OneByteMore", "", 8193, 2},
    {"ManyChunks", "", 100000, 13},
    {"HashedFileName", kLongEnd.c_str(), 60, 1},
};

INSTANTIATE_TEST_SUITE_P(All, IndependentClient, testing::ValuesIn(kRows),
                         [](const testing::TestParamInfo<Row>& row) { return std::string(row.param.label); });

}  // namespace
}  // namespace kova
