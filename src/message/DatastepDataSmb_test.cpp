// The layout and the case of a data step, cell by cell.
#include "message/DatastepDataSmb.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <string>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

struct FreeBlock {
  void operator()(void* block) const { std::free(block); }
};

std::vector<int> typesOf(const DatastepDataSmb& data) {
  int* types = nullptr;
  int count = 0;
  data.GetVarInfo(types, count);
  const std::unique_ptr<int, FreeBlock> owner(types);
  return {types, types + count};
}

std::vector<int> indexOf(const DatastepDataSmb& data) {
  std::vector<int> index;
  for (int var = 0; var < data.VarCount(); ++var) index.push_back(data.GetVarObsIndex(var));
  return index;
}

std::vector<int> lengthsOf(const DatastepDataSmb& data) {
  std::vector<int> lengths;
  for (int var = 0; var < data.VarCount(); ++var) lengths.push_back(data.GetVarObsLength(var));
  return lengths;
}

std::string bytesOf(DatastepDataSmb& data) {
  int size = -1;
  const void* const bytes = data.GetCaseValue(size);
  return {static_cast<const char*>(bytes), static_cast<std::size_t>(bytes ? size : 0)};
}

// What a text cell holds, or its error.
std::string textOf(const DatastepDataSmb& data, unsigned int var) {
  int error = 0;
  const std::unique_ptr<char, FreeBlock> text(data.GetCCellValue(var, error));
  return text ? text.get() : "error " + std::to_string(error);
}

// A number, a text of 12 bytes and a number, 4 units.
DatastepDataSmb sample() {
  DatastepDataSmb data;
  data.SetOneCaseSize(32);
  for (const int type : {0, 12, 0}) data.AddVarType(type);
  for (const int unit : {0, 1, 3}) data.AddVarObsIndex(unit);
  return data;
}

TEST(DatastepDataSmb, IsEmptyAtFirst) {
  DatastepDataSmb data;
  EXPECT_EQ(data.GetOneCaseSize(), 0);
  int size = -1;
  EXPECT_EQ(data.GetCaseValue(size), nullptr);
  EXPECT_EQ(size, 0);
  int* types = nullptr;
  int count = -1;
  data.GetVarInfo(types, count);
  EXPECT_EQ(types, nullptr);
  EXPECT_EQ(count, -1) << "nothing is stored";
}

TEST(DatastepDataSmb, UnitsOfATypeAreItsWidthInEights) {
  struct Row {
    const char* label;
    int type;
    int units;
  };
  const Row rows[] = {
      {"number", 0, 1},         {"one byte", 1, 1},       {"eight bytes", 8, 1},
      {"nine bytes", 9, 2},     {"sixteen bytes", 16, 2}, {"17 bytes", 17, 3},
      {"longest", 32767, 4096}, {"negative", -5, 1},      {"largest int", std::numeric_limits<int>::max(), 268435456},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    DatastepDataSmb data;
    data.AddVarType(row.type);
    EXPECT_EQ(data.GetVarObsLength(0), row.units);
    EXPECT_EQ(data.VarType(0), row.type);
    EXPECT_EQ(data.GetOneCaseSize(), 0) << "the buffer is not resized";
  }
}

TEST(DatastepDataSmb, SizesAreRoundedDownToWholeUnits) {
  struct Row {
    const char* label;
    int size;
    int buffer;
  };
  const Row rows[] = {{"none", 0, 0},         {"less than a unit", 7, 0},
                      {"one unit", 8, 8},     {"a unit and some", 15, 8},
                      {"five units", 40, 40}, {"negative", -8, 0}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    DatastepDataSmb data;
    data.SetOneCaseSize(row.size);
    EXPECT_EQ(data.GetOneCaseSize(), row.size);
    EXPECT_EQ(bytesOf(data), std::string(static_cast<std::size_t>(row.buffer), '\0'));
  }
}

struct Change {
  const char* label;
  std::function<void(DatastepDataSmb&)> apply;
  std::vector<int> types;
  std::vector<int> index;
  std::vector<int> lengths;
  int size;
};

TEST(DatastepDataSmb, ChangesOfTheLayoutMoveWhatStandsBehind) {
  const Change rows[] = {
      {"insert a long text in front",
       [](auto& d) { d.InsertVarType(0, 9); },
       {9, 0, 12, 0},
       {0, 2, 3, 5},
       {2, 1, 2, 1},
       48},
      {"insert a number between",
       [](auto& d) { d.InsertVarType(2, 0); },
       {0, 12, 0, 0},
       {0, 1, 3, 4},
       {1, 2, 1, 1},
       40},
      {"insert at the end", [](auto& d) { d.InsertVarType(3, 8); }, {0, 12, 0, 8}, {0, 1, 3, 4}, {1, 2, 1, 1}, 40},
      {"insert behind the end", [](auto& d) { d.InsertVarType(4, 8); }, {0, 12, 0}, {0, 1, 3}, {1, 2, 1}, 32},
      {"insert before the start", [](auto& d) { d.InsertVarType(-1, 8); }, {0, 12, 0}, {0, 1, 3}, {1, 2, 1}, 32},
      {"erase the text", [](auto& d) { d.EraseVarType(1); }, {0, 0}, {0, 1}, {1, 1}, 16},
      {"erase the last", [](auto& d) { d.EraseVarType(2); }, {0, 12}, {0, 1}, {1, 2}, 24},
      {"erase at the count", [](auto& d) { d.EraseVarType(3); }, {0, 12, 0}, {0, 1, 3}, {1, 2, 1}, 32},
      {"erase before the start", [](auto& d) { d.EraseVarType(-1); }, {0, 12, 0}, {0, 1, 3}, {1, 2, 1}, 32},
      {"update to a longer text", [](auto& d) { d.UpdateVarType(1, 17); }, {0, 17, 0}, {0, 1, 4}, {1, 3, 1}, 40},
      {"update to a number", [](auto& d) { d.UpdateVarType(1, 0); }, {0, 0, 0}, {0, 1, 2}, {1, 1, 1}, 24},
      {"update at the count", [](auto& d) { d.UpdateVarType(3, 17); }, {0, 12, 0}, {0, 1, 3}, {1, 2, 1}, 32},
      {"update before the start", [](auto& d) { d.UpdateVarType(-1, 17); }, {0, 12, 0}, {0, 1, 3}, {1, 2, 1}, 32},
  };
  for (const Change& row : rows) {
    SCOPED_TRACE(row.label);
    DatastepDataSmb data = sample();
    row.apply(data);
    EXPECT_THAT(typesOf(data), ElementsAreArray(row.types));
    EXPECT_THAT(indexOf(data), ElementsAreArray(row.index));
    EXPECT_THAT(lengthsOf(data), ElementsAreArray(row.lengths));
    EXPECT_EQ(data.GetOneCaseSize(), row.size);
    EXPECT_EQ(bytesOf(data).size(), static_cast<std::size_t>(row.size));
  }
}

TEST(DatastepDataSmb, ACaseThatWouldGetANegativeSizeKeepsIt) {
  DatastepDataSmb data;
  data.AddVarType(12);
  data.SetOneCaseSize(8);
  data.EraseVarType(0);
  EXPECT_EQ(data.GetOneCaseSize(), 8);
  EXPECT_EQ(bytesOf(data).size(), 8u);
  EXPECT_EQ(data.VarCount(), 0);
}

TEST(DatastepDataSmb, ATextInsertedBeforeANumberLeavesTheNumberItsOwnUnit) {
  DatastepDataSmb data = sample();
  data.InsertVarType(2, 9);
  EXPECT_EQ(data.SetNCellValue(3, 4.5), 0);
  EXPECT_EQ(data.SetCCellValue(2, "nine byte"), 0);
  EXPECT_EQ(data.SetCCellValue(1, "twelve bytes"), 0);
  int missing = -1;
  int error = -1;
  EXPECT_EQ(data.GetNCellValue(3, missing, error), 4.5);
  EXPECT_EQ(error, -1) << "untouched on success";
  EXPECT_EQ(textOf(data, 2), "nine byte");
  EXPECT_EQ(textOf(data, 1), "twelve bytes");
}

TEST(DatastepDataSmb, ACasesBytesComeAndGoWhole) {
  DatastepDataSmb data = sample();
  char bytes[] = "0123456789ab";
  data.SetCaseValue(bytes, 12);
  EXPECT_EQ(data.GetOneCaseSize(), 12);
  EXPECT_EQ(bytesOf(data), "0123456789ab");
  bytes[0] = 'x';
  EXPECT_EQ(bytesOf(data), "0123456789ab") << "a copy";
  int size = 0;
  data.SetCaseValue(static_cast<char*>(data.GetCaseValue(size)) + 4, 8);
  EXPECT_EQ(bytesOf(data), "456789ab") << "a part of itself";
  data.SetCaseValue(nullptr, 3);
  EXPECT_EQ(bytesOf(data), std::string(3, '\0'));
  data.SetCaseValue(bytes, -1);
  EXPECT_EQ(data.GetOneCaseSize(), 0);
  EXPECT_THAT(bytesOf(data), IsEmpty());
}

TEST(DatastepDataSmb, NumbersTellWhetherTheyAreMissing) {
  struct Row {
    const char* label;
    double value;
    int missing;
  };
  const double kSystemMissing = std::bit_cast<double>(std::uint64_t{0xFFEFFFFFFFFFFFFF});
  const Row rows[] = {
      {"number", 2.5, 0},
      {"system-missing", kSystemMissing, 1},
      {"the lowest number", std::numeric_limits<double>::lowest(), 1},
      {"its opposite", -kSystemMissing, 0},
      {"not a number", std::numeric_limits<double>::quiet_NaN(), 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    DatastepDataSmb data = sample();
    EXPECT_EQ(data.SetNCellValue(2, row.value), 0);
    int missing = -1;
    int error = -1;
    EXPECT_EQ(std::bit_cast<std::uint64_t>(data.GetNCellValue(2, missing, error)),
              std::bit_cast<std::uint64_t>(row.value));
    EXPECT_EQ(missing, row.missing);
    EXPECT_EQ(error, -1);
  }
}

TEST(DatastepDataSmb, TextsFillTheirUnitsWithBlanks) {
  struct Row {
    const char* label;
    const char* text;
    std::string unitBytes;
    std::string cell;
  };
  const Row rows[] = {
      {"short", "ab", "ab              ", "ab          "},
      {"as wide as the variable", "0123456789ab", "0123456789ab    ", "0123456789ab"},
      {"as long as its units", "0123456789abcdef", "0123456789abcdef", "0123456789ab"},
      {"longer", "0123456789abcdefgh", "0123456789abcdef", "0123456789ab"},
      {"empty", "", std::string(16, ' '), std::string(12, ' ')},
      {"null", nullptr, std::string(16, ' '), std::string(12, ' ')},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    DatastepDataSmb data = sample();
    EXPECT_EQ(data.SetCCellValue(1, row.text), 0);
    EXPECT_EQ(bytesOf(data), std::string(8, '\0') + row.unitBytes + std::string(8, '\0'));
    EXPECT_EQ(textOf(data, 1), row.cell);
  }
}

// 56 and 57 stand where one would look for the other of them.
TEST(DatastepDataSmb, CellsOfTheWrongKindOrPlaceGiveTheirCodes) {
  struct Row {
    const char* label;
    unsigned int var;
    int writeNumber;
    int readNumber;
    int writeText;
    std::string readText;
  };
  const Row rows[] = {
      {"number", 0, 0, 0, 0, "error 57"},
      {"text", 1, 57, 56, 0, std::string("t") + std::string(11, ' ')},
      {"the count", 3, 10, 10, 10, "error 10"},
      {"far away", 0xFFFFFFFF, 10, 10, 10, "error 10"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    DatastepDataSmb data = sample();
    EXPECT_EQ(data.SetNCellValue(row.var, 1), row.writeNumber);
    int missing = -1;
    int error = 0;
    EXPECT_EQ(data.GetNCellValue(row.var, missing, error), row.readNumber == 0 ? 1 : 0);
    EXPECT_EQ(error, row.readNumber);
    EXPECT_EQ(missing, row.readNumber == 0 ? 0 : -1);
    EXPECT_EQ(data.SetCCellValue(row.var, "t"), row.writeText);
    EXPECT_EQ(textOf(data, row.var), row.readText);
  }
}

TEST(DatastepDataSmb, CellsOutsideTheBufferAreNotThere) {
  struct Row {
    const char* label;
    std::function<void(DatastepDataSmb&)> spoil;
  };
  char bytes[8] = {};
  const Row rows[] = {
      {"no buffer", [](auto& d) { d.SetOneCaseSize(0); }},
      {"a buffer too short", [](auto& d) { d.SetOneCaseSize(16); }},
      {"a case too short", [&](auto& d) { d.SetCaseValue(bytes, 8); }},
      {"an index beyond the case",
       [](auto& d) {
         d.ClearVarObsIndex();
         for (const int unit : {4, 3, 4}) d.AddVarObsIndex(unit);
       }},
      {"a negative index",
       [](auto& d) {
         d.ClearVarObsIndex();
         for (int i = 0; i < 3; ++i) d.AddVarObsIndex(-1);
       }},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    DatastepDataSmb data = sample();
    row.spoil(data);
    int missing = -1;
    int error = 0;
    data.GetNCellValue(2, missing, error);
    EXPECT_EQ(error, 10);
    EXPECT_EQ(data.SetNCellValue(2, 1), 10);
    EXPECT_EQ(data.SetCCellValue(1, "text"), 10);
    EXPECT_EQ(textOf(data, 1), "error 10");
  }
}

TEST(DatastepDataSmb, VariablesWithoutAnIndexStandBehindEachOther) {
  DatastepDataSmb data = sample();
  data.ClearVarObsIndex();
  EXPECT_EQ(data.GetVarObsIndex(2), -1);
  EXPECT_EQ(data.SetNCellValue(2, 7), 0);
  EXPECT_EQ(bytesOf(data).substr(24), std::string("\0\0\0\0\0\0\x1c\x40", 8));
}

TEST(DatastepDataSmb, PositionsOutsideHaveNoUnits) {
  const DatastepDataSmb data = sample();
  for (const int var : {-1, 3}) {
    EXPECT_EQ(data.GetVarObsIndex(var), -1);
    EXPECT_EQ(data.GetVarObsLength(var), 0);
    EXPECT_EQ(data.VarType(var), 0);
  }
}

TEST(DatastepDataSmb, CopiesAreTheirOwn) {
  DatastepDataSmb data = sample();
  data.SetNCellValue(0, 1);
  DatastepDataSmb copy = data;
  copy.SetNCellValue(0, 2);
  copy.EraseVarType(1);
  int missing = 0;
  int error = 0;
  EXPECT_EQ(data.GetNCellValue(0, missing, error), 1);
  EXPECT_THAT(typesOf(data), ElementsAre(0, 12, 0));
}

}  // namespace
