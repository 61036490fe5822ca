#include "engine/dictionary_rules.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace kova::engine {
namespace {

// What may stand in the place of a missing value that the kind does not have.
bool isNoNumber(double number) { return number == 0 || std::isnan(number) || number == kSystemMissing; }

std::size_t countOf(int kind) {
  if (kind == kMissingRange) return 2;
  return kind == kMissingRangeAndOne ? 3 : static_cast<std::size_t>(kind);
}

void dropUnfitLabels(Variable* variable) {
  const auto width = static_cast<std::size_t>(variable->width);
  std::erase_if(variable->textLabels, [width](const auto& label) { return label.value.size() > width; });
}

void dropUnfitMissing(Variable* variable) {
  const auto width = static_cast<std::size_t>(variable->width);
  MissingValues kept;
  for (int i = 0; i < variable->missing.kind; ++i) {
    std::string& text = variable->missing.texts.at(static_cast<std::size_t>(i));
    if (text.size() <= width) kept.texts.at(static_cast<std::size_t>(kept.kind++)) = std::move(text);
  }
  variable->missing = std::move(kept);
}

// The variable with another width of its texts.
Variable withWidth(Variable variable, int width) {
  if (variable.format.width == variable.width) variable.format.width = width;
  variable.width = width;
  dropUnfitLabels(&variable);
  dropUnfitMissing(&variable);
  return variable;
}

// The variable with the other kind of values: what depends on them goes.
Variable withKind(Variable variable, int type) {
  variable.width = type;
  variable.format = type == 0 ? Format{} : Format{FormatType::kA, type, 0};
  variable.alignment = type == 0 ? Alignment::kRight : Alignment::kLeft;
  if (type != 0 && variable.measure == Measure::kScale) variable.measure = Measure::kNominal;
  variable.missing = {};
  variable.numberLabels.clear();
  variable.textLabels.clear();
  return variable;
}

// The weight and the filter are numbers; the variables of a response set are of one kind, and its counted value fits
// them all.
bool isBound(const DataSet& dataSet, const Variable& variable, int type) {
  const bool changesKind = variable.isNumeric() || type == 0;
  const auto isVariable = [&variable](const std::string& name) { return sameName(name, variable.name); };
  const auto forbids = [&](const ResponseSet& set) {
    return (changesKind || set.countedValue.size() > static_cast<std::size_t>(type)) &&
           std::any_of(set.variables.begin(), set.variables.end(), isVariable);
  };
  return isVariable(dataSet.weight) || isVariable(dataSet.filter) ||
         std::any_of(dataSet.responseSets.begin(), dataSet.responseSets.end(), forbids);
}

}  // namespace

bool isValidNumber(double number) { return std::isfinite(number) && number != kSystemMissing; }

ErrorCode makeFormat(const Variable& variable, int type, int width, int decimals, Format* format) {
  const auto known = formatTypeOf(type);
  if (!known) return ErrorCode::kUnknownFormat;
  const Format made{*known, width, decimals};
  if (made.isText() == variable.isNumeric()) return ErrorCode::kFormatOfOtherKind;
  const int widest = made.isText() ? kWidestString : kWidestNumber;
  if (width < 1 || width > widest) return ErrorCode::kFormatWidthOutOfRange;
  const int most = hasDecimals(*known) ? std::min(kMostDecimals, width - 1) : 0;
  if (decimals < 0 || decimals > most) return ErrorCode::kFormatDecimalsOutOfRange;
  *format = made;
  return ErrorCode::kNone;
}

ErrorCode makeMissing(const Variable& variable, int kind, const std::array<double, kMostMissing>& numbers,
                      MissingValues* missing) {
  if (!variable.isNumeric()) return ErrorCode::kWrongKind;
  const bool isRange = kind == kMissingRange || kind == kMissingRangeAndOne;
  if (!isRange && (kind < kNoMissing || kind > kThreeMissing)) return ErrorCode::kMissingKindOutOfRange;
  MissingValues made;
  made.kind = kind;
  const std::size_t count = countOf(kind);
  for (std::size_t i = 0; i < kMostMissing; ++i) {
    if (i >= count) {
      if (!isNoNumber(numbers.at(i))) return ErrorCode::kMissingValueSurplus;
    } else if (!isValidNumber(numbers.at(i))) {
      return ErrorCode::kNumberNotValid;
    } else {
      made.numbers.at(i) = numbers.at(i);
    }
  }
  if (isRange && numbers[0] > numbers[1]) return ErrorCode::kMissingRangeReversed;
  *missing = std::move(made);
  return ErrorCode::kNone;
}

ErrorCode makeMissing(const Variable& variable, int kind, const std::array<std::string, kMostMissing>& texts,
                      MissingValues* missing) {
  if (variable.isNumeric()) return ErrorCode::kWrongKind;
  if (kind < kNoMissing || kind > kThreeMissing) return ErrorCode::kMissingKindOutOfRange;
  const auto longest = static_cast<std::size_t>(std::min(variable.width, kMissingTextBytes));
  MissingValues made;
  made.kind = kind;
  for (std::size_t i = 0; i < kMostMissing; ++i) {
    const std::string_view text = withoutEndBlanks(texts.at(i));
    if (i >= static_cast<std::size_t>(kind)) {
      if (!text.empty()) return ErrorCode::kMissingValueSurplus;
    } else if (text.size() > longest) {
      return ErrorCode::kMissingValueTooLong;
    } else {
      made.texts.at(i) = text;
    }
  }
  *missing = std::move(made);
  return ErrorCode::kNone;
}

ErrorCode changeType(DataSet* dataSet, std::size_t position, int type) {
  if (type < 0 || type > kWidestString) return ErrorCode::kTypeOutOfRange;
  const Variable& variable = dataSet->variables[position];
  if (type == variable.width) return ErrorCode::kNone;
  if (isBound(*dataSet, variable, type)) return ErrorCode::kVariableInUse;
  if (!dataSet->cases.mayChangeWidth(position, type)) return ErrorCode::kOutOfMemory;
  const bool changesKind = variable.isNumeric() || type == 0;
  Variable changed = changesKind ? withKind(variable, type) : withWidth(variable, type);
  dataSet->cases.changeWidth(position, type);
  dataSet->variables.change(position) = std::move(changed);
  return ErrorCode::kNone;
}

ErrorCode checkNewVariables(const DataSet& dataSet, const std::vector<NewVariable>& variables) {
  std::unordered_set<std::string_view, NameHash, NameEqual> names;
  for (const NewVariable& variable : variables) {
    const ErrorCode code = checkVariableName(variable.name);
    if (code != ErrorCode::kNone) return code;
    if (variable.type < 0 || variable.type > kWidestString) return ErrorCode::kTypeOutOfRange;
    if (dataSet.variables.find(variable.name) || !names.insert(variable.name).second) return ErrorCode::kNameTaken;
  }
  return ErrorCode::kNone;
}

ErrorCode insertVariables(DataSet* dataSet, std::size_t position, const std::vector<NewVariable>& variables) {
  const ErrorCode code = checkNewVariables(*dataSet, variables);
  if (code != ErrorCode::kNone) return code;
  std::vector<Variable> made;
  std::vector<int> widths;
  for (const NewVariable& one : variables) {
    Variable variable;
    variable.name = one.name;
    made.push_back(one.type == 0 ? std::move(variable) : withKind(std::move(variable), one.type));
    widths.push_back(one.type);
  }
  if (!dataSet->cases.mayInsertVariables(widths)) return ErrorCode::kOutOfMemory;
  dataSet->variables.insert(position, std::move(made));
  try {
    dataSet->cases.insertVariables(position, widths);
  } catch (...) {
    for (std::size_t i = 0; i < widths.size(); ++i) dataSet->variables.erase({&position, 1});
    throw;
  }
  return ErrorCode::kNone;
}

// What may fail comes first. What the data set names and does not have any more was deleted.
void deleteVariables(DataSet* dataSet, std::span<const std::size_t> positions) {
  dataSet->cases.eraseVariables(positions);
  dataSet->variables.erase(positions);
  const auto isDeleted = [dataSet](const std::string& name) { return !dataSet->variables.find(name); };
  if (isDeleted(dataSet->weight)) dataSet->weight.clear();
  if (isDeleted(dataSet->filter)) dataSet->filter.clear();
  std::erase_if(dataSet->split, isDeleted);
  std::erase_if(dataSet->responseSets, [&](ResponseSet& set) {
    std::erase_if(set.variables, isDeleted);
    return set.variables.size() < kFewestOfSet;
  });
}

ErrorCode renameVariable(DataSet* dataSet, std::size_t position, const std::string& name) {
  const ErrorCode code = checkVariableName(name);
  if (code != ErrorCode::kNone) return code;
  if (dataSet->variables.find(name).value_or(position) != position) return ErrorCode::kNameTaken;
  const std::string old = dataSet->variables[position].name;
  DataSet renamed;
  renamed.weight = dataSet->weight;
  renamed.filter = dataSet->filter;
  renamed.split = dataSet->split;
  renamed.responseSets = dataSet->responseSets;
  const auto follow = [&](std::string& other) {
    if (sameName(other, old)) other = name;
  };
  follow(renamed.weight);
  follow(renamed.filter);
  for (std::string& variable : renamed.split) follow(variable);
  for (ResponseSet& set : renamed.responseSets) std::for_each(set.variables.begin(), set.variables.end(), follow);
  dataSet->variables.rename(position, name);
  dataSet->weight.swap(renamed.weight);
  dataSet->filter.swap(renamed.filter);
  dataSet->split.swap(renamed.split);
  dataSet->responseSets.swap(renamed.responseSets);
  return ErrorCode::kNone;
}

}  // namespace kova::engine
