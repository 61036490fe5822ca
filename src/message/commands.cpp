#include "message/commands.h"

namespace kova {
namespace {

struct CommandName {
  std::int32_t code;
  const char* name;
};

constexpr CommandName kNames[] = {
#define KOVA_COMMAND(code, name, request, reply) {code, #name},
#include "message/commands.def"
#undef KOVA_COMMAND
};

}  // namespace

const char* commandName(std::int32_t code) {
  for (const CommandName& entry : kNames) {
    if (entry.code == code) return entry.name;
  }
  return "";
}

}  // namespace kova
