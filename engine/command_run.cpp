#include "engine/command_run.h"

#include <algorithm>

#include "engine/command_table.h"
#include "engine/data_problem.h"
#include "engine/near_name.h"
#include "engine/text_file.h"

namespace kova::engine {
namespace {

void checkBytes(std::string_view text) {
  const std::size_t nul = text.find('\0');
  const std::size_t invalid = findInvalidUtf8(text);
  if (invalid < nul) throw CommandProblem(ErrorCode::kTextNotUtf8, invalid);
  if (nul != std::string_view::npos) throw CommandProblem(ErrorCode::kTextWithNul, nul);
}

void checkCut(std::string_view text) {
  CommandReader reader(text);
  CommandText command;
  while (reader.next(&command)) {
  }
}

[[noreturn]] void refuseUnknown(const Token& token) {
  NearName near(token.source);
  for (const CommandRow& row : commandTable()) near.look(row.name);
  throw CommandProblem(ErrorCode::kSyntaxCommandUnknown, token.offset,
                       "There is no command " + quotedText(token.source) + ".",
                       near.found().empty() ? "Submit help; it lists the commands."
                                            : "Did you mean " + near.found() + "? Submit help; it lists the commands.");
}

void perform(EngineState* state, const CommandText& command) {
  const Token& first = command.tokens.front();
  const CommandRow* const row = first.kind == TokenKind::kWord ? findCommand(first.source) : nullptr;
  if (row == nullptr) refuseUnknown(first);
  CommandTokens tokens(command, row->syntax);
  tokens.take();
  row->perform(*state, tokens);
}

}  // namespace

ErrorCode runCommands(EngineState* state, std::string_view text) {
  try {
    checkBytes(text);
    checkCut(text);
    CommandReader reader(text);
    CommandText command;
    while (reader.next(&command)) perform(state, command);
    return ErrorCode::kNone;
  } catch (const CommandProblem& problem) {
    state->output.log.post(problem.lineFor(text));
    return problem.code();
  }
}

}  // namespace kova::engine
