// Every malformed descriptor and table with its exact line.
#include <gtest/gtest.h>

#include <algorithm>

#include "engine/data_package.h"
#include "tests/kit/scratch_folder.h"

namespace kova::engine {
namespace {

// What a package of these two files is refused with, the folder's path taken off. The data set must stay untouched.
std::string problemOf(const std::string& descriptor, const std::string& table) {
  const kit::ScratchFolder folder;
  folder.write("datapackage.json", descriptor);
  folder.write("t.csv", table);
  DataSet dataSet;
  dataSet.name = "untouched";
  std::string problem;
  EXPECT_FALSE(readDataPackage(folder.path(), &dataSet, &problem)) << descriptor << table;
  EXPECT_EQ(dataSet.name, "untouched");
  EXPECT_EQ(problem.find('\n'), std::string::npos) << problem;
  const std::string start = folder.path() + "/";
  return problem.find(start) == 0 ? problem.substr(start.size()) : problem;
}

std::string withFields(const std::string& fields) {
  return R"({"resources": [{"path": "t.csv", "schema": {"fields": [)" + fields + "]}}]}";
}

std::string withResource(const std::string& properties) { return R"({"resources": [{)" + properties + "}]}"; }

struct Row {
  const char* label;
  std::string text;
  const char* problem;
};

// A descriptor in which '^' marks the place that the problem is to name, and the rest of its line.
struct MarkedRow {
  const char* label;
  std::string text;
  const char* problem;
};

void expectProblem(const MarkedRow& row, const std::string& text) {
  const auto mark = text.find('^');
  ASSERT_NE(mark, std::string::npos) << row.label;
  const std::string before = text.substr(0, mark);
  const auto lines = std::count(before.begin(), before.end(), '\n');
  const auto column = mark - (before.rfind('\n') + 1) + 1;
  EXPECT_EQ(problemOf(before + text.substr(mark + 1), ""),
            "datapackage.json, row " + std::to_string(lines + 1) + ", column " + std::to_string(column) + row.problem)
      << row.label;
}

TEST(DescriptorProblems, OfJson) {
  const MarkedRow rows[] = {
      {"empty", "^", ": expected JSON, found end of input"},
      {"no end", "{\n \"resources\": [^", ": expected JSON, found end of input"},
      {"a comma too many", "{\"a\": 1,^}", ": expected JSON, found '}'"},
      {"two values", "{} ^{}", ": expected JSON, found '{'"},
      {"a wrong word", "{\"a\": tr^x}", ": expected JSON, found invalid literal"},
      {"another encoding", "{\"t\":\n\"caf^\xE9\"}", ": expected text in UTF-8, found a byte that is not"},
      {"no object", "^[]", ": expected an object, found a list"},
      {"a number", " ^17", ": expected an object, found 17"},
      {"a number beyond a double", "{\"a\": [\"1e999\", -1.5e3, 1e-400,\n ^-1e999, 2e999}",
       ": expected numbers within the range of a double, found a larger one"},
      {"a key twice", "{\"a\": {\"b\": [\"b\", {\"a\": 1}]},\n \"b\": \"a\", ^\"a\" : 2}",
       ": expected keys that differ within an object, found \"a\" again"},
      {"a key twice in other characters", "[{\"ab\\\"\": 1}, {\"ab\": 1, ^\"\\u0061b\": 2}]",
       ": expected keys that differ within an object, found \"ab\" again"},
  };
  for (const MarkedRow& row : rows) expectProblem(row, row.text);
}

TEST(DescriptorProblems, OfResources) {
  const MarkedRow rows[] = {
      {"no resources", "^{\n  \"name\": \"x\"\n}", " (resources): expected a list, found nothing"},
      {"no list", "{\"resources\": ^\"x\"}", " (resources): expected a list, found \"x\""},
      {"an empty list", "{\n\"resources\": ^[]}", " (resources): expected at least one resource, found a list"},
      {"no path", R"({"resources": [^{}]})", " (resources/0/path): expected a text, found nothing"},
      {"two paths", withResource(R"("path": ^["a", "b"])"), " (resources/0/path): expected a text, found a list"},
      {"compressed", withResource(R"("path": "t.csv", "compression": ^"gz")"),
       " (resources/0/compression): expected a table that is not compressed, found \"gz\""},
      {"another format", withResource(R"("path": "t.csv", "format": ^"xlsx")"),
       " (resources/0/format): expected \"csv\", found \"xlsx\""},
      {"another encoding", withResource(R"("path": "t.csv", "encoding": ^"latin1")"),
       " (resources/0/encoding): expected \"utf-8\", found \"latin1\""},
      {"a dialect without headings", withResource(R"("path": "t.csv", "dialect": {"header": ^false})"),
       " (resources/0/dialect/header): expected true, found false"},
      {"an unknown dialect", withResource(R"("path": "t.csv", "dialect": {"commentChar": ^"#"})"),
       " (resources/0/dialect/commentChar): expected no dialect but delimiter, found \"#\""},
      {"a delimiter of two", withResource(R"("path": "t.csv", "dialect": {"delimiter": ^"||"})"),
       " (resources/0/dialect/delimiter): expected one character of one byte, found \"||\""},
      {"a delimiter of nothing", withResource(R"("path": "t.csv", "dialect": {"delimiter": ^"\u0000"})"),
       " (resources/0/dialect/delimiter): expected a text without NUL characters, found \"?\""},
      {"no schema", R"({"resources": [^{"path": "t.csv"}]})",
       " (resources/0/schema): expected an object, found nothing"},
      {"a schema elsewhere", withResource(R"("path": "t.csv", "schema": ^"s.json")"),
       " (resources/0/schema): expected an object, found \"s.json\""},
  };
  for (const MarkedRow& row : rows) expectProblem(row, row.text);
}

TEST(DescriptorProblems, OfPathsThatLeaveTheFolder) {
  for (const char* path : {"/etc/passwd", "../t.csv", "a/../../t.csv", "a/..", "..\\t.csv", "\\\\server\\t.csv",
                           "C:\\t.csv", "http://localhost/t.csv", ""}) {
    std::string escaped;
    for (const char* c = path; *c != 0; ++c) escaped += *c == '\\' ? "\\\\" : std::string(1, *c);
    const std::string found = *path == 0 ? "nothing" : "\"" + std::string(path) + "\"";
    EXPECT_EQ(problemOf(withResource("\"path\": \"" + escaped + "\""), ""),
              "datapackage.json, row 1, column 25 (resources/0/path): expected a path inside the descriptor's folder, "
              "relative to it and without \"..\", found " +
                  found);
  }
}

TEST(DescriptorProblems, OfFields) {
  const MarkedRow rows[] = {
      {"no name", R"(^{})", " (resources/0/schema/fields/0/name): expected a text, found nothing"},
      {"an empty name", R"({"name": ^""})",
       " (resources/0/schema/fields/0/name): expected a name of 1 to 64 bytes, found nothing"},
      {"a name twice", R"({"name": "a"}, {"name": ^"A"})",
       " (resources/0/schema/fields/1/name): expected a name that no other field has, found \"A\""},
      {"a title with a NUL", R"({"name": "a", "title": ^"x\u0000y"})",
       " (resources/0/schema/fields/0/title): expected a text without NUL characters, found \"x?y\""},
      {"an unknown type", R"({"name": "a", "type": ^"geojson"})",
       " (resources/0/schema/fields/0/type): expected one of string, number, integer, boolean, date, time, datetime, "
       "found \"geojson\""},
      {"another decimal mark", R"({"name": "a", "type": "number", "decimalChar": ^","})",
       " (resources/0/schema/fields/0/decimalChar): expected \".\", found \",\""},
      {"another date format", R"({"name": "a", "type": "date", "format": ^"%d.%m.%Y"})",
       " (resources/0/schema/fields/0/format): expected \"default\", found \"%d.%m.%Y\""},
      {"an unknown measure", R"({"name": "a", "x-kova": {"measure": ^"ratio"}})",
       " (resources/0/schema/fields/0/x-kova/measure): expected one of unknown, nominal, ordinal, scale, found "
       "\"ratio\""},
      {"an unknown role", R"({"name": "a", "x-kova": {"role": ^1}})",
       " (resources/0/schema/fields/0/x-kova/role): expected a text, found 1"},
      {"a width of nothing", R"({"name": "a", "x-kova": {"width": ^0}})",
       " (resources/0/schema/fields/0/x-kova/width): expected a width of 1 to 32767 bytes, found 0"},
      {"a negative width", R"({"name": "a", "x-kova": {"width": ^-1}})",
       " (resources/0/schema/fields/0/x-kova/width): expected a width of 1 to 32767 bytes, found -1"},
      {"a huge width", R"({"name": "a", "x-kova": {"width": ^18446744073709551615}})",
       " (resources/0/schema/fields/0/x-kova/width): expected a width of 1 to 32767 bytes, found 18446744073709551615"},
      {"a width of a number", R"({"name": "a", "type": "number", "x-kova": {"width": ^8}})",
       " (resources/0/schema/fields/0/x-kova/width): expected no width, which only a string field has, found 8"},
      {"a format of the other kind", R"({"name": "a", "x-kova": {"format": ^"F8.2"}})",
       " (resources/0/schema/fields/0/x-kova/format): expected a format of texts, as A20, found \"F8.2\""},
      {"no format", R"({"name": "a", "type": "number", "x-kova": {"format": ^"fine"}})",
       " (resources/0/schema/fields/0/x-kova/format): expected a format of numbers, as F8.2, found \"fine\""},
      {"an unknown key", R"({"name": "a", "x-kova": {"roll": ^"input"}})",
       " (resources/0/schema/fields/0/x-kova/roll): expected no keys but measure, role, width, format, "
       "alignment, columnWidth, attributes, labels, missing, notANumber, escapes, found \"input\""},
      {"an unknown alignment", R"({"name": "a", "x-kova": {"alignment": ^"middle"}})",
       " (resources/0/schema/fields/0/x-kova/alignment): expected one of left, right, center, found \"middle\""},
      {"a column width of 0", R"({"name": "a", "x-kova": {"columnWidth": ^0}})",
       " (resources/0/schema/fields/0/x-kova/columnWidth): expected a column width of 1 to 255, found 0"},
      {"a column width of 256", R"({"name": "a", "x-kova": {"columnWidth": ^256}})",
       " (resources/0/schema/fields/0/x-kova/columnWidth): expected a column width of 1 to 255, found 256"},
      {"a column width that is a text", R"({"name": "a", "x-kova": {"columnWidth": ^"8"}})",
       " (resources/0/schema/fields/0/x-kova/columnWidth): expected a column width of 1 to 255, found \"8\""},
      {"attributes that are no object", R"({"name": "a", "x-kova": {"attributes": ^"unit"}})",
       " (resources/0/schema/fields/0/x-kova/attributes): expected an object, found \"unit\""},
      {"a list of attributes that are no objects", R"({"name": "a", "x-kova": {"attributes": [^"unit"]}})",
       " (resources/0/schema/fields/0/x-kova/attributes/0): expected an object, found \"unit\""},
      {"an attribute of a list with another key",
       R"({"name": "a", "x-kova": {"attributes": [{"name": "unit", "value": ^"m"}]}})",
       " (resources/0/schema/fields/0/x-kova/attributes/0/value): expected no keys but name, values, found \"m\""},
      {"an attribute of a list without values", R"({"name": "a", "x-kova": {"attributes": [^{"name": "unit"}]}})",
       " (resources/0/schema/fields/0/x-kova/attributes/0): expected a name and values, found an object"},
      {"an attribute of a list without a name", R"({"name": "a", "x-kova": {"attributes": [^{"values": "m"}]}})",
       " (resources/0/schema/fields/0/x-kova/attributes/0/name): expected a text, found nothing"},
      {"an attribute twice in a list",
       R"({"name": "a", "x-kova": {"attributes": [{"name": "u", "values": "m"}, {"name": ^"U", "values": "m"}]}})",
       " (resources/0/schema/fields/0/x-kova/attributes/1/name): expected a name that no other attribute has, found "
       "\"U\""},
      {"missing values that are no object", R"({"name": "a", "x-kova": {"missing": ^[1]}})",
       " (resources/0/schema/fields/0/x-kova/missing): expected an object, found a list"},
      {"missing values with another key", R"({"name": "a", "x-kova": {"missing": {"value": ^1}}})",
       " (resources/0/schema/fields/0/x-kova/missing/value): expected no keys but range, values, found 1"},
      {"a range of texts", R"({"name": "a", "x-kova": {"missing": {"range": ^["a", "b"]}}})",
       " (resources/0/schema/fields/0/x-kova/missing/range): expected no range, which only a field of numbers has, "
       "found a list"},
      {"a range of one number", R"({"name": "a", "type": "number", "x-kova": {"missing": {"range": ^[1]}}})",
       " (resources/0/schema/fields/0/x-kova/missing/range): expected a list of two numbers, found a list"},
      {"a range that is reversed", R"({"name": "a", "type": "number", "x-kova": {"missing": {"range": ^[2, 1]}}})",
       " (resources/0/schema/fields/0/x-kova/missing/range): expected the lower end first, found a list"},
      {"a range that ends in a text", R"({"name": "a", "type": "number", "x-kova": {"missing": {"range": [1, ^"2"]}}})",
       " (resources/0/schema/fields/0/x-kova/missing/range/1): expected a number, found \"2\""},
      {"a range and two values",
       R"({"name": "a", "type": "number", "x-kova": {"missing": {"range": [1, 2], "values": ^[3, 4]}}})",
       " (resources/0/schema/fields/0/x-kova/missing/values): expected at most one value, found a list"},
      {"four own missing values",
       R"({"name": "a", "type": "number", "x-kova": {"missing": {"values": ^[1, 2, 3, 4]}}})",
       " (resources/0/schema/fields/0/x-kova/missing/values): expected at most three values, found a list"},
      {"a missing value that is system-missing",
       R"({"name": "a", "type": "number", "x-kova": {"missing": {"values": [^-1.7976931348623157e308]}}})",
       " (resources/0/schema/fields/0/x-kova/missing/values/0): expected a number, found -1.7976931348623157e+308"},
      {"a missing text that is too long", R"({"name": "a", "x-kova": {"width": 2, "missing": {"values": [^"abc"]}}})",
       " (resources/0/schema/fields/0/x-kova/missing/values/0): expected a text of at most 8 bytes that is no longer "
       "than the field's width, found \"abc\""},
      {"own labels that are no list", R"({"name": "a", "x-kova": {"labels": ^{}}})",
       " (resources/0/schema/fields/0/x-kova/labels): expected a list, found an object"},
      {"not-a-numbers of a text", R"({"name": "a", "x-kova": {"notANumber": ^true}})",
       " (resources/0/schema/fields/0/x-kova/notANumber): expected no key that only a number field has, found true"},
      {"not-a-numbers that are no truth", R"({"name": "a", "type": "number", "x-kova": {"notANumber": ^1}})",
       " (resources/0/schema/fields/0/x-kova/notANumber): expected true or false, found 1"},
      {"escapes of a number", R"({"name": "a", "type": "number", "x-kova": {"escapes": ^true}})",
       " (resources/0/schema/fields/0/x-kova/escapes): expected no key that only a string field has, found true"},
      {"an attribute that is a number", R"({"name": "a", "x-kova": {"attributes": {"unit": ^5}}})",
       " (resources/0/schema/fields/0/x-kova/attributes/unit): expected a text, found 5"},
      {"an attribute with a number among its texts", R"({"name": "a", "x-kova": {"attributes": {"unit": ["m", ^5]}}})",
       " (resources/0/schema/fields/0/x-kova/attributes/unit/1): expected a text, found 5"},
      {"an attribute without texts", R"({"name": "a", "x-kova": {"attributes": {"unit": ^[]}}})",
       " (resources/0/schema/fields/0/x-kova/attributes/unit): expected at least one text, found a list"},
      {"an attribute with a NUL", R"({"name": "a", "x-kova": {"attributes": {"unit": ^"m\u0000"}}})",
       " (resources/0/schema/fields/0/x-kova/attributes/unit): expected a text without NUL characters, found \"m?\""},
      {"an attribute with another name", R"({"name": "a", "x-kova": {"attributes": {"two words": ^"x"}}})",
       " (resources/0/schema/fields/0/x-kova/attributes/two words): expected a name of letters, digits and . _ $ # @, "
       "found \"x\""},
      {"an attribute twice", R"({"name": "a", "x-kova": {"attributes": {"UNIT": "m", "unit": ^"km"}}})",
       " (resources/0/schema/fields/0/x-kova/attributes/unit): expected a name that no other attribute has, found "
       "\"km\""},
      {"a category of the other type", R"({"name": "a", "type": "integer", "categories": [1, ^"x"]})",
       " (resources/0/schema/fields/0/categories/1): expected a whole number, found \"x\""},
      {"a category that is no whole number", R"({"name": "a", "type": "integer", "categories": [^1.5]})",
       " (resources/0/schema/fields/0/categories/0): expected a whole number, found 1.5"},
      {"a category that is neither true nor false", R"({"name": "a", "type": "boolean", "categories": [1, ^7]})",
       " (resources/0/schema/fields/0/categories/1): expected true or false, as true or false, found 7"},
      {"a category that is no day", R"({"name": "a", "type": "date", "categories": [{"value": ^5}]})",
       " (resources/0/schema/fields/0/categories/0/value): expected a day, as 2024-12-31, found 5"},
      {"a second label of a number",
       R"({"name": "a", "type": "integer",
           "categories": [{"value": 1, "label": "one"}, {"value": "1", "label": ^"uno"}]})",
       " (resources/0/schema/fields/0/categories/1/label): expected \"one\" as the only label of this value, found "
       "\"uno\""},
      {"a second label of a text", R"({"name": "a", "categories": [{"value": "x", "label": "one"}, ^"x"]})",
       " (resources/0/schema/fields/0/categories/1): expected \"one\" as the only label of this value, found \"x\""},
      {"a second label of a missing value",
       R"({"name": "a", "type": "integer", "missingValues": [{"value": "9", "label": "x"}, {"value": "9", "label": ^"y"}]})",
       " (resources/0/schema/fields/0/missingValues/1/label): expected \"x\" as the only label of this value, found "
       "\"y\""},
      {"a category without value", R"({"name": "a", "type": "integer", "categories": [^{"label": "x"}]})",
       " (resources/0/schema/fields/0/categories/0/value): expected a value, found nothing"},
      {"a category that is too long", R"({"name": "a", "x-kova": {"width": 2}, "categories": [^"abc"]})",
       " (resources/0/schema/fields/0/categories/0): expected at most 2 bytes, found \"abc\""},
      {"order that is no truth", R"({"name": "a", "categories": ["x"], "categoriesOrdered": ^"yes"})",
       " (resources/0/schema/fields/0/categoriesOrdered): expected true or false, found \"yes\""},
      {"a missing value that is no text", R"({"name": "a", "type": "integer", "missingValues": [^9]})",
       " (resources/0/schema/fields/0/missingValues/0): expected a text, found 9"},
      {"four missing values", R"({"name": "a", "type": "integer", "missingValues": ["6", "7", "", "8", ^"9"]})",
       " (resources/0/schema/fields/0/missingValues/4): expected at most three user-missing values, found \"9\""},
      {"a word for both", R"({"name": "a", "type": "boolean", "trueValues": ["y", "n"], "falseValues": ["N", ^"n"]})",
       " (resources/0/schema/fields/0/falseValues/1): expected a text that is not both true and false, found \"n\""},
      {"a word for true that is one for false", R"({"name": "a", "type": "boolean", "trueValues": [^"0"]})",
       " (resources/0/schema/fields/0/trueValues/0): expected a text that is not both true and false, found \"0\""},
      {"a key of several lines", R"({"name": "a", "x-kova": {"\n\u001b[2J": ^1}})",
       " (resources/0/schema/fields/0/x-kova/??[2J): expected no keys but measure, role, width, format, alignment, "
       "columnWidth, attributes, labels, missing, notANumber, escapes, found 1"},
      {"no words for true", R"({"name": "a", "type": "boolean", "trueValues": ^[]})",
       " (resources/0/schema/fields/0/trueValues): expected at least one text, found a list"},
  };
  for (const MarkedRow& row : rows) expectProblem(row, withFields(row.text));
}

// A package of two numbers and a string, with these own keys of its resource.
std::string withOwnKeys(const std::string& keys) {
  return withResource(R"("path": "t.csv", "schema": {"fields": [{"name": "n", "type": "number"},
    {"name": "m", "type": "integer"}, {"name": "s", "x-kova": {"width": 3}}, {"name": "t"}]}, "x-kova": )" +
                      keys);
}

TEST(DescriptorProblems, OfOwnKeysOfTheResource) {
  const MarkedRow rows[] = {
      {"no object", "^[]", ": expected an object, found a list"},
      {"an unknown key", R"({"wieght": ^"n"})",
       "/wieght): expected no keys but attributes, responseSets, weight, split, filter, found \"n\""},
      {"attributes that are no object", R"({"attributes": ^"x"})", "/attributes): expected an object, found \"x\""},
      {"an attribute that is true", R"({"attributes": {"a": ^true}})", "/attributes/a): expected a text, found true"},
      {"a weight that is no field", R"({"weight": ^"w"})", "/weight): expected the name of a field, found \"w\""},
      {"a weight that is a string", R"({"weight": ^"s"})",
       "/weight): expected the name of a field of numbers, found \"s\""},
      {"a weight that is a list", R"({"weight": ^["n"]})", "/weight): expected a text, found a list"},
      {"a filter that is a string", R"({"filter": ^"s"})",
       "/filter): expected the name of a field of numbers, found \"s\""},
      {"a split that is no list", R"({"split": ^"n"})", "/split): expected a list, found \"n\""},
      {"a split by no field", R"({"split": ["n", ^"w"]})", "/split/1): expected the name of a field, found \"w\""},
      {"a split twice by one field", R"({"split": ["n", "s", ^"N"]})",
       "/split/2): expected each field once, found \"N\""},
      {"sets that are no list", R"({"responseSets": ^{}})", "/responseSets): expected a list, found an object"},
      {"a set that is no object", R"({"responseSets": [^"$s"]})", "/responseSets/0): expected an object, found \"$s\""},
      {"a set with an unknown key", R"({"responseSets": [{"name": "$s", "fields": ^[]}]})",
       "/responseSets/0/fields): expected no keys but name, label, kind, countedValue, variables, found a list"},
      {"a set without a name", R"({"responseSets": [^{"kind": "categories"}]})",
       "/responseSets/0/name): expected a text, found nothing"},
      {"a set without a dollar sign", R"({"responseSets": [{"name": ^"s"}]})",
       "/responseSets/0/name): expected a name of 2 to 64 bytes that begins with $, found \"s\""},
      {"a set without a kind", R"({"responseSets": [^{"name": "$s"}]})",
       "/responseSets/0/kind): expected a text, found nothing"},
      {"a set of another kind", R"({"responseSets": [{"name": "$s", "kind": ^"both"}]})",
       "/responseSets/0/kind): expected one of dichotomies, categories, found \"both\""},
      {"a set without fields", R"({"responseSets": [^{"name": "$s", "kind": "categories"}]})",
       "/responseSets/0/variables): expected a list, found nothing"},
      {"a set of no known field",
       R"({"responseSets": [{"name": "$s", "kind": "categories", "variables": ["n", ^"w"]}]})",
       "/responseSets/0/variables/1): expected the name of a field, found \"w\""},
      {"a set of one field", R"({"responseSets": [{"name": "$s", "kind": "categories", "variables": ^["n"]}]})",
       "/responseSets/0/variables): expected at least two fields, found a list"},
      {"a set with a field twice",
       R"({"responseSets": [{"name": "$s", "kind": "categories", "variables": ["n", ^"n"]}]})",
       "/responseSets/0/variables/1): expected each field once, found \"n\""},
      {"a set of both kinds of fields",
       R"({"responseSets": [{"name": "$s", "kind": "categories", "variables": ^["n", "s"]}]})",
       "/responseSets/0/variables): expected fields of one kind, all numbers or all strings, found a list"},
      {"categories with a counted value",
       R"({"responseSets": [{"name": "$s", "kind": "categories", "countedValue": ^1, "variables": ["n", "m"]}]})",
       "/responseSets/0/countedValue): expected no counted value, which only dichotomies have, found 1"},
      {"dichotomies without a counted value",
       R"({"responseSets": [^{"name": "$s", "kind": "dichotomies", "variables": ["n", "m"]}]})",
       "/responseSets/0/countedValue): expected a value that the fields can have, found nothing"},
      {"dichotomies of numbers that count a text",
       R"({"responseSets": [{"name": "$s", "kind": "dichotomies", "countedValue": ^"yes", "variables": ["n", "m"]}]})",
       "/responseSets/0/countedValue): expected a value that the fields can have, found \"yes\""},
      {"dichotomies that count a text that is too long",
       R"({"responseSets": [{"name": "$s", "kind": "dichotomies", "countedValue": ^"long", "variables": ["s", "t"]}]})",
       "/responseSets/0/countedValue): expected a value that the fields can have, found \"long\""},
  };
  for (const MarkedRow& row : rows) {
    const std::string problem = " (resources/0/x-kova" + std::string(*row.problem == ':' ? ")" : "") + row.problem;
    expectProblem({row.label, row.text, problem.c_str()}, withOwnKeys(row.text));
  }
}

TEST(DescriptorProblems, OfOwnKeysOfThePackage) {
  const std::string resources = R"("resources": [{"path": "t.csv", "schema": {"fields": [{"name": "n"}]}}])";
  expectProblem(
      {"a weight that is no number", "", " (x-kova/weight): expected the name of a field of numbers, found \"n\""},
      "{" + resources + R"(, "x-kova": {"weight": ^"n"}})");
  expectProblem({"an unknown key", "",
                 " (x-kova/split_by): expected no keys but attributes, responseSets, weight, split, filter, "
                 "found a list"},
                "{" + resources + R"(, "x-kova": {"split_by": ^[]}})");
}

TEST(DescriptorProblems, OfASchemaWithoutFields) {
  EXPECT_EQ(
      problemOf(withFields(""), ""),
      "datapackage.json, row 1, column 55 (resources/0/schema/fields): expected at least one field, found a list");
}

TEST(DescriptorProblems, CountRowsAndColumnsThroughNestedValues) {
  const std::string descriptor =
      "{\n"
      "  \"a\\\"}\": [1, {\"resources\": [null, \"]\"]}],\n"
      "  \"resources\": [ {\n"
      "    \"schema\": {\"fields\": 5},\n"
      "    \"path\": \"t.csv\"\n"
      "  } ]\n"
      "}";
  EXPECT_EQ(problemOf(descriptor, ""),
            "datapackage.json, row 4, column 26 (resources/0/schema/fields): expected a list, found 5");
}

TEST(TableProblems, HaveTheirRowAndColumn) {
  const std::string descriptor = withFields(
      R"({"name": "id", "type": "integer"}, {"name": "when", "type": "date"}, {"name": "s", "x-kova": {"width": 3, "escapes": true}},
         {"name": "b", "type": "boolean", "missingValues": []})");
  const Row rows[] = {
      {"empty", "", "t.csv, row 1, column 1 (id): expected \"id\" as heading, found nothing"},
      {"another heading", "id,day,s,b\n",
       "t.csv, row 1, column 2 (when): expected the heading \"when\", found \"day\""},
      {"a heading too few", "id,when,s\n", "t.csv, row 1, column 4: expected 4 values, found 3"},
      {"a heading too many", "id,when,s,b,c\n", "t.csv, row 1, column 5: expected 4 values, found 5"},
      {"a value too few", "id,when,s,b\n1,,x,true\n2,,\n", "t.csv, row 3, column 4: expected 4 values, found 3"},
      {"a value too many", "id,when,s,b\n1,,x,true,\n", "t.csv, row 2, column 5: expected 4 values, found 5"},
      {"no whole number", "id,when,s,b\n1.5,,x,true\n",
       "t.csv, row 2, column 1 (id): expected a whole number, found \"1.5\""},
      {"no day", "id,when,s,b\n1,2024-02-30,x,true\n",
       "t.csv, row 2, column 2 (when): expected a day, as 2024-12-31, found \"2024-02-30\""},
      {"too long", "id,when,s,b\n1,,abcd,true\n", "t.csv, row 2, column 3 (s): expected at most 3 bytes, found 4"},
      {"nothing where nothing is not missing", "id,when,s,b\n1,,x,\n",
       "t.csv, row 2, column 4 (b): expected true or false, as true or false, found nothing"},
      {"rows after blank lines and long values", "id,when,s,b\n\n\"1\",,\"a\nb\",true\nx,,,true\n",
       "t.csv, row 4, column 1 (id): expected a whole number, found \"x\""},
      {"an open quote", "id,when,s,b\n1,,\"x,true\n",
       "t.csv, row 2, column 3: expected quotes around the whole value, and quotes inside it doubled"},
      {"another encoding", "id,when,s,b\n1,,\xE9,true\n",
       "t.csv, row 2, column 3 (s): expected text in UTF-8, found a byte that is not"},
      {"another encoding behind quotes", "id,when,s,b\n1,,\"a\nb\",true\n\"1\",,\"\xE9,\",true\n",
       "t.csv, row 3, column 3 (s): expected text in UTF-8, found a byte that is not"},
      {"another encoding and carriage returns", "id,when,s,b\r1,,x,true\r\xE9,,,true\r",
       "t.csv, row 3, column 1 (id): expected text in UTF-8, found a byte that is not"},
      {"an escape that is none", "id,when,s,b\n1,,%4x,true\n",
       "t.csv, row 2, column 3 (s): expected % and two hexadecimal digits for each byte, found \"%4x\""},
      {"an escape that is cut", "id,when,s,b\n1,,a%4,true\n",
       "t.csv, row 2, column 3 (s): expected % and two hexadecimal digits for each byte, found \"a%4\""},
      {"another encoding in the heading", "id,when,\xE9,b\n",
       "t.csv, row 1, column 3 (s): expected text in UTF-8, found a byte that is not"},
  };
  for (const Row& row : rows) EXPECT_EQ(problemOf(descriptor, row.text), row.problem) << row.label;
}

TEST(TableProblems, CasesThatNoMemoryHoldsAreRefused) {
  std::string fields;
  std::string heading;
  for (int i = 0; i < 200; ++i) {
    const std::string name = "v" + std::to_string(i);
    fields += (i == 0 ? R"({"name": ")" : R"(, {"name": ")") + name + R"(", "x-kova": {"width": 32767}})";
    heading += (i == 0 ? "" : ",") + name;
  }
  std::string table = heading + "\n";
  for (int i = 0; i < 656; ++i) table += std::string(199, ',') + "\n";
  EXPECT_EQ(problemOf(withFields(fields), table),
            "t.csv: expected cases that need at most 4 GiB of memory, found 656 cases of 6553600 bytes");
}

TEST(TableProblems, AMissingTableIsNamed) {
  const kit::ScratchFolder folder;
  folder.write("datapackage.json", withResource(R"("path": "none.csv", "schema": {"fields": [{"name": "a"}]})"));
  DataSet dataSet;
  std::string problem;
  EXPECT_FALSE(readDataPackage(folder.path(), &dataSet, &problem));
  EXPECT_EQ(problem.find(folder.path() + "/none.csv: expected a file that can be read, found "), 0U) << problem;
}

}  // namespace
}  // namespace kova::engine
