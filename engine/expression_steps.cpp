#include "engine/expression_steps.h"

#include <cmath>

#include "engine/missing_values.h"
#include "engine/text_rules.h"

namespace kova::engine {
namespace {

std::string_view cellText(const Evaluator& evaluator, std::size_t variable) {
  const DataSet& dataSet = evaluator.dataSet();
  const auto* const bytes = static_cast<const char*>(dataSet.cases.variablesAt(evaluator.position(), variable));
  return {bytes, static_cast<std::size_t>(dataSet.variables[variable].width)};
}

// A text of blanks alone is empty, but not missing.
std::string_view trimmed(std::string_view text) { return text.substr(0, withoutEndBlanks(text).size()); }

// A value that is not finite counts as none.
double cellNumber(const Evaluator& evaluator, std::size_t variable) {
  const double value = evaluator.dataSet().cases.number(evaluator.position(), variable);
  return std::isfinite(value) ? value : kSystemMissing;
}

// Every operator of two numbers that gives a missing value for a missing one.
template <auto operation>
void ofNumbers(Evaluator& evaluator, const ExpressionStep& step) {
  const ExpressionValue* const two = evaluator.arguments(step);
  const double a = two[0].number;
  const double b = two[1].number;
  const bool hasBoth = !isMissing(a) && !isMissing(b);
  evaluator.put(step, hasBoth ? evaluator.checked(operation(a, b)) : kSystemMissing);
}

template <auto operation>
void ofTexts(Evaluator& evaluator, const ExpressionStep& step) {
  const ExpressionValue* const two = evaluator.arguments(step);
  const std::string_view a = two[0].text;
  const std::string_view b = two[1].text;
  const bool hasBoth = !isMissing(a) && !isMissing(b);
  evaluator.put(step, hasBoth ? static_cast<double>(operation(trimmed(a), trimmed(b))) : kSystemMissing);
}

double truthOf(bool isTrue) { return isTrue ? 1 : 0; }

// What settles the matter is false for "and" and true for "or"; a missing value leaves it open otherwise.
template <bool settles>
void logic(Evaluator& evaluator, const ExpressionStep& step) {
  const ExpressionValue* const two = evaluator.arguments(step);
  bool isOpen = false;
  for (const double truth : {two[0].number, two[1].number}) {
    if (isMissing(truth)) {
      isOpen = true;
    } else if ((truth != 0) == settles) {
      evaluator.put(step, truthOf(settles));
      return;
    }
  }
  evaluator.put(step, isOpen ? kSystemMissing : truthOf(!settles));
}

constexpr auto kPlus = [](double a, double b) { return a + b; };
constexpr auto kMinus = [](double a, double b) { return a - b; };
constexpr auto kTimes = [](double a, double b) { return a * b; };
constexpr auto kDivide = [](double a, double b) { return b == 0 ? std::nan("") : a / b; };
constexpr auto kPower = [](double a, double b) { return std::pow(a, b); };
constexpr auto kEqual = [](const auto& a, const auto& b) { return a == b; };
constexpr auto kDiffer = [](const auto& a, const auto& b) { return a != b; };
constexpr auto kLess = [](const auto& a, const auto& b) { return a < b; };
constexpr auto kAtMost = [](const auto& a, const auto& b) { return a <= b; };
constexpr auto kMore = [](const auto& a, const auto& b) { return a > b; };
constexpr auto kAtLeast = [](const auto& a, const auto& b) { return a >= b; };

// In front of a longer sign none may stand that is its beginning.
constexpr OperatorRow kOperators[] = {
    {"or", Binding::kOr, logic<true>, nullptr},
    {"and", Binding::kAnd, logic<false>, nullptr},
    {"=", Binding::kComparison, ofNumbers<kEqual>, ofTexts<kEqual>},
    {"!=", Binding::kComparison, ofNumbers<kDiffer>, ofTexts<kDiffer>},
    {"<", Binding::kComparison, ofNumbers<kLess>, ofTexts<kLess>},
    {"<=", Binding::kComparison, ofNumbers<kAtMost>, ofTexts<kAtMost>},
    {">", Binding::kComparison, ofNumbers<kMore>, ofTexts<kMore>},
    {">=", Binding::kComparison, ofNumbers<kAtLeast>, ofTexts<kAtLeast>},
    {"+", Binding::kSum, ofNumbers<kPlus>, nullptr},
    {"-", Binding::kSum, ofNumbers<kMinus>, nullptr},
    {"*", Binding::kProduct, ofNumbers<kTimes>, nullptr},
    {"/", Binding::kProduct, ofNumbers<kDivide>, nullptr},
    {"^", Binding::kPower, ofNumbers<kPower>, nullptr},
};

}  // namespace

std::span<const OperatorRow> operators() { return kOperators; }

void numberConstant(Evaluator& evaluator, const ExpressionStep& step) { evaluator.put(step, step.number); }

void textConstant(Evaluator& evaluator, const ExpressionStep& step) {
  evaluator.put(step, std::string_view(evaluator.expression().texts[step.place]));
}

void numberOfVariable(Evaluator& evaluator, const ExpressionStep& step) {
  const double value = cellNumber(evaluator, step.place);
  const Variable& variable = evaluator.dataSet().variables[step.place];
  const bool isOut = variable.missing.kind != kNoMissing && missingOf(variable, value) != Missing::kNone;
  evaluator.put(step, isOut ? kSystemMissing : value);
}

void textOfVariable(Evaluator& evaluator, const ExpressionStep& step) {
  const std::string_view value = cellText(evaluator, step.place);
  const bool isOut = missingOf(evaluator.dataSet().variables[step.place], value) != Missing::kNone;
  evaluator.put(step, isOut ? std::string_view() : trimmed(value));
}

void rawNumberOfVariable(Evaluator& evaluator, const ExpressionStep& step) {
  evaluator.put(step, cellNumber(evaluator, step.place));
}

void rawTextOfVariable(Evaluator& evaluator, const ExpressionStep& step) {
  evaluator.put(step, trimmed(cellText(evaluator, step.place)));
}

void negate(Evaluator& evaluator, const ExpressionStep& step) {
  const double number = evaluator.arguments(step)->number;
  evaluator.put(step, isMissing(number) ? number : evaluator.checked(-number));
}

void invert(Evaluator& evaluator, const ExpressionStep& step) {
  const double truth = evaluator.arguments(step)->number;
  evaluator.put(step, isMissing(truth) ? truth : truthOf(truth == 0));
}

}  // namespace kova::engine
