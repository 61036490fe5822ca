// Cuts submitted text into commands, and a command into words, numbers, texts in quotes and signs.
//
// A command ends with a semicolon or where the text ends; lines and blanks part words and mean nothing else. '#' begins
// a comment, which goes on to the end of its line. A text stands in double or single quotes on one line, with a quote
// inside it written twice. A block in another language begins with a line "begin LANGUAGE" and ends with a line "end
// LANGUAGE" that stands no further to the right, each with or without a semicolon; the lines between them are not read
// here.
#ifndef KOVADX_ENGINE_COMMAND_TEXT_H
#define KOVADX_ENGINE_COMMAND_TEXT_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kova::engine {

enum class TokenKind { kWord, kNumber, kText, kSign, kEnd };

struct Token {
  TokenKind kind = TokenKind::kEnd;
  std::size_t offset = 0;      // In the whole text.
  std::string_view source;     // As it is written, with its quotes; empty at the end.
  double number = 0;           // Of a number.
  bool isFirstOfLine = false;  // Nothing but blanks stands in front of it.
};

// What a text in quotes says.
std::string unquoted(const Token& token);

struct Block {
  std::string language;
  std::vector<std::string> lines;  // Without the blanks that stand in front of "begin", where a line has them.
};

struct CommandText {
  std::vector<Token> tokens;  // The last one is of the kind kEnd. Never that one alone.
  std::optional<Block> block;
};

// Goes over the commands of a text, to which it refers.
class CommandReader {
 public:
  explicit CommandReader(std::string_view text) : text_(text) {}

  // Stores the next command; false, and nothing is stored, behind the last one. Throws CommandProblem.
  bool next(CommandText* command);

 private:
  bool readTokens(CommandText* command);
  void readBlock(std::size_t lineStart, CommandText* command);
  bool isFirstOfLine() const;
  void skipBlanks();
  Token take();
  void takeWord();
  double takeNumber();
  void takeText();

  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace kova::engine

#endif
