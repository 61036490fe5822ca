// The call frame: the one mechanism of every call of the engine. An exported function names its command, its arguments
// and the places of its results, and the frame holds the conversation:
//
//   int GetVariableType(int index, int* errorCode) {
//     return Ask<int>(Command::GetVariableType, errorCode, Long{index});
//   }
//   int GetSystemMissingValue(double* value) { return Tell(Command::GetSystemMissingValue, IntoDouble{value}); }
//
// Arguments stand in the order in which they travel, results behind them. Nothing throws out of here.
//
// The frame takes no lock: a nested run calls on a second thread, with the next pipe set, while an outer call waits for
// its reply. Callers that share a pipe set take turns.
#ifndef KOVADX_API_CALL_FRAME_H
#define KOVADX_API_CALL_FRAME_H

#include <array>
#include <span>

#include "api/call_arguments.h"
#include "api/call_results.h"
#include "api/client_state.h"
#include "message/CleXDSmb.h"

namespace kova {

constexpr int kInvalidAnswer = 13;  // A whole reply whose numbers can not be.
constexpr int kEngineNotRunning = 17;
constexpr int kEndOfCases = 23;       // The engine's code with the last cases of the data, or without any.
constexpr int kEndOfSplitGroup = 67;  // The same of a split group.

// What the engine's own code in a whole reply means to the call. kTellsTheEnd: the two codes above end it with that
// code, but what came with them is unpacked.
enum class EngineCode { kEndsTheCall, kIgnored, kTellsTheEnd };

// What differs from call to call.
struct Manner {
  EngineCode engineCode = EngineCode::kEndsTheCall;
  bool waitsWhenUnsent = true;
};

// A reference to one item of a call, without its type, so that the conversation is compiled once and not once a
// function. `append` or `take` is null where the item has none.
struct CallItem {
  const void* object;
  void (*append)(const void* object, CleXDSmb& request);
  void (*take)(const void* object, CleXDSmb& reply);
};

// The whole conversation of one call: packs the request, sends it, waits for the reply and, when all went well, unpacks
// it. Result: 0; 99104 at once when there are no pipes; 8 when memory runs out; else the transport's or the engine's
// code. *errorCode (may be null) gets the code as it stands after sending, after receiving and at the end.
//
// Where the engine's code is ignored, the result is the transport's alone, and what came with the code is unpacked.
//
// Deliberate: when the request can not be sent - after 20 attempts, 100 ms apart, to open its pipe - the call still
// waits for a reply, without limit, unless its manner is another.
int Exchange(Command command, std::span<const CallItem> items, int* errorCode, Manner manner = {}) noexcept;

template <class Item>
CallItem itemOf(const Item& item) {
  CallItem result{&item, nullptr, nullptr};
  if constexpr (requires(CleXDSmb & request) { item.append(request); }) {
    result.append = [](const void* object, CleXDSmb& request) { static_cast<const Item*>(object)->append(request); };
  }
  if constexpr (requires(CleXDSmb & reply) { item.take(reply); }) {
    result.take = [](const void* object, CleXDSmb& reply) { static_cast<const Item*>(object)->take(reply); };
  }
  return result;
}

// The conversation, whether or not the engine is marked as running.
template <class... Items>
int Send(Command command, int* errorCode, const Items&... items) {
  const std::array<CallItem, sizeof...(Items)> list{itemOf(items)...};
  return Exchange(command, list, errorCode);
}

// The same, but 17 at once when the engine is not running.
template <class... Items>
int SendWhenRunning(Command command, int* errorCode, const Items&... items) {
  if (IsEngineRunning()) return Send(command, errorCode, items...);
  if (errorCode) *errorCode = kEngineNotRunning;
  return kEngineNotRunning;
}

// A call of the status shape.
template <class... Items>
int Tell(Command command, const Items&... items) {
  return SendWhenRunning(command, nullptr, items...);
}

// The conversation of a call that differs from the others.
template <class... Items>
int SendInManner(Manner manner, Command command, int* errorCode, const Items&... items) {
  const std::array<CallItem, sizeof...(Items)> list{itemOf(items)...};
  return Exchange(command, list, errorCode, manner);
}

// The conversation of the few functions that take what the reply holds whatever the engine's own code is. For them a
// reply that was cut short is a failure of the transport, since no other code would tell.
template <class... Items>
int Fetch(Command command, int* errorCode, const Items&... items) {
  return SendInManner({EngineCode::kIgnored}, command, errorCode, items...);
}

// A question to a running engine: true when its answer is a number other than 0, false on any error.
bool Affirmed(Command command);

// The code of a call just made, or, when that is 0, why its reply came short of its end. For answers that must be
// whole: what is missing from a reply reads as zeros, and no other code would tell.
inline int WhenWhole(int code) { return code != 0 ? code : LastReceiveStatus(); }

// A call of the value shape: the reply's value, 0 or null when the call failed. It goes to the engine whether or not
// that is marked as running.
template <class Result, class... Items>
Result Ask(Command command, int* errorCode, const Items&... items) {
  Result value{};
  const Returned<Result> returned{&value};
  const std::array<CallItem, sizeof...(Items) + 1> list{itemOf(items)..., itemOf(returned)};
  if (Exchange(command, list, errorCode) == 0) return value;
  returned.drop();
  return Result{};
}

}  // namespace kova

#endif
