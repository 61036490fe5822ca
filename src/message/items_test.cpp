// The four kinds of item by themselves, through their own virtual operations.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "message/CleXDSmb.h"
#include "message/message_test_kit.h"

namespace {

using kova::test::Bytes;

LongData longsOf(std::vector<int> values) {
  LongData item;
  item.AppendValue(values);
  return item;
}

DoubleData doublesOf(std::vector<double> values) {
  DoubleData item;
  for (const double value : values) item.SetValue(value);
  return item;
}

StringData stringsOf(std::vector<std::string> values) {
  StringData item;
  for (const std::string& value : values) item.SetValue(value);
  return item;
}

StructData structsOf(std::vector<dataSet> values) {
  StructData item;
  item.AssignValue(values);
  return item;
}

struct ImageCase {
  const char* label;
  std::shared_ptr<DataType> item;
  std::shared_ptr<DataType> empty;
  int size;
  Bytes image;
};

std::vector<ImageCase> imageCases() {
  return {
      {"no integers", std::make_shared<LongData>(), std::make_shared<LongData>(), 0, {0, 0, 0, 0}},
      {"integers",
       std::make_shared<LongData>(longsOf({258, -1})),
       std::make_shared<LongData>(),
       2,
       {2, 0, 0, 0, 2, 1, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF}},
      {"no doubles", std::make_shared<DoubleData>(), std::make_shared<DoubleData>(), 0, {0, 0, 0, 0}},
      {"doubles",
       std::make_shared<DoubleData>(doublesOf({-2.0})),
       std::make_shared<DoubleData>(),
       1,
       {1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xC0}},
      {"no strings", std::make_shared<StringData>(), std::make_shared<StringData>(), 0, {0, 0, 0, 0}},
      {"strings",
       std::make_shared<StringData>(stringsOf({"a", "", "bc"})),
       std::make_shared<StringData>(),
       3,
       {3, 0, 0, 0, 1, 0, 0, 0, 'a', 0, 0, 0, 0, 2, 0, 0, 0, 'b', 'c'}},
      {"no cells", std::make_shared<StructData>(), std::make_shared<StructData>(), 0, {0, 0, 0, 0}},
      {"cells",
       std::make_shared<StructData>(structsOf({{"n", 1, 2, 0, 1.5, ""}})),
       std::make_shared<StructData>(),
       1,
       {1, 0, 0, 0, 1, 0, 0, 0, 'n', 1, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xF8, 0x3F, 0, 0, 0, 0}},
  };
}

TEST(Items, ImageLengthSizeAndBytes) {
  for (const ImageCase& row : imageCases()) {
    SCOPED_TRACE(row.label);
    int length = -1;
    EXPECT_EQ(row.item->Size(), row.size);
    EXPECT_EQ(row.item->DataLength(), static_cast<int>(row.image.size()));
    const auto* const image = static_cast<const unsigned char*>(row.item->ConstructData(length));
    ASSERT_EQ(length, static_cast<int>(row.image.size()));
    EXPECT_EQ(Bytes(image, image + length), row.image);
  }
}

TEST(Items, ParseDataAppendsAndTellsWhatItConsumed) {
  for (const ImageCase& row : imageCases()) {
    SCOPED_TRACE(row.label);
    int consumed = -1;
    row.empty->ParseData(row.image.data(), consumed);
    EXPECT_EQ(consumed, static_cast<int>(row.image.size()));
    row.empty->ParseData(row.image.data(), consumed);
    EXPECT_EQ(row.empty->Size(), 2 * row.size);
    int length = 0;
    const auto* const image = static_cast<const unsigned char*>(row.empty->ConstructData(length));
    EXPECT_EQ(Bytes(image + 4, image + 4 + row.image.size() - 4), Bytes(row.image.begin() + 4, row.image.end()));
    row.empty->ParseData(nullptr, consumed);
    EXPECT_EQ(consumed, 0);
  }
}

TEST(Items, ANegativeCountReadsNothing) {
  const unsigned char image[] = {0xFF, 0xFF, 0xFF, 0xFF};
  LongData longs;
  int consumed = -1;
  longs.ParseData(image, consumed);
  EXPECT_EQ(consumed, 0);
  EXPECT_EQ(longs.Size(), 0);
}

TEST(Items, CopiesShareNothing) {
  auto original = std::make_unique<StringData>(stringsOf({"one", "two"}));
  int length = 0;
  original->ConstructData(length);
  StringData copy = *original;
  StringData assigned;
  assigned = *original;
  (*original)[0] = "changed";
  original.reset();
  EXPECT_EQ(copy.GetData(), (std::vector<std::string>{"one", "two"}));
  EXPECT_EQ(assigned.GetData(), (std::vector<std::string>{"one", "two"}));
  EXPECT_EQ(copy.DataLength(), 18);
}

TEST(Items, IndexGivesAReference) {
  LongData longs = longsOf({1, 2});
  longs[1] = 5;
  EXPECT_EQ(longs.GetData(), (std::vector<int>{1, 5}));
  DoubleData doubles = doublesOf({1, 2});
  doubles[0] = 0.5;
  EXPECT_EQ(doubles.GetData(), (std::vector<double>{0.5, 2}));
  StructData structs = structsOf({{"a", 1, 1, 0, 0, ""}});
  structs[0].datasetName = "b";
  EXPECT_EQ(structs.GetData()[0].datasetName, "b");
}

TEST(Items, CleanUpEmptiesAndTheItemGoesOn) {
  LongData longs = longsOf({1, 2});
  longs.CleanUp();
  EXPECT_EQ(longs.Size(), 0);
  longs.SetValue(3);
  EXPECT_EQ(longs.GetData(), std::vector<int>{3});
  StructData structs = structsOf({{"a", 1, 1, 0, 0, ""}});
  structs.CleanUp();
  structs.SetValue({"c", 1, 1, 0, 0, ""});
  EXPECT_EQ(structs.GetData()[0].datasetName, "c");
  StringData strings = stringsOf({"x"});
  strings.CleanUp();
  EXPECT_EQ(strings.DataLength(), 4);
}

TEST(StringDataItem, SetSingleStringAndItsGetter) {
  StringData strings = stringsOf({"a", "b"});
  strings.SetSingleString(strings[1].c_str());
  EXPECT_EQ(strings.GetData(), std::vector<std::string>{"b"});
  EXPECT_EQ(strings.GetSingleString(), "b");
  strings.SetSingleString(nullptr);
  EXPECT_EQ(strings.Size(), 0);
  EXPECT_EQ(strings.GetSingleString(), "");
}

// Appended strings wait in wire form until somebody looks: every order of appending, looking and changing must agree.
TEST(StringDataItem, LookingInBetweenChangesNothing) {
  StringData strings = stringsOf({"a"});
  EXPECT_EQ(strings[0], "a");
  strings.SetValue("b");
  EXPECT_EQ(strings.Size(), 2);
  strings[0] = "changed";
  strings.SetValue(strings[1]);
  strings.SetValue("c", 1);
  EXPECT_EQ(strings.DataLength(), 4 + 11 + 5 + 5 + 5);
  EXPECT_EQ(strings.values(), (std::vector<std::string>{"changed", "b", "b", "c"}));
  strings.SetValue("d");
  const StringData copy = strings;
  const StringData moved = std::move(strings);
  EXPECT_EQ(copy.values(), moved.values());
  EXPECT_EQ(moved.Size(), 5);
}

TEST(StringDataItem, ManyStringsOfAllLengths) {
  std::vector<std::string> values;
  for (std::size_t length = 0; length < 300; ++length)
    values.emplace_back(length, static_cast<char>('a' + length % 26));
  CleXDSmb message;
  for (const std::string& value : values) message.SetString(value);
  CleXDSmb received;
  ASSERT_EQ(kova::test::parse(received, kova::test::imageOf(message)), 0);
  EXPECT_EQ(received.Strings().values(), values);
  EXPECT_EQ(message.Strings().values(), values);
  CleXDSmb again;
  ASSERT_EQ(kova::test::parse(again, kova::test::imageOf(received)), 0);
  EXPECT_EQ(again.Strings().values(), values);
}

TEST(PlainList, GrowsFromNearToFarAndBack) {
  for (const std::size_t count : {0u, 1u, 8u, 9u, 1000u}) {
    SCOPED_TRACE(count);
    LongData longs;
    for (std::size_t i = 0; i < count; ++i) longs.SetValue(static_cast<int>(i));
    LongData copy = longs;
    LongData moved = std::move(longs);
    LongData assigned = longsOf({1, 2, 3});
    assigned = copy;
    copy = longsOf(std::vector<int>(20, 7));
    EXPECT_EQ(assigned.GetData(), moved.GetData());
    EXPECT_EQ(moved.Size(), static_cast<int>(count));
    if (count > 0) {
      EXPECT_EQ(moved[static_cast<int>(count) - 1], static_cast<int>(count) - 1);
    }
    EXPECT_EQ(copy.Size(), 20);
    copy = std::move(moved);
    EXPECT_EQ(copy.GetData(), assigned.GetData());
  }
}

}  // namespace
