// Single cells of a data set: asked for one by one, read from the rows that were fetched last, or changed together.
#include <utility>

#include "api/call_frame.h"
#include "api/data_set_caches.h"
#include "api/guard.h"
#include "api/kovadx.h"
#include "api/local_results.h"

using namespace kova;

namespace {

// How many rows are fetched for a cell that is not there yet.
constexpr int kRowsAtOnce = 1000;

// A column outside would be a cell of another row.
bool hasColumn(const DatastepSmb* batch, int column) { return batch && column >= 0 && column < batch->VarCount(); }

int readNumber(DatastepSmb* batch, const char* dataSet, int row, int column, double* value, int* isMissing) {
  if (!hasColumn(batch, column)) return kNotKnown;
  int flag = 0;
  int error = 0;
  const double number = batch->GetNCellValue(dataSet, row, column, flag, error);
  if (error != 0) return error;
  StoreAt(value, number);
  StoreAt(isMissing, flag);
  return 0;
}

int readText(DatastepSmb* batch, const char* dataSet, int row, int column, char** text, int* isMissing) {
  if (!hasColumn(batch, column)) return kNotKnown;
  int flag = 0;
  int error = 0;
  *text = batch->GetCCellValue(dataSet, row, column, flag, error);
  if (error == 0) StoreAt(isMissing, flag);
  return error;
}

// Fetches those rows unless they are held. There is no row before row 0.
int haveRows(const char* dataSet, int firstRow, int neededRows, int fetchedRows) {
  if (firstRow < 0) return kNotKnown;
  if (TheDataSetCaches().batch.holds(dataSet ? dataSet : "", firstRow, neededRows)) return 0;
  return FetchDatastep(dataSet, firstRow, fetchedRows, nullptr);
}

int reportRows(int* firstValue, int* nextToLastValue, int* lastValue) {
  const LongData& longs = TheDataSetCaches().batch.record()->Longs();
  const int count = longs.Size();
  StoreAt(firstValue, count > 0 ? longs[0] : 0);
  StoreAt(nextToLastValue, count > 1 ? longs[count - 2] : 0);
  StoreAt(lastValue, count > 0 ? longs[count - 1] : 0);
  return 0;
}

int keepChange(dataSet change) {
  if (!IsEngineRunning()) return kEngineNotRunning;
  TheDataSetCaches().pending.add(std::move(change));
  return 0;
}

}  // namespace

int GetNCellValue(const char* dataSet, int row, int column, double* value, int* isMissing) {
  return Tell(Command::GetNCellValue, Text{dataSet}, Long{row}, Long{column}, IntoDouble{value}, IntoLong{isMissing});
}

const char* GetCCellValue(const char* dataSet, int row, int column, int* isMissing, int* errorCode) {
  return Ask<const char*>(Command::GetCCellValue, errorCode, Text{dataSet}, Long{row}, Long{column},
                          IntoLong{isMissing});
}

int GetNCellValueBatch(void* batch, const char* dataSet, int row, int column, double* value, int* isMissing) {
  return readNumber(static_cast<DatastepSmb*>(batch), dataSet, row, column, value, isMissing);
}

char* GetCCellValueBatch(void* batch, const char* dataSet, int row, int column, int* isMissing, int* errorCode) {
  return TextOf(errorCode, [&](char** text) {
    return readText(static_cast<DatastepSmb*>(batch), dataSet, row, column, text, isMissing);
  });
}

int GetNCellValueCache(const char* dataSet, int row, int column, double* value, int* isMissing) {
  return GetNCellValueBatch(TheDataSetCaches().batch.record(), dataSet, row, column, value, isMissing);
}

char* GetCCellValueCache(const char* dataSet, int row, int column, int* isMissing, int* errorCode) {
  return GetCCellValueBatch(TheDataSetCaches().batch.record(), dataSet, row, column, isMissing, errorCode);
}

int GetNCellValueOptimize(const char* dataSet, int row, int column, double* value, int* isMissing) {
  const int code = haveRows(dataSet, row, 1, kRowsAtOnce);
  return code != 0 ? code : GetNCellValueCache(dataSet, row, column, value, isMissing);
}

char* GetCCellValueOptimize(const char* dataSet, int row, int column, int* isMissing, int* errorCode) {
  const int code = haveRows(dataSet, row, 1, kRowsAtOnce);
  if (code == 0) return GetCCellValueCache(dataSet, row, column, isMissing, errorCode);
  StoreAt(errorCode, code);
  return nullptr;
}

int GetRowList(const char* dataSet, int firstRow, int rowCount, int* firstValue, int* nextToLastValue, int* lastValue) {
  const int rows = rowCount < 0 ? 0 : rowCount;
  const int code = haveRows(dataSet, firstRow, rows, rows);
  return code != 0 ? code : reportRows(firstValue, nextToLastValue, lastValue);
}

int SetNCellValue(const char* dataSet, int row, int column, double value) {
  return Guarded([&] { return keepChange({dataSet ? dataSet : "", row, column, 0, value, {}}); });
}

int SetCCellValue(const char* dataSet, int row, int column, const char* value) {
  return Guarded([&] { return keepChange({dataSet ? dataSet : "", row, column, 1, 0, value ? value : ""}); });
}

int CommitDataSet() {
  PendingCells& pending = TheDataSetCaches().pending;
  const int code = Tell(Command::CommitDataSet, Cells{pending.cells()});
  if (code == 0) pending.clear();
  return code;
}
