// What tables tell about a variable: a count of its values, and mean and spread, both weighted. Plain values, filled
// case by case.
#ifndef KOVADX_ENGINE_CASE_SUMMARY_H
#define KOVADX_ENGINE_CASE_SUMMARY_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "engine/data_set.h"
#include "engine/missing_values.h"

namespace kova::engine {

// How often a case counts: 1 without a weight; not at all when its weight is missing, below 0 or not finite.
class CaseWeight {
 public:
  explicit CaseWeight(const DataSet& dataSet);

  double operator()(std::size_t position) const;

 private:
  const DataSet* dataSet_;
  std::optional<std::size_t> variable_;
};

// Count, extremes, mean and spread of numbers.
class Moments {
 public:
  void add(double value, double weight);

  double weight() const { return weight_; }
  // Each system-missing when there are too few values for it.
  double least() const { return weight_ > 0 ? least_ : kSystemMissing; }
  double most() const { return weight_ > 0 ? most_ : kSystemMissing; }
  double mean() const;
  double deviation() const;

 private:
  double weight_ = 0;
  double mean_ = 0;
  double squares_ = 0;  // The sum of the squares of the values' distances from their mean.
  double least_ = 0;
  double most_ = 0;
};

// How often each value occurs.
class ValueCounts {
 public:
  explicit ValueCounts(const Variable& variable) : variable_(&variable) {}

  void add(const CaseStore& cases, std::size_t position, std::size_t variable, double weight);

  struct Row {
    double number = 0;  // The value, of either kind.
    std::string text;
    Missing missing = Missing::kNone;
    double weight = 0;
  };
  // Those with a value in rising order, then those that count as missing, then no value at all.
  std::vector<Row> rows() const;
  std::size_t distinct() const { return numbers_.size() + texts_.size(); }

 private:
  struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
  };

  // The number that a value is counted as. Zero is one number whatever its sign, unless only one of the two is missing.
  double numberOf(double value) const;

  const Variable* variable_;
  std::unordered_map<std::uint64_t, double> numbers_;  // By their bits.
  std::unordered_map<std::string, double, TextHash, std::equal_to<>> texts_;
};

}  // namespace kova::engine

#endif
