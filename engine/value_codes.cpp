#include "engine/value_codes.h"

#include <utility>

namespace kova::engine {
namespace {

template <typename Value, std::size_t count>
std::optional<Value> lookUp(const std::pair<std::string_view, Value> (&table)[count], std::string_view word) {
  for (const auto& [name, value] : table) {
    if (name == word) return value;
  }
  return std::nullopt;
}

// The first row stands for a value that the table does not have.
template <typename Value, std::size_t count>
std::string_view wordFor(const std::pair<std::string_view, Value> (&table)[count], Value wanted) {
  for (const auto& [name, value] : table) {
    if (value == wanted) return name;
  }
  return table[0].first;
}

constexpr std::pair<std::string_view, Measure> kMeasures[] = {
    {"unknown", Measure::kUnknown},
    {"nominal", Measure::kNominal},
    {"ordinal", Measure::kOrdinal},
    {"scale", Measure::kScale},
};

constexpr std::pair<std::string_view, Role> kRoles[] = {
    {"input", Role::kInput}, {"target", Role::kTarget},       {"both", Role::kBoth},
    {"none", Role::kNone},   {"partition", Role::kPartition}, {"split", Role::kSplit},
};

constexpr std::pair<std::string_view, Alignment> kAlignments[] = {
    {"left", Alignment::kLeft},
    {"right", Alignment::kRight},
    {"center", Alignment::kCenter},
};

}  // namespace

std::optional<Measure> measureOf(std::string_view word) { return lookUp(kMeasures, word); }

std::optional<Role> roleOf(std::string_view word) { return lookUp(kRoles, word); }

std::optional<Alignment> alignmentOf(std::string_view word) { return lookUp(kAlignments, word); }

std::string_view wordOf(Measure measure) { return wordFor(kMeasures, measure); }

std::string_view wordOf(Role role) { return wordFor(kRoles, role); }

std::string_view wordOf(Alignment alignment) { return wordFor(kAlignments, alignment); }

}  // namespace kova::engine
