// What the client side of a process remembers of data sets between its calls: which were created, which changes of
// cells wait to be sent, and what a data step has fetched.
//
// One for the process, never destroyed. Its calls take turns as all calls of the client interface do.
#ifndef KOVADX_API_DATA_SET_CACHES_H
#define KOVADX_API_DATA_SET_CACHES_H

#include "api/created_data_sets.h"
#include "api/data_step_batch.h"
#include "api/data_step_registry.h"
#include "api/guard.h"
#include "api/pending_cells.h"

namespace kova {

// What the local functions give when they do not know the data set or the cell.
constexpr int kNotKnown = 10;

struct DataSetCaches {
  CreatedDataSets created;
  PendingCells pending;
  DataStepRegistry registry;
  DataStepBatch batch;
  bool isInDataStep = false;
  // The case that GetCaseValue read last outside a data step, where no data set has a record.
  DatastepDataSmb looseCase;
};

DataSetCaches& TheDataSetCaches();

// Forgets all of it, and waits for the transfers of TransportData that are under way: the process is done with its
// engine.
void ForgetDataSets();

// Sends the changes of cells that are pending, if there are any. A failure keeps them and is dropped.
void CommitPendingCells();

// Stores the data set's record. Within a data step one that is not known is asked for first: the length of a case, the
// number of variables, and the type of each. Null outside one. 0, or the code of the request that failed; no record is
// kept then. Throws std::bad_alloc.
int RecordOf(const char* dataSet, DatastepDataSmb** record);

// Has the data set's record, if there is one, follow a change that the engine was asked for, once `code` says that it
// was accepted. The code; 8 when memory runs out.
template <class Change>
int OnceAccepted(int code, const char* dataSet, Change change) {
  if (code != 0) return code;
  return Guarded([&] {
    DatastepDataSmb* const record = TheDataSetCaches().registry.find(dataSet ? dataSet : "");
    if (record) change(*record);
    return 0;
  });
}

}  // namespace kova

#endif
