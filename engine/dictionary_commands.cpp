// The commands that describe variables: label, values, missing, format, rename, drop.
#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "engine/command_table.h"
#include "engine/command_variables.h"
#include "engine/data_set_access.h"
#include "engine/dictionary_rules.h"

namespace kova::engine {
namespace {

void label(EngineState& state, CommandTokens& tokens) {
  DataSet& dataSet = commandDataSet(state, tokens);
  const std::size_t variable = expectVariable(dataSet.variables, &tokens);
  std::string text = tokens.expectText("the label in quotes");
  tokens.expectEnd();
  dataSet.variables.change(variable).label.swap(text);
}

template <typename Value>
void setLabel(std::vector<ValueLabel<Value>>* labels, Value value, std::string text) {
  const auto found = std::find_if(labels->begin(), labels->end(), [&](const auto& one) { return one.value == value; });
  if (found == labels->end()) {
    labels->push_back({std::move(value), std::move(text)});
  } else {
    found->label = std::move(text);
  }
}

// A value of the variable, which must fit it.
std::string expectTextValue(const Variable& variable, CommandTokens* tokens) {
  const Token& token = tokens->peek();
  const std::string text = tokens->expectText("a value of " + variable.name + ", a text in quotes");
  const std::string_view value = withoutEndBlanks(text);
  const bool fits = value.size() <= static_cast<std::size_t>(variable.width);
  tokens->require(fits ? ErrorCode::kNone : ErrorCode::kValueTooLong, token);
  return std::string(value);
}

double expectNumberValue(const Variable& variable, CommandTokens* tokens) {
  return tokens->expectNumber("a value of " + variable.name + ", a number");
}

// A value and its label.
void expectLabel(Variable* variable, CommandTokens* tokens) {
  if (variable->isNumeric()) {
    const double number = expectNumberValue(*variable, tokens);
    setLabel(&variable->numberLabels, number, tokens->expectText("the label in quotes"));
  } else {
    std::string text = expectTextValue(*variable, tokens);
    setLabel(&variable->textLabels, std::move(text), tokens->expectText("the label in quotes"));
  }
}

void valueLabels(EngineState& state, CommandTokens& tokens) {
  DataSet& dataSet = commandDataSet(state, tokens);
  const std::size_t position = expectVariable(dataSet.variables, &tokens);
  Variable variable = dataSet.variables[position];
  if (tokens.takeWord("off")) {
    variable.numberLabels.clear();
    variable.textLabels.clear();
    tokens.expectEnd();
  } else {
    do expectLabel(&variable, &tokens);
    while (tokens.takeSign(","));
    if (!tokens.isAtEnd()) tokens.refuse("a comma and the next value");
  }
  dataSet.variables.change(position) = std::move(variable);
}

double expectRangeEnd(const Variable& variable, CommandTokens* tokens) {
  if (tokens->takeWord("lowest")) return kLowestNumber;
  if (tokens->takeWord("highest")) return kHighestNumber;
  return expectNumberValue(variable, tokens);
}

// Up to three numbers, or a range and one number.
MissingValues expectMissingNumbers(const Variable& variable, CommandTokens* tokens) {
  std::vector<double> numbers;
  int kind = kNoMissing;
  do {
    const Token& token = tokens->peek();
    numbers.push_back(expectRangeEnd(variable, tokens));
    if (numbers.size() == 1 && tokens->takeWord("to")) {
      numbers.push_back(expectRangeEnd(variable, tokens));
      kind = kMissingRange;
    }
    const std::size_t most = 3;
    if (numbers.size() > most) {
      throw CommandProblem(ErrorCode::kMissingKindOutOfRange, token.offset, "These are too many missing values.",
                           "Give up to three values, or a range and one value.");
    }
  } while (tokens->takeSign(","));
  const bool isRange = kind == kMissingRange;
  if (!isRange) kind = static_cast<int>(numbers.size());
  if (isRange && numbers.size() == 3) kind = kMissingRangeAndOne;
  std::array<double, kMostMissing> all{};
  std::copy(numbers.begin(), numbers.end(), all.begin());
  MissingValues missing;
  tokens->require(makeMissing(variable, kind, all, &missing));
  return missing;
}

MissingValues expectMissingTexts(const Variable& variable, CommandTokens* tokens) {
  std::array<std::string, kMostMissing> all;
  std::size_t count = 0;
  do {
    if (count == all.size()) tokens->refuse("at most three missing values");
    all.at(count++) = tokens->expectText("a value of " + variable.name + ", a text in quotes");
  } while (tokens->takeSign(","));
  MissingValues missing;
  tokens->require(makeMissing(variable, static_cast<int>(count), all, &missing));
  return missing;
}

void missing(EngineState& state, CommandTokens& tokens) {
  DataSet& dataSet = commandDataSet(state, tokens);
  const std::size_t position = expectVariable(dataSet.variables, &tokens);
  const Variable& variable = dataSet.variables[position];
  MissingValues made;
  if (!tokens.takeWord("off")) {
    made = variable.isNumeric() ? expectMissingNumbers(variable, &tokens) : expectMissingTexts(variable, &tokens);
  }
  tokens.expectEnd();
  dataSet.variables.change(position).missing = std::move(made);
}

void format(EngineState& state, CommandTokens& tokens) {
  DataSet& dataSet = commandDataSet(state, tokens);
  const std::size_t position = expectVariable(dataSet.variables, &tokens);
  const Token& token = tokens.expectName("a format, such as F8.1 or A20");
  tokens.expectEnd();
  const auto format = parseFormat(token.source);
  tokens.require(format ? ErrorCode::kNone : ErrorCode::kUnknownFormat, token);
  Variable& variable = dataSet.variables.change(position);
  const int type = static_cast<int>(format->type);
  tokens.require(makeFormat(variable, type, format->width, format->decimals, &variable.format), token);
}

void rename(EngineState& state, CommandTokens& tokens) {
  DataSet& dataSet = commandDataSet(state, tokens);
  const std::size_t position = expectVariable(dataSet.variables, &tokens);
  tokens.expectWord("to");
  const Token& name = tokens.expectName("the new name");
  tokens.expectEnd();
  tokens.require(renameVariable(&dataSet, position, std::string(name.source)), name);
}

void drop(EngineState& state, CommandTokens& tokens) {
  DataSet& dataSet = commandDataSet(state, tokens);
  std::vector<std::size_t> positions = expectVariables(dataSet.variables, &tokens);
  tokens.expectEnd();
  requireAtRest(state, dataSet, tokens);
  reserveTouch(&state);
  std::sort(positions.begin(), positions.end());
  deleteVariables(&dataSet, positions);
  touch(&state, &dataSet);
}

constexpr CommandRow kRows[] = {
    {"label", "label VARIABLE \"LABEL\"", "Gives a variable its label; an empty one takes it away.", label},
    {"values", "values VARIABLE VALUE \"LABEL\" [, VALUE \"LABEL\" ...] | off",
     "Gives values of a variable their labels; off takes all of them away.", valueLabels},
    {"missing", "missing VARIABLE VALUE [, VALUE [, VALUE]] | LOW to HIGH [, VALUE] | off",
     "Says which values of a variable count as missing. LOW may be lowest and HIGH highest. Those said before no "
     "longer "
     "count.",
     missing},
    {"format", "format VARIABLE FORMAT", "Says how a variable's values are shown: F8.1, DATE10, A20.", format},
    {"rename", "rename VARIABLE to NAME", "Gives a variable another name.", rename},
    {"drop", "drop VARIABLES", "Deletes variables with their values.", drop},
};

}  // namespace

std::span<const CommandRow> dictionaryCommands() { return kRows; }

}  // namespace kova::engine
