// What is written as a Data Package is read again as the same data set, and other programs can read it too.
#include "engine/data_package_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>

#include "engine/data_package.h"
#include "engine/random_data_set.h"
#include "tests/kit/scratch_folder.h"

namespace kova::engine {
namespace {

Variable numberNamed(const char* name, const Format& format = {}) {
  Variable variable;
  variable.name = name;
  variable.format = format;
  variable.measure = Measure::kScale;
  return variable;
}

Variable textNamed(const char* name, int width) {
  Variable variable;
  variable.name = name;
  variable.width = width;
  variable.format = {FormatType::kA, width, 0};
  variable.measure = Measure::kNominal;
  variable.alignment = Alignment::kLeft;
  return variable;
}

// Of one variable and these values.
DataSet ofNumbers(const Variable& variable, const std::vector<double>& values) {
  DataSet dataSet;
  dataSet.name = "t";
  dataSet.variables = {variable};
  dataSet.cases = CaseStore({0});
  for (std::size_t i = 0; i < values.size(); ++i) {
    dataSet.cases.appendCase();
    dataSet.cases.setNumber(i, 0, values[i]);
  }
  return dataSet;
}

DataSet ofTexts(const Variable& variable, const std::vector<std::string>& values) {
  DataSet dataSet;
  dataSet.name = "t";
  dataSet.variables = {variable};
  dataSet.cases = CaseStore({variable.width});
  for (std::size_t i = 0; i < values.size(); ++i) {
    dataSet.cases.appendCase();
    dataSet.cases.setText(i, 0, values[i]);
  }
  return dataSet;
}

class DataPackageWriter : public testing::Test {
 protected:
  void write(const DataSet& dataSet, const CasePick& picks = {}) {
    std::string problem;
    ASSERT_EQ(writeDataPackage(dataSet, picks, path_, files_, &problem), ErrorCode::kNone) << problem;
  }

  DataSet read() {
    DataSet dataSet;
    std::string problem;
    EXPECT_TRUE(readDataPackage(path_, &dataSet, &problem)) << problem;
    return dataSet;
  }

  // The same is read, but for the file that it came from.
  void expectSame(DataSet dataSet) {
    write(dataSet);
    const DataSet again = read();
    dataSet.source = again.source;
    EXPECT_TRUE(again == dataSet) << folder_.read("t.json") << folder_.read("t.csv");
    EXPECT_EQ(bitsOfDictionary(again), bitsOfDictionary(dataSet)) << folder_.read("t.json");
  }

  // Numbers that are equal may differ in their sign.
  static std::vector<std::uint64_t> bitsOfDictionary(const DataSet& dataSet) {
    std::vector<std::uint64_t> bits;
    for (const Variable& variable : dataSet.variables) {
      for (const double number : variable.missing.numbers) bits.push_back(std::bit_cast<std::uint64_t>(number));
      for (const auto& label : variable.numberLabels) bits.push_back(std::bit_cast<std::uint64_t>(label.value));
    }
    return bits;
  }

  nlohmann::json field(std::size_t index = 0) {
    const auto descriptor = nlohmann::json::parse(folder_.read("t.json"));
    return descriptor["resources"][0]["schema"]["fields"][index];
  }

  const kit::ScratchFolder folder_;
  const std::string path_ = folder_.path("t.json");
  FileSystem files_;
};

TEST_F(DataPackageWriter, WritesAnyDataSetAsItIs) {
  for (std::uint64_t seed = 1; seed <= 200; ++seed) {
    SCOPED_TRACE(seed);
    expectSame(randomDataSet(seed));
    folder_.write("t.json", "");
    std::filesystem::remove(folder_.path("t.csv"));
    if (HasFailure()) return;
  }
}

TEST_F(DataPackageWriter, WritesThePenguinsAsTheyAre) {
  DataSet penguins;
  std::string problem;
  ASSERT_TRUE(readDataPackage(KOVA_SOURCE_DIR "/examples/penguins", &penguins, &problem)) << problem;
  expectSame(penguins);
  EXPECT_EQ(field(6)["categories"], nlohmann::json::parse(R"([{"value": 1, "label": "Female"},
                                                              {"value": 2, "label": "Male"}])"));
  EXPECT_EQ(field(6)["missingValues"], nlohmann::json::parse(R"(["", {"value": "9", "label": "Undetermined"}])"));
}

TEST_F(DataPackageWriter, WritesEveryNumberBitForBit) {
  const double infinity = std::numeric_limits<double>::infinity();
  const std::vector<double> numbers = {0.0,
                                       -0.0,
                                       0.1,
                                       1e22,
                                       1.0 / 3,
                                       5e-324,
                                       -2.5,
                                       infinity,
                                       -infinity,
                                       kSystemMissing,
                                       std::bit_cast<double>(std::uint64_t{0xFFEFFFFFFFFFFFFE}),
                                       std::numeric_limits<double>::max(),
                                       std::bit_cast<double>(std::uint64_t{0x7FF8000000000000}),
                                       std::bit_cast<double>(std::uint64_t{0xFFF8000000000000}),
                                       std::bit_cast<double>(std::uint64_t{0x7FF0000000000001})};
  expectSame(ofNumbers(numberNamed("n"), numbers));
  EXPECT_EQ(folder_.read("t.csv"),
            "n\n0\n-0\n0.1\n1e+22\n0.3333333333333333\n5e-324\n-2.5\nINF\n-INF\n\"\"\n-1.7976931348623155e+308\n"
            "1.7976931348623157e+308\nNaN:7ff8000000000000\nNaN:fff8000000000000\nNaN:7ff0000000000001\n");
  EXPECT_EQ(field()["missingValues"],
            nlohmann::json({"", "NaN:7ff0000000000001", "NaN:7ff8000000000000", "NaN:fff8000000000000"}));
}

TEST_F(DataPackageWriter, WritesEveryTextBitForBit) {
  const std::vector<std::string> texts = {
      "",  "a,b", "\"quoted\"",           "two\nlines", "\r",   " before",          "behind ",
      "%", "NA",  std::string("n\0l", 3), "cut \xC3",   "\xFF", "\xEF\xBB\xBFmark", "9"};
  expectSame(ofTexts(textNamed("s", 10), texts));
  EXPECT_EQ(folder_.read("t.csv"),
            "s\n\"\"\n\"a,b\"\n\"\"\"quoted\"\"\"\n\"two\nlines\"\n\"\r\"\n\" before\"\nbehind\n%25\nNA\nn%00l\ncut "
            "%C3\n%FF\n"
            "\"\xEF\xBB\xBFmark\"\n9\n");
  expectSame(ofTexts(textNamed("s", 8), {"50%", "\xC3\xA4"}));
  EXPECT_FALSE(field()["x-kova"].contains("escapes")) << "nothing needs them";
}

struct TypeRow {
  const char* label;
  Format format;
  std::vector<double> values;
  const char* type;
  const char* table;
};

TEST_F(DataPackageWriter, GivesAFieldTheTypeThatSaysMost) {
  const double day = 86400;
  const Format date{FormatType::kDATE, 10, 0};
  const Format time{FormatType::kTIME, 8, 0};
  const Format moment{FormatType::kDATETIME, 19, 0};
  const TypeRow rows[] = {
      {"whole numbers", {FormatType::kF, 8, 0}, {1, -2}, "integer", "n\n1\n-2\n"},
      {"whole numbers with decimals", {FormatType::kF, 8, 2}, {1, -2}, "number", "n\n1\n-2\n"},
      {"numbers without decimals", {FormatType::kF, 8, 0}, {1.5}, "number", "n\n1.5\n"},
      {"a negative zero", {FormatType::kF, 8, 0}, {-0.0}, "number", "n\n-0\n"},
      {"beyond whole numbers", {FormatType::kN, 20, 0}, {9007199254740994.0}, "number", "n\n9007199254740994\n"},
      {"days", date, {0, -day, 19782 * day}, "date", "n\n1970-01-01\n1969-12-31\n2024-02-29\n"},
      {"the first and the last day", date, {-719528 * day, 2932896 * day}, "date", "n\n0000-01-01\n9999-12-31\n"},
      {"a day too late", date, {2932897 * day}, "number", "n\n253402300800\n"},
      {"part of a day", date, {day / 2}, "number", "n\n43200\n"},
      {"times", time, {0, 86399}, "time", "n\n00:00:00\n23:59:59\n"},
      {"a duration", time, {86400}, "number", "n\n86400\n"},
      {"part of a second", time, {0.25}, "number", "n\n0.25\n"},
      {"moments", moment, {-1, 43200}, "datetime", "n\n1969-12-31T23:59:59\n1970-01-01T12:00:00\n"},
  };
  for (const TypeRow& row : rows) {
    SCOPED_TRACE(row.label);
    expectSame(ofNumbers(numberNamed("n", row.format), row.values));
    EXPECT_EQ(field()["type"], row.type);
    const auto descriptor = nlohmann::json::parse(folder_.read("t.json"));
    EXPECT_EQ(folder_.read(descriptor["resources"][0]["path"].get<std::string>()), row.table);
  }
}

TEST_F(DataPackageWriter, LabelsAndMissingValuesDecideTheTypeToo) {
  Variable labelled = numberNamed("n", {FormatType::kDATE, 10, 0});
  labelled.numberLabels = {{86400, "the second"}};
  expectSame(ofNumbers(labelled, {0}));
  EXPECT_EQ(field()["x-kova"]["labels"][0]["value"], "1970-01-02");
  labelled.missing = {kOneMissing, {99, 0, 0}, {}};
  expectSame(ofNumbers(labelled, {0}));
  EXPECT_EQ(field()["type"], "number");
  EXPECT_EQ(field()["missingValues"], nlohmann::json({"", "99"}));
}

TEST_F(DataPackageWriter, CategoriesAreThoseOfAllValues) {
  Variable sex = numberNamed("sex", {FormatType::kF, 8, 0});
  sex.measure = Measure::kOrdinal;
  sex.numberLabels = {{2, "two"}, {1, ""}};
  expectSame(ofNumbers(sex, {1, 2, kSystemMissing}));
  EXPECT_EQ(field()["categories"].size(), 2U);
  EXPECT_EQ(field()["categoriesOrdered"], true);
  expectSame(ofNumbers(sex, {1, 2, 3}));
  EXPECT_FALSE(field().contains("categories")) << "the standard forbids 3 then";
  EXPECT_EQ(field()["x-kova"]["labels"].size(), 2U);
}

TEST_F(DataPackageWriter, WritesEveryKindOfMissingValues) {
  const auto lowest = std::bit_cast<double>(std::uint64_t{0xFFEFFFFFFFFFFFFE});
  const MissingValues kinds[] = {{0, {}, {}},
                                 {1, {-0.0, 0, 0}, {}},
                                 {2, {9, 9, 0}, {}},
                                 {2, {0.0, -0.0, 0}, {}},
                                 {3, {3, 1, 2}, {}},
                                 {kMissingRange, {lowest, -1, 0}, {}},
                                 {kMissingRangeAndOne, {90, std::numeric_limits<double>::max(), 5}, {}}};
  for (const MissingValues& missing : kinds) {
    SCOPED_TRACE(missing.kind);
    Variable variable = numberNamed("n", {FormatType::kF, 8, 0});
    variable.missing = missing;
    expectSame(ofNumbers(variable, {1, 9, 95, kSystemMissing}));
  }
  EXPECT_EQ(field()["missingValues"], nlohmann::json({"", "5"})) << "a range is for this reader alone";
  const MissingValues texts[] = {{1, {}, {"", "", ""}}, {2, {}, {"NA", "NA", ""}}, {3, {}, {"?", "", "NA"}}};
  for (const MissingValues& missing : texts) {
    Variable variable = textNamed("s", 4);
    variable.missing = missing;
    expectSame(ofTexts(variable, {"", "NA", "?"}));
  }
}

TEST_F(DataPackageWriter, WritesThePickedCasesAlone) {
  write(ofNumbers(numberNamed("n", {FormatType::kF, 8, 0}), {1, 2.5, 3}), [](std::size_t i) { return i != 1; });
  EXPECT_EQ(folder_.read("t.csv"), "n\n1\n3\n");
  EXPECT_EQ(field()["type"], "integer") << "what is not written decides nothing";
}

TEST_F(DataPackageWriter, KeepsTheOrderOfAttributes) {
  DataSet dataSet = ofNumbers(numberNamed("n"), {});
  dataSet.attributes = {{"b", {"1"}}, {"a", {"2", ""}}};
  expectSame(dataSet);
  const auto descriptor = nlohmann::json::parse(folder_.read("t.json"));
  EXPECT_EQ(descriptor["resources"][0]["x-kova"]["attributes"][1]["name"], "a");
}

TEST_F(DataPackageWriter, TellsWhatItCanNotWrite) {
  std::string problem;
  EXPECT_EQ(writeDataPackage(DataSet(), {}, path_, files_, &problem), ErrorCode::kDataSetWithoutVariables);
  EXPECT_EQ(problem, path_ + " can not be written: the data set has no variables; make one first");
  DataSet dataSet = ofNumbers(numberNamed("n"), {});
  dataSet.variables.change(0).label = "\xFF";
  EXPECT_EQ(writeDataPackage(dataSet, {}, path_, files_, &problem), ErrorCode::kTextNotUtf8);
  EXPECT_EQ(problem,
            path_ + " can not be written: a text of the dictionary is not UTF-8; change the labels and attributes");
  dataSet.variables.change(0).label = std::string("a\0b", 3);
  EXPECT_EQ(writeDataPackage(dataSet, {}, path_, files_, &problem), ErrorCode::kTextWithNul);
  EXPECT_TRUE(std::filesystem::is_empty(folder_.path()));
}

}  // namespace
}  // namespace kova::engine
