// Whole cases of a data step, and the cells of the one case that the data set's record holds.
#include "api/call_frame.h"
#include "api/data_set_caches.h"
#include "api/guard.h"
#include "api/kovadx.h"
#include "api/local_results.h"

using namespace kova;

namespace {

// The reply's block as the record's case. A reply without one leaves the record as it is.
struct IntoCase {
  DatastepDataSmb& record;
  void** place;
  int* size;
  void take(const CleXDSmb& reply) const {
    int length = 0;
    void* const block = reply.GetVoidData(length);
    if (block) record.SetCaseValue(block, length);
    StoreAt(place, block ? record.GetCaseValue(length) : nullptr);
    *size = length;
  }
};

int readCase(const char* dataSet, int caseIndex, int flag, void** place, int* size) {
  DatastepDataSmb* record = nullptr;
  const int code = RecordOf(dataSet, &record);
  if (code != 0) return code;
  const IntoCase result{record ? *record : TheDataSetCaches().looseCase, place, size};
  return Send(Command::GetCaseValue, nullptr, Text{dataSet}, Long{caseIndex}, Long{flag}, result);
}

// The case that the data set's record holds; none without a record.
RawBlock caseOf(const char* dataSet) {
  DatastepDataSmb* const record = TheDataSetCaches().registry.find(dataSet ? dataSet : "");
  int size = 0;
  const void* const block = record ? record->GetCaseValue(size) : nullptr;
  return {block, size};
}

// Does something with the data set's record, which is asked for first where it is not known yet. Its code, or why there
// is no record.
template <class Use>
int withRecord(const char* dataSet, Use use) {
  return Guarded([&] {
    DatastepDataSmb* record = nullptr;
    const int code = RecordOf(dataSet, &record);
    if (code != 0) return code;
    return record ? use(*record) : kNotKnown;
  });
}

int readNumber(const DatastepDataSmb& record, int column, double* value, int* isMissing) {
  int missing = 0;
  int error = 0;
  const double number = record.GetNCellValue(static_cast<unsigned int>(column), missing, error);
  if (error != 0) return error;
  StoreAt(value, number);
  StoreAt(isMissing, missing);
  return 0;
}

// The variable at that position of a record that is there; 10 when either is not.
template <class Use>
int withKnownVariable(const char* dataSet, int index, Use use) {
  const DatastepDataSmb* const record = TheDataSetCaches().registry.find(dataSet ? dataSet : "");
  if (!record || index < 0 || index >= record->VarCount()) return kNotKnown;
  use(*record);
  return 0;
}

}  // namespace

int GetCaseValue(const char* dataSet, int caseIndex, int flag, void** record, int* errorCode) {
  int size = 0;
  StoreAt(errorCode, Guarded([&] { return readCase(dataSet, caseIndex, flag, record, &size); }));
  return size;
}

int SetCaseValue(const char* dataSet, int caseIndex, int flag, const void* block, int size) {
  return Tell(Command::SetCaseValue, Text{dataSet}, Long{caseIndex}, Long{flag}, RawBlock{block, size});
}

int SetCasePartValue(const char* dataSet, int caseIndex, int flag, int part1, int part2, int part3, const void* block,
                     int size) {
  const RawBlock part = block ? RawBlock{block, size} : caseOf(dataSet);
  return Tell(Command::SetCasePartValue, Text{dataSet}, Long{caseIndex}, Long{flag}, Long{part1}, Long{part2},
              Long{part3}, part);
}

int GetVarInfo(const char* dataSet, int index, int* type, int* obsIndex, int* obsLength) {
  return withKnownVariable(dataSet, index, [&](const DatastepDataSmb& record) {
    StoreAt(type, record.VarType(index));
    StoreAt(obsIndex, record.GetVarObsIndex(index));
    StoreAt(obsLength, record.GetVarObsLength(index));
  });
}

int GetVarTypeInDSCache(const char* dataSet, int index, int* errorCode) {
  int type = 0;
  StoreAt(errorCode, withKnownVariable(dataSet, index, [&](const auto& record) { type = record.VarType(index); }));
  return type;
}

// A negative column is one far behind the last.

int GetNCellValueFromCache(const char* dataSet, int column, double* value, int* isMissing) {
  return withRecord(dataSet, [&](DatastepDataSmb& record) { return readNumber(record, column, value, isMissing); });
}

char* GetCCellValueFromCache(const char* dataSet, int column, int* errorCode) {
  return TextOf(errorCode, [&](char** text) {
    return withRecord(dataSet, [&](DatastepDataSmb& record) {
      int error = 0;
      *text = record.GetCCellValue(static_cast<unsigned int>(column), error);
      return error;
    });
  });
}

int SetNCellValueFromCache(const char* dataSet, int column, double value) {
  return withRecord(
      dataSet, [&](DatastepDataSmb& record) { return record.SetNCellValue(static_cast<unsigned int>(column), value); });
}

int SetCCellValueFromCache(const char* dataSet, int column, const char* value) {
  return withRecord(
      dataSet, [&](DatastepDataSmb& record) { return record.SetCCellValue(static_cast<unsigned int>(column), value); });
}
