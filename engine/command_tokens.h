// The words of one command, taken one after the other, and the problems that they may have.
//
// Made for each command that is carried out; it refers to the command and to the text that this was read from. One
// thread uses it.
#ifndef KOVADX_ENGINE_COMMAND_TOKENS_H
#define KOVADX_ENGINE_COMMAND_TOKENS_H

#include <cstddef>
#include <string>
#include <string_view>

#include "engine/command_problem.h"
#include "engine/command_text.h"

namespace kova::engine {

class CommandTokens {
 public:
  // `syntax` is how the command is written; advice repeats it.
  CommandTokens(const CommandText& command, std::string_view syntax) : command_(&command), syntax_(syntax) {}

  const Token& peek() const { return command_->tokens[next_]; }
  const Token& take();
  bool isAtEnd() const { return peek().kind == TokenKind::kEnd; }
  bool isNext(TokenKind kind) const { return peek().kind == kind; }

  // Upper and lower case are the same.
  bool isWord(std::string_view word) const;
  bool isSign(std::string_view sign) const;
  // Takes it when it is next.
  bool takeWord(std::string_view word);
  bool takeSign(std::string_view sign);

  // Each takes what must be next; `expected` says what that is: "a variable".
  void expectWord(std::string_view word);
  void expectSign(std::string_view sign);
  void expectEnd();
  const Token& expectName(std::string_view expected);
  std::string expectText(std::string_view expected);
  // With its sign, but for a zero, which has none.
  double expectNumber(std::string_view expected);

  // Something else was expected than what is next.
  [[noreturn]] void refuse(std::string_view expected) const;
  // Throws with the table's sentences, unless it is kNone.
  void require(ErrorCode code, const Token& token) const;
  void require(ErrorCode code) const { require(code, command_->tokens.front()); }

  const Token& first() const { return command_->tokens.front(); }
  const std::optional<Block>& block() const { return command_->block; }

 private:
  const CommandText* command_;
  std::string_view syntax_;
  std::size_t next_ = 0;
};

}  // namespace kova::engine

#endif
