#include "engine/near_name.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "engine/text_rules.h"

namespace kova::engine {
namespace {

constexpr std::size_t kFewestLetters = 3;  // A name that begins with fewer says nothing.

// How many letters must be put in, taken out or replaced (V. I. Levenshtein, "Binary codes capable of correcting
// deletions, insertions and reversals", 1966), row by row. Both are at most kLongestName bytes long.
std::size_t distance(std::string_view a, std::string_view b) {
  std::array<std::size_t, kLongestName + 1> row;
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const bool isSame = sameName(a.substr(i - 1, 1), b.substr(j - 1, 1));
      const std::size_t replaced = diagonal + (isSame ? 0 : 1);
      diagonal = row.at(j);
      row.at(j) = std::min({replaced, row.at(j) + 1, row.at(j - 1) + 1});
    }
  }
  return row.at(b.size());
}

}  // namespace

void NearName::look(std::string_view candidate) {
  if (name_.empty() || name_.size() > kLongestName || candidate.size() > kLongestName) return;
  const bool isBeginning = name_.size() >= kFewestLetters;
  if (isBeginning && longer_.empty() && sameName(candidate.substr(0, name_.size()), name_)) longer_ = candidate;
  if (std::max(candidate.size(), name_.size()) - std::min(candidate.size(), name_.size()) >= least_) return;
  const std::size_t apart = distance(name_, candidate);
  if (apart >= least_ || apart >= name_.size()) return;
  least_ = apart;
  nearest_ = candidate;
}

}  // namespace kova::engine
