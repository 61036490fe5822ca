// The rows that were fetched last, and which rows these are.
//
// Owned by DataSetCaches. Its calls take turns as all calls of the client interface do.
#ifndef KOVADX_API_DATA_STEP_BATCH_H
#define KOVADX_API_DATA_STEP_BATCH_H

#include <memory>
#include <string>
#include <string_view>

#include "message/DatastepSmb.h"

namespace kova {

class DataStepBatch {
 public:
  // Takes a reply to the question for those rows over, in place of what was held. The first row, the number of rows and
  // the number of columns are the reply's first three integers. A reply without them is taken for what was asked for;
  // one that tells of more rows than it has cells for, for those that it has. Throws std::bad_alloc, and what was held
  // is held still.
  void fill(std::string_view dataSet, int firstRow, int rowCount, CleXDSmb&& reply);

  // Whether all those rows of the data set of exactly that name are held; a negative number counts as 0.
  bool holds(std::string_view dataSet, int firstRow, int rowCount) const;

  // The rows; null when none were fetched. Valid until the next fill or drop.
  DatastepSmb* record() const { return record_.get(); }
  void drop() { record_.reset(); }

 private:
  std::unique_ptr<DatastepSmb> record_;
  std::string dataSet_;
  int rows_ = 0;
};

}  // namespace kova

#endif
