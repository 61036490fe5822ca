// The commands that submitted text is made of: each with its name, how it is written, what it does, and the function
// that does it. docs/commands.md describes them to users.
#ifndef KOVADX_ENGINE_COMMAND_TABLE_H
#define KOVADX_ENGINE_COMMAND_TABLE_H

#include <span>
#include <string_view>
#include <vector>

#include "engine/command_tokens.h"
#include "engine/engine_state.h"

namespace kova::engine {

// Carries out a command whose name is taken already, or throws CommandProblem. Until all of the command is read nothing
// is changed.
using PerformCommand = void (*)(EngineState& state, CommandTokens& tokens);

struct CommandRow {
  std::string_view name;
  std::string_view syntax;  // Capitals stand for what the user puts in their place; brackets for what may be left out.
  std::string_view help;    // A sentence or more.
  PerformCommand perform;
};

// Every command, in the order of the help.
const std::vector<CommandRow>& commandTable();

// Null when there is none of this name. Upper and lower case are the same.
const CommandRow* findCommand(std::string_view name);

// The commands by family.
std::span<const CommandRow> dataCommands();
std::span<const CommandRow> transformCommands();
std::span<const CommandRow> dictionaryCommands();
std::span<const CommandRow> tableCommands();
std::span<const CommandRow> sessionCommands();

}  // namespace kova::engine

#endif
