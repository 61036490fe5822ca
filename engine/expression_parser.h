// Reads expressions. Loosest first, the operators are: or; and; not; = != < <= > >= (one of them between two values);
// + -; * /; a sign in front; ^, which takes its right side first.
#ifndef KOVADX_ENGINE_EXPRESSION_PARSER_H
#define KOVADX_ENGINE_EXPRESSION_PARSER_H

#include "engine/command_tokens.h"
#include "engine/expression.h"
#include "engine/variables.h"

namespace kova::engine {

// Takes as much as belongs to the expression. Throws CommandProblem, also for one that is nested too deeply or too
// long.
Expression parseExpression(const Variables& variables, CommandTokens* tokens);

// The same; it must be a number, which a condition is.
Expression parseCondition(const Variables& variables, CommandTokens* tokens);

}  // namespace kova::engine

#endif
