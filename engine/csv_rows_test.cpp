#include "engine/csv_rows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/data_problem.h"

namespace kova::engine {
namespace {

using Rows = std::vector<std::pair<std::size_t, std::vector<std::string>>>;

Rows rowsOf(std::string_view text, char delimiter = ',') {
  Rows rows;
  forEachCsvRow("t.csv", text, delimiter, [&](const CsvRow& row) { rows.emplace_back(row.row, row.values); });
  return rows;
}

struct Case {
  const char* label;
  const char* text;
  Rows rows;
};

TEST(CsvRows, ReadsRows) {
  const Case cases[] = {
      {"no text", "", {}},
      {"line feeds", "a,b\nc,d\n", {{1, {"a", "b"}}, {2, {"c", "d"}}}},
      {"both line ends", "a,b\r\nc,d\r\n", {{1, {"a", "b"}}, {2, {"c", "d"}}}},
      {"carriage returns", "a\rb\r", {{1, {"a"}}, {2, {"b"}}}},
      {"no end at the last row", "a,b\nc,", {{1, {"a", "b"}}, {2, {"c", ""}}}},
      {"empty values", ",,\n", {{1, {"", "", ""}}}},
      {"blanks belong to the value", " a , b\n", {{1, {" a ", " b"}}}},
      {"quotes", "\"a,\"\"b\"\"\",c\n", {{1, {"a,\"b\"", "c"}}}},
      {"a line break in quotes begins no row", "\"a\r\nb\"\nc\n", {{1, {"a\r\nb"}}, {2, {"c"}}}},
      {"blank lines count", "a,b\n\n\nc,d\n", {{1, {"a", "b"}}, {4, {"c", "d"}}}},
      {"blank lines with both line ends count", "a,b\r\n\r\nc,d\r\n", {{1, {"a", "b"}}, {3, {"c", "d"}}}},
      {"a blank line is a value of a single column", "\na\n\nb\n\n", {{2, {"a"}}, {3, {""}}, {4, {"b"}}, {5, {""}}}},
      {"the same with both line ends", "a\r\n\r\nb\r\n", {{1, {"a"}}, {2, {""}}, {3, {"b"}}}},
      {"the same with carriage returns", "a\r\rb\r", {{1, {"a"}}, {2, {""}}, {3, {"b"}}}},
      {"a quoted nothing is no blank line", "a\n\"\"\n", {{1, {"a"}}, {2, {""}}}},
  };
  for (const Case& row : cases) EXPECT_EQ(rowsOf(row.text), row.rows) << row.label;
}

TEST(CsvRows, TakesAnotherDelimiter) { EXPECT_EQ(rowsOf("a;b,c\n", ';'), (Rows{{1, {"a", "b,c"}}})); }

TEST(CsvRows, ReadsARowAcrossPiecesOfTheText) {
  const std::string value(200000, 'x');
  EXPECT_EQ(rowsOf("a," + value + "\nb,c\n"), (Rows{{1, {"a", value}}, {2, {"b", "c"}}}));
}

TEST(CsvRows, TellsWhereQuotesAreWrong) {
  constexpr const char* kExpected = ": expected quotes around the whole value, and quotes inside it doubled";
  const std::pair<const char*, const char*> cases[] = {
      {"a,b\nc,d\"e\n", "t.csv, row 2, column 2"},
      {"a,b\n\"c\"d,e\n", "t.csv, row 2, column 1"},
      {"a,b\nc,\"d\n", "t.csv, row 2, column 2"},
  };
  for (const auto& [text, place] : cases) {
    try {
      rowsOf(text);
      FAIL() << "no problem found in " << text;
    } catch (const DataProblem& problem) {
      EXPECT_EQ(std::string(problem.what()), std::string(place) + kExpected);
    }
  }
}

TEST(CsvRows, PassesOnWhatTheVisitorThrows) {
  int visits = 0;
  const auto visit = [&](const CsvRow&) {
    ++visits;
    throw DataProblem("enough");
  };
  EXPECT_THROW(forEachCsvRow("t.csv", "a\nb\nc\n", ',', visit), DataProblem);
  EXPECT_EQ(visits, 1);
}

}  // namespace
}  // namespace kova::engine
