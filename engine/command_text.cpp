#include "engine/command_text.h"

#include <algorithm>
#include <charconv>
#include <system_error>
#include <utility>

#include "engine/command_problem.h"
#include "engine/data_problem.h"
#include "engine/text_rules.h"

namespace kova::engine {
namespace {

constexpr std::size_t kMostTokens = 1'000'000;
constexpr std::string_view kBlanks = " \t\r\n\f\v";
constexpr std::string_view kBlanksInLine = " \t\r\f\v";

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// What no sign, number or text begins with begins a word; whether it is a name is seen when one is looked for.
bool isOfWord(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || isDigit(c) || static_cast<unsigned char>(c) >= 0x80 ||
         c == '.' || c == '_' || c == '$' || c == '#' || c == '@';
}

std::string_view lineAt(std::string_view text, std::size_t start) {
  return text.substr(start, std::min(text.find('\n', start), text.size()) - start);
}

std::string_view withoutBlanks(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(kBlanksInLine);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanksInLine) + 1 - begin);
}

bool isLanguage(std::string_view text) {
  return !text.empty() && text.size() <= kLongestName && !isDigit(text.front()) &&
         text.find_first_of("'\";,()=<>!&|^*/ \t") == std::string_view::npos;
}

// The language that a line names behind the word, when the line says nothing else; empty otherwise.
std::string_view languageOf(std::string_view line, std::string_view word) {
  std::string_view rest = withoutBlanks(line);
  if (rest.ends_with(';')) rest = withoutBlanks(rest.substr(0, rest.size() - 1));
  if (rest.size() <= word.size() || !sameName(rest.substr(0, word.size()), word)) return {};
  rest.remove_prefix(word.size());
  if (kBlanksInLine.find(rest.front()) == std::string_view::npos) return {};
  const std::string_view language = withoutBlanks(rest);
  return isLanguage(language) ? language : std::string_view();
}

}  // namespace

std::string unquoted(const Token& token) {
  const std::string_view inside = token.source.substr(1, token.source.size() - 2);
  std::string text;
  text.reserve(inside.size());
  for (std::size_t i = 0; i < inside.size(); ++i) {
    text += inside[i];
    if (inside[i] == token.source.front()) ++i;
  }
  return text;
}

bool CommandReader::next(CommandText* command) {
  CommandText read;
  while (readTokens(&read)) {
    if (read.tokens.size() == 1) continue;
    *command = std::move(read);
    return true;
  }
  return false;
}

// Up to the command's end. False where there is nothing left to read.
bool CommandReader::readTokens(CommandText* command) {
  command->tokens.clear();
  skipBlanks();
  if (at_ == text_.size()) return false;
  const bool mayBeBlock = isFirstOfLine();
  if (mayBeBlock && !languageOf(lineAt(text_, at_), "begin").empty()) {
    readBlock(at_, command);
    return true;
  }
  for (; at_ < text_.size() && text_[at_] != ';'; skipBlanks()) {
    if (command->tokens.size() == kMostTokens) throw CommandProblem(ErrorCode::kSyntaxTooLarge, at_);
    command->tokens.push_back(take());
  }
  command->tokens.push_back({TokenKind::kEnd, at_, {}, 0, isFirstOfLine()});
  if (at_ < text_.size()) ++at_;
  return true;
}

void CommandReader::readBlock(std::size_t start, CommandText* command) {
  const std::size_t lineStart = text_.rfind('\n', start) + 1;
  const std::string_view indent = text_.substr(lineStart, start - lineStart);
  const std::string_view line = lineAt(text_, start);
  const std::string_view language = languageOf(line, "begin");
  const auto languageAt = static_cast<std::size_t>(language.data() - text_.data());
  Block block{std::string(language), {}};
  for (std::size_t next = start + line.size() + 1; next < text_.size();) {
    std::string_view read = lineAt(text_, next);
    next += read.size() + 1;
    const bool isFurtherRight = read.find_first_not_of(kBlanksInLine) > indent.size();
    if (!isFurtherRight && sameName(languageOf(read, "end"), language)) {
      at_ = std::min(next, text_.size());
      command->tokens = {{TokenKind::kWord, start, text_.substr(start, 5), 0, true},
                         {TokenKind::kWord, languageAt, language, 0, false},
                         {TokenKind::kEnd, languageAt + language.size(), {}, 0, false}};
      command->block = std::move(block);
      return;
    }
    if (read.ends_with('\r')) read.remove_suffix(1);
    if (read.starts_with(indent)) read.remove_prefix(indent.size());
    block.lines.emplace_back(read);
  }
  throw CommandProblem(ErrorCode::kSyntaxNotValid, start, "The block in " + block.language + " has no end.",
                       "Put a line \"end " + block.language + "\" behind it, no further to the right than begin.");
}

bool CommandReader::isFirstOfLine() const {
  const std::size_t before = at_ == 0 ? std::string_view::npos : text_.find_last_not_of(kBlanksInLine, at_ - 1);
  return before == std::string_view::npos || text_[before] == '\n';
}

void CommandReader::skipBlanks() {
  while (at_ < text_.size() && (kBlanks.find(text_[at_]) != std::string_view::npos || text_[at_] == '#')) {
    at_ = text_[at_] == '#' ? std::min(text_.find('\n', at_), text_.size()) : at_ + 1;
  }
}

// There is something that is neither a blank nor a semicolon.
Token CommandReader::take() {
  Token token{TokenKind::kWord, at_, {}, 0, isFirstOfLine()};
  const char first = text_[at_];
  const char second = at_ + 1 < text_.size() ? text_[at_ + 1] : '\0';
  if (token.isFirstOfLine && !languageOf(lineAt(text_, at_), "begin").empty()) {
    throw CommandProblem(ErrorCode::kSyntaxNotValid, at_, "The command in front of this block has no end.",
                         "Put a ; behind that command.");
  }
  if (isDigit(first) || (first == '.' && isDigit(second))) {
    token.kind = TokenKind::kNumber;
    token.number = takeNumber();
  } else if (isOfWord(first)) {
    takeWord();
  } else if (first == '"' || first == '\'') {
    token.kind = TokenKind::kText;
    takeText();
  } else {
    token.kind = TokenKind::kSign;
    at_ += (first == '<' || first == '>' || first == '!') && second == '=' ? 2 : 1;
  }
  token.source = text_.substr(token.offset, at_ - token.offset);
  return token;
}

void CommandReader::takeWord() {
  while (at_ < text_.size() && isOfWord(text_[at_])) ++at_;
}

double CommandReader::takeNumber() {
  const std::size_t start = at_;
  const char* const end = text_.data() + text_.size();
  double number = 0;
  const auto [stop, error] = std::from_chars(text_.data() + start, end, number);
  at_ = static_cast<std::size_t>(stop - text_.data());
  const bool isWhole = at_ == text_.size() || !isOfWord(text_[at_]);
  if (!isWhole) takeWord();
  const std::string found = quotedText(text_.substr(start, at_ - start));
  if (!isWhole) {
    throw CommandProblem(ErrorCode::kSyntaxNotValid, start, found + " is neither a number nor a name.",
                         "Write a number as 12, 1.5 or 2e-3; a name begins with a letter.");
  }
  if (error != std::errc()) {
    throw CommandProblem(ErrorCode::kNumberNotValid, start, "The number " + found + " is beyond the range of numbers.",
                         "Write one of an amount between 1e-323 and 1e308.");
  }
  return number;
}

// A quote that stands twice is one of the text.
void CommandReader::takeText() {
  const std::size_t start = at_;
  const char quote = text_[at_];
  for (++at_; at_ < text_.size() && text_[at_] != '\n'; ++at_) {
    if (text_[at_] != quote) continue;
    ++at_;
    if (at_ == text_.size() || text_[at_] != quote) return;
  }
  throw CommandProblem(ErrorCode::kSyntaxNotValid, start, "The text that begins here has no closing quote in its line.",
                       std::string("Close it with ") + quote + "; a quote inside a text is written twice.");
}

}  // namespace kova::engine
