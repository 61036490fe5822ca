// The commands for data sets as such: open, save, use, close.
#include <utility>

#include "engine/case_selection.h"
#include "engine/command_table.h"
#include "engine/command_variables.h"
#include "engine/data_package.h"
#include "engine/data_package_writer.h"
#include "engine/data_problem.h"
#include "engine/data_set_access.h"
#include "engine/data_set_rules.h"

namespace kova::engine {
namespace {

// The name that a data set of that file may have: its own when nothing speaks against it.
std::string nameFor(const EngineState& state, const DataSet& dataSet) {
  const ErrorCode code = checkDataSetName(state, dataSet.name);
  return code == ErrorCode::kNone || code == ErrorCode::kDataSetExists ? dataSet.name : freeDataSetName(state);
}

void requireFreeName(const EngineState& state, const std::string& name, const Token& token, CommandTokens* tokens) {
  if (checkDataSetName(state, name) == ErrorCode::kDataSetExists) {
    throw CommandProblem(ErrorCode::kDataSetExists, token.offset,
                         "A data set " + quotedText(name) + " is open already.",
                         "Close it first, or give this one another name: open \"PATH\" as NAME.");
  }
  tokens->require(checkDataSetName(state, name), token);
}

void open(EngineState& state, CommandTokens& tokens) {
  const Token& pathToken = tokens.peek();
  const std::string path = tokens.expectText("the path of a data package in quotes");
  const Token& nameToken = tokens.takeWord("as") ? tokens.expectName("a name for the data set") : pathToken;
  tokens.expectEnd();
  const bool isNamed = nameToken.kind == TokenKind::kWord;
  if (isNamed) requireFreeName(state, std::string(nameToken.source), nameToken, &tokens);
  DataSet dataSet;
  std::string problem;
  if (!readDataPackage(path, &dataSet, &problem)) {
    throw CommandProblem(ErrorCode::kDataFileNotReadable, pathToken.offset,
                         "The data package " + quotedText(path) + " can not be read: " + problem + ".",
                         "Check the path and the files.");
  }
  dataSet.name = isNamed ? std::string(nameToken.source) : nameFor(state, dataSet);
  requireFreeName(state, dataSet.name, nameToken, &tokens);
  state.active = addDataSet(&state, std::move(dataSet));
}

void save(EngineState& state, CommandTokens& tokens) {
  const Token& pathToken = tokens.peek();
  const std::string path = tokens.expectText("the path of the file to be written in quotes");
  const bool takesSelected = tokens.takeWord("selected");
  tokens.expectEnd();
  const DataSet& dataSet = commandDataSet(state, tokens);
  const CaseSelection selection(dataSet);
  FileSystem files;
  std::string problem;
  const bool takesAll = !takesSelected || selection.takesAll();
  const ErrorCode code = writeDataPackage(dataSet, takesAll ? CasePick() : CasePick(selection), path, files, &problem);
  if (code == ErrorCode::kNone) return;
  // The problem says already what to do.
  throw CommandProblem(code, pathToken.offset, "The data can not be saved: " + problem + ".",
                       "What was there before is left as it was.");
}

DataSet* expectDataSet(const EngineState& state, CommandTokens* tokens) {
  const Token& token = tokens->expectName("the name of a data set");
  DataSet* dataSet = nullptr;
  if (findNamed(state, token.source, &dataSet) == ErrorCode::kNone) return dataSet;
  throw CommandProblem(ErrorCode::kNoSuchDataSet, token.offset,
                       "There is no data set " + quotedText(token.source) + ".",
                       "Open one: open \"datapackage.json\".");
}

void use(EngineState& state, CommandTokens& tokens) {
  DataSet* const dataSet = expectDataSet(state, &tokens);
  tokens.expectEnd();
  state.active = dataSet;
}

void close(EngineState& state, CommandTokens& tokens) {
  DataSet* const dataSet = tokens.isAtEnd() ? &commandDataSet(state, tokens) : expectDataSet(state, &tokens);
  tokens.expectEnd();
  tokens.require(closeDataSet(&state, dataSet));
}

constexpr CommandRow kRows[] = {
    {"open", "open \"PATH\" [as NAME]",
     "Reads a data package, a descriptor or the folder it lies in, and makes it the active data set.", open},
    {"save", "save \"PATH\" [selected]",
     "Writes the active data set as a data package: the descriptor to the path, the table beside it. With selected the "
     "cases that the filter selects alone.",
     save},
    {"use", "use NAME", "Makes an open data set the active one.", use},
    {"close", "close [NAME]", "Closes a data set, the active one without a name. Nothing is saved.", close},
};

}  // namespace

std::span<const CommandRow> dataCommands() { return kRows; }

}  // namespace kova::engine
