// Puts out as a client does: with requests. For tests alone.
#ifndef KOVADX_ENGINE_OUTPUT_CLIENT_H
#define KOVADX_ENGINE_OUTPUT_CLIENT_H

#include <string>
#include <utility>
#include <vector>

#include "engine/dispatcher.h"
#include "engine/output_log.h"

namespace kova::engine {

// The items of a request behind the keys, by kind. The order of kinds does not matter to the engine.
struct OutputItems {
  std::vector<std::string> texts;
  std::vector<int> longs;
  std::vector<double> numbers;
};

inline void addItem(int value, OutputItems* items) { items->longs.push_back(value); }
inline void addItem(double value, OutputItems* items) { items->numbers.push_back(value); }
inline void addItem(std::string value, OutputItems* items) { items->texts.push_back(std::move(value)); }

// items("text", 3, 2.5): each value becomes an item of its kind.
template <typename... Values>
OutputItems items(const Values&... values) {
  OutputItems all;
  (addItem(values, &all), ...);
  return all;
}

class OutputClient {
 public:
  EngineState state;
  CleXDSmb reply;  // The last one.

  int ask(Command command, const OutputItems& all = {}) {
    CleXDSmb request;
    request.SetCommandAction(command);
    for (const std::string& text : all.texts) request.SetString(text);
    for (const int number : all.longs) request.SetLong(number);
    for (const double number : all.numbers) request.SetDouble(number);
    reply = CleXDSmb();
    dispatch(state, request, reply);
    return reply.GetErrorCode();
  }

  int start(const std::string& name, const std::string& label = "") {
    return ask(Command::StartProcedure, items(name, label));
  }
  int end() { return ask(Command::EndProcedure); }

  // About a table, and about one of its dimensions.
  int ask(Command command, const TableKey& table, OutputItems more = {}) {
    prepend({{table.outline, table.title, table.subtype}, {table.isSplit ? 1 : 0}, {}}, &more);
    return ask(command, more);
  }
  int ask(Command command, const TableKey& table, const DimensionKey& dimension, OutputItems more = {}) {
    prepend({{dimension.name}, {dimension.place, dimension.position, dimension.hideName, dimension.hideLabels}, {}},
            &more);
    return ask(command, table, std::move(more));
  }

  // A table with its dimensions. Keeps the client, which must outlive it.
  class Table {
   public:
    Table(OutputClient* client, TableKey key) : client_(*client), key_(std::move(key)) {
      code_ = client_.ask(Command::StartPivotTable, key_);
    }

    // The first code that was not 0.
    int code() const { return code_; }

    Table& dimension(const DimensionKey& key) { return note(client_.ask(Command::AddDimension, key_, key)); }
    Table& category(const DimensionKey& key, const std::string& text) {
      return note(client_.ask(Command::AddStringCategory, key_, key, items(text)));
    }
    Table& number(const DimensionKey& key, double number) {
      return note(client_.ask(Command::SetNumberCell, key_, key, items(number)));
    }
    Table& text(const DimensionKey& key, const std::string& text) {
      return note(client_.ask(Command::SetStringCell, key_, key, items(text)));
    }
    Table& tell(Command command, OutputItems more = {}) { return note(client_.ask(command, key_, std::move(more))); }
    Table& tell(Command command, const DimensionKey& key, OutputItems more = {}) {
      return note(client_.ask(command, key_, key, std::move(more)));
    }

   private:
    Table& note(int code) {
      if (code_ == 0) code_ = code;
      return *this;
    }

    OutputClient& client_;
    TableKey key_;
    int code_ = 0;
  };

  Table table(TableKey key) { return Table(this, std::move(key)); }

  // Variables 0 sex, 1 body_mass, 2 island (a string), 3 seen (a day), in the active data set.
  void openData() {
    Variable sex;
    sex.name = "sex";
    sex.label = "Sex of the penguin";
    sex.format = {FormatType::kF, 8, 0};
    sex.numberLabels = {{1.0, "Female"}, {2.0, "Male"}};
    Variable mass;
    mass.name = "body_mass";
    mass.format = {FormatType::kCOMMA, 8, 1};
    Variable island;
    island.name = "island";
    island.label = "Island";
    island.width = 9;
    island.format = {FormatType::kA, 9, 0};
    island.textLabels = {{"BIS", "Biscoe"}};
    Variable seen;
    seen.name = "seen";
    seen.format = {FormatType::kDATE, 10, 0};
    DataSet dataSet;
    dataSet.name = "penguins";
    for (const Variable& variable : {sex, mass, island, seen}) dataSet.variables.push_back(variable);
    dataSet.cases = CaseStore({0, 0, 9, 0});
    state.dataSets.push_back(std::make_unique<DataSet>(std::move(dataSet)));
    state.active = state.dataSets.back().get();
  }

 private:
  static void prepend(const OutputItems& keys, OutputItems* items) {
    items->texts.insert(items->texts.begin(), keys.texts.begin(), keys.texts.end());
    items->longs.insert(items->longs.begin(), keys.longs.begin(), keys.longs.end());
  }
};

}  // namespace kova::engine

#endif
