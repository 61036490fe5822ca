#include "engine/case_summary.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <tuple>

#include "engine/text_rules.h"

namespace kova::engine {

CaseWeight::CaseWeight(const DataSet& dataSet)
    : dataSet_(&dataSet), variable_(dataSet.weight.empty() ? std::nullopt : dataSet.variables.find(dataSet.weight)) {}

double CaseWeight::operator()(std::size_t position) const {
  if (!variable_) return 1;
  const double weight = dataSet_->cases.number(position, *variable_);
  const bool counts =
      std::isfinite(weight) && weight > 0 && missingOf(dataSet_->variables[*variable_], weight) == Missing::kNone;
  return counts ? weight : 0;
}

// Mean and sum of squares value by value: B. P. Welford, "Note on a method for calculating corrected sums of squares
// and products", Technometrics 4 (1962), in the weighted form of D. H. D. West, "Updating mean and variance estimates:
// an improved method", Communications of the ACM 22 (1979).
void Moments::add(double value, double weight) {
  if (weight == 0) return;
  least_ = weight_ == 0 ? value : std::min(least_, value);
  most_ = weight_ == 0 ? value : std::max(most_, value);
  weight_ += weight;
  const double distance = value - mean_;
  mean_ += distance * (weight / weight_);
  squares_ += weight * distance * (value - mean_);
}

double Moments::mean() const { return weight_ > 0 && std::isfinite(mean_) ? mean_ : kSystemMissing; }

// Weights count cases, so the sum of squares is divided by their sum less 1.
double Moments::deviation() const {
  if (weight_ <= 1) return kSystemMissing;
  const double deviation = std::sqrt(squares_ / (weight_ - 1));
  return std::isfinite(deviation) ? deviation : kSystemMissing;
}

double ValueCounts::numberOf(double value) const {
  if (!std::isfinite(value)) return kSystemMissing;
  return value == 0 && missingOf(*variable_, 0.0) == missingOf(*variable_, -0.0) ? 0.0 : value;
}

void ValueCounts::add(const CaseStore& cases, std::size_t position, std::size_t variable, double weight) {
  if (variable_->isNumeric()) {
    numbers_[std::bit_cast<std::uint64_t>(numberOf(cases.number(position, variable)))] += weight;
    return;
  }
  const auto* const bytes = static_cast<const char*>(cases.variablesAt(position, variable));
  const std::string_view text = withoutEndBlanks({bytes, static_cast<std::size_t>(variable_->width)});
  const auto found = texts_.find(text);
  if (found == texts_.end()) {
    texts_.emplace(text, weight);
  } else {
    found->second += weight;
  }
}

std::vector<ValueCounts::Row> ValueCounts::rows() const {
  std::vector<Row> rows;
  for (const auto& [bits, weight] : numbers_) {
    const auto number = std::bit_cast<double>(bits);
    rows.push_back({number, {}, missingOf(*variable_, number), weight});
  }
  for (const auto& [text, weight] : texts_) {
    rows.push_back({0, text, missingOf(*variable_, std::string_view(text)), weight});
  }
  std::sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) {
    return std::tie(a.missing, a.number, a.text) < std::tie(b.missing, b.number, b.text);
  });
  return rows;
}

}  // namespace kova::engine
