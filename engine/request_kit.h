// An engine's state with two data sets, and requests to it as a client sends them. For tests alone.
#ifndef KOVADX_ENGINE_REQUEST_KIT_H
#define KOVADX_ENGINE_REQUEST_KIT_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "engine/dispatcher.h"

namespace kova::engine {

using Texts = std::vector<std::string>;

inline void addItem(CleXDSmb* request, int value) { request->SetLong(value); }
inline void addItem(CleXDSmb* request, double value) { request->SetDouble(value); }
inline void addItem(CleXDSmb* request, const char* text) { request->SetString(text); }
inline void addItem(CleXDSmb* request, const std::string& text) { request->SetString(text); }
inline void addItem(CleXDSmb* request, const dataSet& record) { request->SetStruct(record); }

// A raw block of these bytes.
struct Bytes {
  std::string bytes;
};
inline void addItem(CleXDSmb* request, const Bytes& block) {
  request->AllocVoidData(static_cast<int>(block.bytes.size()));
  request->SaveDataIntoVoidData(block.bytes.data(), static_cast<int>(block.bytes.size()));
}
inline void addItem(CleXDSmb* request, const Texts& texts) {
  StringData list;
  for (const std::string& text : texts) list.SetValue(text);
  request->SetStringArray(list);
}

// "main" is the active data set: score, a number with everything set; town, a string of 12 bytes; then one and two,
// numbers. "Other" has one variable, elsewhere, a string of 2 bytes.
inline std::unique_ptr<DataSet> mainDataSet() {
  Variable score;
  score.name = "score";
  score.label = "Score";
  score.format = {FormatType::kF, 8, 1};
  score.measure = Measure::kScale;
  score.role = Role::kTarget;
  score.missing = {kMissingRangeAndOne, {-9.0, -1.0, 99.0}, {}};
  score.numberLabels = {{1.0, "low"}, {2.0, "high"}};
  score.attributes = {{"unit", {"points"}}, {"codes", {"a", "b", ""}}};
  Variable town;
  town.name = "town";
  town.width = 12;
  town.format = {FormatType::kA, 12, 0};
  town.measure = Measure::kNominal;
  town.alignment = Alignment::kLeft;
  town.columnWidth = 20;
  town.missing = {kTwoMissing, {}, {"NA", "?", ""}};
  town.textLabels = {{"B", "Bremen"}, {"", "none"}};
  Variable one;
  one.name = "one";
  Variable two;
  two.name = "two";
  auto dataSet = std::make_unique<DataSet>();
  dataSet->name = "main";
  dataSet->variables = {score, town, one, two};
  dataSet->cases = CaseStore({0, 12, 0, 0});
  for (int i = 0; i < 5; ++i) dataSet->cases.appendCase();
  dataSet->attributes = {{"Survey", {"2024", "second wave"}}};
  dataSet->responseSets = {{"$both", "Both", ResponseSetKind::kDichotomies, "1", {"one", "two"}}};
  dataSet->weight = "score";
  dataSet->split = {"town"};
  return dataSet;
}

inline std::unique_ptr<DataSet> otherDataSet() {
  Variable elsewhere;
  elsewhere.name = "elsewhere";
  elsewhere.width = 2;
  elsewhere.format = {FormatType::kA, 2, 0};
  auto dataSet = std::make_unique<DataSet>();
  dataSet->name = "Other";
  dataSet->variables = {elsewhere};
  dataSet->cases = CaseStore({2});
  dataSet->cases.appendCase();
  return dataSet;
}

class RequestTest : public testing::Test {
 protected:
  RequestTest() {
    state_.dataSets.push_back(mainDataSet());
    state_.dataSets.push_back(otherDataSet());
    state_.active = state_.dataSets[0].get();
  }

  // The reply to a command with these items.
  template <typename... Items>
  CleXDSmb ask(Command command, const Items&... items) {
    CleXDSmb request;
    (addItem(&request, items), ...);
    request.SetCommandAction(command);
    CleXDSmb reply;
    dispatch(state_, request, reply);
    return reply;
  }

  // Its error code alone.
  template <typename... Items>
  int tell(Command command, const Items&... items) {
    return ask(command, items...).GetErrorCode();
  }

  // The command is answered with that code and no items, and changes nothing in any data set.
  template <typename... Items>
  void expectRefused(ErrorCode code, Command command, const Items&... items) {
    const DataSet mainBefore = *state_.dataSets[0];
    const DataSet otherBefore = *state_.dataSets[1];
    const CleXDSmb reply = ask(command, items...);
    EXPECT_STREQ(errorName(reply.GetErrorCode()), errorName(static_cast<int>(code)))
        << commandName(static_cast<int>(command));
    EXPECT_EQ(reply.Longs().Size() + reply.Strings().Size() + reply.Doubles().Size(), 0);
    EXPECT_TRUE(mainBefore == *state_.dataSets[0]) << commandName(static_cast<int>(command));
    EXPECT_TRUE(otherBefore == *state_.dataSets[1]) << commandName(static_cast<int>(command));
  }

  DataSet& main() { return *state_.dataSets[0]; }
  DataSet& other() { return *state_.dataSets[1]; }
  const Variable& variable(const char* name) { return main().variables[main().variables.find(name).value()]; }

  EngineState state_;
};

inline std::string blockOf(const CleXDSmb& reply) {
  int length = 0;
  const void* const data = reply.GetVoidData(length);
  return data == nullptr ? std::string()
                         : std::string(static_cast<const char*>(data), static_cast<std::size_t>(length));
}

inline Texts textsOf(const CleXDSmb& reply) { return reply.Strings().values(); }

}  // namespace kova::engine

#endif
