// The commands about the engine itself: set, show, begin, help.
#include <algorithm>
#include <string>

#include "engine/command_table.h"
#include "engine/data_problem.h"
#include "engine/expression_functions.h"
#include "engine/near_name.h"
#include "engine/settings.h"
#include "engine/table_writer.h"
#include "engine/text_rules.h"

namespace kova::engine {
namespace {

constexpr int kMostNested = 32;  // Blocks inside one another; each takes threads and pipes of its own.

void set(EngineState& state, CommandTokens& tokens) {
  tokens.expectWord("output");
  const Token& item = tokens.peek();
  if (tokens.takeWord("language")) {
    const Token& token = tokens.peek();
    const std::string language = tokens.expectText("a language in quotes");
    tokens.expectEnd();
    tokens.require(changeOutputLanguage(&state, language), token);
  } else if (tokens.takeWord("width")) {
    const Token& token = tokens.peek();
    const double width = tokens.expectNumber("a number of characters");
    tokens.expectEnd();
    if (changeOutputWidth(&state, width) == ErrorCode::kNone) return;
    throw CommandProblem(ErrorCode::kOutputNumberOutOfRange, token.offset, "A line of output can not be so wide.",
                         "Give a whole number of 20 to 1000.");
  } else {
    throw CommandProblem(ErrorCode::kNoSuchSetting, item.offset, "There is no such setting that can be set.",
                         "Set output language or output width; show lists all settings.");
  }
}

void showAll(EngineState* state, const CommandTokens& tokens) {
  requireNoProcedure(*state, tokens);
  TableWriter writer(&state->output.log, "Settings");
  writer.startTable({"Settings", "Settings", "Settings", false}, "Setting", "Property");
  for (const Setting& one : allSettings(*state)) {
    writer.cell(textValue(one.item + " " + one.subItem), "Value", textValue(one.value));
  }
  writer.end();
}

void show(EngineState& state, CommandTokens& tokens) {
  if (tokens.isAtEnd()) return showAll(&state, tokens);
  const Token& item = tokens.expectName("a setting");
  const Token& subItem = tokens.expectName("the second word of the setting");
  tokens.expectEnd();
  const auto value = settingOf(state, item.source, subItem.source);
  const std::string name = std::string(item.source) + " " + std::string(subItem.source);
  if (!value) {
    throw CommandProblem(ErrorCode::kNoSuchSetting, item.offset, "There is no setting " + quotedText(name) + ".",
                         "Submit show; it lists them.");
  }
  state.output.log.post(name + ": " + *value);
}

[[noreturn]] void refuseBlock(const Token& token, const std::string& language) {
  throw CommandProblem(ErrorCode::kSyntaxNotCarriedOut, token.offset,
                       "This engine runs no blocks in " + language + ", nor in any other language.",
                       "Run the script inside the engine: kovadx run --language " + language + ".");
}

// Small codes are a block's own. The others are those of a call that failed in it, or tell why it was not run.
void checkBlock(const Token& token, const Block& block, int code) {
  constexpr int kFirstOfTable = 98000;
  if (code == 0) return;
  const bool isKnown = code >= kFirstOfTable && *errorName(code) != '\0';
  const std::string happened = "The block in " + block.language + " ended with the code " + std::to_string(code);
  throw CommandProblem(static_cast<ErrorCode>(code), token.offset,
                       happened + (isKnown ? ": " + std::string(errorMeaning(code)) : "."),
                       isKnown ? errorAdvice(code) : "See what it has put out.");
}

// Other requests may change the state while the block runs.
void begin(EngineState& state, CommandTokens& tokens) {
  const Token& token = tokens.first();
  if (!tokens.block()) {
    throw CommandProblem(ErrorCode::kSyntaxNotValid, token.offset, "A block does not begin so.",
                         "Write begin LANGUAGE on a line of its own, and end LANGUAGE behind the block's lines.");
  }
  const Block& block = *tokens.block();
  if (!state.runBlock) refuseBlock(token, block.language);
  if (state.nestDepth >= kMostNested) tokens.require(ErrorCode::kSyntaxNestedTooDeep);
  ++state.nestDepth;
  int code = 0;
  try {
    code = state.runBlock(block.language, block.lines);
  } catch (...) {
    --state.nestDepth;
    throw;
  }
  --state.nestDepth;
  checkBlock(token, block, code);
}

std::string padded(std::string_view text, std::size_t width) {
  return std::string(text) + std::string(width - std::min(width, text.size()), ' ');
}

// A line for each: how it is written, and the first sentence of what it does.
std::string helpForAll() {
  std::string text = "Commands; each ends with a semicolon. help COMMAND tells more, help functions lists functions.";
  for (const CommandRow& row : commandTable()) {
    text += "\n  " + padded(row.name, 14) + std::string(row.help.substr(0, row.help.find(". ") + 1));
    if (row.help.find(". ") == std::string_view::npos) text += row.help;
  }
  return text;
}

std::string helpForFunctions() {
  std::string text = "Functions of expressions:";
  for (const FunctionRow& row : expressionFunctions()) {
    text += "\n  " + padded(row.syntax, 34) + std::string(row.help);
  }
  return text;
}

[[noreturn]] void refuseHelp(const Token& token) {
  NearName near(token.source);
  for (const CommandRow& row : commandTable()) near.look(row.name);
  throw CommandProblem(ErrorCode::kSyntaxCommandUnknown, token.offset,
                       "There is no help for " + quotedText(token.source) + ".",
                       near.found().empty() ? "Submit help; it lists the commands."
                                            : "Did you mean " + near.found() + "? Submit help; it lists the commands.");
}

// A command and a function may have the same name.
std::string helpFor(const Token& token) {
  if (sameName(token.source, "functions")) return helpForFunctions();
  std::string text;
  const auto tell = [&text](const auto* row) {
    if (row == nullptr) return;
    text += (text.empty() ? "" : "\n") + std::string(row->syntax) + "\n  " + std::string(row->help);
  };
  tell(findCommand(token.source));
  tell(findFunction(token.source));
  if (text.empty()) refuseHelp(token);
  return text;
}

void help(EngineState& state, CommandTokens& tokens) {
  const bool isForAll = tokens.isAtEnd();
  const std::string text = isForAll ? helpForAll() : helpFor(tokens.expectName("the name of a command"));
  tokens.expectEnd();
  state.output.log.post(text);
}

constexpr CommandRow kRows[] = {
    {"set", "set output width NUMBER | output language \"LANGUAGE\"", "Changes a setting.", set},
    {"show", "show [SETTING]", "Shows a setting, such as output width, or all settings as a table.", show},
    {"begin", "begin LANGUAGE, the lines of the block, end LANGUAGE",
     "Runs a block in another language. Both begin and end stand on lines of their own.", begin},
    {"help", "help [COMMAND | FUNCTION | functions]", "Lists the commands, or tells how one is written.", help},
};

}  // namespace

std::span<const CommandRow> sessionCommands() { return kRows; }

}  // namespace kova::engine
