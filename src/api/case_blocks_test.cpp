// Cases handed out in blocks: what a block holds, when the engine is asked, and the layout of a case.
#include <limits>

#include "tests/api/case_engine.h"

namespace {

using kova::WireImage;
using testing::ElementsAre;

constexpr int kMost = std::numeric_limits<int>::max();
constexpr int kUntouched = -77;

class CaseBlocks : public kova::CaseClientTest {
 protected:
  struct Block {
    int code;
    int cases = kUntouched;
    int caseSize = kUntouched;
    const void* place = nullptr;
    std::string bytes = {};
  };

  static Block NextBlock() {
    Block block{};
    block.code = KovaNextCaseBlock(&block.place, &block.cases, &block.caseSize);
    if (block.code == 0) block.bytes.assign(static_cast<const char*>(block.place), SizeOf(block));
    return block;
  }

  static std::size_t SizeOf(const Block& block) {
    return static_cast<std::size_t>(block.cases) * static_cast<std::size_t>(block.caseSize);
  }

  static double Number() {
    double value = kUntouched;
    GetNumericValue(0, &value, nullptr);
    return value;
  }
};

TEST_F(CaseBlocks, EachBatchIsABlock) {
  types = {0, 12};
  const std::string first = Numbers({1}) + "one             ";
  const std::string second = Numbers({2}) + "two             ";
  batches = {Batch(0, 2, first, second), Batch(23, 1, second)};
  Serve();
  MakeCaseCursor("r");
  const std::size_t requests = Codes().size();
  Block block = NextBlock();
  EXPECT_EQ(block.code, 0);
  EXPECT_EQ(block.cases, 2);
  EXPECT_EQ(block.caseSize, 24);
  EXPECT_EQ(block.bytes, first + second);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block.place) % 8, 0u);
  EXPECT_EQ(Number(), 2) << "the last case is the current one";
  block = NextBlock();
  EXPECT_EQ(block.cases, 1);
  EXPECT_EQ(block.bytes, second);
  EXPECT_EQ(Codes().size(), requests + 2);
  EXPECT_EQ(NextBlock().code, 23) << "kept from the batch";
  EXPECT_EQ(Codes().size(), requests + 2);
  block = NextBlock();
  EXPECT_EQ(block.code, 23);
  EXPECT_EQ(block.cases, kUntouched);
  EXPECT_EQ(block.caseSize, kUntouched);
  EXPECT_EQ(block.place, nullptr);
  EXPECT_EQ(Codes().size(), requests + 3);
}

TEST_F(CaseBlocks, ABlockBeginsBehindTheCurrentCase) {
  types = {0};
  batches = {Batch(0, 3, Numbers({1, 2, 3})), Batch(0, 2, Numbers({4, 5}))};
  Serve();
  MakeCaseCursor("r");
  NextCase();
  EXPECT_EQ(NextBlock().bytes, Numbers({2, 3}));
  NextCase();
  EXPECT_EQ(Number(), 4);
  EXPECT_EQ(NextBlock().bytes, Numbers({5}));
  EXPECT_EQ(NextCase(), 23);
  EXPECT_EQ(NextBlock().code, 23);
}

TEST_F(CaseBlocks, BatchesTakeTurnsInTheSameMemory) {
  types = {CursorDataSmb::CACHE_SIZE / 64};
  const std::string text(static_cast<std::size_t>(types[0]), 'x');
  batches = {Batch(0, 1, text), Batch(67, 1, text), Batch(0, 1, text)};
  Serve();
  MakeCaseCursor("r");
  const void* const first = NextBlock().place;
  EXPECT_EQ(NextBlock().place, first);
  EXPECT_EQ(NextBlock().code, 67);
  EXPECT_EQ(NextBlock().place, first);
}

struct BadRow {
  const char* label;
  WireImage reply;
  int code;
  int cases;
};

TEST_F(CaseBlocks, CountsAreBelievedAsFarAsTheBlockGoes) {
  const std::string cases = Numbers({1, 2, 3, 4});
  const BadRow rows[] = {
      {"more cases than sent", {.longs = {9}, .block = cases}, 0, 2},
      {"fewer cases than sent", {.longs = {1}, .block = cases}, 0, 1},
      {"a part of a case", {.longs = {2}, .block = cases.substr(0, 31)}, 0, 1},
      {"less than a case", {.longs = {1}, .block = cases.substr(0, 15)}, 13, kUntouched},
      {"a count of 0", {.longs = {0}, .block = cases}, 13, kUntouched},
      {"a negative count", {.longs = {-1}, .block = cases}, 13, kUntouched},
      {"no block", {.longs = {2}}, 13, kUntouched},
      {"an end without a block", {.error = 67, .longs = {2}}, 67, kUntouched},
      {"an end with cases", {.error = 67, .longs = {2}, .block = cases}, 0, 2},
      {"another code", {.error = 55, .longs = {2}, .block = cases}, 55, kUntouched},
  };
  types = {0, 0};
  Serve();
  for (const BadRow& row : rows) {
    MakeCaseCursor("r");
    batches = {row.reply};
    const Block block = NextBlock();
    EXPECT_EQ(block.code, row.code) << row.label;
    EXPECT_EQ(block.cases, row.cases) << row.label;
  }
}

// The block of a reply with an integer more does not lie at a multiple of 8 in its message.
TEST_F(CaseBlocks, EveryBlockIsAligned) {
  types = {0};
  Serve();
  MakeCaseCursor("r");
  for (const std::vector<std::int32_t>& longs : {std::vector<std::int32_t>{2}, {2, 0}, {2, 0, 0}}) {
    batches = {WireImage{.longs = longs, .block = Numbers({1, 2})}};
    const Block block = NextBlock();
    EXPECT_EQ(block.bytes, Numbers({1, 2}));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block.place) % 8, 0u) << longs.size();
  }
}

TEST_F(CaseBlocks, ABatchCutShortIsNone) {
  types = {0};
  Serve();
  MakeCaseCursor("r");
  batches = {WireImage{.longs = {4000}, .block = std::string(32000, 'x')}};
  cutsAt = 8192;
  EXPECT_EQ(NextBlock().code, 109);
  EXPECT_EQ(Number(), kUntouched);
}

TEST_F(CaseBlocks, NextCaseTakesABatchCutShort) {
  types = {0};
  Serve();
  MakeCaseCursor("r");
  batches = {WireImage{.longs = {4000}, .block = std::string(32000, 'x')}};
  cutsAt = 8192;
  EXPECT_EQ(NextCase(), 0);
  EXPECT_EQ(KovaLastReceiveStatus(), 109) << "which tells";
}

TEST_F(CaseBlocks, ABlockNeedsACursorAndAnEngine) {
  EXPECT_EQ(NextBlock().code, 1900);
  SetKovaRunning(false);
  EXPECT_EQ(NextBlock().code, 17);
  SetKovaRunning(true);
  types = {0};
  batches = {Batch(0, 1, Numbers({1})), Batch(0, 1, Numbers({2}))};
  Serve();
  MakeCaseCursor("r");
  EXPECT_EQ(KovaNextCaseBlock(nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(NextBlock().bytes, Numbers({2}));
}

// ---- The layout.

TEST_F(CaseBlocks, TheLayoutIsThatOfTheCursor) {
  types = {0, 1, 8, 9, 32767, 0};
  missingNumbers = {.longs = {-3}, .doubles = {1, 3, -9}};
  missingTexts = {.longs = {2}, .texts = {"AB", "12345678910"}};
  Serve();
  EXPECT_EQ(KovaGetCaseLayout(nullptr, nullptr), 1900);
  EXPECT_EQ(KovaGetCaseVariable(0, nullptr, nullptr, nullptr, nullptr), 1900);
  MakeCaseCursor("r");
  int count = kUntouched;
  int size = kUntouched;
  EXPECT_EQ(KovaGetCaseLayout(&count, &size), 0);
  EXPECT_EQ(count, 6);
  EXPECT_EQ(size, 32816);
  const int offsets[] = {0, 8, 16, 24, 40, 32808};
  for (int i = 0; i < 6; ++i) {
    int type = kUntouched;
    int offset = kUntouched;
    int kind = kUntouched;
    const void* missing = nullptr;
    EXPECT_EQ(KovaGetCaseVariable(i, &type, &offset, &kind, &missing), 0);
    EXPECT_EQ(type, types[static_cast<std::size_t>(i)]);
    EXPECT_EQ(offset, offsets[i]);
    EXPECT_EQ(kind, type == 0 ? -3 : 2);
    const std::string values(static_cast<const char*>(missing), 24);
    EXPECT_EQ(values, type == 0 ? Numbers({1, 3, -9}) : "AB      12345678        ");
  }
  EXPECT_EQ(KovaGetCaseLayout(nullptr, nullptr), 0);
  EXPECT_EQ(KovaGetCaseVariable(0, nullptr, nullptr, nullptr, nullptr), 0);
  for (const int outside : {-1, 6, kMost}) {
    EXPECT_EQ(KovaGetCaseVariable(outside, nullptr, nullptr, nullptr, nullptr), 10);
  }
}

struct LayoutRow {
  const char* label;
  std::vector<int> types;
  std::vector<int> offsets;
  int caseSize;
};

TEST_F(CaseBlocks, CasesAreLaidOutByTheirTypes) {
  const LayoutRow rows[] = {
      {"none", {}, {}, 0},
      {"numbers", {0, 0}, {0, 8}, 16},
      {"widths", {1, 7, 8, 9, 16, 17, 0}, {0, 8, 16, 24, 40, 56, 80}, 88},
      {"the widest", {32767, 0}, {0, 32768}, 32776},
      {"a negative type", {-1, 0}, {0, 8}, 16},
  };
  for (const LayoutRow& row : rows) {
    const int count = static_cast<int>(row.types.size());
    std::vector<int> offsets(row.types.size(), kUntouched);
    int size = kUntouched;
    EXPECT_EQ(KovaLayOutCase(row.types.data(), count, offsets.data(), &size), 0) << row.label;
    EXPECT_EQ(offsets, row.offsets) << row.label;
    EXPECT_EQ(size, row.caseSize) << row.label;
    EXPECT_EQ(KovaLayOutCase(row.types.data(), count, nullptr, nullptr), 0) << row.label;
  }
}

TEST_F(CaseBlocks, ALayoutThatNoMessageHoldsIsRefused) {
  const int wide[] = {kMost, 0};
  int size = kUntouched;
  EXPECT_EQ(KovaLayOutCase(wide, 1, nullptr, &size), 13);
  EXPECT_EQ(KovaLayOutCase(wide, 2, nullptr, &size), 13);
  EXPECT_EQ(size, kUntouched);
  EXPECT_EQ(KovaLayOutCase(nullptr, 2, nullptr, &size), 0);
  EXPECT_EQ(size, 0);
  EXPECT_EQ(KovaLayOutCase(wide, -1, nullptr, &size), 0);
  EXPECT_EQ(size, 0);
}

}  // namespace
