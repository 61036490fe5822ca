#include "engine/expression_functions.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <span>
#include <system_error>

#include "engine/expression_steps.h"
#include "engine/text_rules.h"

namespace kova::engine {
namespace {

constexpr double kMostDecimalsOfRound = 15;

std::span<const ExpressionValue> argumentsOf(Evaluator& evaluator, const ExpressionStep& step) {
  return {evaluator.arguments(step), step.arguments};
}

bool hasMissing(std::span<const ExpressionValue> values) {
  return std::any_of(values.begin(), values.end(),
                     [](const ExpressionValue& value) { return isMissing(value.number); });
}

// A function of numbers that gives a missing value for a missing one.
template <auto function>
void ofNumber(Evaluator& evaluator, const ExpressionStep& step) {
  const double number = evaluator.arguments(step)->number;
  evaluator.put(step, isMissing(number) ? number : evaluator.checked(function(number)));
}

void mod(Evaluator& evaluator, const ExpressionStep& step) {
  const auto values = argumentsOf(evaluator, step);
  const bool isOut = hasMissing(values);
  evaluator.put(step, isOut ? kSystemMissing : evaluator.checked(std::fmod(values[0].number, values[1].number)));
}

double rounded(double number, double decimals) {
  const double scale = std::pow(10.0, std::round(decimals));
  const double scaled = number * scale;
  return std::isfinite(scaled) ? std::round(scaled) / scale : number;
}

void round(Evaluator& evaluator, const ExpressionStep& step) {
  const auto values = argumentsOf(evaluator, step);
  if (hasMissing(values)) return evaluator.put(step, kSystemMissing);
  const double decimals = values.size() == 1 ? 0 : values[1].number;
  const bool isKnown = decimals >= 0 && decimals <= kMostDecimalsOfRound;
  evaluator.put(step, evaluator.checked(isKnown ? rounded(values[0].number, decimals) : std::nan("")));
}

// Functions of those arguments that have a value; missing when none has.
template <auto add, bool isMean = false>
void ofValid(Evaluator& evaluator, const ExpressionStep& step) {
  double result = 0;
  double count = 0;
  for (const ExpressionValue& value : argumentsOf(evaluator, step)) {
    if (isMissing(value.number)) continue;
    result = count == 0 ? value.number : add(result, value.number);
    ++count;
  }
  if (isMean) result /= count;
  evaluator.put(step, count == 0 ? kSystemMissing : evaluator.checked(result));
}

void valid(Evaluator& evaluator, const ExpressionStep& step) {
  const auto values = argumentsOf(evaluator, step);
  const auto count = std::count_if(values.begin(), values.end(),
                                   [](const ExpressionValue& value) { return !isMissing(value.number); });
  evaluator.put(step, static_cast<double>(count));
}

void missing(Evaluator& evaluator, const ExpressionStep& step) {
  evaluator.put(step, hasMissing(argumentsOf(evaluator, step)) ? 1.0 : 0.0);
}

void caseNumber(Evaluator& evaluator, const ExpressionStep& step) {
  evaluator.put(step, static_cast<double>(evaluator.position()) + 1);
}

void putValue(Evaluator& evaluator, const ExpressionStep& step, const ExpressionValue& value, bool isText) {
  if (isText) {
    evaluator.put(step, std::string_view(value.text));
  } else {
    evaluator.put(step, double{value.number});
  }
}

template <bool isText>
void choose(Evaluator& evaluator, const ExpressionStep& step) {
  const auto values = argumentsOf(evaluator, step);
  const double condition = values[0].number;
  putValue(evaluator, step, isMissing(condition) ? ExpressionValue() : values[condition != 0 ? 1 : 2], isText);
}

bool isSame(double a, double b) { return a == b; }
bool isSame(std::string_view a, std::string_view b) { return withoutEndBlanks(a) == withoutEndBlanks(b); }

// Missing arguments behind the first are equal to nothing.
template <auto member>
void any(Evaluator& evaluator, const ExpressionStep& step) {
  const auto values = argumentsOf(evaluator, step);
  const ExpressionValue& first = values.front();
  const bool isOne = std::any_of(values.begin() + 1, values.end(), [&first](const ExpressionValue& other) {
    return !isMissing(other.number) && isSame(first.*member, other.*member);
  });
  evaluator.put(step, isMissing(first.number) ? kSystemMissing : isOne ? 1.0 : 0.0);
}

bool beginsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80; }

// Where the character begins that has so many in front of it; the text's size when there are fewer.
std::size_t characterAt(std::string_view text, double before) {
  std::size_t at = 0;
  for (double passed = 0; passed < before && at < text.size(); ++passed) {
    ++at;
    while (at < text.size() && !beginsCharacter(text[at])) ++at;
  }
  return at;
}

void length(Evaluator& evaluator, const ExpressionStep& step) {
  const ExpressionValue& value = *evaluator.arguments(step);
  const std::string_view text = withoutEndBlanks(value.text);
  const auto count = static_cast<double>(std::count_if(text.begin(), text.end(), beginsCharacter));
  evaluator.put(step, isMissing(value.number) ? kSystemMissing : count);
}

template <char first, char last, int shift>
void shiftLetters(Evaluator& evaluator, const ExpressionStep& step) {
  const std::string_view text = evaluator.arguments(step)->text;
  if (isMissing(text)) return evaluator.put(step, text);
  std::string& result = evaluator.buffer(step);
  for (const char c : text) result += c >= first && c <= last ? static_cast<char>(c + shift) : c;
  evaluator.put(step, std::string_view(result));
}

// As much of the text as is left of the widest one, in whole characters.
void append(std::string_view text, std::string* result) {
  std::size_t fits = std::min(text.size(), static_cast<std::size_t>(kWidestString) - result->size());
  while (fits < text.size() && fits > 0 && !beginsCharacter(text[fits])) --fits;
  result->append(text.substr(0, fits));
}

void concat(Evaluator& evaluator, const ExpressionStep& step) {
  const auto values = argumentsOf(evaluator, step);
  if (hasMissing(values)) return evaluator.put(step, std::string_view());
  std::string& result = evaluator.buffer(step);
  for (const ExpressionValue& value : values) append(value.text, &result);
  evaluator.put(step, std::string_view(result));
}

void substring(Evaluator& evaluator, const ExpressionStep& step) {
  const auto values = argumentsOf(evaluator, step);
  const double first = values[1].number;
  const double count = values.size() == 3 ? values[2].number : std::numeric_limits<double>::max();
  if (hasMissing(values) || first < 1 || count < 0) return evaluator.put(step, std::string_view());
  const std::string_view rest = values[0].text.substr(characterAt(values[0].text, std::floor(first) - 1));
  evaluator.put(step, rest.substr(0, characterAt(rest, std::floor(count))));
}

void contains(Evaluator& evaluator, const ExpressionStep& step) {
  const auto values = argumentsOf(evaluator, step);
  const bool isInside = values[0].text.find(values[1].text) != std::string_view::npos;
  evaluator.put(step, hasMissing(values) ? kSystemMissing : isInside ? 1.0 : 0.0);
}

void textOfNumber(Evaluator& evaluator, const ExpressionStep& step) {
  const double number = evaluator.arguments(step)->number;
  if (isMissing(number)) return evaluator.put(step, std::string_view());
  char area[32];
  const auto [end, error] = std::to_chars(area, area + sizeof area, number);
  std::string& result = evaluator.buffer(step);
  result.append(area, end);
  evaluator.put(step, std::string_view(result));
}

void numberOfText(Evaluator& evaluator, const ExpressionStep& step) {
  std::string_view text = withoutEndBlanks(evaluator.arguments(step)->text);
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  const bool isSigned = text.starts_with('+') && !text.starts_with("+-");
  text.remove_prefix(isSigned ? 1 : 0);
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool isNumber = error == std::errc() && end == text.data() + text.size() && std::isfinite(number);
  evaluator.put(step, isNumber ? number : kSystemMissing);
}

constexpr auto kAbs = [](double x) { return std::fabs(x); };
constexpr auto kSquareRoot = [](double x) { return std::sqrt(x); };
constexpr auto kExp = [](double x) { return std::exp(x); };
constexpr auto kLn = [](double x) { return std::log(x); };
constexpr auto kLog10 = [](double x) { return std::log10(x); };
constexpr auto kFloor = [](double x) { return std::floor(x); };
constexpr auto kCeiling = [](double x) { return std::ceil(x); };
constexpr auto kLess = [](double a, double b) { return std::min(a, b); };
constexpr auto kMore = [](double a, double b) { return std::max(a, b); };
constexpr auto kAdd = [](double a, double b) { return a + b; };

constexpr FunctionRow kFunctions[] = {
    {"abs", "abs(X)", "The amount of X without its sign.", "n", 1, 1, FunctionResult::kNumber, ofNumber<kAbs>, nullptr},
    {"sqrt", "sqrt(X)", "The square root of X.", "n", 1, 1, FunctionResult::kNumber, ofNumber<kSquareRoot>, nullptr},
    {"exp", "exp(X)", "e to the power of X.", "n", 1, 1, FunctionResult::kNumber, ofNumber<kExp>, nullptr},
    {"ln", "ln(X)", "The natural logarithm of X.", "n", 1, 1, FunctionResult::kNumber, ofNumber<kLn>, nullptr},
    {"log10", "log10(X)", "The logarithm of X to the base 10.", "n", 1, 1, FunctionResult::kNumber, ofNumber<kLog10>,
     nullptr},
    {"round", "round(X [, DECIMALS])", "X rounded to so many decimals, 0 to 15; halves away from 0.", "nn", 1, 2,
     FunctionResult::kNumber, round, nullptr},
    {"floor", "floor(X)", "The largest whole number that is not above X.", "n", 1, 1, FunctionResult::kNumber,
     ofNumber<kFloor>, nullptr},
    {"ceiling", "ceiling(X)", "The smallest whole number that is not below X.", "n", 1, 1, FunctionResult::kNumber,
     ofNumber<kCeiling>, nullptr},
    {"mod", "mod(X, Y)", "What is left of X divided by Y, with the sign of X.", "nn", 2, 2, FunctionResult::kNumber,
     mod, nullptr},
    {"min", "min(X, ...)", "The smallest of the values that are not missing.", "n", 1, kAnyNumber,
     FunctionResult::kNumber, ofValid<kLess>, nullptr},
    {"max", "max(X, ...)", "The largest of the values that are not missing.", "n", 1, kAnyNumber,
     FunctionResult::kNumber, ofValid<kMore>, nullptr},
    {"sum", "sum(X, ...)", "The sum of the values that are not missing.", "n", 1, kAnyNumber, FunctionResult::kNumber,
     ofValid<kAdd>, nullptr},
    {"mean", "mean(X, ...)", "The mean of the values that are not missing.", "n", 1, kAnyNumber,
     FunctionResult::kNumber, ofValid<kAdd, true>, nullptr},
    {"valid", "valid(X, ...)", "How many of the values, numbers or texts, are not missing.", "x", 1, kAnyNumber,
     FunctionResult::kNumber, valid, valid},
    {"missing", "missing(X)", "1 when X, a number or a text, is missing, else 0.", "x", 1, 1, FunctionResult::kNumber,
     missing, missing},
    {"value", "value(VARIABLE)", "The variable's value even when it is one of its missing values.", "v", 1, 1,
     FunctionResult::kSameKind, rawNumberOfVariable, rawTextOfVariable},
    {"if", "if(CONDITION, A, B)", "A when the condition holds, else B; both numbers or both texts.", "nxs", 3, 3,
     FunctionResult::kSameKind, choose<false>, choose<true>},
    {"any", "any(X, A, ...)", "1 when X equals one of the values behind it, else 0; all numbers or all texts.", "xs", 2,
     kAnyNumber, FunctionResult::kNumber, any<&ExpressionValue::number>, any<&ExpressionValue::text>},
    {"case", "case()", "The number of the case in the data set, from 1.", "", 0, 0, FunctionResult::kNumber, caseNumber,
     nullptr},
    {"length", "length(TEXT)", "How many characters the text has, without blanks at its end.", "t", 1, 1,
     FunctionResult::kNumber, nullptr, length},
    {"upper", "upper(TEXT)", "The text with A to Z in place of a to z.", "t", 1, 1, FunctionResult::kText, nullptr,
     shiftLetters<'a', 'z', 'A' - 'a'>},
    {"lower", "lower(TEXT)", "The text with a to z in place of A to Z.", "t", 1, 1, FunctionResult::kText, nullptr,
     shiftLetters<'A', 'Z', 'a' - 'A'>},
    {"concat", "concat(TEXT, ...)", "The texts one behind the other.", "t", 1, kAnyNumber, FunctionResult::kJoinedText,
     nullptr, concat},
    {"substring", "substring(TEXT, FIRST [, COUNT])",
     "So many characters of the text from the first on, all that follow without a count; characters count from 1.",
     "tnn", 2, 3, FunctionResult::kText, substring, nullptr},
    {"contains", "contains(TEXT, PART)", "1 when the part stands in the text, else 0.", "tt", 2, 2,
     FunctionResult::kNumber, nullptr, contains},
    {"text", "text(X)", "The number as a text, as short as it goes.", "n", 1, 1, FunctionResult::kNumberText,
     textOfNumber, nullptr},
    {"number", "number(TEXT)", "The number that the text says; missing when it says none.", "t", 1, 1,
     FunctionResult::kNumber, nullptr, numberOfText},
};

}  // namespace

std::span<const FunctionRow> expressionFunctions() { return kFunctions; }

const FunctionRow* findFunction(std::string_view name) {
  const auto* const found = std::find_if(std::begin(kFunctions), std::end(kFunctions),
                                         [name](const FunctionRow& row) { return sameName(row.name, name); });
  return found == std::end(kFunctions) ? nullptr : found;
}

}  // namespace kova::engine
