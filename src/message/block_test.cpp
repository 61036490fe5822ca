#include "message/block.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <thread>
#include <utility>
#include <vector>

namespace {

using kova::Block;

// Takes the spare block out of its place, so that a test starts without one.
void dropSpare() {
  Block large = Block::take(Block::kLargestKept + 1);
  ASSERT_NE(large.data(), nullptr);
}

TEST(Block, HasTheSizeAskedFor) {
  for (const std::size_t size : {std::size_t{0}, std::size_t{1}, Block::kSmallestKept, Block::kLargestKept + 1}) {
    SCOPED_TRACE(size);
    Block block = Block::take(size);
    ASSERT_NE(block.data(), nullptr);
    EXPECT_EQ(block.size(), size);
    EXPECT_GE(block.capacity(), size);
    if (size > 0) block.data()[size - 1] = 'x';
  }
}

TEST(Block, MovesAndIsEmptyAfterwards) {
  Block first = Block::take(10);
  char* const data = first.data();
  Block second = std::move(first);
  EXPECT_EQ(second.data(), data);
  EXPECT_EQ(second.size(), 10u);
  Block third = Block::take(3);
  third = std::move(second);
  EXPECT_EQ(third.data(), data);
  Block& itself = third;
  third = std::move(itself);
  EXPECT_EQ(third.data(), data);
  third.release();
  EXPECT_EQ(third.data(), nullptr);
  EXPECT_EQ(third.size(), 0u);
}

TEST(Block, AReleasedLargeBlockIsTheNextOne) {
  dropSpare();
  char* data = nullptr;
  {
    const Block block = Block::take(4 * Block::kSmallestKept);
    data = block.data();
  }
  const Block smaller = Block::take(Block::kSmallestKept);
  EXPECT_EQ(smaller.data(), data);
  EXPECT_EQ(smaller.size(), Block::kSmallestKept);
  EXPECT_EQ(smaller.capacity(), 4 * Block::kSmallestKept);
}

TEST(Block, TheLargerOfTwoReleasedBlocksIsKept) {
  for (const bool largerFirst : {true, false}) {
    SCOPED_TRACE(largerFirst);
    dropSpare();
    Block larger = Block::take(8 * Block::kSmallestKept);
    Block smaller = Block::take(2 * Block::kSmallestKept);
    char* const data = larger.data();
    (largerFirst ? larger : smaller).release();
    (largerFirst ? smaller : larger).release();
    EXPECT_EQ(Block::take(8 * Block::kSmallestKept).data(), data);
  }
}

TEST(Block, AdoptedMemoryIsNeverKept) {
  dropSpare();
  void* const memory = std::malloc(2 * Block::kSmallestKept);
  {
    const Block block = Block::adopt(memory, 2 * Block::kSmallestKept);
    EXPECT_EQ(block.data(), memory);
    EXPECT_EQ(block.capacity(), 0u);
  }
  const Block next = Block::take(Block::kSmallestKept);
  EXPECT_EQ(next.capacity(), Block::kSmallestKept);
}

TEST(Block, ResizesInPlaceWhileItHasRoom) {
  Block block = Block::take(100);
  char* const data = block.data();
  ASSERT_TRUE(block.resize(10));
  EXPECT_EQ(block.data(), data);
  EXPECT_EQ(block.size(), 10u);
  ASSERT_TRUE(block.resize(100));
  EXPECT_EQ(block.data(), data);
  ASSERT_TRUE(block.resize(5000));
  EXPECT_EQ(block.size(), 5000u);
}

TEST(Block, ThreadsNeverShareOne) {
  std::vector<std::thread> threads;
  for (int worker = 0; worker < 4; ++worker) {
    threads.emplace_back([worker] {
      for (int round = 0; round < 500; ++round) {
        const std::size_t size = Block::kSmallestKept * static_cast<std::size_t>(1 + (round + worker) % 3);
        Block block = Block::take(size);
        std::memset(block.data(), worker, 64);
        block.data()[size - 1] = static_cast<char>(worker);
        for (int i = 0; i < 64; ++i) ASSERT_EQ(block.data()[i], worker);
        ASSERT_EQ(block.data()[size - 1], worker);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
