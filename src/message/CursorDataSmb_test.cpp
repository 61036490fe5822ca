// A batch of cases: which values are missing, which cases are served, and that nothing is read from beyond it.
#include "message/CursorDataSmb.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr int kBefore = -77;  // What the places of results hold before a call.
const double kSystemMissing = std::bit_cast<double>(kova::kSystemMissingBits);

OBS number(double value) { return {.number = value}; }

// One unit of text, padded with blanks.
OBS unit(std::string_view text) {
  OBS result;
  std::memset(result.bytes, ' ', sizeof result.bytes);
  std::memcpy(result.bytes, text.data(), text.size());
  return result;
}

// The units of a string variable's value.
std::vector<OBS> units(const std::string& text, int width) {
  std::vector<OBS> result(static_cast<std::size_t>(kova::UnitsOfType(width)), unit(""));
  std::memcpy(result.data(), text.data(), text.size());
  return result;
}

// ---- Missing values.

struct NumberRow {
  const char* label;
  int code;
  double missing[3];
  double value;
  int expected;
};

TEST(CursorDataSmb, MissingNumbers) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  const NumberRow rows[] = {
      {"none defined", 0, {1, 2, 3}, 1, 0},
      {"system-missing without a definition", 0, {}, kSystemMissing, 2},
      {"system-missing goes before a single value", 1, {kSystemMissing}, kSystemMissing, 2},
      {"system-missing goes before a range", -2, {kSystemMissing, 9}, kSystemMissing, 2},
      {"its neighbour is a number", 0, {}, std::nextafter(kSystemMissing, 0.0), 0},
      {"one: the first", 1, {-9, 5, 6}, -9, 1},
      {"one: the second does not count", 1, {-9, 5, 6}, 5, 0},
      {"two: the first", 2, {-9, 5, 6}, -9, 1},
      {"two: the second", 2, {-9, 5, 6}, 5, 1},
      {"two: the third does not count", 2, {-9, 5, 6}, 6, 0},
      {"three: the first", 3, {-9, 5, 6}, -9, 1},
      {"three: the second", 3, {-9, 5, 6}, 5, 1},
      {"three: the third", 3, {-9, 5, 6}, 6, 1},
      {"three: another", 3, {-9, 5, 6}, 5.5, 0},
      {"-0.0 is not 0.0", 1, {0.0}, -0.0, 0},
      {"-0.0 is -0.0", 1, {-0.0}, -0.0, 1},
      {"-0.0 lies within a range", -2, {-1, 1}, -0.0, 1},
      {"a not-a-number equals itself", 1, {nan}, nan, 1},
      {"a not-a-number lies in no range", -2, {-infinity, infinity}, nan, 0},
      {"range: its lower end", -2, {1, 3, 9}, 1, 1},
      {"range: its upper end", -2, {1, 3, 9}, 3, 1},
      {"range: inside", -2, {1, 3, 9}, 2.5, 1},
      {"range: below", -2, {1, 3, 9}, 0.999, 0},
      {"range: above", -2, {1, 3, 9}, 3.001, 0},
      {"range: the third does not count", -2, {1, 3, 9}, 9, 0},
      {"range: reversed", -2, {3, 1, 9}, 2, 0},
      {"range and one: inside", -3, {1, 3, 9}, 2, 1},
      {"range and one: the one", -3, {1, 3, 9}, 9, 1},
      {"range and one: neither", -3, {1, 3, 9}, 8, 0},
      {"range and one: the one bit for bit", -3, {1, 3, 0.0}, -0.0, 0},
      {"range to infinity", -2, {100, infinity}, 1e300, 1},
      {"unknown code -1", -1, {1, 1, 1}, 1, 0},
      {"unknown code 4", 4, {1, 1, 1}, 1, 0},
      {"unknown code -4", -4, {1, 1, 1}, 1, 0},
  };
  for (const NumberRow& row : rows) {
    VarInfo info;
    info.missingCode = row.code;
    for (int i = 0; i < 3; ++i) info.missing[i] = number(row.missing[i]);
    const OBS value = number(row.value);
    EXPECT_EQ(CursorDataSmb::IsMissing(&info, &value), row.expected) << row.label;
  }
}

struct TextRow {
  const char* label;
  int width;
  int code;
  const char* missing[3];
  std::string value;
  int expected;
};

TEST(CursorDataSmb, MissingTexts) {
  const TextRow rows[] = {
      {"none defined", 8, 0, {"AB", "CD", "EF"}, "AB", 0},
      {"one: the first", 8, 1, {"AB", "CD", "EF"}, "AB", 1},
      {"one: the second does not count", 8, 1, {"AB", "CD", "EF"}, "CD", 0},
      {"two: the second", 8, 2, {"AB", "CD", "EF"}, "CD", 1},
      {"two: the third does not count", 8, 2, {"AB", "CD", "EF"}, "EF", 0},
      {"three: the first", 8, 3, {"AB", "CD", "EF"}, "AB", 1},
      {"three: the third", 8, 3, {"AB", "CD", "EF"}, "EF", 1},
      {"three: another", 8, 3, {"AB", "CD", "EF"}, "AC", 0},
      {"width 1", 1, 1, {"x", "", ""}, "x", 1},
      {"blank", 3, 1, {"", "", ""}, "", 1},
      {"lower case", 8, 1, {"AB", "", ""}, "ab", 0},
      {"all eight bytes", 8, 1, {"12345678", "", ""}, "12345678", 1},
      {"width 9, blank behind", 9, 1, {"12345678", "", ""}, "12345678", 1},
      {"width 9, a ninth byte", 9, 1, {"12345678", "", ""}, "123456789", 0},
      {"width 12, second unit blank", 12, 1, {"AB", "", ""}, "AB", 1},
      {"width 12, second unit not blank", 12, 1, {"AB", "", ""}, "AB         x", 0},
      {"width 12, a NUL is no blank", 12, 1, {"AB", "", ""}, std::string("AB       \0  ", 12), 0},
      {"width 24, third unit not blank", 24, 3, {"a", "b", "c"}, "b                      x", 0},
      {"width 32767", 32767, 3, {"a", "b", "c"}, "c", 1},
      {"width 32767, last byte", 32767, 3, {"a", "b", "c"}, "c" + std::string(32765, ' ') + "x", 0},
      {"code of a range", 8, -2, {"AB", "CD", "EF"}, "AB", 0},
      {"code 4", 8, 4, {"AB", "CD", "EF"}, "AB", 0},
      {"system-missing bits", 8, 0, {"", "", ""}, "\xFF\xFF\xFF\xFF\xFF\xFF\xEF\xFF", 0},
  };
  for (const TextRow& row : rows) {
    VarInfo info;
    info.type = row.width;
    info.missingCode = row.code;
    for (int i = 0; i < 3; ++i) info.missing[i] = unit(row.missing[i]);
    const std::vector<OBS> value = units(row.value, row.width);
    EXPECT_EQ(CursorDataSmb::IsMissing(&info, value.data()), row.expected) << row.label;
  }
}

// ---- A batch.

// Variables of these types, and cases made of 8-byte units.
class Batch : public testing::Test {
 protected:
  void Describe(const std::vector<int>& types) {
    unsigned int first = 0;
    for (const int type : types) {
      VarInfo* const info = cursor.NewVarInfo();
      info->type = type;
      cursor.AddVarInfo(info);
      cursor.GetObsIndex().push_back(first);
      first += static_cast<unsigned int>(kova::UnitsOfType(type));
    }
    cursor.SetOneCaseSize(static_cast<int>(first) * 8);
  }

  void Receive(std::vector<double> values, int cases) {
    cursor.SetCasePtr(values.data(), static_cast<int>(values.size() * sizeof(double)));
    cursor.SetReceivedCases(cases);
  }

  double Value(unsigned int var = 0) {
    double value = kBefore;
    int missing = kBefore;
    code = cursor.GetNumericValue(var, value, missing);
    EXPECT_EQ(code != 0, missing == kBefore) << "nothing is stored on failure";
    return value;
  }

  CursorDataSmb cursor;
  int code = kBefore;
};

TEST_F(Batch, ANewCursorHasNothing) {
  EXPECT_FALSE(cursor.HasData());
  EXPECT_EQ(cursor.GetOneCaseSize(), 0);
  EXPECT_EQ(cursor.GetReceivedCases(), -1);
  EXPECT_EQ(cursor.GetLastError(), 0);
  EXPECT_TRUE(cursor.GetObsIndex().empty());
  EXPECT_EQ(cursor.NextCase(), 1900);
  EXPECT_EQ(CursorDataSmb::CACHE_SIZE, 20971520);
  EXPECT_EQ(CursorDataSmb::NO_CACHE_DATA, 1900);
  const std::unique_ptr<VarInfo> info(cursor.NewVarInfo());
  EXPECT_EQ(info->type, 0);
  EXPECT_EQ(info->missingCode, 0);
  for (const OBS& missing : info->missing) EXPECT_EQ(std::bit_cast<std::uint64_t>(missing.number), 0u);
  cursor.AddVarInfo(nullptr);
  EXPECT_TRUE(cursor.Variables().empty());
}

TEST_F(Batch, ServesItsCasesOneByOne) {
  Describe({0, 0});
  EXPECT_EQ(cursor.OBSIndex(1), 1u);
  Receive({1, 2, 3, 4, 5, 6}, 3);
  EXPECT_TRUE(cursor.HasData());
  EXPECT_EQ(Value(1), 2);
  EXPECT_EQ(cursor.NextCase(), 0);
  EXPECT_EQ(Value(0), 3);
  EXPECT_EQ(cursor.NextCase(), 0);
  EXPECT_EQ(Value(1), 6);
  EXPECT_EQ(cursor.NextCase(), 1900);
  EXPECT_EQ(cursor.GetReceivedCases(), -1);
  EXPECT_FALSE(cursor.HasData());
  EXPECT_EQ(Value(0), kBefore);
  EXPECT_EQ(code, 1900);
}

TEST_F(Batch, GivesTheLastErrorOnceAndThenTheUsualCode) {
  Describe({0});
  Receive({1}, 1);
  cursor.SetLastError(67);
  EXPECT_EQ(cursor.NextCase(), 67);
  EXPECT_EQ(cursor.GetLastError(), 0);
  Receive({1}, 1);
  EXPECT_EQ(cursor.NextCase(), 1900);
}

TEST_F(Batch, TheNextCaseIsTheOneBehindThePosition) {
  Describe({0});
  Receive({1, 2, 3, 4}, 4);
  cursor.SetCurCasePos(2);
  EXPECT_EQ(Value(), 1);
  EXPECT_EQ(cursor.NextCase(), 0);
  EXPECT_EQ(Value(), 4);
}

struct CountRow {
  const char* label;
  int received;
  int caseSize;
  int bytes;
  int served;  // Beside the first one, which is there when the batch comes.
};

TEST_F(Batch, ServesNoMoreThanItHolds) {
  constexpr int kMost = std::numeric_limits<int>::max();
  const CountRow rows[] = {
      {"as many as received", 3, 8, 24, 2},
      {"fewer received than there", 2, 8, 24, 1},
      {"more received than there", 5, 8, 24, 2},
      {"one there of five", 5, 24, 24, 0},
      {"a part of a case at the end", 3, 16, 40, 1},
      {"a case beyond the batch", 2, 32, 24, 0},
      {"the largest size", kMost, kMost, 24, 0},
      {"the largest count", kMost, 8, 24, 2},
      {"a negative size", 3, -8, 24, 0},
      {"no case", 0, 8, 24, 0},
      {"a negative count", -5, 8, 24, 0},
      {"a size of 0: the same bytes", 3, 0, 24, 2},
      {"a size below a unit: the same bytes", 3, 7, 24, 2},
      {"a size that is no whole unit", 2, 12, 24, 1},
      {"no bytes", 3, 8, 0, 0},
  };
  for (const CountRow& row : rows) {
    SCOPED_TRACE(row.label);
    std::vector<char> bytes(40, 1);
    cursor.SetOneCaseSize(row.caseSize);
    cursor.SetCasePtr(bytes.data(), row.bytes);
    cursor.SetReceivedCases(row.received);
    int served = 0;
    while (served < 9 && cursor.NextCase() == 0) ++served;
    EXPECT_EQ(served, row.served);
  }
}

TEST_F(Batch, PositionsOutsideServeNothing) {
  Describe({0});
  for (const int position : {-2, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
    Receive({1, 2}, 2);
    cursor.SetCurCasePos(position);
    EXPECT_EQ(cursor.NextCase(), 1900) << position;
  }
}

TEST_F(Batch, ReplacesItsCases) {
  Describe({0});
  std::vector<double> values{1, 2};
  Receive(values, 2);
  cursor.NextCase();
  values[0] = 5;
  cursor.SetCasePtr(values.data(), 16);
  values[0] = 6;  // The bytes have been copied.
  EXPECT_EQ(Value(), 5);
  EXPECT_EQ(cursor.NextCase(), 0);
  cursor.SetCasePtr(nullptr, 16);
  EXPECT_EQ(Value(), kBefore);
  EXPECT_EQ(code, 1900);
  EXPECT_EQ(cursor.GetReceivedCases(), 2);
}

TEST_F(Batch, TakesCasesOverWithoutACopy) {
  Describe({0});
  double values[] = {1, 2};
  kova::VoidData block;
  block.borrow(values, sizeof values);
  cursor.TakeCases(std::move(block));
  values[0] = 3;
  EXPECT_EQ(Value(), 3);
}

TEST_F(Batch, CopiesCasesThatAreNotAligned) {
  Describe({0});
  alignas(8) char bytes[20] = {};
  const double value = 4.5;
  std::memcpy(bytes + 4, &value, sizeof value);
  kova::VoidData block;
  block.borrow(bytes + 4, 16);
  cursor.TakeCases(std::move(block));
  cursor.SetReceivedCases(2);
  std::memset(bytes, 0, sizeof bytes);
  EXPECT_EQ(Value(), 4.5);
  const kova::CaseRun rest = cursor.ServeRest();
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(rest.cases) % 8, 0u);
}

// ---- Values.

TEST_F(Batch, ValuesHaveErrors) {
  Describe({0, 5});
  Receive({1, 0}, 1);
  char text[9] = "--------";
  char* buffer = text;
  int missing = kBefore;
  Value(2);
  EXPECT_EQ(code, 10) << "a position equal to the count";
  Value(std::numeric_limits<unsigned int>::max());
  EXPECT_EQ(code, 10) << "-1";
  Value(1);
  EXPECT_EQ(code, 24);
  EXPECT_EQ(cursor.GetStringValue(2, buffer, 8, missing), 10);
  EXPECT_EQ(cursor.GetStringValue(0, buffer, 8, missing), 24);
  cursor.SetCasePtr(nullptr, 0);
  EXPECT_EQ(cursor.GetStringValue(1, buffer, 8, missing), 1900);
  EXPECT_EQ(missing, kBefore);
  EXPECT_STREQ(text, "--------");
}

TEST_F(Batch, ValuesTellWhetherTheyAreMissing) {
  Describe({0});
  cursor.Variables()[0]->missingCode = 1;
  cursor.Variables()[0]->missing[0] = number(-9);
  Receive({1, -9, kSystemMissing}, 3);
  for (const int expected : {0, 1, 2}) {
    double value = 0;
    int missing = kBefore;
    EXPECT_EQ(cursor.GetNumericValue(0, value, missing), 0);
    EXPECT_EQ(missing, expected);
    cursor.NextCase();
  }
}

struct WidthRow {
  const char* label;
  int width;
  std::string value;
  std::string expected;
};

TEST_F(Batch, TextsAreCopiedInTheirWholeWidth) {
  const WidthRow rows[] = {
      {"width 1", 1, "x", "x"},
      {"width 8", 8, "abc", "abc     "},
      {"width 8, full", 8, "abcdefgh", "abcdefgh"},
      {"width 9", 9, "abcdefghi", "abcdefghi"},
      {"width 32767", 32767, std::string(32767, 'z'), std::string(32767, 'z')},
      {"NUL bytes behind a NUL", 4, std::string("a\0bc", 4), std::string("a\0\0\0", 4)},
  };
  for (const WidthRow& row : rows) {
    SCOPED_TRACE(row.label);
    CursorDataSmb own;
    VarInfo* const info = own.NewVarInfo();
    info->type = row.width;
    own.AddVarInfo(info);
    own.GetObsIndex().push_back(0);
    std::vector<OBS> value = units(row.value, row.width);
    own.SetCasePtr(value.data(), static_cast<int>(value.size() * sizeof(OBS)));
    std::string text(static_cast<std::size_t>(row.width) + 1, '#');
    char* buffer = text.data();
    int missing = kBefore;
    EXPECT_EQ(own.GetStringValue(0, buffer, 0, missing), 0);
    EXPECT_EQ(text, row.expected + "#") << "no NUL behind it";
    EXPECT_EQ(missing, 0);
    buffer = nullptr;
    missing = kBefore;
    EXPECT_EQ(own.GetStringValue(0, buffer, 0, missing), 0);
    EXPECT_EQ(missing, 0);
  }
}

TEST_F(Batch, ValuesThatReachBeyondTheBatchAreNotRead) {
  Describe({0, 32767, 0});
  Receive({1, 2, 3}, 1);
  std::string text(32768, '-');
  char* buffer = text.data();
  int missing = kBefore;
  EXPECT_EQ(Value(0), 1);
  EXPECT_EQ(cursor.GetStringValue(1, buffer, 32767, missing), 1900);
  Value(2);
  EXPECT_EQ(code, 1900);
  cursor.GetObsIndex() = {3, 0xFFFFFFFF, 0};
  Value(0);
  EXPECT_EQ(code, 1900);
  EXPECT_EQ(cursor.GetStringValue(1, buffer, 32767, missing), 1900);
  EXPECT_EQ(Value(2), 1);
  cursor.GetObsIndex().clear();
  Value(0);
  EXPECT_EQ(code, 1900);
  EXPECT_EQ(text, std::string(32768, '-'));
}

// ---- All at once.

TEST_F(Batch, TheRestIsServedAtOnce) {
  Describe({0, 0});
  Receive({1, 2, 3, 4, 5, 6}, 3);
  cursor.SetLastError(23);
  EXPECT_EQ(cursor.NextCase(), 0);
  const kova::CaseRun rest = cursor.ServeRest();
  EXPECT_EQ(rest.count, 2);
  const auto* const values = static_cast<const double*>(rest.cases);
  EXPECT_EQ(std::vector<double>(values, values + 4), (std::vector<double>{3, 4, 5, 6}));
  EXPECT_EQ(Value(0), 5) << "the last case is the current one";
  EXPECT_EQ(cursor.NextCase(), 23);
  EXPECT_EQ(cursor.ServeRest().count, 0);
}

struct RestRow {
  const char* label;
  int received;
  int caseSize;
  int position;
  int expected;
};

TEST_F(Batch, TheRestIsNoMoreThanThereIs) {
  const RestRow rows[] = {
      {"more received than there", 9, 8, 0, 3}, {"fewer received", 2, 8, 0, 2},   {"none received", 0, 8, 0, 0},
      {"a position that was set", 3, 8, -9, 3}, {"another one", 3, 8, 100, 3},    {"a size of 0", 3, 0, 0, 0},
      {"a case that is larger", 3, 32, 0, 0},   {"a negative size", 3, -8, 0, 0}, {"a part of a case", 3, 16, 0, 1},
  };
  for (const RestRow& row : rows) {
    cursor.SetOneCaseSize(row.caseSize);
    Receive({1, 2, 3}, row.received);
    cursor.SetCurCasePos(row.position);
    EXPECT_EQ(cursor.ServeRest().count, row.expected) << row.label;
  }
}

}  // namespace
