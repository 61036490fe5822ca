// The commands that compute values and choose cases: compute, keep, delete, filter, weight, split.
#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "engine/command_table.h"
#include "engine/command_variables.h"
#include "engine/data_set_access.h"
#include "engine/dictionary_rules.h"
#include "engine/expression_parser.h"

namespace kova::engine {
namespace {

// A text that is wider than the variable ends behind a whole character.
std::string_view fitting(std::string_view text, std::size_t width) {
  if (text.size() <= width) return text;
  while (width > 0 && (static_cast<unsigned char>(text[width]) & 0xC0U) == 0x80) --width;
  return text.substr(0, width);
}

// What is computed and into which variable, once the command is read.
struct Computation {
  std::string name;
  Expression value;
  std::optional<Expression> condition;
};

std::size_t makeVariable(EngineState* state, DataSet* dataSet, const Computation& computation, const Token& name,
                         const CommandTokens& tokens) {
  const auto widest = static_cast<std::size_t>(kWidestString);
  const std::size_t width = std::clamp<std::size_t>(computation.value.width, 1, widest);
  const int type = computation.value.kind == ExpressionKind::kNumber ? 0 : static_cast<int>(width);
  const std::size_t position = dataSet->variables.size();
  requireAtRest(*state, *dataSet, tokens);
  tokens.require(insertVariables(dataSet, position, {{computation.name, type}}), name);
  return position;
}

// Evaluates a computation for case after case. Its memory is taken before anything is changed.
class Computing {
 public:
  Computing(const Computation& computation, const DataSet& dataSet) : value_(computation.value, dataSet) {
    if (computation.condition) condition_.emplace(*computation.condition, dataSet);
    text_.reserve(computation.value.width);
  }

  void storeNumbers(DataSet* dataSet, std::size_t variable) {
    for (std::size_t i = 0; i < dataSet->cases.caseCount(); ++i) {
      if (isMeant(i)) dataSet->cases.setNumber(i, variable, value_.number(i));
    }
  }

  // A result may lie in the very place that it is stored to, so it goes by way of a copy.
  void storeTexts(DataSet* dataSet, std::size_t variable) {
    const auto width = static_cast<std::size_t>(dataSet->variables[variable].width);
    for (std::size_t i = 0; i < dataSet->cases.caseCount(); ++i) {
      if (!isMeant(i)) continue;
      const std::string_view result = withoutEndBlanks(value_.text(i));
      text_.assign(fitting(result, width));
      if (text_.size() < result.size()) ++cuts_;
      dataSet->cases.setText(i, variable, text_);
    }
  }

  // Results that were no numbers, and texts that were cut.
  std::size_t faults() const { return value_.faults() + (condition_ ? condition_->faults() : 0); }
  std::size_t cuts() const { return cuts_; }

 private:
  bool isMeant(std::size_t position) { return !condition_ || condition_->holds(position); }

  Evaluator value_;
  std::optional<Evaluator> condition_;
  std::string text_;
  std::size_t cuts_ = 0;
};

void tell(EngineState* state, const std::string& variable, const Computing& computing) {
  const std::string name = "compute " + variable + ": ";
  if (computing.faults() > 0) {
    state->output.log.post(name + std::to_string(computing.faults()) +
                           " results were no numbers (a division by zero, a value out of range) and are missing.");
  }
  if (computing.cuts() > 0) {
    state->output.log.post(name + std::to_string(computing.cuts()) +
                           " texts were longer than the variable and were cut.");
  }
}

void requireKind(const Variable& variable, const Expression& value, std::size_t offset) {
  if (variable.isNumeric() == (value.kind == ExpressionKind::kNumber)) return;
  const std::string kinds =
      variable.isNumeric() ? " holds numbers, and this is a text." : " holds texts, and this is a number.";
  throw CommandProblem(ErrorCode::kSyntaxKindsDiffer, offset, "The variable " + variable.name + kinds,
                       "Turn it into the other kind with number or text, or compute another variable.");
}

void compute(EngineState& state, CommandTokens& tokens) {
  DataSet& dataSet = commandDataSet(state, tokens);
  const Token& name = tokens.expectName("the name of a variable");
  tokens.expectSign("=");
  const std::size_t valueOffset = tokens.peek().offset;
  Computation computation{std::string(name.source), parseExpression(dataSet.variables, &tokens), std::nullopt};
  if (tokens.takeWord("where")) computation.condition = parseCondition(dataSet.variables, &tokens);
  tokens.expectEnd();
  const auto found = dataSet.variables.find(name.source);
  if (found) requireKind(dataSet.variables[*found], computation.value, valueOffset);
  Computing computing(computation, dataSet);
  reserveTouch(&state);
  const std::size_t variable = found ? *found : makeVariable(&state, &dataSet, computation, name, tokens);
  touch(&state, &dataSet);
  if (dataSet.variables[variable].isNumeric()) {
    computing.storeNumbers(&dataSet, variable);
  } else {
    computing.storeTexts(&dataSet, variable);
  }
  tell(&state, computation.name, computing);
}

// Cases side by side are copied as one.
CaseStore casesOf(const CaseStore& all, const std::vector<bool>& isTaken) {
  CaseStore taken(all.widths());
  taken.reserve(static_cast<std::size_t>(std::count(isTaken.begin(), isTaken.end(), true)));
  for (std::size_t begin = 0; begin < isTaken.size();) {
    std::size_t end = begin;
    while (end < isTaken.size() && isTaken[end] == isTaken[begin]) ++end;
    if (isTaken[begin]) taken.appendCases(all.caseAt(begin), end - begin);
    begin = end;
  }
  return taken;
}

template <bool keeps>
void takeCases(EngineState& state, CommandTokens& tokens) {
  DataSet& dataSet = commandDataSet(state, tokens);
  tokens.expectWord("where");
  const Expression condition = parseCondition(dataSet.variables, &tokens);
  tokens.expectEnd();
  requireAtRest(state, dataSet, tokens);
  Evaluator evaluator(condition, dataSet);
  std::vector<bool> isTaken(dataSet.cases.caseCount());
  for (std::size_t i = 0; i < isTaken.size(); ++i) isTaken[i] = evaluator.holds(i) == keeps;
  reserveTouch(&state);
  dataSet.cases = casesOf(dataSet.cases, isTaken);
  touch(&state, &dataSet);
}

// The name of the variable that follows "by"; empty for "off".
std::string expectRole(const DataSet& dataSet, CommandTokens* tokens) {
  if (tokens->takeWord("off")) return {};
  if (!tokens->takeWord("by")) tokens->refuse("by or off");
  return dataSet.variables[expectNumericVariable(dataSet.variables, tokens)].name;
}

template <std::string DataSet::*role>
void assign(EngineState& state, CommandTokens& tokens) {
  DataSet& dataSet = commandDataSet(state, tokens);
  std::string name = expectRole(dataSet, &tokens);
  tokens.expectEnd();
  requireAtRest(state, dataSet, tokens);
  (dataSet.*role).swap(name);
}

void split(EngineState& state, CommandTokens& tokens) {
  DataSet& dataSet = commandDataSet(state, tokens);
  std::vector<std::string> names;
  if (!tokens.takeWord("off")) {
    if (!tokens.takeWord("by")) tokens.refuse("by or off");
    for (const std::size_t i : expectVariables(dataSet.variables, &tokens)) names.push_back(dataSet.variables[i].name);
  }
  tokens.expectEnd();
  requireAtRest(state, dataSet, tokens);
  dataSet.split.swap(names);
}

constexpr CommandRow kRows[] = {
    {"compute", "compute NAME = EXPRESSION [where CONDITION]",
     "Computes a variable for every case, or for those alone for which the condition holds. A variable of a new name "
     "is "
     "made behind the others.",
     compute},
    {"keep", "keep where CONDITION", "Deletes every case for which the condition does not hold.", takeCases<true>},
    {"delete", "delete where CONDITION", "Deletes every case for which the condition holds.", takeCases<false>},
    {"filter", "filter by VARIABLE | off",
     "Selects for tables, and for programs that go over the cases, those whose value of the variable is neither 0 nor "
     "missing.",
     assign<&DataSet::filter>},
    {"weight", "weight by VARIABLE | off", "Says how often each case counts in tables.", assign<&DataSet::weight>},
    {"split", "split by VARIABLES | off",
     "Divides tables into groups: cases side by side that have the same values of the variables.", split},
};

}  // namespace

std::span<const CommandRow> transformCommands() { return kRows; }

}  // namespace kova::engine
