#include "message/CleXDSmb.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "message/message_test_kit.h"

namespace {

using kova::test::adopt;
using kova::test::Bytes;
using kova::test::imageOf;
using kova::test::parse;
using kova::test::voidDataOf;

void* mallocCopy(std::string_view text) {
  void* const block = std::malloc(text.size());
  std::memcpy(block, text.data(), text.size());
  return block;
}

Bytes imageWith(void (*fill)(CleXDSmb&)) {
  CleXDSmb message;
  fill(message);
  return imageOf(message);
}

std::u16string wideOf(const CleXDSmb& message) {
  std::u16string text;
  for (const kova::WideUnit* unit = message.GetwStringData(); unit != nullptr && *unit != 0; ++unit) text += *unit;
  return text;
}

TEST(CleXDSmb, StartsEmpty) {
  const CleXDSmb message;
  int length = -1;
  EXPECT_EQ(message.GetCommandAction(), kova::Command::kNone);
  EXPECT_EQ(static_cast<int>(message.GetCommandAction()), -1);
  EXPECT_EQ(message.GetErrorCode(), 0);
  EXPECT_EQ(message.GetSendBuf(length), nullptr);
  EXPECT_EQ(length, 0);
  EXPECT_EQ(message.GetVoidData(length), nullptr);
  EXPECT_EQ(length, 0);
  EXPECT_EQ(message.GetBinaryData(), nullptr);
  EXPECT_EQ(message.BinaryLength(), 0);
  EXPECT_EQ(message.GetwStringData(), nullptr);
  EXPECT_EQ(CleXDSmb::LONG_LEN, 4);
}

TEST(CleXDSmb, FirstValuesOfEmptySlots) {
  const CleXDSmb message;
  EXPECT_EQ(message.FirstLong(), 0);
  EXPECT_EQ(message.FirstDouble(), 0.0);
  EXPECT_STREQ(message.FirstString(), "");
  EXPECT_EQ(message.GetSingleString(), "");
}

TEST(CleXDSmb, FirstValues) {
  CleXDSmb message;
  message.SetLong(4);
  message.SetLong(5);
  message.SetDouble(0.5);
  message.SetString("first");
  message.SetString("second");
  EXPECT_EQ(message.FirstLong(), 4);
  EXPECT_EQ(message.FirstDouble(), 0.5);
  EXPECT_STREQ(message.FirstString(), "first");
  EXPECT_EQ(message.GetSingleString(), "first");
}

TEST(CleXDSmb, LongKeepsTheLow32Bits) {
  CleXDSmb message;
  message.SetLong(static_cast<long>((std::int64_t{1} << 32) + 5));
  message.SetLong(-1);
  EXPECT_EQ(message.GetLongData().GetData(), (std::vector<int>{5, -1}));
}

TEST(CleXDSmb, NullStringAppendsNothing) {
  CleXDSmb message;
  message.SetString("a");
  message.SetString(nullptr);
  message.SetString(nullptr, 3);
  message.SetString("b");
  EXPECT_EQ(message.GetStringData().GetData(), (std::vector<std::string>{"a", "b"}));
}

TEST(CleXDSmb, EmptyStringAppendsAnEntry) {
  CleXDSmb message;
  message.SetString("");
  message.SetString("x", 0);
  message.SetString("x", -4);
  EXPECT_EQ(message.Strings().values(), (std::vector<std::string>{"", "", ""}));
}

TEST(CleXDSmb, StringWithLengthKeepsNulBytes) {
  CleXDSmb message;
  std::string whole("c\0d", 3);
  message.SetString("a\0b", 3);
  message.SetString(whole);
  CleXDSmb received;
  ASSERT_EQ(parse(received, imageOf(message)), 0);
  EXPECT_EQ(received.Strings().values(), (std::vector<std::string>{std::string("a\0b", 3), whole}));
}

TEST(CleXDSmb, SetSingleStringReplaces) {
  CleXDSmb message;
  message.SetString("a");
  message.SetString("b");
  message.SetSingleString(message.FirstString());
  EXPECT_EQ(message.Strings().values(), std::vector<std::string>{"a"});
  message.SetSingleString(nullptr);
  EXPECT_EQ(message.Strings().Size(), 0);
}

TEST(CleXDSmb, VectorOverloadsReplace) {
  LongData longs;
  longs.SetValue(1);
  DoubleData doubles;
  doubles.SetValue(2);
  StringData strings;
  strings.SetValue("3");
  CleXDSmb message;
  message.SetLongArray(longs);
  message.SetDoubleArray(doubles);
  message.SetStringArray(strings);
  message.SetStruct(dataSet{"one", 1, 1, 0, 1, ""});
  message.SetLongArray(std::vector<LongData>(2, longs));
  message.SetDoubleArray(std::vector<DoubleData>(3, doubles));
  message.SetStringArray(std::vector<StringData>(4, strings));
  message.SetStruct(std::vector<dataSet>{{"two", 2, 2, 0, 2, ""}, {"three", 3, 3, 1, 0, "s"}});
  EXPECT_EQ(message.GetLongArray().size(), 2u);
  EXPECT_EQ(message.GetDoubleArray().size(), 3u);
  EXPECT_EQ(message.GetStringArray().size(), 4u);
  EXPECT_EQ(message.GetStructData().GetData()[1], (dataSet{"three", 3, 3, 1, 0, "s"}));
  EXPECT_EQ(message.GetStructData().Size(), 2);
}

TEST(CleXDSmb, AListAssignedToItselfStays) {
  LongData longs;
  longs.SetValue(1);
  DoubleData doubles;
  doubles.SetValue(2);
  StringData strings;
  strings.SetValue("3");
  CleXDSmb message;
  message.SetLongArray(longs);
  message.SetDoubleArray(doubles);
  message.SetStringArray(strings);
  message.SetLongArray(message.GetLongArrayRef());
  message.SetDoubleArray(message.GetDoubleArrayRef());
  message.SetStringArray(message.GetStringArrayRef());
  EXPECT_EQ(message.GetLongArrayRef()[0][0], 1);
  EXPECT_EQ(message.GetDoubleArrayRef()[0][0], 2);
  EXPECT_EQ(message.GetStringArrayRef()[0][0], "3");
}

TEST(CleXDSmb, ReferencesChangeTheMessage) {
  CleXDSmb message;
  message.SetLong(1);
  message.SetDouble(1);
  message.GetLongDataRef()[0] = 9;
  message.GetDoubleDataRef().SetValue(8);
  EXPECT_EQ(message.FirstLong(), 9);
  EXPECT_EQ(message.Doubles().Size(), 2);
  LongData copy = message.GetLongData();
  copy[0] = 3;
  EXPECT_EQ(message.FirstLong(), 9);
}

TEST(CleXDSmb, CleanUpOfSingleSlots) {
  CleXDSmb message;
  kova::test::fillEverySlot(message);
  message.CleanUpLongData();
  EXPECT_EQ(message.Longs().Size(), 0);
  EXPECT_EQ(message.Doubles().Size(), 1);
  message.CleanUpDoubleData();
  EXPECT_EQ(message.Doubles().Size(), 0);
  EXPECT_EQ(message.Strings().Size(), 2);
  message.CleanUpStringData();
  EXPECT_EQ(message.Strings().Size(), 0);
  EXPECT_EQ(message.Structs().Size(), 1);
  message.CleanUpStructData();
  EXPECT_EQ(message.Structs().Size(), 0);
  message.CleanUpwStringData();
  EXPECT_EQ(wideOf(message), u"A\u20AC");
  EXPECT_EQ(message.LongArrays().size(), 2u);
}

TEST(CleXDSmb, CleanUpAllDataKeepsWideStringSendBufferAndCodes) {
  CleXDSmb message;
  kova::test::fillEverySlot(message);
  const std::size_t sent = imageOf(message).size();
  message.CleanUpAllData();
  int length = 0;
  EXPECT_NE(message.GetSendBuf(length), nullptr);
  EXPECT_EQ(static_cast<std::size_t>(length), sent);
  EXPECT_EQ(wideOf(message), u"A\u20AC");
  EXPECT_EQ(message.GetCommandAction(), kova::Command::CommitDataSet);
  EXPECT_EQ(message.GetErrorCode(), 17);
  EXPECT_EQ(message.Longs().Size() + message.Doubles().Size() + message.Strings().Size() + message.Structs().Size(), 0);
  EXPECT_TRUE(message.LongArrays().empty() && message.DoubleArrays().empty() && message.StringArrays().empty());
  EXPECT_EQ(message.GetVoidData(length), nullptr);
  EXPECT_EQ(length, 0);
  EXPECT_EQ(message.GetBinaryData(), nullptr);
}

TEST(CleXDSmb, CleanUpReleasesSendBufferAndWideString) {
  CleXDSmb message;
  kova::test::fillEverySlot(message);
  ASSERT_EQ(message.ContructSendData(), 0);
  message.CleanUp();
  int length = -1;
  EXPECT_EQ(message.GetSendBuf(length), nullptr);
  EXPECT_EQ(length, 0);
  EXPECT_EQ(message.GetwStringData(), nullptr);
  EXPECT_EQ(message.GetErrorCode(), 17);
  EXPECT_EQ(imageOf(message).size(), 52u);
}

TEST(CleXDSmb, AForgottenBinaryStringLeavesNoLength) {
  CleXDSmb message;
  message.SetBinaryString("abc", 3);
  ASSERT_EQ(imageOf(message).size(), 55u);
  message.CleanUp();
  const Bytes second = imageOf(message);
  ASSERT_EQ(second.size(), 52u);
  EXPECT_EQ(Bytes(second.begin() + 40, second.begin() + 44), (Bytes{0, 0, 0, 0}));
}

struct BinaryCase {
  const char* label;
  const char* data;
  int length;
  int held;
  bool pointer;
};

TEST(CleXDSmb, BinaryStringLengths) {
  const BinaryCase cases[] = {{"bytes", "ab", 2, 2, true},
                              {"empty", "ab", 0, 0, true},
                              {"negative", "ab", -1, 0, true},
                              {"null", nullptr, 5, 0, false}};
  for (const BinaryCase& row : cases) {
    SCOPED_TRACE(row.label);
    CleXDSmb message;
    message.SetBinaryString("before", 6);
    message.SetBinaryString(row.data, row.length);
    EXPECT_EQ(message.BinaryLength(), row.held);
    EXPECT_EQ(message.GetBinaryData() != nullptr, row.pointer);
    EXPECT_EQ(imageOf(message).size(), 52u + static_cast<unsigned>(row.held));
  }
}

TEST(CleXDSmb, WideStringByEitherWidth) {
  CleXDSmb message;
  message.SetwString(L"\U0001F600");
  EXPECT_EQ(wideOf(message), u"\xD83D\xDE00");
  EXPECT_EQ(imageOf(message).size(), 56u);
  message.SetwString(u"\u00E9t\u00E9");
  EXPECT_EQ(wideOf(message), u"\u00E9t\u00E9");
  message.SetwString(u"");
  EXPECT_NE(message.GetwStringData(), nullptr);
  EXPECT_EQ(imageOf(message).size(), 52u);
  message.SetwString(static_cast<const wchar_t*>(nullptr));
  EXPECT_EQ(message.GetwStringData(), nullptr);
  message.SetwString(u"x");
  message.SetwString(static_cast<const char16_t*>(nullptr));
  EXPECT_EQ(message.GetwStringData(), nullptr);
  static_assert(sizeof(*message.GetwStringData()) == 2);
}

TEST(CleXDSmb, VoidDataIsAdopted) {
  CleXDSmb message;
  void* const block = mallocCopy("abc");
  message.SetVoidData(block, 3);
  int length = 0;
  EXPECT_EQ(message.GetVoidData(length), block);
  EXPECT_EQ(length, 3);
  message.SetVoidData(mallocCopy("de"), 2);
  EXPECT_EQ(voidDataOf(message), "de");
  message.SetVoidData(nullptr, 7);
  EXPECT_EQ(message.GetVoidData(length), nullptr);
  EXPECT_EQ(length, 0);
  message.SetVoidData(mallocCopy("f"), 0);
  EXPECT_EQ(message.GetVoidData(length), nullptr);
  message.SetVoidData(mallocCopy("g"), -1);
  EXPECT_EQ(message.GetVoidData(length), nullptr);
  EXPECT_EQ(length, 0);
}

TEST(CleXDSmb, SavedVoidDataNeverLeavesItsBlock) {
  CleXDSmb message;
  message.SaveDataIntoVoidData("early", 5);
  EXPECT_EQ(voidDataOf(message), "");
  message.AllocVoidData(6);
  int length = -1;
  EXPECT_NE(message.GetVoidData(length), nullptr);
  EXPECT_EQ(length, 0);
  EXPECT_EQ(imageOf(message).size(), 52u);
  message.SaveDataIntoVoidData("abcd", 4);
  message.SaveDataIntoVoidData("xyz", -1);
  message.SaveDataIntoVoidData(nullptr, 2);
  EXPECT_EQ(voidDataOf(message), "abcd");
  message.SaveDataIntoVoidData("efgh", 4);
  EXPECT_EQ(voidDataOf(message), "abcdef");
  message.SaveDataIntoVoidData("i", 1);
  EXPECT_EQ(voidDataOf(message), "abcdef");
  message.AllocVoidData(0);
  EXPECT_EQ(message.GetVoidData(length), nullptr);
  message.AllocVoidData(-3);
  EXPECT_EQ(message.GetVoidData(length), nullptr);
  message.SetVoidData(mallocCopy("abc"), 3);
  message.SaveDataIntoVoidData("d", 1);
  EXPECT_EQ(voidDataOf(message), "abc");
}

TEST(CleXDSmb, BorrowedVoidDataStaysTheCallers) {
  const std::string block = "case data";
  CleXDSmb message;
  message.BorrowVoidData(block.data(), static_cast<int>(block.size()));
  const kova::WirePieces pieces = message.BuildPieces();
  EXPECT_EQ(pieces.block, block.data());
  EXPECT_EQ(pieces.blockLength, 9);
  message.SaveDataIntoVoidData("xx", 2);
  const CleXDSmb copy = message;
  message.CleanUp();
  EXPECT_EQ(voidDataOf(message), "");
  EXPECT_EQ(block, "case data");
  EXPECT_EQ(voidDataOf(copy), "case data");
  EXPECT_NE(voidDataOf(copy).data(), block.data());
}

TEST(CleXDSmb, CopiesAreDeep) {
  CleXDSmb copy;
  Bytes image;
  {
    CleXDSmb message;
    kova::test::fillEverySlot(message);
    image = imageOf(message);
    copy = message;
    const CleXDSmb another(message);
    EXPECT_NE(another.GetBinaryData(), message.GetBinaryData());
    EXPECT_NE(another.GetwStringData(), message.GetwStringData());
    EXPECT_NE(voidDataOf(another).data(), voidDataOf(message).data());
    int length = 0;
    EXPECT_NE(another.GetSendBuf(length), message.GetSendBuf(length));
    message.CleanUp();
  }
  int length = 0;
  const char* const sent = copy.GetSendBuf(length);
  EXPECT_EQ(Bytes(sent, sent + length), image);
  EXPECT_EQ(imageOf(copy), image);
  const CleXDSmb& self = copy;
  copy = self;
  EXPECT_EQ(imageOf(copy), image);
}

TEST(CleXDSmb, ACopyOfRoomCanBeFilledOn) {
  CleXDSmb message;
  message.AllocVoidData(4);
  message.SaveDataIntoVoidData("ab", 2);
  CleXDSmb copy = message;
  copy.SaveDataIntoVoidData("cdef", 4);
  EXPECT_EQ(voidDataOf(copy), "abcd");
  EXPECT_EQ(voidDataOf(message), "ab");
}

TEST(CleXDSmb, AMovedMessageIsEmptyAndUsable) {
  CleXDSmb message;
  kova::test::fillEverySlot(message);
  const Bytes image = imageOf(message);
  CleXDSmb moved = std::move(message);
  EXPECT_EQ(imageOf(moved), image);
  EXPECT_EQ(message.GetBinaryData(), nullptr);
  EXPECT_EQ(message.BinaryLength(), 0);
  static_assert(std::is_nothrow_move_constructible_v<CleXDSmb>);
  CleXDSmb fresh;
  fresh = std::move(moved);
  EXPECT_EQ(imageOf(fresh), image);
  moved.CleanUp();
  EXPECT_EQ(imageOf(moved).size(), 52u);
}

TEST(CleXDSmb, ParsingAppendsToScalarsAndArrays) {
  const Bytes image = imageWith(kova::test::fillEverySlot);
  CleXDSmb message;
  message.SetLong(100);
  message.SetString("before");
  ASSERT_EQ(parse(message, image), 0);
  ASSERT_EQ(parse(message, image), 0);
  EXPECT_EQ(message.GetLongData().GetData(), (std::vector<int>{100, 1, -2, 1, -2}));
  EXPECT_EQ(message.Doubles().Size(), 2);
  EXPECT_EQ(message.Strings().values(), (std::vector<std::string>{"before", "ab", "", "ab", ""}));
  EXPECT_EQ(message.Structs().Size(), 2);
  EXPECT_EQ(message.LongArrays().size(), 4u);
  EXPECT_EQ(message.DoubleArrays().size(), 2u);
  EXPECT_EQ(message.StringArrays().size(), 2u);
  EXPECT_EQ(wideOf(message), u"A\u20AC");
  EXPECT_EQ(message.BinaryLength(), 3);
  EXPECT_EQ(voidDataOf(message), "\x09\x08\x07\x06");
}

TEST(CleXDSmb, ParsingReplacesBlocksEvenByNothing) {
  CleXDSmb message;
  kova::test::fillEverySlot(message);
  ASSERT_EQ(parse(message, imageWith([](CleXDSmb&) {})), 0);
  int length = -1;
  EXPECT_EQ(message.GetVoidData(length), nullptr);
  EXPECT_EQ(length, 0);
  EXPECT_EQ(message.GetBinaryData(), nullptr);
  EXPECT_EQ(message.GetwStringData(), nullptr);
  EXPECT_EQ(message.Longs().Size(), 2);
}

TEST(CleXDSmb, AReceivedBinaryStringCarriesOneByteMore) {
  const Bytes image = imageWith([](CleXDSmb& message) {
    message.SetBinaryString("xyz", 3);
    message.SetwString(u"0123456789ABCDEFG");
  });
  CleXDSmb message;
  ASSERT_EQ(parse(message, image), 0);
  EXPECT_EQ(message.BinaryLength(), 3);
  EXPECT_EQ(std::string(message.GetBinaryData(), 4), std::string("xyz\x11"));
}

TEST(CleXDSmb, TheByteBehindABinaryStringIsZeroWhenNothingFollows) {
  Bytes image = imageWith([](CleXDSmb& message) { message.SetBinaryString("xyz", 3); });
  image.resize(image.size() - 8);
  CleXDSmb message;
  ASSERT_EQ(parse(message, image), 0);
  EXPECT_EQ(message.BinaryLength(), 3);
  EXPECT_EQ(std::string(message.GetBinaryData(), 4), std::string("xyz\0", 4));
}

TEST(CleXDSmb, AReceivedBinaryStringIsNotSentAgain) {
  const Bytes image = imageWith([](CleXDSmb& message) { message.SetBinaryString("xyz", 3); });
  CleXDSmb fresh;
  ASSERT_EQ(parse(fresh, image), 0);
  EXPECT_EQ(imageOf(fresh).size(), 52u);
  CleXDSmb used;
  used.SetBinaryString("longer than that", 16);
  ASSERT_EQ(parse(used, image), 0);
  EXPECT_EQ(imageOf(used).size(), 52u);
}

TEST(CleXDSmb, AParsedWideStringIsTerminatedAndCountedToItsTerminator) {
  CleXDSmb message;
  Bytes image = imageWith([](CleXDSmb& filled) { filled.SetwString(u"abc"); });
  ASSERT_EQ(parse(message, image), 0);
  EXPECT_EQ(wideOf(message), u"abc");
  image[image.size() - 8] = 0;  // The second unit becomes NUL: only the first is sent again.
  CleXDSmb cut;
  ASSERT_EQ(parse(cut, image), 0);
  EXPECT_EQ(imageOf(cut).size(), 54u);
}

TEST(CleXDSmb, ParseBufTakesItsOwnFirstFieldAsTheBound) {
  Bytes image = imageWith(kova::test::fillEverySlot);
  CleXDSmb whole;
  ASSERT_EQ(whole.ParseBuf(image.data()), 0);
  EXPECT_EQ(voidDataOf(whole), "\x09\x08\x07\x06");
  int length = 0;
  EXPECT_EQ(whole.GetSendBuf(length), nullptr);
  EXPECT_EQ(length, 157);
  image[0] = 20;
  CleXDSmb bounded;
  ASSERT_EQ(bounded.ParseBuf(image.data()), 0);
  EXPECT_EQ(bounded.GetErrorCode(), 17);
  EXPECT_EQ(bounded.Longs().Size(), 0);
  CleXDSmb none;
  EXPECT_EQ(none.ParseBuf(nullptr), 0);
}

TEST(CleXDSmb, ParsingItsOwnSendBuffer) {
  CleXDSmb message;
  message.SetString("again");
  ASSERT_EQ(message.ContructSendData(), 0);
  int length = 0;
  ASSERT_EQ(message.ParseBuf(message.GetSendBuf(length)), 0);
  EXPECT_EQ(message.Strings().values(), (std::vector<std::string>{"again", "again"}));
}

TEST(CleXDSmb, AdoptedVoidDataStaysInItsBlock) {
  const Bytes image = imageWith(kova::test::fillEverySlot);
  kova::Block block = kova::Block::take(image.size());
  std::memcpy(block.data(), image.data(), image.size());
  const char* const place = block.data() + image.size() - 4;
  CleXDSmb message;
  message.SetVoidData(mallocCopy("old"), 3);
  ASSERT_EQ(message.AdoptReceived(std::move(block), static_cast<int>(image.size())), 0);
  EXPECT_EQ(voidDataOf(message).data(), place);
  EXPECT_EQ(voidDataOf(message), "\x09\x08\x07\x06");
  const CleXDSmb copy = message;
  message.CleanUpAllData();
  EXPECT_EQ(voidDataOf(copy), "\x09\x08\x07\x06");
}

TEST(CleXDSmb, PiecesLeaveNoSendBufferWithoutItsVoidData) {
  CleXDSmb message;
  std::vector<char> block(100, 'b');
  message.BorrowVoidData(block.data(), 100);
  ASSERT_EQ(message.BuildPieces().headLength, 52);
  int length = -1;
  EXPECT_EQ(message.GetSendBuf(length), nullptr);
  EXPECT_EQ(length, 0);
  ASSERT_EQ(message.ContructSendData(), 0);
  EXPECT_NE(message.GetSendBuf(length), nullptr);
  EXPECT_EQ(length, 152);
}

TEST(CleXDSmb, TheMissingRestOfAnAdoptedBufferReadsAsZeros) {
  const Bytes image = imageWith([](CleXDSmb& message) {
    message.SetErrorCode(5);
    message.SetLong(1);
    message.SetLong(2);
    message.SetString("text");
  });
  CleXDSmb message;
  ASSERT_EQ(adopt(message, image, 20), 0);
  EXPECT_EQ(message.GetErrorCode(), 5);
  EXPECT_EQ(message.GetLongData().GetData(), (std::vector<int>{1, 0}));
  EXPECT_EQ(message.Strings().Size(), 0);
  CleXDSmb nothing;
  EXPECT_EQ(adopt(nothing, image, 0), 0);
  EXPECT_EQ(static_cast<int>(nothing.GetCommandAction()), 0);
  CleXDSmb noMemory;
  EXPECT_EQ(noMemory.AdoptReceived(kova::Block(), 52), 8);
}

TEST(CleXDSmb, TheSendBufferIsKeptWhileLargeEnough) {
  CleXDSmb message;
  message.SetString("a long first message");
  ASSERT_EQ(message.ContructSendData(), 0);
  int length = 0;
  const char* const first = message.GetSendBuf(length);
  message.CleanUpStringData();
  ASSERT_EQ(message.ContructSendData(), 0);
  EXPECT_EQ(message.GetSendBuf(length), first);
  EXPECT_EQ(length, 52);
}

TEST(CleXDSmb, AMessageBeyondTheLengthFieldIsRefused) {
  // The block is only measured, never read: the length says more than there is.
  char byte = 0;
  CleXDSmb message;
  message.BorrowVoidData(&byte, 0x7FFFFFFF);
  EXPECT_EQ(message.BuildPieces().head, nullptr);
  EXPECT_EQ(message.ContructSendData(), 8);
  int length = -1;
  EXPECT_EQ(message.GetSendBuf(length), nullptr);
  EXPECT_EQ(length, 0);
  message.CleanUpAllData();
  EXPECT_EQ(imageOf(message).size(), 52u);
}

}  // namespace
