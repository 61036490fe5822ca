// The description of one variable of a data set. A plain value; whoever holds it may read and change it.
#ifndef KOVADX_ENGINE_VARIABLE_H
#define KOVADX_ENGINE_VARIABLE_H

#include <array>
#include <string>
#include <vector>

#include "engine/attributes.h"
#include "engine/format.h"
#include "engine/value_codes.h"

namespace kova::engine {

// User-missing values. Numbers belong to numeric variables, texts to string variables; unused places are 0 and "".
struct MissingValues {
  int kind = kNoMissing;
  std::array<double, kMostMissing> numbers{};
  std::array<std::string, kMostMissing> texts{};

  bool operator==(const MissingValues&) const = default;
};

template <typename Value>
struct ValueLabel {
  Value value;
  std::string label;

  bool operator==(const ValueLabel&) const = default;
};

struct Variable {
  std::string name;
  std::string label;
  int width = 0;  // 0 for a numeric variable, else the string's width in bytes.
  Format format;
  Measure measure = Measure::kUnknown;
  Role role = Role::kInput;
  Alignment alignment = Alignment::kRight;
  int columnWidth = kUsualColumnWidth;
  MissingValues missing;
  std::vector<ValueLabel<double>> numberLabels;     // Of a numeric variable, in the order in which they were given.
  std::vector<ValueLabel<std::string>> textLabels;  // Of a string variable.
  Attributes attributes;

  bool isNumeric() const { return width == 0; }
  bool operator==(const Variable&) const = default;
};

}  // namespace kova::engine

#endif
