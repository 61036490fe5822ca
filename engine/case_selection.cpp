#include "engine/case_selection.h"

#include "engine/missing_values.h"

namespace kova::engine {

CaseSelection::CaseSelection(const DataSet& dataSet)
    : dataSet_(&dataSet), filter_(dataSet.filter.empty() ? std::nullopt : dataSet.variables.find(dataSet.filter)) {}

std::size_t CaseSelection::count() const {
  const std::size_t cases = dataSet_->cases.caseCount();
  if (takesAll()) return cases;
  std::size_t selected = 0;
  for (std::size_t i = 0; i < cases; ++i) selected += selects(i) ? 1 : 0;
  return selected;
}

bool CaseSelection::selects(std::size_t position) const {
  const double value = dataSet_->cases.number(position, *filter_);
  return value != 0 && missingOf(dataSet_->variables[*filter_], value) == Missing::kNone;
}

}  // namespace kova::engine
