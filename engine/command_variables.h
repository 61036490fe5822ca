// How commands name the data set and its variables. All of these throw CommandProblem.
#ifndef KOVADX_ENGINE_COMMAND_VARIABLES_H
#define KOVADX_ENGINE_COMMAND_VARIABLES_H

#include <cstddef>
#include <vector>

#include "engine/command_tokens.h"
#include "engine/engine_state.h"

namespace kova::engine {

// The data set that commands are about: the active one.
DataSet& commandDataSet(const EngineState& state, const CommandTokens& tokens);

// Refused while a pass over its cases goes on.
void requireAtRest(const EngineState& state, const DataSet& dataSet, const CommandTokens& tokens);

// The position of the variable that a word names; a name near by is told when there is none.
std::size_t positionOfVariable(const Variables& variables, const Token& token);

// Takes the name of a variable, of a numeric one.
std::size_t expectVariable(const Variables& variables, CommandTokens* tokens);
std::size_t expectNumericVariable(const Variables& variables, CommandTokens* tokens);

// Takes one or more names, each variable once: "a b", "a, b", "a to c" for all from a to c in their order, "all".
std::vector<std::size_t> expectVariables(const Variables& variables, CommandTokens* tokens);

}  // namespace kova::engine

#endif
