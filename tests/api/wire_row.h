// One row of the wire table: a remote function of the client interface, what a call of it sends, and what becomes of
// each kind of reply. The rows stand in one file a family; wire_test.cpp runs them all.
#ifndef KOVADX_TESTS_API_WIRE_ROW_H
#define KOVADX_TESTS_API_WIRE_ROW_H

#include <cstdlib>
#include <functional>
#include <ostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "api/caller_memory.h"
#include "tests/api/client_test.h"

namespace kova::wire {

// What the outputs of a call hold before it, to see which are stored.
constexpr int kUntouched = -77;

// ---- What a call has come to: its code (0 for a function without one) and all its results as one text.

struct Outcome {
  int code;
  std::string results;

  bool operator==(const Outcome&) const = default;
  friend void PrintTo(const Outcome& outcome, std::ostream* out) { *out << outcome.code << ": " << outcome.results; }
};

inline std::string shown(int value) { return std::to_string(value); }
inline std::string shown(bool value) { return value ? "true" : "false"; }
inline std::string shown(double value) {
  std::ostringstream text;
  text << value;
  return text.str();
}
inline std::string shown(const char* text) { return text ? "'" + std::string(text) + "'" : "null"; }

template <class... Values>
Outcome outcome(int code, const Values&... values) {
  std::string text;
  ((text += (text.empty() ? "" : " ") + shown(values)), ...);
  return {code, text};
}

// Shows a list and frees it. The exported functions would leave it while the engine is not running.
inline std::string listed(char** texts, int count) {
  std::string text = "[";
  for (int i = 0; texts && i < count; ++i) text += (i > 0 ? " " : "") + shown(texts[i]);
  FreeTexts(texts, count);
  return std::to_string(count) + (texts ? " " + text + "]" : "");
}

// ---- Calls of a function with those arguments, by the outputs that follow them.

template <class Result, class... Parameters, class... Arguments>
Outcome valueOf(Result (*function)(Parameters...), Arguments... arguments) {
  int code = kUntouched;
  const Result value = function(arguments..., &code);
  return outcome(code, value);
}

// A returned list with its count.
template <class... Parameters, class... Arguments>
Outcome textsOf(char** (*function)(Parameters...), Arguments... arguments) {
  int count = kUntouched;
  int code = kUntouched;
  char** const texts = function(arguments..., &count, &code);
  return {code, listed(texts, count)};
}

// A returned string list, opaque.
template <class... Parameters, class... Arguments>
Outcome stringListOf(void* (*function)(Parameters...), Arguments... arguments) {
  int code = kUntouched;
  void* const list = function(arguments..., &code);
  std::string text = list ? "list" : "null";
  for (int i = 0; i < GetStringListLength(list); ++i) text += " " + shown(GetStringFromList(list, i));
  RemoveStringList(list);
  return {code, text};
}

template <class... Parameters, class... Arguments>
Outcome numberOf(int (*function)(Parameters...), Arguments... arguments) {
  int value = kUntouched;
  const int code = function(arguments..., &value);
  return outcome(code, value);
}

template <class... Parameters, class... Arguments>
Outcome threeNumbersOf(int (*function)(Parameters...), Arguments... arguments) {
  int values[3] = {kUntouched, kUntouched, kUntouched};
  const int code = function(arguments..., &values[0], &values[1], &values[2]);
  return outcome(code, values[0], values[1], values[2]);
}

template <class... Parameters, class... Arguments>
Outcome numericMissingOf(int (*function)(Parameters...), Arguments... arguments) {
  int type = kUntouched;
  double values[3] = {kUntouched, kUntouched, kUntouched};
  const int code = function(arguments..., &type, &values[0], &values[1], &values[2]);
  return outcome(code, type, values[0], values[1], values[2]);
}

template <class... Parameters, class... Arguments>
Outcome textMissingOf(int (*function)(Parameters...), Arguments... arguments) {
  int type = kUntouched;
  char buffers[3][9] = {"-", "-", "-"};
  const int code = function(arguments..., &type, buffers[0], buffers[1], buffers[2]);
  return outcome(code, type, buffers[0], buffers[1], buffers[2]);
}

template <class... Parameters, class... Arguments>
Outcome ownTextOf(int (*function)(Parameters...), Arguments... arguments) {
  char* text = nullptr;
  const int code = function(arguments..., &text);
  const Outcome result = outcome(code, static_cast<const char*>(text));
  FreeString(text);
  return result;
}

template <class... Parameters, class... Arguments>
Outcome countedTextsOf(int (*function)(Parameters...), Arguments... arguments) {
  char** texts = nullptr;
  int count = kUntouched;
  const int code = function(arguments..., &texts, &count);
  return {code, listed(texts, count)};
}

template <class... Parameters, class... Arguments>
Outcome numberLabelsOf(int (*function)(Parameters...), Arguments... arguments) {
  double* values = nullptr;
  char** labels = nullptr;
  int count = kUntouched;
  const int code = function(arguments..., &values, &labels, &count);
  std::string text;
  for (int i = 0; values && i < count; ++i) text += shown(values[i]) + " ";
  std::free(values);
  return {code, text + listed(labels, count)};
}

template <class... Parameters, class... Arguments>
Outcome textLabelsOf(int (*function)(Parameters...), Arguments... arguments) {
  char** values = nullptr;
  char** labels = nullptr;
  int count = kUntouched;
  const int code = function(arguments..., &values, &labels, &count);
  const std::string text = listed(values, count);
  return {code, text + " " + listed(labels, count)};
}

template <class... Parameters, class... Arguments>
Outcome responseSetOf(int (*function)(Parameters...), Arguments... arguments) {
  char* label = nullptr;
  char* countedValue = nullptr;
  char** names = nullptr;
  int codeAs = kUntouched;
  int count = kUntouched;
  const int code = function(arguments..., &label, &codeAs, &countedValue, &names, &count);
  const std::string text =
      outcome(0, static_cast<const char*>(label), codeAs, static_cast<const char*>(countedValue)).results;
  FreeString(label);
  FreeString(countedValue);
  return {code, text + " " + listed(names, count)};
}

// ---- The rows.

// How a function takes what goes wrong.
struct Shape {
  // Whether it ends at once without an engine running, or goes to the engine all the same.
  bool testsFlag;
  // Whether the engine's own code ends the call, or the transport's alone does and the reply is taken whatever it says.
  bool readsEngineCode;
  // Whether the caller is told the code.
  bool hasCode;
};
constexpr Shape kStatus{true, true, true};
constexpr Shape kValue{false, true, true};
constexpr Shape kTransportCode{false, false, true};
constexpr Shape kRunningQuestion{true, true, false};
constexpr Shape kBareNumber{false, true, false};
constexpr Shape kBareReply{false, false, false};

struct Row {
  const char* function;
  Shape shape;
  std::function<Outcome()> call;
  WireImage request;
  WireImage reply = {};                 // A good reply,
  std::string onReply = {};             // and its results.
  std::string onEmpty = {};             // The results of a reply without any item,
  std::string onFailure = {};           // and those of a call that failed.
  std::vector<WireImage> earlier = {};  // Requests before the row's own,
  std::vector<WireImage> later = {};    // and behind it, when that has succeeded.
  bool failsWithLater = false;          // Whether the call fails when a later one does.
};

inline Row makeRow(const char* function, Shape shape, std::function<Outcome()> call, WireImage request, WireImage reply,
                   const char* onReply, const char* onEmpty, const char* onFailure) {
  return {function, shape, std::move(call), std::move(request), std::move(reply), onReply, onEmpty, onFailure};
}

// A function that first sends another request.
inline Row behind(WireImage earlier, Row row) {
  row.earlier.push_back(std::move(earlier));
  return row;
}

// A function that sends another request once its own has succeeded.
inline Row before(WireImage later, Row row) {
  row.later.push_back(std::move(later));
  return row;
}

// The same, and the function fails when that request does.
inline Row needs(WireImage later, Row row) {
  row.failsWithLater = true;
  return before(std::move(later), std::move(row));
}

// Status shape, nothing but a code.
inline Row tells(const char* function, std::function<int()> call, WireImage request) {
  return {function, kStatus, [call = std::move(call)] { return outcome(call()); }, std::move(request)};
}

// Value shape, one number.
inline Row asksNumber(const char* function, std::function<Outcome()> call, WireImage request) {
  return makeRow(function, kValue, std::move(call), std::move(request), {.longs = {9, 8}}, "9", "0", "0");
}

// Value shape, one text.
inline Row asksText(const char* function, std::function<Outcome()> call, WireImage request) {
  return makeRow(function, kValue, std::move(call), std::move(request), {.texts = {"species", "more"}}, "'species'",
                 "''", "null");
}

// Value shape, a list with its count.
inline Row asksTexts(const char* function, std::function<Outcome()> call, WireImage request) {
  return makeRow(function, kValue, std::move(call), std::move(request), {.texts = {"one", "", "three"}},
                 "3 ['one' '' 'three']", "0", "-77");
}

// Value shape, a string list.
inline Row asksStringList(const char* function, std::function<Outcome()> call, WireImage request) {
  return makeRow(function, kValue, std::move(call), std::move(request), {.texts = {"one", "", "three"}},
                 "list 'one' '' 'three'", "list", "null");
}

// Status shape, one number.
inline Row tellsNumber(const char* function, std::function<Outcome()> call, WireImage request) {
  return makeRow(function, kStatus, std::move(call), std::move(request), {.longs = {5, 8}}, "5", "0", "-77");
}

// Status shape, three numbers.
inline Row tellsThreeNumbers(const char* function, std::function<Outcome()> call, WireImage request) {
  return makeRow(function, kStatus, std::move(call), std::move(request), {.longs = {5, 8, 2, 1}}, "5 8 2", "0 0 0",
                 "-77 -77 -77");
}

// Status shape, a text of the caller's own.
inline Row tellsOwnText(const char* function, std::function<Outcome()> call, WireImage request) {
  return makeRow(function, kStatus, std::move(call), std::move(request), {.texts = {"en_US", "more"}}, "'en_US'", "''",
                 "null");
}

// Status shape, a list whose count the reply states.
inline Row tellsCountedTexts(const char* function, std::function<Outcome()> call, WireImage request) {
  return makeRow(function, kStatus, std::move(call), std::move(request),
                 {.longs = {2}, .texts = {"one", "two", "three"}}, "2 ['one' 'two']", "0", "-77");
}

inline Row tellsNumericMissing(const char* function, std::function<Outcome()> call, WireImage request) {
  return makeRow(function, kStatus, std::move(call), std::move(request), {.longs = {2}, .doubles = {-9, 99.5, 7, 6}},
                 "2 -9 99.5 7", "0 -77 -77 -77", "-77 -77 -77 -77");
}

inline Row tellsTextMissing(const char* function, std::function<Outcome()> call, WireImage request) {
  return makeRow(function, kStatus, std::move(call), std::move(request),
                 {.longs = {2}, .texts = {"NA", "12345678901234567890"}}, "2 'NA' '12345678' '-'", "0 '-' '-' '-'",
                 "-77 '-' '-' '-'");
}

inline Row tellsNumberLabels(const char* function, std::function<Outcome()> call, WireImage request) {
  return makeRow(function, kStatus, std::move(call), std::move(request),
                 {.longs = {2}, .doubles = {0, 1.5}, .texts = {"no", "yes"}}, "0 1.5 2 ['no' 'yes']", "0", "-77");
}

inline Row tellsTextLabels(const char* function, std::function<Outcome()> call, WireImage request) {
  return makeRow(function, kStatus, std::move(call), std::move(request),
                 {.longs = {2}, .lists = {{"m", "f"}, {"male", "female"}}}, "2 ['m' 'f'] 2 ['male' 'female']", "0 0",
                 "-77 -77");
}

inline Row tellsResponseSet(const char* function, std::function<Outcome()> call, WireImage request) {
  return makeRow(function, kStatus, std::move(call), std::move(request),
                 {.longs = {1}, .texts = {"Colours seen", "yes", "red", "blue"}},
                 "'Colours seen' 1 'yes' 2 ['red' 'blue']", "'' 0 '' 0", "null -77 null -77");
}

// The rows of each family.
std::vector<Row> caseCursorRows();
std::vector<Row> controlRows();
std::vector<Row> dataSetRows();
std::vector<Row> dataStepRows();
std::vector<Row> dictionaryRows();
std::vector<Row> dictionaryInDataSetRows();
std::vector<Row> procedureRows();
std::vector<Row> pivotTableRows();
std::vector<Row> documentRows();

}  // namespace kova::wire

#endif
