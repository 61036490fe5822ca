// Where commands, words, numbers, texts and blocks begin and end.
#include "engine/command_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "engine/command_problem.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Words = std::vector<std::string>;

std::vector<Words> commandsOf(const std::string& text) {
  CommandReader reader(text);
  CommandText command;
  std::vector<Words> all;
  while (reader.next(&command)) {
    Words words;
    for (const Token& token : command.tokens) words.emplace_back(token.source);
    EXPECT_EQ(words.back(), "") << "the end";
    words.pop_back();
    all.push_back(words);
  }
  return all;
}

std::string problemOf(const std::string& text) {
  try {
    commandsOf(text);
  } catch (const CommandProblem& problem) {
    return problem.lineFor(text);
  }
  return "no problem";
}

TEST(CommandText, EndsAtASemicolonOrAtTheEnd) {
  EXPECT_THAT(commandsOf(""), IsEmpty());
  EXPECT_THAT(commandsOf(" \t\r\n ;; ;\n"), IsEmpty());
  EXPECT_THAT(commandsOf("help"), ElementsAre(Words{"help"}));
  EXPECT_THAT(commandsOf("a b;c\n d ;"), ElementsAre(Words{"a", "b"}, Words{"c", "d"}));
}

TEST(CommandText, HasCommentsFromASignThatIsNoneOfAName) {
  EXPECT_THAT(commandsOf("a # b; c\nd#e f; # the last"), ElementsAre(Words{"a", "d#e", "f"}));
}

TEST(CommandText, CutsSignsWordsAndNumbers) {
  EXPECT_THAT(commandsOf("x=-1.5e-3<=y!=z^2*(.5)"),
              ElementsAre(Words{"x", "=", "-", "1.5e-3", "<=", "y", "!=", "z", "^", "2", "*", "(", ".5", ")"}));
  EXPECT_THAT(commandsOf("Z\u00FCrich $a.b_c@"), ElementsAre(Words{"Z\u00FCrich", "$a.b_c@"}));
}

TEST(CommandText, KeepsWhatStandsInQuotes) {
  EXPECT_THAT(commandsOf("a \"x;#y\" 'it''s' \"\""), ElementsAre(Words{"a", "\"x;#y\"", "'it''s'", "\"\""}));
  CommandReader reader("'it''s \"so\"' \"a\"\"b\"");
  CommandText command;
  ASSERT_TRUE(reader.next(&command));
  EXPECT_EQ(unquoted(command.tokens[0]), "it's \"so\"");
  EXPECT_EQ(unquoted(command.tokens[1]), "a\"b");
}

TEST(CommandText, TellsWhereAProblemIs) {
  EXPECT_EQ(problemOf("a;\n  b 'x"),
            "Error 98141 in line 2, column 5: The text that begins here has no closing quote "
            "in its line. Close it with '; a quote inside a text is written twice.");
  EXPECT_THAT(problemOf("a \"x\ny\""), HasSubstr("line 1, column 3: The text"));
  EXPECT_THAT(problemOf("\"\u00E9\u00E9\" 2x"), HasSubstr("line 1, column 6: \"2x\" is neither a number nor a name."))
      << "columns are characters";
  EXPECT_THAT(problemOf("1.2.3"), HasSubstr("\"1.2.3\" is neither"));
  EXPECT_THAT(problemOf("1e999"), HasSubstr("Error 98044 in line 1, column 1: The number \"1e999\" is beyond"));
  EXPECT_THAT(problemOf("1e-400"), HasSubstr("Write one of an amount between 1e-323 and 1e308."));
  EXPECT_EQ(problemOf("1e-323 1e308"), "no problem");
}

CommandText blockOf(const std::string& text) {
  CommandReader reader(text);
  CommandText command;
  EXPECT_TRUE(reader.next(&command));
  return command;
}

TEST(CommandText, HasBlocksOfLinesThatAreNotRead) {
  const CommandText command = blockOf("begin PYTHON;\nprint('it\r\n\n  # x;\nend python ;\nhelp");
  ASSERT_TRUE(command.block);
  EXPECT_EQ(command.block->language, "PYTHON");
  EXPECT_THAT(command.block->lines, ElementsAre("print('it", "", "  # x;"));
  EXPECT_THAT(commandsOf("a;\nBEGIN R\nEND S\nend R\nb"), ElementsAre(Words{"a"}, Words{"BEGIN", "R"}, Words{"b"}));
  EXPECT_THAT(blockOf("begin R\nend R").block->lines, IsEmpty());
}

TEST(CommandText, TakesTheIndentOfBeginOffTheLines) {
  EXPECT_THAT(blockOf("\n    begin R\n    a\n      b\n  c\n    end R").block->lines, ElementsAre("a", "  b", "  c"));
}

TEST(CommandText, TakesABlockInsideABlockAsLines) {
  EXPECT_THAT(blockOf("begin R\nsubmit('\n begin R\n end R')\n end R\nend R\nx").block->lines,
              ElementsAre("submit('", " begin R", " end R')", " end R"));
}

TEST(CommandText, RefusesABlockWithoutAnEnd) {
  EXPECT_THAT(problemOf("begin R\nx\nend"),
              HasSubstr("line 1, column 1: The block in R has no end. Put a line \"end R\""));
  EXPECT_THAT(problemOf("begin R"), HasSubstr("The block in R has no end."));
  EXPECT_THAT(problemOf("help\nbegin R\nend R"), HasSubstr("line 2, column 1: The command in front of this block has"));
}

TEST(CommandText, TakesBeginInsideALineAsAWord) {
  EXPECT_THAT(commandsOf("x begin R; begin R S"), ElementsAre(Words{"x", "begin", "R"}, Words{"begin", "R", "S"}));
}

TEST(CommandText, BearsVeryLongText) {
  const std::string blanks(1'000'000, ' ');
  EXPECT_THAT(commandsOf(blanks + "a" + blanks), ElementsAre(Words{"a"}));
  EXPECT_THAT(commandsOf(std::string(1'000'000, ';')), IsEmpty());
  std::string many;
  for (int i = 0; i < 1'000'001; ++i) many += "+ ";
  EXPECT_THAT(problemOf(many), HasSubstr("Error 98142"));
}

// A text is read without a look at the rest of its line.
TEST(CommandText, BearsManyTextsOnOneLine) {
  std::string line;
  for (int i = 0; i < 200'000; ++i) line += "'' ";
  line += '#' + std::string(10'000'000, 'x');
  CommandReader reader(line);
  CommandText command;
  const auto start = std::chrono::steady_clock::now();
  ASSERT_TRUE(reader.next(&command));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10)) << "under a sanitizer too";
  EXPECT_EQ(command.tokens.size(), 200'001U);
}

}  // namespace
}  // namespace kova::engine
