// Which cases of a data set a procedure sees: all of them, or those whose value of the filter variable is neither 0 nor
// missing.
//
// Made for a walk over the cases; it refers to the data set, whose variables must not change meanwhile. Any thread may
// use it that may read the data set.
#ifndef KOVADX_ENGINE_CASE_SELECTION_H
#define KOVADX_ENGINE_CASE_SELECTION_H

#include <cstddef>
#include <optional>

#include "engine/data_set.h"

namespace kova::engine {

class CaseSelection {
 public:
  explicit CaseSelection(const DataSet& dataSet);

  bool takesAll() const { return !filter_; }
  bool operator()(std::size_t position) const { return !filter_ || selects(position); }

  // How many cases there are of them.
  std::size_t count() const;

 private:
  bool selects(std::size_t position) const;

  const DataSet* dataSet_;
  std::optional<std::size_t> filter_;
};

}  // namespace kova::engine

#endif
