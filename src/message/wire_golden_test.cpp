// The byte layout, written down by hand. Nothing here asks the encoder what it thinks.
#include <gtest/gtest.h>

#include <string>

#include "message/message_test_kit.h"

namespace {

using kova::test::Bytes;
using kova::test::imageOf;
using kova::test::parse;

struct Golden {
  const char* label;
  void (*fill)(CleXDSmb&);
  Bytes bytes;
};

// Twelve bytes of header, then: integers, doubles, strings, cells, integer arrays, double arrays, string arrays, binary
// string, wide string, void data.
const Golden kGolden[] = {
    {"nothing set", [](CleXDSmb&) {}, {52, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0,  //
                                       0,  0, 0, 0,                                      //
                                       0,  0, 0, 0,                                      //
                                       0,  0, 0, 0,                                      //
                                       0,  0, 0, 0,                                      //
                                       0,  0, 0, 0,                                      //
                                       0,  0, 0, 0,                                      //
                                       0,  0, 0, 0,                                      //
                                       0,  0, 0, 0,                                      //
                                       0,  0, 0, 0,                                      //
                                       0,  0, 0, 0}},
    {"command and error code",
     [](CleXDSmb& message) {
       message.SetCommandAction(kova::Command::GetVariableCount);
       message.SetErrorCode(99103);
     },
     {52, 0, 0, 0, 7, 0, 0, 0, 0x1F, 0x83, 0x01, 0,  //
      0,  0, 0, 0,                                   //
      0,  0, 0, 0,                                   //
      0,  0, 0, 0,                                   //
      0,  0, 0, 0,                                   //
      0,  0, 0, 0,                                   //
      0,  0, 0, 0,                                   //
      0,  0, 0, 0,                                   //
      0,  0, 0, 0,                                   //
      0,  0, 0, 0,                                   //
      0,  0, 0, 0}},
    {"integers",
     [](CleXDSmb& message) {
       message.SetLong(1);
       message.SetLong(-2);
     },
     {60, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0,    0,    0,    0,     //
      2,  0, 0, 0, 1,    0,    0,    0,    0xFE, 0xFF, 0xFF, 0xFF,  //
      0,  0, 0, 0,                                                  //
      0,  0, 0, 0,                                                  //
      0,  0, 0, 0,                                                  //
      0,  0, 0, 0,                                                  //
      0,  0, 0, 0,                                                  //
      0,  0, 0, 0,                                                  //
      0,  0, 0, 0,                                                  //
      0,  0, 0, 0,                                                  //
      0,  0, 0, 0}},
    {"doubles",
     [](CleXDSmb& message) { message.SetDouble(1.5); },
     {60, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0,    0,     //
      0,  0, 0, 0,                                            //
      1,  0, 0, 0, 0,    0,    0,    0,    0, 0, 0xF8, 0x3F,  //
      0,  0, 0, 0,                                            //
      0,  0, 0, 0,                                            //
      0,  0, 0, 0,                                            //
      0,  0, 0, 0,                                            //
      0,  0, 0, 0,                                            //
      0,  0, 0, 0,                                            //
      0,  0, 0, 0,                                            //
      0,  0, 0, 0}},
    {"strings, one of them empty, one with a NUL byte",
     [](CleXDSmb& message) {
       message.SetString("ab");
       message.SetString("");
       message.SetString("x\0y", 3);
     },
     {69, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0,   0,   0, 0,                                 //
      0,  0, 0, 0,                                                                         //
      0,  0, 0, 0,                                                                         //
      3,  0, 0, 0, 2,    0,    0,    0,    'a', 'b', 0, 0, 0, 0, 3, 0, 0, 0, 'x', 0, 'y',  //
      0,  0, 0, 0,                                                                         //
      0,  0, 0, 0,                                                                         //
      0,  0, 0, 0,                                                                         //
      0,  0, 0, 0,                                                                         //
      0,  0, 0, 0,                                                                         //
      0,  0, 0, 0,                                                                         //
      0,  0, 0, 0}},
    {"cell records",
     [](CleXDSmb& message) {
       message.SetStruct(dataSet{"ds", 3, 4, 1, -2.0, "xyz"});
     },
     {85, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0,   0,   0, 0,                                      //
      0,  0, 0, 0,                                                                              //
      0,  0, 0, 0,                                                                              //
      0,  0, 0, 0,                                                                              //
      1,  0, 0, 0, 2,    0,    0,    0,    'd', 's', 3, 0, 0,   0,   4,   0, 0, 0, 1, 0, 0, 0,  //
      0,  0, 0, 0, 0,    0,    0,    0xC0, 3,   0,   0, 0, 'x', 'y', 'z',                       //
      0,  0, 0, 0,                                                                              //
      0,  0, 0, 0,                                                                              //
      0,  0, 0, 0,                                                                              //
      0,  0, 0, 0,                                                                              //
      0,  0, 0, 0,                                                                              //
      0,  0, 0, 0}},
    {"binary string",
     [](CleXDSmb& message) { message.SetBinaryString("\x01\xFF\x00", 3); },
     {55, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0,  //
      0,  0, 0, 0,                                      //
      0,  0, 0, 0,                                      //
      0,  0, 0, 0,                                      //
      0,  0, 0, 0,                                      //
      0,  0, 0, 0,                                      //
      0,  0, 0, 0,                                      //
      0,  0, 0, 0,                                      //
      3,  0, 0, 0, 1,    0xFF, 0,                       //
      0,  0, 0, 0,                                      //
      0,  0, 0, 0}},
    {"wide string with a surrogate pair",
     [](CleXDSmb& message) { message.SetwString(L"A\U0001F600"); },
     {58, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0,    0,    0, 0,  //
      0,  0, 0, 0,                                            //
      0,  0, 0, 0,                                            //
      0,  0, 0, 0,                                            //
      0,  0, 0, 0,                                            //
      0,  0, 0, 0,                                            //
      0,  0, 0, 0,                                            //
      0,  0, 0, 0,                                            //
      0,  0, 0, 0,                                            //
      3,  0, 0, 0, 'A',  0,    0x3D, 0xD8, 0x00, 0xDE,        //
      0,  0, 0, 0}},
    // The full message: 12 + 12 + 12 + (4 + 6 + 4) + (4 + 33) + (4 + 8 + 4) + (4 + 12) + (4 + 11) + 7 + 8 + 8 = 157.
    {"every slot",
     kova::test::fillEverySlot,
     {157, 0, 0, 0, 228, 0,    0,    0,    17,   0,    0,    0,                                             //
      2,   0, 0, 0, 1,   0,    0,    0,    0xFE, 0xFF, 0xFF, 0xFF,                                          //
      1,   0, 0, 0, 0,   0,    0,    0,    0,    0,    0xF8, 0x3F,                                          //
      2,   0, 0, 0, 2,   0,    0,    0,    'a',  'b',  0,    0,    0,   0,                                  //
      1,   0, 0, 0, 2,   0,    0,    0,    'd',  's',  3,    0,    0,   0,   4,    0,    0, 0, 1, 0, 0, 0,  //
      0,   0, 0, 0, 0,   0,    0,    0xC0, 3,    0,    0,    0,    'x', 'y', 'z',                           //
      2,   0, 0, 0, 1,   0,    0,    0,    7,    0,    0,    0,    0,   0,   0,    0,                       //
      1,   0, 0, 0, 1,   0,    0,    0,    0,    0,    0,    0,    0,   0,   0xD0, 0xBF,                    //
      1,   0, 0, 0, 1,   0,    0,    0,    3,    0,    0,    0,    'q', 0,   'r',                           //
      3,   0, 0, 0, 1,   0xFF, 0,                                                                           //
      2,   0, 0, 0, 'A', 0,    0xAC, 0x20,                                                                  //
      4,   0, 0, 0, 9,   8,    7,    6}},
};

class WireGolden : public testing::TestWithParam<Golden> {};

TEST_P(WireGolden, EncodesToTheseBytes) {
  CleXDSmb message;
  GetParam().fill(message);
  EXPECT_EQ(imageOf(message), GetParam().bytes);
}

TEST_P(WireGolden, PiecesAreTheSameBytes) {
  CleXDSmb message;
  GetParam().fill(message);
  const kova::WirePieces pieces = message.BuildPieces();
  ASSERT_NE(pieces.head, nullptr);
  Bytes joined(pieces.head, pieces.head + pieces.headLength);
  if (pieces.blockLength > 0) joined.insert(joined.end(), pieces.block, pieces.block + pieces.blockLength);
  EXPECT_EQ(joined, GetParam().bytes);
}

// A received binary string is not sent again by itself; it is set anew here.
TEST_P(WireGolden, DecodesAndEncodesAgain) {
  CleXDSmb message;
  ASSERT_EQ(parse(message, GetParam().bytes), 0);
  if (message.BinaryLength() > 0) {
    const std::string binary(message.GetBinaryData(), static_cast<std::size_t>(message.BinaryLength()));
    message.SetBinaryString(binary.data(), static_cast<int>(binary.size()));
  }
  EXPECT_EQ(imageOf(message), GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(Messages, WireGolden, testing::ValuesIn(kGolden), [](const auto& row) {
  std::string name;
  for (const char c : std::string(row.param.label)) name += c == ' ' || c == ',' ? '_' : c;
  return name;
});

TEST(WireGoldenTotals, TheFirstFieldIsTheLength) {
  for (const Golden& golden : kGolden) {
    SCOPED_TRACE(golden.label);
    const std::size_t total = golden.bytes[0] + 256u * golden.bytes[1];
    EXPECT_EQ(total, golden.bytes.size());
  }
}

}  // namespace
