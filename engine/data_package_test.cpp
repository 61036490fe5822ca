#include "engine/data_package.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/kit/scratch_folder.h"

namespace kova::engine {
namespace {

DataSet read(const std::string& path) {
  DataSet dataSet;
  std::string problem;
  EXPECT_TRUE(readDataPackage(path, &dataSet, &problem)) << problem;
  return dataSet;
}

// A package of one resource with these fields and this table.
DataSet readTable(const std::string& fields, const std::string& table, const std::string& schemaRest = "") {
  const kit::ScratchFolder folder;
  folder.write("datapackage.json", R"({"resources": [{"name": "t", "path": "t.csv", "schema": {"fields": [)" + fields +
                                       "]" + schemaRest + "}}]}");
  folder.write("t.csv", table);
  return read(folder.path());
}

TEST(DataPackage, ReadsThePenguinsDictionary) {
  struct Row {
    const char* name;
    const char* label;
    int width;
    const char* format;
    Measure measure;
  };
  const Row rows[] = {
      {"species", "Penguin species", 9, "A9", Measure::kNominal},
      {"island", "Island where observed", 9, "A9", Measure::kNominal},
      {"bill_length_mm", "Bill length (mm)", 0, "F8.1", Measure::kScale},
      {"bill_depth_mm", "Bill depth (mm)", 0, "F8.1", Measure::kScale},
      {"flipper_length_mm", "Flipper length (mm)", 0, "F8.0", Measure::kScale},
      {"body_mass_g", "Body mass (g)", 0, "F8.0", Measure::kScale},
      {"sex", "Sex of the penguin", 0, "F8.0", Measure::kNominal},
  };
  const DataSet penguins = read(KOVA_SOURCE_DIR "/examples/penguins/datapackage.json");
  EXPECT_EQ(penguins.name, "penguins");
  ASSERT_EQ(penguins.variables.size(), std::size(rows));
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    const Variable& variable = penguins.variables[i];
    EXPECT_EQ(variable.name, rows[i].name);
    EXPECT_EQ(variable.label, rows[i].label) << rows[i].name;
    EXPECT_EQ(variable.width, rows[i].width) << rows[i].name;
    EXPECT_EQ(formatText(variable.format), rows[i].format) << rows[i].name;
    EXPECT_EQ(variable.measure, rows[i].measure) << rows[i].name;
    EXPECT_EQ(variable.role, Role::kInput) << rows[i].name;
  }
}

TEST(DataPackage, ReadsThePenguinsLabelsAndMissingValues) {
  const Variable sex = read(KOVA_SOURCE_DIR "/examples/penguins").variables.at(6);
  EXPECT_EQ(sex.missing.kind, 1);
  EXPECT_EQ(sex.missing.numbers[0], 9.0);
  ASSERT_EQ(sex.numberLabels.size(), 3U);
  EXPECT_EQ(sex.numberLabels[0].value, 1.0);
  EXPECT_EQ(sex.numberLabels[0].label, "Female");
  EXPECT_EQ(sex.numberLabels[1].label, "Male");
  EXPECT_EQ(sex.numberLabels[2].value, 9.0);
  EXPECT_EQ(sex.numberLabels[2].label, "Undetermined");
}

TEST(DataPackage, ReadsThePenguinsCases) {
  const DataSet penguins = read(KOVA_SOURCE_DIR "/examples/penguins/");
  EXPECT_EQ(penguins.cases.caseCount(), 344U);
  EXPECT_EQ(penguins.cases.caseBytes(), 72U);
  EXPECT_EQ(penguins.cases.text(0, 0), "Adelie   ");
  EXPECT_EQ(penguins.cases.number(0, 2), 39.1);
  EXPECT_EQ(penguins.cases.number(3, 2), kSystemMissing);
  EXPECT_EQ(penguins.cases.number(343, 6), 2.0);
}

TEST(DataPackage, FillsInWhatAFieldDoesNotSay) {
  struct Row {
    const char* field;
    const char* value;
    const char* format;
    Measure measure;
  };
  const Row rows[] = {
      {R"({"name": "v"})", "abcd", "A4", Measure::kNominal},
      {R"({"name": "v", "type": "string"})", "\xC3\xA9t\xC3\xA9", "A5", Measure::kNominal},
      {R"({"name": "v", "type": "number"})", "1.5", "F8.2", Measure::kScale},
      {R"({"name": "v", "type": "integer"})", "1", "F8.0", Measure::kScale},
      {R"({"name": "v", "type": "integer", "categories": [1]})", "1", "F8.0", Measure::kNominal},
      {R"({"name": "v", "type": "integer", "categories": [1], "categoriesOrdered": true})", "1", "F8.0",
       Measure::kOrdinal},
      {R"({"name": "v", "type": "boolean"})", "true", "F1.0", Measure::kNominal},
      {R"({"name": "v", "type": "date"})", "2024-02-29", "DATE10", Measure::kScale},
      {R"({"name": "v", "type": "time"})", "12:00:00", "TIME8", Measure::kScale},
      {R"({"name": "v", "type": "datetime"})", "2024-02-29T12:00:00", "DATETIME19", Measure::kScale},
  };
  for (const Row& row : rows) {
    const DataSet dataSet = readTable(row.field, std::string("v\n") + row.value + "\n");
    ASSERT_EQ(dataSet.variables.size(), 1U) << row.field;
    EXPECT_EQ(formatText(dataSet.variables[0].format), row.format) << row.field;
    EXPECT_EQ(dataSet.variables[0].measure, row.measure) << row.field;
    EXPECT_EQ(dataSet.variables[0].label, "") << row.field;
    EXPECT_EQ(dataSet.variables[0].role, Role::kInput) << row.field;
  }
}

TEST(DataPackage, TakesTheOwnKeysOfAField) {
  const auto dataSet = readTable(
      R"({"name": "a", "description": "Long words",
          "x-kova": {"measure": "ordinal", "role": "split", "width": 20, "format": "A30", "alignment": "center",
                     "columnWidth": 255, "attributes": {"unit": "m", "Codes": ["a", "", "b"]}}})",
      "a\nx\n");
  const Variable& variable = dataSet.variables.at(0);
  EXPECT_EQ(variable.label, "Long words");
  EXPECT_EQ(variable.measure, Measure::kOrdinal);
  EXPECT_EQ(variable.role, Role::kSplit);
  EXPECT_EQ(variable.width, 20);
  EXPECT_EQ(formatText(variable.format), "A30");
  EXPECT_EQ(variable.alignment, Alignment::kCenter);
  EXPECT_EQ(variable.columnWidth, 255);
  const Attributes expected = {{"Codes", {"a", "", "b"}}, {"unit", {"m"}}};
  EXPECT_TRUE(variable.attributes == expected);
}

TEST(DataPackage, StringsStandLeftAndNumbersRight) {
  const DataSet dataSet = readTable(R"({"name": "s"}, {"name": "n", "type": "number"})", "s,n\n");
  EXPECT_EQ(dataSet.variables[0].alignment, Alignment::kLeft);
  EXPECT_EQ(dataSet.variables[1].alignment, Alignment::kRight);
  EXPECT_EQ(dataSet.variables[0].columnWidth, 8);
  EXPECT_TRUE(dataSet.variables[0].attributes.empty());
  EXPECT_TRUE(dataSet.attributes.empty());
  EXPECT_TRUE(dataSet.responseSets.empty());
  EXPECT_EQ(dataSet.weight, "");
  EXPECT_TRUE(dataSet.split.empty());
}

// The resource's own keys stand in front of the package's.
TEST(DataPackage, TakesTheOwnKeysOfTheDataSet) {
  const kit::ScratchFolder folder;
  folder.write("datapackage.json", R"({
    "x-kova": {"attributes": {"wave": "1", "Source": "survey"}, "weight": "n",
               "responseSets": [{"name": "$a", "kind": "categories", "variables": ["s", "t"]}]},
    "resources": [{"name": "t", "path": "t.csv",
      "x-kova": {"attributes": {"WAVE": ["2", "3"]}, "weight": "M", "split": ["S", "n"],
                 "responseSets": [{"name": "$b", "label": "Bee", "kind": "dichotomies", "countedValue": 1,
                                   "variables": ["N", "m"]},
                                  {"name": "$c", "kind": "dichotomies", "countedValue": "any length",
                                   "variables": ["t", "s"]}]},
      "schema": {"fields": [{"name": "n", "type": "number"}, {"name": "m", "type": "integer"}, {"name": "s"},
                            {"name": "t"}]}}]})");
  folder.write("t.csv", "n,m,s,t\n1,2,x,y\n");
  const DataSet dataSet = read(folder.path());
  const Attributes attributes = {{"Source", {"survey"}}, {"wave", {"2", "3"}}};
  EXPECT_TRUE(dataSet.attributes == attributes);
  EXPECT_EQ(dataSet.weight, "m") << "as the field has it";
  EXPECT_THAT(dataSet.split, testing::ElementsAre("s", "n"));
  const std::vector<ResponseSet> sets = {{"$a", "", ResponseSetKind::kCategories, "", {"s", "t"}},
                                         {"$b", "Bee", ResponseSetKind::kDichotomies, "1", {"n", "m"}},
                                         {"$c", "", ResponseSetKind::kDichotomies, "any length", {"t", "s"}}};
  EXPECT_TRUE(dataSet.responseSets == sets);
  EXPECT_EQ(dataSet.source, folder.path() + "/datapackage.json");
}

TEST(DataPackage, ATitleIsTheLabelBeforeADescription) {
  EXPECT_EQ(readTable(R"({"name": "a", "title": "T", "description": "D"})", "a\n").variables.at(0).label, "T");
}

TEST(DataPackage, AStringIsAsWideAsItsLongestTextOrLabelledValue) {
  EXPECT_EQ(readTable(R"({"name": "a"})", "a\nxy\nabcdef\nz\n").variables.at(0).width, 6);
  EXPECT_EQ(readTable(R"({"name": "a", "categories": ["twelve bytes"]})", "a\nxy\n").variables.at(0).width, 12);
  EXPECT_EQ(readTable(R"({"name": "a", "missingValues": ["unknown"]})", "a\nxy\n").variables.at(0).width, 7);
  EXPECT_EQ(readTable(R"({"name": "a"})", "a\n").variables.at(0).width, 1) << "no cases";
}

TEST(DataPackage, CategoriesMayBeBareValues) {
  const DataSet dataSet = readTable(
      R"({"name": "a", "categories": ["x", {"value": "y", "label": "Why"}]},
         {"name": "b", "type": "number", "categories": [0.5, "2", {"value": 3}]})",
      "a,b\n");
  const auto& texts = dataSet.variables.at(0).textLabels;
  ASSERT_EQ(texts.size(), 2U);
  EXPECT_EQ(texts[0].label, "x");
  EXPECT_EQ(texts[1].value, "y");
  EXPECT_EQ(texts[1].label, "Why");
  const auto& numbers = dataSet.variables.at(1).numberLabels;
  ASSERT_EQ(numbers.size(), 3U);
  EXPECT_EQ(numbers[0].label, "0.5");
  EXPECT_EQ(numbers[1].value, 2.0);
  EXPECT_EQ(numbers[2].label, "3");
}

TEST(DataPackage, MissingValuesOfTheTableServeFieldsWithoutTheirOwn) {
  const DataSet dataSet = readTable(
      R"({"name": "n", "type": "integer"}, {"name": "s", "type": "string"},
         {"name": "own", "type": "integer", "missingValues": ["-"]})",
      "n,s,own\n-99,-99,-99\nNA,NA,-\n,,5\n", R"(, "missingValues": ["", "NA", {"value": "-99", "label": "Refused"}])");
  const CaseStore& cases = dataSet.cases;
  const Variable& number = dataSet.variables.at(0);
  EXPECT_EQ(number.missing.kind, 1) << "NA is no number";
  EXPECT_EQ(number.missing.numbers[0], -99.0);
  EXPECT_EQ(number.numberLabels.at(0).label, "Refused");
  EXPECT_EQ(cases.number(0, 0), -99.0);
  EXPECT_EQ(cases.number(1, 0), kSystemMissing);
  EXPECT_EQ(cases.number(2, 0), kSystemMissing);
  const Variable& text = dataSet.variables.at(1);
  EXPECT_EQ(text.missing.kind, 2);
  EXPECT_THAT(text.missing.texts, testing::ElementsAre("NA", "-99", ""));
  EXPECT_EQ(cases.text(1, 1), "NA ");
  EXPECT_EQ(cases.text(2, 1), "   ");
  EXPECT_EQ(dataSet.variables.at(2).missing.kind, 0);
  EXPECT_EQ(cases.number(0, 2), -99.0);
  EXPECT_EQ(cases.number(1, 2), kSystemMissing);
}

TEST(DataPackage, AMissingNumberMayBeWrittenInSeveralWays) {
  const Variable variable =
      readTable(R"({"name": "n", "type": "number", "missingValues": ["99", "099", "+99.0", "98", "97"]})", "n\n")
          .variables.at(0);
  EXPECT_EQ(variable.missing.kind, 3);
  EXPECT_THAT(variable.missing.numbers, testing::ElementsAre(99.0, 98.0, 97.0));
}

TEST(DataPackage, AValueMayHaveTheSameLabelTwice) {
  const Variable variable = readTable(R"({"name": "n", "type": "integer", "categories": [{"value": 9, "label": "x"}],
                                          "missingValues": ["9", {"value": "9", "label": "x"}]})",
                                      "n\n")
                                .variables.at(0);
  EXPECT_EQ(variable.missing.kind, 1);
  EXPECT_EQ(variable.numberLabels.size(), 1U);
}

TEST(DataPackage, ABlankLineIsACaseOfASingleVariable) {
  const DataSet dataSet = readTable(R"({"name": "n", "type": "integer"})", "n\n1\n\n3\n");
  ASSERT_EQ(dataSet.cases.caseCount(), 3U);
  EXPECT_EQ(dataSet.cases.number(1, 0), kSystemMissing);
  EXPECT_EQ(dataSet.cases.number(2, 0), 3.0);
}

TEST(DataPackage, ItsFoldersNameMayEndAsADescriptors) {
  const kit::ScratchFolder folder;
  std::filesystem::create_directory(folder.path("d.json"));
  folder.write("d.json/datapackage.json",
               R"({"resources": [{"name": "t", "path": "t.csv", "schema": {"fields": [{"name": "a"}]}}]})");
  folder.write("d.json/t.csv", "a\nx\n");
  EXPECT_EQ(read(folder.path("d.json")).cases.caseCount(), 1U);
}

TEST(DataPackage, ATextTooLongToBeAMissingValueMeansNoValue) {
  const DataSet dataSet = readTable(R"({"name": "s", "missingValues": ["not applicable"]})", "s\nnot applicable\nab\n");
  EXPECT_EQ(dataSet.variables.at(0).missing.kind, 0);
  EXPECT_EQ(dataSet.variables.at(0).width, 2);
  EXPECT_EQ(dataSet.cases.text(0, 0), "  ");
}

TEST(DataPackage, ReadsBooleansWithTheirOwnWords) {
  const DataSet dataSet =
      readTable(R"({"name": "b", "type": "boolean", "trueValues": ["yes"], "falseValues": ["no"]})", "b\nyes\nno\n");
  EXPECT_EQ(dataSet.cases.number(0, 0), 1.0);
  EXPECT_EQ(dataSet.cases.number(1, 0), 0.0);
}

TEST(DataPackage, TakesAnotherDelimiter) {
  const kit::ScratchFolder folder;
  folder.write("datapackage.json", R"({"resources": [{"name": "t", "path": ["sub/t.csv"], "dialect": {"delimiter": ";"},
      "schema": {"fields": [{"name": "a"}, {"name": "b"}]}}]})");
  std::filesystem::create_directory(folder.path("sub"));
  folder.write("sub/t.csv",
               "\xEF\xBB\xBF"
               "a;b\nx;y,z\n");
  EXPECT_EQ(read(folder.path("datapackage.json")).cases.text(0, 1), "y,z");
}

TEST(DataPackage, OpensNoFileForEveryRead) {
  const kit::ScratchFolder folder;
  for (int i = 0; i < 2000; ++i) {
    DataSet dataSet;
    std::string problem;
    ASSERT_FALSE(readDataPackage(folder.path(), &dataSet, &problem));
  }
  EXPECT_EQ(read(KOVA_SOURCE_DIR "/examples/penguins").variables.size(), 7U) << "descriptors are used up";
}

}  // namespace
}  // namespace kova::engine
