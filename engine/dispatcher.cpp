#include "engine/dispatcher.h"

#include <algorithm>
#include <array>
#include <new>
#include <string_view>

#include "engine/attribute_handlers.h"
#include "engine/cell_handlers.h"
#include "engine/control_handlers.h"
#include "engine/cursor_handlers.h"
#include "engine/data_set_handlers.h"
#include "engine/data_step_handlers.h"
#include "engine/dictionary_handlers.h"
#include "engine/dictionary_setters.h"
#include "engine/label_handlers.h"
#include "engine/new_variable_handlers.h"
#include "engine/output_handlers.h"
#include "engine/pivot_handlers.h"
#include "engine/response_set_handlers.h"
#include "engine/session_handlers.h"
#include "engine/socket_handlers.h"
#include "engine/split_handlers.h"
#include "engine/temp_file_handlers.h"
#include "engine/xpath_handlers.h"

namespace kova::engine {
namespace {

constexpr int kCodeLimit = 250;

struct Entry {
  const char* requestItems = nullptr;  // Null when the code is not assigned.
  Handler handler = nullptr;           // Null when the command is not answered.
};

using Table = std::array<Entry, kCodeLimit>;

// Commands whose items of some kinds may be any number, none included: the values of a case, a block of cases.
struct Looser {
  Command command;
  const char* requestItems;
};
constexpr Looser kLooser[] = {
    {Command::CommitCaseRecord, "SSll"}, {Command::CommitNewCase, "SS"},  {Command::CommitManyCases, "sllL"},
    {Command::CommitDataSet, ""},        {Command::SetCaseValue, "sllb"},
};

// The codes with which a reply keeps its items: they tell of an end.
bool keepsItems(ErrorCode code) {
  return code == ErrorCode::kNone || code == ErrorCode::kEndOfCases || code == ErrorCode::kEndOfSplitGroup;
}

// Two commands share a code; the first row's items stand for both.
Table makeTable() {
  Table table;
  const auto assign = [&table](int code, const char* items) {
    Entry& entry = table.at(static_cast<std::size_t>(code));
    if (entry.requestItems == nullptr) entry.requestItems = items;
  };
#define KOVA_COMMAND(code, name, request, reply) assign(code, request);
#include "message/commands.def"
#undef KOVA_COMMAND
  for (const Looser& row : kLooser) table.at(static_cast<std::size_t>(row.command)).requestItems = row.requestItems;
  for (const auto rows :
       {controlHandlers(), dictionaryHandlers(), dictionarySetters(), labelHandlers(), cursorHandlers(),
        attributeHandlers(), responseSetHandlers(), sessionHandlers(), socketHandlers(), splitHandlers(),
        outputHandlers(), pivotHandlers(), cellHandlers(), dataSetHandlers(), dataStepHandlers(), xpathHandlers(),
        newVariableHandlers(), tempFileHandlers()}) {
    for (const HandlerRow& row : rows) table.at(static_cast<std::size_t>(row.command)).handler = row.handler;
  }
  return table;
}

ErrorCode perform(EngineState& state, const CleXDSmb& request, CleXDSmb& reply) {
  static const Table table = makeTable();
  const int code = static_cast<int>(request.GetCommandAction());
  if (code < 0 || code >= kCodeLimit) return ErrorCode::kUnknownCommand;
  const Entry& entry = table[static_cast<std::size_t>(code)];
  if (entry.requestItems == nullptr) return ErrorCode::kUnknownCommand;
  if (entry.handler == nullptr) return ErrorCode::kCommandNotAnswered;
  if (!hasItems(request, entry.requestItems)) return ErrorCode::kMalformedRequest;
  return entry.handler(state, request, reply);
}

ErrorCode performGuarded(EngineState& state, const CleXDSmb& request, CleXDSmb& reply) noexcept {
  try {
    return perform(state, request, reply);
  } catch (const std::bad_alloc&) {
    return ErrorCode::kOutOfMemory;
  } catch (...) {
    return ErrorCode::kInternalFailure;
  }
}

}  // namespace

void dispatch(EngineState& state, const CleXDSmb& request, CleXDSmb& reply) noexcept {
  const ErrorCode code = performGuarded(state, request, reply);
  if (!keepsItems(code)) reply.CleanUpAllData();
  reply.SetCommandAction(request.GetCommandAction());
  reply.SetErrorCode(static_cast<int>(code));
}

bool hasItems(const CleXDSmb& request, const char* letters) {
  const std::string_view items = letters;
  const auto asked = [items](char letter) { return static_cast<int>(std::count(items.begin(), items.end(), letter)); };
  const auto held = [](std::size_t count) { return static_cast<int>(count); };
  int blockLength = 0;
  request.GetVoidData(blockLength);
  return request.Longs().Size() >= asked('l') && request.Doubles().Size() >= asked('d') &&
         request.Strings().Size() >= asked('s') && request.Structs().Size() >= asked('c') &&
         held(request.LongArrays().size()) >= asked('L') && held(request.DoubleArrays().size()) >= asked('D') &&
         held(request.StringArrays().size()) >= asked('S') && (asked('b') == 0 || blockLength > 0);
}

}  // namespace kova::engine
