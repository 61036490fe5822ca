// Requests that no honest client sends: whatever comes, the engine answers with a code that it documents.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "engine/data_package.h"
#include "engine/engine.h"
#include "engine/error_codes.h"

namespace kova::engine {
namespace {

class ForeignRequests : public testing::Test {
 protected:
  ForeignRequests() {
    DataSet penguins;
    std::string problem;
    EXPECT_TRUE(readDataPackage(KOVA_SOURCE_DIR "/examples/penguins", &penguins, &problem)) << problem;
    engine_.open(std::move(penguins));
  }

  int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }

  void addItem(CleXDSmb* request) {
    static constexpr int kLongs[] = {0, 1, 6, 7, -1, 2147483647, -2147483647};
    const std::vector<std::string> texts = {"", "species", std::string("a\0b", 3), std::string(9000, 'x'), "\xFF"};
    StringData list;
    list.SetValue("x");
    LongData longs;
    longs.SetValue(5);
    switch (below(6)) {
      case 0:
        return request->SetLong(kLongs[below(7)]);
      case 1:
        return request->SetDouble(kSystemMissing);
      case 2:
        return request->SetString(texts[static_cast<std::size_t>(below(5))]);
      case 3:
        return request->SetStringArray(list);
      case 4:
        return request->SetLongArray(longs);
      default:
        return request->SetBinaryString("bytes", 5);
    }
  }

  void expectDocumentedAnswer(const CleXDSmb& request) {
    CleXDSmb reply;
    engine_.perform(request, reply);
    EXPECT_STRNE(errorName(reply.GetErrorCode()), "") << static_cast<int>(request.GetCommandAction());
    EXPECT_EQ(reply.ContructSendData(), 0);
  }

  Engine engine_;
  std::mt19937 random_{20240229};
};

TEST_F(ForeignRequests, EveryCodeWithRandomItems) {
  for (int round = 0; round < 40; ++round) {
    for (int code = -3; code < 260; ++code) {
      CleXDSmb request;
      request.SetCommandAction(static_cast<Command>(code));
      for (int items = below(5); items > 0; --items) addItem(&request);
      expectDocumentedAnswer(request);
    }
  }
}

TEST_F(ForeignRequests, DamagedBytes) {
  CleXDSmb original;
  original.SetCommandAction(Command::GetVariableName);
  original.SetLong(3);
  original.SetString("text");
  ASSERT_EQ(original.ContructSendData(), 0);
  int length = 0;
  const char* bytes = original.GetSendBuf(length);
  for (int round = 0; round < 20000; ++round) {
    std::vector<char> damaged(bytes, bytes + length);
    for (int changes = 1 + below(4); changes > 0; --changes) {
      damaged[static_cast<std::size_t>(below(length))] ^= static_cast<char>(1 << below(8));
    }
    CleXDSmb request;
    request.ParseBuf(damaged.data(), below(length + 1));
    expectDocumentedAnswer(request);
  }
}

}  // namespace
}  // namespace kova::engine
