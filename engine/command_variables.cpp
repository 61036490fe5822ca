#include "engine/command_variables.h"

#include <utility>

#include "engine/data_problem.h"
#include "engine/data_set_access.h"
#include "engine/near_name.h"

namespace kova::engine {
namespace {

// The variables that were named, each once.
class NamedVariables {
 public:
  explicit NamedVariables(std::size_t count) : isNamed_(count) {}

  void add(std::size_t first, std::size_t last) {
    for (std::size_t i = first; i <= last; ++i) {
      if (!isNamed_[i]) positions_.push_back(i);
      isNamed_[i] = true;
    }
  }

  std::vector<std::size_t> take() { return std::move(positions_); }

 private:
  std::vector<bool> isNamed_;
  std::vector<std::size_t> positions_;
};

}  // namespace

DataSet& commandDataSet(const EngineState& state, const CommandTokens& tokens) {
  if (state.active != nullptr) return *state.active;
  throw CommandProblem(ErrorCode::kNoActiveDataSet, tokens.first().offset, "No data set is open.",
                       "Open one first: open \"datapackage.json\".");
}

void requireAtRest(const EngineState& state, const DataSet& dataSet, const CommandTokens& tokens) {
  if (isBeingRead(state, dataSet)) tokens.require(ErrorCode::kDataSetInUse);
}

std::size_t positionOfVariable(const Variables& variables, const Token& token) {
  if (const auto position = variables.find(token.source)) return *position;
  NearName near(token.source);
  for (const Variable& variable : variables) near.look(variable.name);
  throw CommandProblem(ErrorCode::kNoSuchVariable, token.offset,
                       "There is no variable " + quotedText(token.source) + ".",
                       near.found().empty() ? "Submit variables; it lists them."
                                            : "Did you mean " + near.found() + "? Submit variables; it lists them.");
}

std::size_t expectVariable(const Variables& variables, CommandTokens* tokens) {
  return positionOfVariable(variables, tokens->expectName("a variable"));
}

std::size_t expectNumericVariable(const Variables& variables, CommandTokens* tokens) {
  const Token& token = tokens->expectName("a numeric variable");
  const std::size_t position = positionOfVariable(variables, token);
  if (variables[position].isNumeric()) return position;
  throw CommandProblem(ErrorCode::kWrongKind, token.offset,
                       "The variable " + variables[position].name + " holds texts, and numbers are needed.",
                       "Name a numeric variable.");
}

std::vector<std::size_t> expectVariables(const Variables& variables, CommandTokens* tokens) {
  NamedVariables named(variables.size());
  do {
    if (tokens->takeWord("all")) {
      if (variables.size() > 0) named.add(0, variables.size() - 1);
      continue;
    }
    const Token& token = tokens->expectName("a variable");
    const std::size_t first = positionOfVariable(variables, token);
    const std::size_t last = tokens->takeWord("to") ? expectVariable(variables, tokens) : first;
    if (last < first) {
      throw CommandProblem(
          ErrorCode::kSyntaxNotValid, token.offset,
          "The variable " + variables[last].name + " stands in front of " + variables[first].name + ".",
          "Name the one that comes first in the data set first.");
    }
    named.add(first, last);
  } while (tokens->takeSign(",") || tokens->isNext(TokenKind::kWord));
  return named.take();
}

}  // namespace kova::engine
