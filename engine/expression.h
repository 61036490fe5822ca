// An expression of a command, ready to be evaluated for case after case: a row of steps, each of which takes its
// arguments off a stack and puts its result there.
//
// Missing values: a variable's value that is system-missing or one of the variable's missing values counts as missing.
// What is computed from a missing value is missing, but for "and" with something false, "or" with something true, and
// the functions that say so. Truth is the number 1 or 0; a condition holds when its number is neither 0 nor missing. A
// result that is no number, such as a division by zero, is missing.
#ifndef KOVADX_ENGINE_EXPRESSION_H
#define KOVADX_ENGINE_EXPRESSION_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "engine/case_store.h"
#include "engine/data_set.h"

namespace kova::engine {

enum class ExpressionKind { kNumber, kText };

// A number, or a text; which of them is known beforehand. A missing text has no data, and the number is system-missing
// then too.
struct ExpressionValue {
  double number = kSystemMissing;
  std::string_view text;
};

class Evaluator;
struct ExpressionStep;

// Takes step.arguments values off the evaluator's stack and puts one there.
using ApplyStep = void (*)(Evaluator& evaluator, const ExpressionStep& step);

struct ExpressionStep {
  ApplyStep apply = nullptr;
  std::size_t arguments = 0;
  std::size_t place = 0;  // Of a variable: its position. Of a step that makes a text: its buffer. Of a constant: where.
  double number = 0;      // Of a constant.
};

struct Expression {
  std::vector<ExpressionStep> steps;
  std::vector<std::string> texts;         // Its constants.
  std::vector<std::size_t> bufferWidths;  // Of the buffers that its steps need: the most bytes of each.
  std::size_t depth = 0;                  // Of the stack.
  ExpressionKind kind = ExpressionKind::kNumber;
  std::size_t width = 0;  // The most bytes of a text that it gives.
};

// The steps' memory, taken once. It refers to the expression and the data set, whose variables must not change
// meanwhile. One thread uses it.
class Evaluator {
 public:
  Evaluator(const Expression& expression, const DataSet& dataSet);

  // For the case at a position. Throws nothing. The text, without blanks at its end, is valid until the next call and
  // until the case changes.
  double number(std::size_t position) { return run(position).number; }
  std::string_view text(std::size_t position) { return run(position).text; }
  bool holds(std::size_t position);

  // How many results were no numbers, and so are missing.
  std::size_t faults() const { return faults_; }

  // For the steps.
  std::size_t position() const { return position_; }
  const DataSet& dataSet() const { return *dataSet_; }
  const Expression& expression() const { return *expression_; }
  // The step's arguments, the first of them; its result goes there too.
  ExpressionValue* arguments(const ExpressionStep& step) { return top_ - step.arguments; }
  // Ends a step: its result is the value in front of which its arguments began. A zero loses its sign.
  void put(const ExpressionStep& step, double result);
  void put(const ExpressionStep& step, std::string_view result);
  // Missing, and counted, when it is no number.
  double checked(double result);
  // Empty, with room for what the step can make.
  std::string& buffer(const ExpressionStep& step);

 private:
  const ExpressionValue& run(std::size_t position);

  const Expression* expression_;
  const DataSet* dataSet_;
  std::vector<ExpressionValue> stack_;
  std::vector<std::string> buffers_;
  ExpressionValue* top_ = nullptr;
  std::size_t position_ = 0;
  std::size_t faults_ = 0;
};

inline bool isMissing(double number) { return number == kSystemMissing; }
inline bool isMissing(std::string_view text) { return text.data() == nullptr; }

}  // namespace kova::engine

#endif
