#include "engine/command_table.h"

#include <algorithm>

#include "engine/text_rules.h"

namespace kova::engine {

const std::vector<CommandRow>& commandTable() {
  static const std::vector<CommandRow> table = [] {
    std::vector<CommandRow> all;
    for (const auto rows :
         {dataCommands(), transformCommands(), dictionaryCommands(), tableCommands(), sessionCommands()}) {
      all.insert(all.end(), rows.begin(), rows.end());
    }
    return all;
  }();
  return table;
}

const CommandRow* findCommand(std::string_view name) {
  const auto& table = commandTable();
  const auto found =
      std::find_if(table.begin(), table.end(), [name](const CommandRow& row) { return sameName(row.name, name); });
  return found == table.end() ? nullptr : &*found;
}

}  // namespace kova::engine
