// The command codes of the protocol as an enumeration, and their names for diagnostics.
#ifndef KOVADX_MESSAGE_COMMANDS_H
#define KOVADX_MESSAGE_COMMANDS_H

#include <cstdint>

#include "export.h"

namespace kova {

// What a message asks for. A received message may carry any 32-bit number here: compare, never index with it.
enum class Command : std::int32_t {
  kNone = -1,
#define KOVA_COMMAND(code, name, request, reply) name = code,
#include "message/commands.def"
#undef KOVA_COMMAND
};

// The name of a code as the exported function has it ("GetVariableCount"), the first of two names where two functions
// share a code, or "" for a code that is not assigned. The text is static.
KOVADX_API const char* commandName(std::int32_t code);

}  // namespace kova

#endif
