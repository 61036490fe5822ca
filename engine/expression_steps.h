// The steps of expressions that are written with signs and words rather than as functions: constants, values of
// variables, arithmetic, comparison and logic.
#ifndef KOVADX_ENGINE_EXPRESSION_STEPS_H
#define KOVADX_ENGINE_EXPRESSION_STEPS_H

#include <span>
#include <string_view>

#include "engine/expression.h"

namespace kova::engine {

void numberConstant(Evaluator& evaluator, const ExpressionStep& step);
void textConstant(Evaluator& evaluator, const ExpressionStep& step);

// The value of the variable at the step's place. Missing where it is one of the variable's missing values; the raw ones
// are missing where the case has no value alone.
void numberOfVariable(Evaluator& evaluator, const ExpressionStep& step);
void textOfVariable(Evaluator& evaluator, const ExpressionStep& step);
void rawNumberOfVariable(Evaluator& evaluator, const ExpressionStep& step);
void rawTextOfVariable(Evaluator& evaluator, const ExpressionStep& step);

void negate(Evaluator& evaluator, const ExpressionStep& step);
void invert(Evaluator& evaluator, const ExpressionStep& step);  // "not"

// How tightly operators bind, the loosest first.
enum class Binding { kOr, kAnd, kComparison, kSum, kProduct, kPower };

struct OperatorRow {
  std::string_view sign;
  Binding binding;
  ApplyStep numbers;  // Of two numbers.
  ApplyStep texts;    // Of two texts; null when there is no such operation.
};

std::span<const OperatorRow> operators();

}  // namespace kova::engine

#endif
