// Buffers that no honest peer sends: cut short, with bits flipped, with counts that promise too much. None may make the
// decoder read beyond the buffer; an address checker watches these tests.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "message/message_test_kit.h"

namespace {

using kova::test::adopt;
using kova::test::Bytes;
using kova::test::imageOf;
using kova::test::parse;

Bytes fullImage() {
  CleXDSmb message;
  kova::test::fillEverySlot(message);
  return imageOf(message);
}

// Looks at everything that a parse left behind, and sends it on.
void touch(CleXDSmb& message) {
  std::size_t sum = 0;
  for (const int value : message.Longs().values()) sum += static_cast<unsigned>(value);
  for (const std::string& text : message.Strings().values()) sum += text.size();
  for (const dataSet& record : message.Structs().values()) sum += record.datasetName.size();
  int length = 0;
  const auto* const bytes = static_cast<const unsigned char*>(message.GetVoidData(length));
  for (int i = 0; i < length; ++i) sum += bytes[i];
  for (int i = 0; i < message.BinaryLength() + (message.BinaryLength() > 0 ? 1 : 0); ++i) {
    sum += static_cast<unsigned char>(message.GetBinaryData()[i]);
  }
  EXPECT_FALSE(imageOf(message).empty()) << sum;
}

TEST(DamagedMessage, CutAnywhere) {
  const Bytes image = fullImage();
  int parsed = 0;
  for (std::size_t length = 0; length <= image.size(); ++length) {
    SCOPED_TRACE(length);
    CleXDSmb message;
    EXPECT_EQ(parse(message, Bytes(image.begin(), image.begin() + static_cast<std::ptrdiff_t>(length))), 0);
    touch(message);
    EXPECT_EQ(message.GetErrorCode(), length >= 12 ? 17 : 0);
    EXPECT_EQ(message.Longs().Size(), length >= 24 ? 2 : 0);
    EXPECT_EQ(message.Strings().Size(), length >= 50 ? 2 : length >= 48 ? 1 : 0);
    int voidLength = 0;
    message.GetVoidData(voidLength);
    parsed += voidLength > 0 ? 1 : 0;
  }
  EXPECT_EQ(parsed, 1);
}

TEST(DamagedMessage, ArrivedOnlyInPart) {
  const Bytes image = fullImage();
  for (std::size_t length = 0; length <= image.size(); ++length) {
    SCOPED_TRACE(length);
    CleXDSmb message;
    EXPECT_EQ(adopt(message, image, static_cast<int>(length)), 0);
    touch(message);
    EXPECT_EQ(message.GetErrorCode(), length >= 9 ? 17 : 0);
  }
}

// The places of the counts of texts, records and lists in a message of 200 MiB of which 60 bytes have arrived.
TEST(DamagedMessage, CountsOfACutMessageCostNoMemory) {
  constexpr int kClaimed = 200 << 20;
  for (const int place : {20, 24, 28, 32, 36}) {
    SCOPED_TRACE(place);
    void* const zeroed = std::calloc(1, kClaimed);
    ASSERT_NE(zeroed, nullptr);
    const std::int32_t count = kClaimed / 40;
    std::memcpy(zeroed, &kClaimed, sizeof kClaimed);
    std::memcpy(static_cast<char*>(zeroed) + place, &count, sizeof count);
    CleXDSmb message;
    ASSERT_EQ(message.AdoptReceived(kova::Block::adopt(zeroed, kClaimed), 60), 0);
    const std::size_t items = message.Strings().values().capacity() + message.Structs().values().capacity() +
                              message.LongArrays().capacity() + message.DoubleArrays().capacity() +
                              message.StringArrays().capacity();
    EXPECT_GT(items, 0u);
    EXPECT_LE(items, 60u);
  }
}

TEST(DamagedMessage, EveryBitFlipped) {
  const Bytes image = fullImage();
  for (std::size_t bit = 0; bit < image.size() * 8; ++bit) {
    SCOPED_TRACE(bit);
    Bytes damaged = image;
    damaged[bit / 8] = static_cast<unsigned char>(damaged[bit / 8] ^ (1u << (bit % 8)));
    CleXDSmb message;
    EXPECT_EQ(parse(message, damaged), 0);
    touch(message);
    CleXDSmb adopted;
    EXPECT_EQ(adopt(adopted, damaged, static_cast<int>(damaged.size())), 0);
    touch(adopted);
  }
}

TEST(DamagedMessage, EveryWordReplacedByAnExtreme) {
  const Bytes image = fullImage();
  for (const std::uint32_t extreme : {0x7FFFFFFFu, 0xFFFFFFFFu, 0x80000000u, 0x40000000u, 0x20000000u, 157u}) {
    for (std::size_t at = 0; at + 4 <= image.size(); ++at) {
      SCOPED_TRACE(at);
      Bytes damaged = image;
      std::memcpy(damaged.data() + at, &extreme, sizeof extreme);
      CleXDSmb message;
      EXPECT_EQ(parse(message, damaged), 0);
      touch(message);
    }
  }
}

struct CountCase {
  const char* label;
  std::size_t offset;  // Of a count in an empty message.
};

TEST(DamagedMessage, ACountIsBelievedOnlyWhenItsItemsCanFit) {
  const CountCase cases[] = {{"integers", 12},       {"doubles", 16},       {"strings", 20},       {"cells", 24},
                             {"integer arrays", 28}, {"double arrays", 32}, {"string arrays", 36}, {"binary", 40},
                             {"wide", 44},           {"void data", 48}};
  for (const CountCase& row : cases) {
    for (const std::int32_t count : {-1, INT32_MIN, INT32_MAX, 100}) {
      SCOPED_TRACE(std::string(row.label) + " " + std::to_string(count));
      CleXDSmb empty;
      Bytes image = imageOf(empty);
      std::memcpy(image.data() + row.offset, &count, sizeof count);
      CleXDSmb message;
      message.SetVoidData(nullptr, 0);
      EXPECT_EQ(parse(message, image), 0);
      EXPECT_EQ(message.Longs().Size() + message.Doubles().Size() + message.Strings().Size(), 0);
      EXPECT_TRUE(message.LongArrays().empty() && message.DoubleArrays().empty() && message.StringArrays().empty());
      EXPECT_EQ(message.BinaryLength(), 0);
      EXPECT_EQ(message.GetwStringData(), nullptr);
      touch(message);
    }
  }
}

TEST(DamagedMessage, ItsOwnFirstFieldBoundsIt) {
  Bytes image = fullImage();
  for (const std::int32_t total : {INT32_MIN, -1, 0, 3, 4, 11, 12, 51, 156}) {
    SCOPED_TRACE(total);
    std::memcpy(image.data(), &total, sizeof total);
    CleXDSmb message;
    EXPECT_EQ(message.ParseBuf(image.data()), 0);
    touch(message);
  }
}

TEST(DamagedMessage, NothingOrLessAvailable) {
  const Bytes image = fullImage();
  for (const int available : {0, -1, INT32_MIN}) {
    CleXDSmb message;
    message.SetLong(3);
    EXPECT_EQ(message.ParseBuf(image.data(), available), 0);
    EXPECT_EQ(message.FirstLong(), 3);
  }
}

}  // namespace
