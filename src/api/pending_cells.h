// Changes of cells that wait to be sent together, in the order in which they were made.
//
// Owned by DataSetCaches. Its calls take turns as all calls of the client interface do.
#ifndef KOVADX_API_PENDING_CELLS_H
#define KOVADX_API_PENDING_CELLS_H

#include <utility>
#include <vector>

#include "message/dataSet.h"

namespace kova {

class PendingCells {
 public:
  void add(dataSet cell) { cells_.push_back(std::move(cell)); }
  // Forgets them all: the engine has them, or nobody wants them any more.
  void clear() { cells_.clear(); }
  bool empty() const { return cells_.empty(); }
  const std::vector<dataSet>& cells() const { return cells_; }

 private:
  std::vector<dataSet> cells_;
};

}  // namespace kova

#endif
