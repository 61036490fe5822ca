#include "engine/expression.h"

#include <cmath>

namespace kova::engine {

Evaluator::Evaluator(const Expression& expression, const DataSet& dataSet)
    : expression_(&expression), dataSet_(&dataSet), stack_(expression.depth), buffers_(expression.bufferWidths.size()) {
  for (std::size_t i = 0; i < buffers_.size(); ++i) buffers_[i].reserve(expression.bufferWidths[i]);
}

bool Evaluator::holds(std::size_t position) {
  const double truth = number(position);
  return truth != 0 && !isMissing(truth);
}

// Adding 0 takes the sign off a zero: -0.0 looks like 0.0, but is none of the missing values that are 0.0.
void Evaluator::put(const ExpressionStep& step, double result) {
  top_ -= step.arguments;
  top_->number = result + 0.0;
  ++top_;
}

void Evaluator::put(const ExpressionStep& step, std::string_view result) {
  top_ -= step.arguments;
  top_->text = result;
  top_->number = isMissing(result) ? kSystemMissing : 0;
  ++top_;
}

double Evaluator::checked(double result) {
  if (std::isfinite(result) && !isMissing(result)) return result;
  ++faults_;
  return kSystemMissing;
}

std::string& Evaluator::buffer(const ExpressionStep& step) {
  std::string& buffer = buffers_[step.place];
  buffer.clear();
  return buffer;
}

const ExpressionValue& Evaluator::run(std::size_t position) {
  position_ = position;
  top_ = stack_.data();
  for (const ExpressionStep& step : expression_->steps) step.apply(*this, step);
  return stack_.front();
}

}  // namespace kova::engine
