// The commands that make tables: frequencies, descriptives, list, variables.
#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "engine/case_cursor.h"
#include "engine/case_summary.h"
#include "engine/command_table.h"
#include "engine/command_variables.h"
#include "engine/missing_values.h"
#include "engine/output_variable.h"
#include "engine/table_writer.h"

namespace kova::engine {
namespace {

constexpr std::size_t kMostRows = 10'000;    // Of a table; more than anybody reads.
constexpr std::size_t kMostGroups = 1'000;   // Of a split.
constexpr std::size_t kMostInAll = 100'000;  // Rows of all tables of a command.
constexpr std::size_t kMostCells = 1'000'000;
constexpr std::size_t kUsualList = 100;  // Cases of a list that says no number.

constexpr NumberStyle kCount{"Count", {FormatType::kF, kWidestNumber, 0}, SmallAmount::kAsZero};
constexpr NumberStyle kWeightedCount{"Count", {FormatType::kF, kWidestNumber, 2}, SmallAmount::kAsZero};
constexpr NumberStyle kPercent{"PercentNoSign", {FormatType::kF, kWidestNumber, 1}, SmallAmount::kAsZero};

// Weights may be any numbers; their sums are shown without decimals when they have none.
OutputValue countValue(double count) {
  return numberValue(count, count == std::floor(count) ? kCount : kWeightedCount);
}

[[noreturn]] void refuseSize(const CommandTokens& tokens, const std::string& what) {
  throw CommandProblem(ErrorCode::kTableTooLarge, tokens.first().offset, what,
                       errorAdvice(static_cast<int>(ErrorCode::kTableTooLarge)));
}

void requireRoom(const CommandTokens& tokens, std::size_t rows) {
  if (rows > kMostInAll) refuseSize(tokens, "The tables have more than " + std::to_string(kMostInAll) + " rows.");
}

// Shows each selected case to `visit`, and calls `endGroup` behind each group of the split.
void forEachCase(DataSet* dataSet, const CommandTokens& tokens, const std::function<void(std::size_t)>& visit,
                 const std::function<void()>& endGroup) {
  const CaseSelection selection(*dataSet);
  CaseCursor cursor(dataSet, CaseCursor::Access::kRead);
  std::size_t groups = 0;
  for (CaseCursor::Batch batch; batch.code != ErrorCode::kEndOfCases;) {
    batch = cursor.nextBatch(dataSet->cases.caseCount() + 1);
    for (std::size_t i = batch.begin; i < batch.end; ++i) {
      if (selection(i)) visit(i);
    }
    if (++groups > kMostGroups) {
      refuseSize(tokens, "The split has more than " + std::to_string(kMostGroups) + " groups.");
    }
    endGroup();
  }
}

void noteSelection(const DataSet& dataSet, TableWriter* writer) {
  if (!dataSet.filter.empty()) writer->note("Cases selected by " + dataSet.filter + ".");
  if (!dataSet.weight.empty()) writer->note("Weighted by " + dataSet.weight + ".");
}

std::vector<std::size_t> expectTableVariables(const DataSet& dataSet, CommandTokens* tokens) {
  std::vector<std::size_t> variables = expectVariables(dataSet.variables, tokens);
  tokens->expectEnd();
  return variables;
}

// A table's title: the variable as people read it.
std::string titleOf(const Variable& variable) { return variable.label.empty() ? variable.name : variable.label; }

// The two zeros make one category of a table, so the second one goes by a text.
OutputValue rowValue(const Variable& variable, const ValueCounts::Row& row) {
  if (row.missing == Missing::kSystem) return textValue("No value");
  if (row.number == 0 && std::signbit(row.number)) return textValue("-0");
  return variable.isNumeric() ? variableNumberValue(variable, row.number) : variableTextValue(variable, row.text);
}

// The parts of all cases, and of those with a value.
void writeCounts(const Variable& variable, const std::vector<ValueCounts::Row>& rows, TableWriter* writer) {
  double all = 0;
  double valid = 0;
  for (const ValueCounts::Row& row : rows) {
    all += row.weight;
    if (row.missing == Missing::kNone) valid += row.weight;
  }
  writer->startTable({variable.name, titleOf(variable), "Frequencies", true}, "Value", "Statistics");
  double running = 0;
  for (const ValueCounts::Row& row : rows) {
    const OutputValue name = rowValue(variable, row);
    writer->cell(name, "Count", countValue(row.weight));
    writer->cell(name, "Percent", numberValue(all > 0 ? 100 * row.weight / all : kSystemMissing, kPercent));
    if (row.missing == Missing::kUser) writer->noteRow("Counts as missing.");
    if (row.missing != Missing::kNone) continue;
    running += row.weight;
    writer->cell(name, "Percent of valid",
                 numberValue(valid > 0 ? 100 * row.weight / valid : kSystemMissing, kPercent));
    writer->cell(name, "Running percent", numberValue(valid > 0 ? 100 * running / valid : kSystemMissing, kPercent));
  }
  writer->cell(textValue("Total"), "Count", countValue(all));
  writer->cell(textValue("Total"), "Percent", numberValue(all > 0 ? 100.0 : kSystemMissing, kPercent));
  writer->cell(textValue("Total"), "Percent of valid", numberValue(valid > 0 ? 100.0 : kSystemMissing, kPercent));
}

// Everything is counted before the first table is made, so that a refusal leaves no output.
void frequencies(EngineState& state, CommandTokens& tokens) {
  DataSet& dataSet = commandDataSet(state, tokens);
  const std::vector<std::size_t> variables = expectTableVariables(dataSet, &tokens);
  requireNoProcedure(state, tokens);
  std::vector<ValueCounts> empty;
  for (const std::size_t variable : variables) empty.emplace_back(dataSet.variables[variable]);
  std::size_t rowsInAll = 0;
  std::vector<ValueCounts> counts = empty;
  std::vector<std::vector<std::vector<ValueCounts::Row>>> groups;
  const CaseWeight weight(dataSet);
  const auto visit = [&](std::size_t position) {
    const double times = weight(position);
    for (std::size_t i = 0; times > 0 && i < variables.size(); ++i) {
      counts[i].add(dataSet.cases, position, variables[i], times);
      if (counts[i].distinct() <= kMostRows) continue;
      refuseSize(tokens, "The variable " + dataSet.variables[variables[i]].name + " has more than " +
                             std::to_string(kMostRows) + " values.");
    }
  };
  const auto endGroup = [&] {
    auto& rows = groups.emplace_back();
    for (const ValueCounts& one : counts) {
      rows.push_back(one.rows());
      rowsInAll += rows.back().size();
    }
    requireRoom(tokens, rowsInAll);
    counts = empty;
  };
  forEachCase(&dataSet, tokens, visit, endGroup);
  TableWriter writer(&state.output.log, "Frequencies");
  noteSelection(dataSet, &writer);
  for (std::size_t group = 0; group < groups.size(); ++group) {
    if (group > 0) writer.nextGroup();
    for (std::size_t i = 0; i < variables.size(); ++i) {
      writeCounts(dataSet.variables[variables[i]], groups[group][i], &writer);
    }
  }
  writer.end();
}

struct Description {
  Moments moments;
  double missing = 0;
};

void writeDescriptions(const DataSet& dataSet, const std::vector<std::size_t>& variables,
                       const std::vector<Description>& descriptions, TableWriter* writer) {
  writer->startTable({"Descriptives", "Descriptives", "Descriptives", true}, "Variable", "Statistics");
  for (std::size_t i = 0; i < variables.size(); ++i) {
    const Variable& variable = dataSet.variables[variables[i]];
    const Moments& moments = descriptions[i].moments;
    const OutputValue name = variableNameValue(variable);
    const NumberStyle own{"Variable", variable.format, SmallAmount::kAsZero};
    const NumberStyle mean{"Mean", withMoreDecimals(variable.format, 2), SmallAmount::kAsZero};
    const NumberStyle deviation{"StdDev", mean.format, SmallAmount::kAsZero};
    writer->cell(name, "Count", countValue(moments.weight()));
    writer->cell(name, "Missing", countValue(descriptions[i].missing));
    writer->cell(name, "Minimum", numberValue(moments.least(), own));
    writer->cell(name, "Maximum", numberValue(moments.most(), own));
    writer->cell(name, "Mean", numberValue(moments.mean(), mean));
    writer->cell(name, "Standard deviation", numberValue(moments.deviation(), deviation));
  }
}

void describe(const DataSet& dataSet, std::size_t position, std::size_t variable, double weight,
              Description* description) {
  const double value = dataSet.cases.number(position, variable);
  if (std::isfinite(value) && missingOf(dataSet.variables[variable], value) == Missing::kNone) {
    description->moments.add(value, weight);
  } else {
    description->missing += weight;
  }
}

void requireNumeric(const DataSet& dataSet, const std::vector<std::size_t>& variables, const CommandTokens& tokens) {
  for (const std::size_t variable : variables) {
    if (dataSet.variables[variable].isNumeric()) continue;
    throw CommandProblem(ErrorCode::kWrongKind, tokens.first().offset,
                         "The variable " + dataSet.variables[variable].name + " holds texts, and numbers are needed.",
                         "Name numeric variables alone; frequencies takes both kinds.");
  }
}

void descriptives(EngineState& state, CommandTokens& tokens) {
  DataSet& dataSet = commandDataSet(state, tokens);
  const std::vector<std::size_t> variables = expectTableVariables(dataSet, &tokens);
  requireNumeric(dataSet, variables, tokens);
  requireNoProcedure(state, tokens);
  std::vector<Description> descriptions(variables.size());
  std::vector<std::vector<Description>> groups;
  const CaseWeight weight(dataSet);
  const auto visit = [&](std::size_t position) {
    const double times = weight(position);
    for (std::size_t i = 0; i < variables.size(); ++i) {
      describe(dataSet, position, variables[i], times, &descriptions[i]);
    }
  };
  const auto endGroup = [&] {
    groups.push_back(std::exchange(descriptions, std::vector<Description>(variables.size())));
    requireRoom(tokens, groups.size() * variables.size());
  };
  forEachCase(&dataSet, tokens, visit, endGroup);
  TableWriter writer(&state.output.log, "Descriptives");
  noteSelection(dataSet, &writer);
  for (std::size_t group = 0; group < groups.size(); ++group) {
    if (group > 0) writer.nextGroup();
    writeDescriptions(dataSet, variables, groups[group], &writer);
  }
  writer.end();
}

// A row for each case, named by its number in the data set.
void writeCase(const DataSet& dataSet, const std::vector<std::size_t>& variables, std::size_t position,
               TableWriter* writer) {
  const OutputValue row = numberValue(static_cast<double>(position + 1));
  for (const std::size_t index : variables) {
    const Variable& variable = dataSet.variables[index];
    writer->cell(row, textValue(variable.name),
                 variable.isNumeric() ? variableNumberValue(variable, dataSet.cases.number(position, index))
                                      : variableTextValue(variable, dataSet.cases.text(position, index)));
  }
}

std::size_t takeListCount(CommandTokens* tokens) {
  const Token& token = tokens->peek();
  if (token.kind != TokenKind::kNumber) return kUsualList;
  const double most = tokens->take().number;
  if (most == std::floor(most) && most >= 1 && most <= kMostRows) return static_cast<std::size_t>(most);
  throw CommandProblem(ErrorCode::kTableTooLarge, token.offset,
                       "A list can not have " + std::string(token.source.substr(0, 40)) + " cases.",
                       "Give a whole number of 1 to " + std::to_string(kMostRows) + ".");
}

void list(EngineState& state, CommandTokens& tokens) {
  DataSet& dataSet = commandDataSet(state, tokens);
  const std::size_t most = takeListCount(&tokens);
  std::vector<std::size_t> variables;
  if (tokens.isAtEnd()) {
    for (std::size_t i = 0; i < dataSet.variables.size(); ++i) variables.push_back(i);
  } else {
    variables = expectTableVariables(dataSet, &tokens);
  }
  requireNoProcedure(state, tokens);
  if (most * variables.size() > kMostCells) {
    refuseSize(tokens, "The list may have more than " + std::to_string(kMostCells) + " cells.");
  }
  const CaseSelection selection(dataSet);
  TableWriter writer(&state.output.log, "List");
  if (!dataSet.filter.empty()) writer.note("Cases selected by " + dataSet.filter + ".");
  writer.startTable({"Cases", "Cases", "List", false}, "Case", "Variable");
  std::size_t shown = 0;
  std::size_t position = 0;
  for (; position < dataSet.cases.caseCount() && shown < most; ++position) {
    if (!selection(position)) continue;
    writeCase(dataSet, variables, position, &writer);
    ++shown;
  }
  while (position < dataSet.cases.caseCount() && !selection(position)) ++position;
  if (position < dataSet.cases.caseCount()) writer.note("More cases follow; list COUNT shows so many.");
  if (shown == 0) writer.text("There are no cases.");
  writer.end();
}

// Values with their labels, as many as a cell should hold.
template <typename Labels>
std::string labelsText(const Labels& labels, const std::function<std::string(std::size_t)>& valueAt) {
  constexpr std::size_t kMostShown = 8;
  std::string text;
  for (std::size_t i = 0; i < labels.size() && i < kMostShown; ++i) {
    text += (i == 0 ? "" : ", ") + valueAt(i) + " " + labels[i].label;
  }
  return labels.size() > kMostShown ? text + ", ..." : text;
}

std::string valueLabelsText(const Variable& variable) {
  if (variable.isNumeric()) {
    return labelsText(variable.numberLabels,
                      [&](std::size_t i) { return shortNumberText(variable.numberLabels[i].value); });
  }
  return labelsText(variable.textLabels, [&](std::size_t i) { return variable.textLabels[i].value; });
}

std::string missingText(const Variable& variable) {
  const MissingValues& missing = variable.missing;
  if (!variable.isNumeric()) {
    std::string text;
    for (std::size_t i = 0; i < static_cast<std::size_t>(missing.kind); ++i) {
      text += (i == 0 ? "" : ", ") + missing.texts.at(i);
    }
    return text;
  }
  const bool isRange = missing.kind < 0;
  const std::size_t count = missing.kind == kMissingRange ? 2 : isRange ? 3 : static_cast<std::size_t>(missing.kind);
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    text += (i == 0 ? "" : i == 1 && isRange ? " to " : ", ") + shortNumberText(missing.numbers.at(i));
  }
  return text;
}

void variables(EngineState& state, CommandTokens& tokens) {
  const DataSet& dataSet = commandDataSet(state, tokens);
  tokens.expectEnd();
  requireNoProcedure(state, tokens);
  requireRoom(tokens, dataSet.variables.size());
  TableWriter writer(&state.output.log, "Variables");
  writer.startTable({dataSet.name, dataSet.name, "Variables", false}, "Variable", "Property");
  for (const Variable& variable : dataSet.variables) {
    const OutputValue name = textValue(variable.name);
    writer.cell(name, "Label", textValue(variable.label));
    writer.cell(name, "Type", textValue(variable.isNumeric() ? "number" : "text of " + std::to_string(variable.width)));
    writer.cell(name, "Format", textValue(formatText(variable.format)));
    writer.cell(name, "Measure", textValue(wordOf(variable.measure)));
    writer.cell(name, "Missing", textValue(missingText(variable)));
    writer.cell(name, "Values", textValue(valueLabelsText(variable)));
  }
  if (dataSet.variables.size() == 0) writer.text("There are no variables.");
  writer.end();
}

constexpr CommandRow kRows[] = {
    {"frequencies", "frequencies VARIABLES", "A table for each variable: how often each of its values occurs.",
     frequencies},
    {"descriptives", "descriptives VARIABLES",
     "A table of numeric variables: count, missing, minimum, maximum, mean and standard deviation.", descriptives},
    {"list", "list [COUNT] [VARIABLES]", "The first cases, 100 without a count, as a table.", list},
    {"variables", "variables", "The variables of the active data set, as a table.", variables},
};

}  // namespace

std::span<const CommandRow> tableCommands() { return kRows; }

}  // namespace kova::engine
