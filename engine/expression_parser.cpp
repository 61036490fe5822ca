#include "engine/expression_parser.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "engine/command_variables.h"
#include "engine/data_problem.h"
#include "engine/expression_functions.h"
#include "engine/expression_steps.h"
#include "engine/near_name.h"
#include "engine/text_rules.h"

namespace kova::engine {
namespace {

constexpr std::size_t kMostSteps = 10'000;
constexpr int kDeepest = 100;             // Parentheses, functions and signs inside one another.
constexpr std::size_t kNumberWidth = 24;  // Of a number that is written out: "-1.2345678901234567e-300".

// What is known of a part of the expression before it is evaluated.
struct Part {
  ExpressionKind kind = ExpressionKind::kNumber;
  std::size_t width = 0;

  bool isText() const { return kind == ExpressionKind::kText; }
};

constexpr Part kNumberPart{};

const char* kindName(ExpressionKind kind) { return kind == ExpressionKind::kText ? "a text" : "a number"; }

class Parser {
 public:
  Parser(const Variables& variables, CommandTokens* tokens) : variables_(&variables), tokens_(tokens) {}

  Expression parse() {
    const Part whole = parseLoosest();
    expression_.kind = whole.kind;
    expression_.width = whole.width;
    return std::move(expression_);
  }

 private:
  // Counts how deep the parser is inside itself.
  class Level {
   public:
    explicit Level(Parser* parser) : parser_(parser) {
      if (++parser_->level_ <= kDeepest) return;
      throw CommandProblem(ErrorCode::kSyntaxTooLarge, parser_->tokens_->peek().offset,
                           "The expression is nested more than " + std::to_string(kDeepest) + " deep here.",
                           "Compute a part of it into a variable of its own first.");
    }
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;
    ~Level() { --parser_->level_; }

   private:
    Parser* parser_;
  };

  Part parseLoosest() {
    const Level level(this);
    return parseChain(Binding::kOr);
  }

  // What an operator of this binding, or of a tighter one, has on its sides.
  Part parseChain(Binding binding) {
    if (binding == Binding::kComparison && tokens_->isWord("not")) return parsePrefix(Binding::kComparison, invert);
    if (binding == Binding::kPower) return parseSigned();
    const auto tighter = static_cast<Binding>(static_cast<int>(binding) + 1);
    Part left = parseChain(tighter);
    bool isFirst = true;
    while (const OperatorRow* const row = nextOperator(binding)) {
      if (binding == Binding::kComparison && !isFirst) refuseComparison();
      isFirst = false;
      left = parseRight(*row, left, tighter);
    }
    return left;
  }

  Part parseRight(const OperatorRow& row, Part left, Binding binding) {
    const std::size_t offset = tokens_->take().offset;
    const Part right = parseChain(binding);
    const bool areTexts = left.isText() && right.isText();
    if (left.kind != right.kind || (areTexts && row.texts == nullptr)) refuseSides(row, left, right, offset);
    add({areTexts ? row.texts : row.numbers, 2, 0, 0});
    return kNumberPart;
  }

  Part parsePrefix(Binding binding, ApplyStep apply) {
    const Level level(this);
    const Token& token = tokens_->take();
    const Part part = parseChain(binding);
    if (part.isText()) {
      throw CommandProblem(ErrorCode::kSyntaxKindsDiffer, token.offset,
                           quotedText(token.source) + " stands in front of a text, and needs a number.",
                           "Put a number or a condition behind it.");
    }
    add({apply, 1, 0, 0});
    return kNumberPart;
  }

  // A sign binds looser than a power: -2^2 is -4.
  Part parseSigned() {
    if (tokens_->isSign("-")) return parsePrefix(Binding::kPower, negate);
    const Part base = parseOperand();
    const OperatorRow* const row = nextOperator(Binding::kPower);
    if (row == nullptr) return base;
    const Level level(this);
    return parseRight(*row, base, Binding::kPower);
  }

  Part parseOperand() {
    if (tokens_->takeSign("(")) {
      const Part inside = parseLoosest();
      tokens_->expectSign(")");
      return inside;
    }
    switch (tokens_->peek().kind) {
      case TokenKind::kNumber:
        add({numberConstant, 0, 0, tokens_->take().number});
        return kNumberPart;
      case TokenKind::kText:
        return addText(tokens_->take());
      case TokenKind::kWord:
        return parseName();
      default:
        tokens_->refuse("a value");
    }
  }

  Part addText(const Token& token) {
    std::string text = unquoted(token);
    const Part part{ExpressionKind::kText, text.size()};
    if (text.size() > static_cast<std::size_t>(kWidestString)) {
      throw CommandProblem(ErrorCode::kSyntaxTooLarge, token.offset, "The text is longer than any value.",
                           "Give at most " + std::to_string(kWidestString) + " bytes.");
    }
    add({textConstant, 0, expression_.texts.size(), 0});
    expression_.texts.push_back(std::move(text));
    return part;
  }

  Part parseName() {
    if (faultOfVariableName(tokens_->peek().source) == NameFault::kReserved) tokens_->refuse("a value");
    const Token& token = tokens_->take();
    if (!tokens_->isSign("(")) return addVariable(token, numberOfVariable, textOfVariable);
    const FunctionRow* const row = findFunction(token.source);
    if (row == nullptr) refuseFunction(token);
    tokens_->take();
    return row->kinds == "v" ? parseVariableArgument(*row) : parseFunction(*row, token);
  }

  Part addVariable(const Token& token, ApplyStep numbers, ApplyStep texts) {
    const std::size_t position = positionOfVariable(*variables_, token);
    const Variable& variable = (*variables_)[position];
    add({variable.isNumeric() ? numbers : texts, 0, position, 0});
    if (variable.isNumeric()) return kNumberPart;
    return {ExpressionKind::kText, static_cast<std::size_t>(variable.width)};
  }

  Part parseVariableArgument(const FunctionRow& row) {
    const Part part = addVariable(tokens_->expectName("a variable"), row.numbers, row.texts);
    tokens_->expectSign(")");
    return part;
  }

  Part parseFunction(const FunctionRow& row, const Token& name) {
    std::size_t count = 0;
    std::size_t sum = 0;
    std::size_t widest = 0;
    Part last;
    while (!tokens_->isSign(")")) {
      if (count > 0) tokens_->expectSign(",");
      const Token& start = tokens_->peek();
      const Part part = parseLoosest();
      checkArgument(row, count++, last, part, start);
      sum = std::min<std::size_t>(sum + part.width, kWidestString);
      widest = std::max(widest, part.width);
      last = part;
    }
    tokens_->take();
    if (count < row.least || count > row.most) refuseCount(row, name, count);
    ExpressionStep step{last.isText() || row.numbers == nullptr ? row.texts : row.numbers, count, 0, 0};
    const FunctionResult result =
        row.result == FunctionResult::kSameKind && !last.isText() ? FunctionResult::kNumber : row.result;
    std::size_t width = widest;
    if (result == FunctionResult::kJoinedText) width = sum;
    if (result == FunctionResult::kNumberText) width = kNumberWidth;
    if (result != FunctionResult::kNumber) {
      step.place = expression_.bufferWidths.size();
      expression_.bufferWidths.push_back(width);
    }
    add(step);
    return result == FunctionResult::kNumber ? kNumberPart : Part{ExpressionKind::kText, width};
  }

  void checkArgument(const FunctionRow& row, std::size_t index, Part last, Part part, const Token& start) const {
    const char letter = row.kinds.empty() ? 'x' : row.kinds[std::min(index, row.kinds.size() - 1)];
    if (letter == 'x') return;
    const ExpressionKind needed = letter == 's'   ? last.kind
                                  : letter == 't' ? ExpressionKind::kText
                                                  : ExpressionKind::kNumber;
    if (needed == part.kind) return;
    throw CommandProblem(ErrorCode::kSyntaxKindsDiffer, start.offset,
                         "The function " + std::string(row.name) + " needs " + kindName(needed) +
                             " here, and this is " + kindName(part.kind) + ".",
                         "Write: " + std::string(row.syntax));
  }

  // The operator that is next, when it is one of this binding.
  const OperatorRow* nextOperator(Binding binding) const {
    const Token& token = tokens_->peek();
    if (token.kind != TokenKind::kSign && token.kind != TokenKind::kWord) return nullptr;
    const auto all = operators();
    const auto found = std::find_if(all.begin(), all.end(), [&](const OperatorRow& row) {
      return row.binding == binding && sameName(row.sign, token.source);
    });
    return found == all.end() ? nullptr : &*found;
  }

  void add(const ExpressionStep& step) {
    if (expression_.steps.size() == kMostSteps) {
      throw CommandProblem(ErrorCode::kSyntaxTooLarge, tokens_->peek().offset,
                           "The expression has more than " + std::to_string(kMostSteps) + " values and operators.",
                           "Compute a part of it into a variable of its own first.");
    }
    expression_.steps.push_back(step);
    depth_ += 1 - step.arguments;
    expression_.depth = std::max(expression_.depth, depth_);
  }

  [[noreturn]] void refuseSides(const OperatorRow& row, Part left, Part right, std::size_t offset) const {
    const std::string sides =
        left.kind == right.kind ? "two texts" : std::string(kindName(left.kind)) + " and " + kindName(right.kind);
    throw CommandProblem(ErrorCode::kSyntaxKindsDiffer, offset, quotedText(row.sign) + " stands between " + sides + ".",
                         row.texts == nullptr
                             ? "It needs two numbers; concat joins texts, number makes a number of one."
                             : "Compare numbers with numbers and texts with texts.");
  }

  [[noreturn]] void refuseComparison() const {
    throw CommandProblem(ErrorCode::kSyntaxNotValid, tokens_->peek().offset,
                         "Two comparisons stand one behind the other.", "Join them with and: a < b and b < c.");
  }

  [[noreturn]] static void refuseFunction(const Token& token) {
    NearName near(token.source);
    for (const FunctionRow& row : expressionFunctions()) near.look(row.name);
    throw CommandProblem(
        ErrorCode::kSyntaxNotValid, token.offset, "There is no function " + quotedText(token.source) + ".",
        (near.found().empty() ? "" : "Did you mean " + near.found() + "? ") + "Submit help functions; it lists them.");
  }

  [[noreturn]] static void refuseCount(const FunctionRow& row, const Token& name, std::size_t count) {
    throw CommandProblem(ErrorCode::kSyntaxNotValid, name.offset,
                         "The function " + std::string(row.name) + " can not have " + std::to_string(count) +
                             (count == 1 ? " argument." : " arguments."),
                         "Write: " + std::string(row.syntax));
  }

  const Variables* variables_;
  CommandTokens* tokens_;
  Expression expression_;
  std::size_t depth_ = 0;
  int level_ = 0;
};

}  // namespace

Expression parseExpression(const Variables& variables, CommandTokens* tokens) {
  return Parser(variables, tokens).parse();
}

Expression parseCondition(const Variables& variables, CommandTokens* tokens) {
  const std::size_t offset = tokens->peek().offset;
  Expression condition = parseExpression(variables, tokens);
  if (condition.kind == ExpressionKind::kNumber) return condition;
  throw CommandProblem(ErrorCode::kSyntaxKindsDiffer, offset, "The condition is a text, and must be true or false.",
                       "Compare the text with another one.");
}

}  // namespace kova::engine
