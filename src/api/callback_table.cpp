#include "api/callback_table.h"

#include <cstddef>
#include <cstdint>

#include "api/kovadx.h"

namespace kova {
namespace {

using Function = void (*)();

// In the order of their names.
const Function kFunctions[] = {
#define KOVA_CALLBACK(name) reinterpret_cast<Function>(&::name),
#include "api/callback_table.def"
#undef KOVA_CALLBACK
};

struct CallbackTable {
  std::uint32_t size = sizeof(CallbackTable);
  std::uint32_t version = 1;
  std::uint64_t count = sizeof kFunctions / sizeof kFunctions[0];
  const Function* functions = kFunctions;
};

CallbackTable theTable;

}  // namespace

void* callbackTable() { return &theTable; }

}  // namespace kova
