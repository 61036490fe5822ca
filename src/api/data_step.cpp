// A data step: its bracket, the rows that are fetched in it, and changes to the shape of its data sets.
#include <utility>

#include "api/call_frame.h"
#include "api/data_set_caches.h"
#include "api/kovadx.h"

using namespace kova;

namespace {

// Takes the whole reply over for the batch.
struct IntoBatch {
  const char* dataSet;
  int firstRow;
  int rowCount;
  void take(CleXDSmb& reply) const {
    TheDataSetCaches().batch.fill(dataSet ? dataSet : "", firstRow, rowCount, std::move(reply));
  }
};

// The rows that were fetched are dropped whatever the engine says, and all that belongs to the step when it has ended.
int closeStep(int code) {
  DataSetCaches& caches = TheDataSetCaches();
  caches.batch.drop();
  if (code != 0) return code;
  caches.isInDataStep = false;
  caches.created.clear();
  caches.registry.clear();
  return 0;
}

}  // namespace

int StartDataStep() {
  const int code = Tell(Command::StartDataStep);
  if (code == 0) TheDataSetCaches().isInDataStep = true;
  return code;
}

int EndDataStep() {
  if (!IsEngineRunning()) return kEngineNotRunning;
  CommitPendingCells();
  return closeStep(Tell(Command::EndDataStep));
}

int FetchDatastep(const char* dataSet, int firstRow, int rowCount, int* result) {
  return Tell(Command::FetchDatastep, Text{dataSet}, Long{firstRow}, Long{rowCount}, IntoLong{result},
              IntoBatch{dataSet, firstRow, rowCount});
}

int ClearDatastepBatch() {
  TheDataSetCaches().batch.drop();
  return 0;
}

int GetDatastepDatasets(char*** names, int* count) {
  return Tell(Command::GetDatastepDatasets, IntoNames{names, count});
}

int InsertCase(const char* dataSet, int caseIndex) { return Tell(Command::InsertCase, Text{dataSet}, Long{caseIndex}); }

int DeleteCase(const char* dataSet, int caseIndex) { return Tell(Command::DeleteCase, Text{dataSet}, Long{caseIndex}); }

int InsertVariable(const char* dataSet, int index, const char* name, int type) {
  const int code = Tell(Command::InsertVariable, Text{dataSet}, Long{index}, Text{name}, Long{type});
  return OnceAccepted(code, dataSet, [&](DatastepDataSmb& record) { record.InsertVarType(index, type); });
}

int DeleteVariable(const char* dataSet, int index) {
  const int code = Tell(Command::DeleteVariable, Text{dataSet}, Long{index});
  return OnceAccepted(code, dataSet, [&](DatastepDataSmb& record) { record.EraseVarType(index); });
}

// Deliberate: the data set's record keeps the order that it knows.
int MoveVariables(const char* dataSet, int fromIndex, int toIndex) {
  return Tell(Command::MoveVariables, Text{dataSet}, Long{fromIndex}, Long{toIndex});
}
