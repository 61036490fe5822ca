#include "engine/command_tokens.h"

#include "engine/command_table.h"
#include "engine/data_problem.h"
#include "engine/text_rules.h"

namespace kova::engine {
namespace {

std::string described(const Token& token) {
  switch (token.kind) {
    case TokenKind::kEnd:
      return "the end of the command";
    case TokenKind::kNumber:
      return "the number " + std::string(token.source.substr(0, kLongestName));
    case TokenKind::kText:
      return "the text " + quotedText(unquoted(token));
    default:
      return quotedText(token.source);
  }
}

}  // namespace

const Token& CommandTokens::take() {
  const Token& token = peek();
  if (token.kind != TokenKind::kEnd) ++next_;
  return token;
}

bool CommandTokens::isWord(std::string_view word) const {
  return isNext(TokenKind::kWord) && sameName(peek().source, word);
}

bool CommandTokens::isSign(std::string_view sign) const { return isNext(TokenKind::kSign) && peek().source == sign; }

bool CommandTokens::takeWord(std::string_view word) {
  if (!isWord(word)) return false;
  ++next_;
  return true;
}

bool CommandTokens::takeSign(std::string_view sign) {
  if (!isSign(sign)) return false;
  ++next_;
  return true;
}

void CommandTokens::expectWord(std::string_view word) {
  if (!takeWord(word)) refuse("the word " + std::string(word));
}

void CommandTokens::expectSign(std::string_view sign) {
  if (!takeSign(sign)) refuse(quotedText(sign));
}

void CommandTokens::expectEnd() {
  if (!isAtEnd()) refuse("the end of the command");
}

const Token& CommandTokens::expectName(std::string_view expected) {
  if (!isNext(TokenKind::kWord)) refuse(expected);
  return take();
}

std::string CommandTokens::expectText(std::string_view expected) {
  if (!isNext(TokenKind::kText)) refuse(expected);
  return unquoted(take());
}

double CommandTokens::expectNumber(std::string_view expected) {
  const double sign = takeSign("-") ? -1 : 1;
  if (!isNext(TokenKind::kNumber)) refuse(expected);
  return sign * take().number + 0.0;
}

// A line that begins with the name of a command was likely meant as the next one.
void CommandTokens::refuse(std::string_view expected) const {
  const Token& token = peek();
  const bool isNextCommand = token.isFirstOfLine && next_ > 0 && findCommand(token.source) != nullptr;
  throw CommandProblem(ErrorCode::kSyntaxNotValid, token.offset,
                       "Expected " + std::string(expected) + ", found " + described(token) + ".",
                       isNextCommand ? std::string("Put a ; behind the command in front of this line.")
                                     : "Write: " + std::string(syntax_));
}

void CommandTokens::require(ErrorCode code, const Token& token) const {
  if (code != ErrorCode::kNone) throw CommandProblem(code, token.offset);
}

}  // namespace kova::engine
