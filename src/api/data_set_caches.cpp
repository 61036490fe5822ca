#include "api/data_set_caches.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

#include "api/call_frame.h"
#include "api/file_transfers.h"
#include "api/kovadx.h"
#include "config/never_destroyed.h"

namespace kova {
namespace {

// The number that the engine answers with. A reply that was cut short is a failure here: the record would have a layout
// that the data set has not.
template <class... Items>
int numberOf(Command command, int* code, const Items&... items) {
  const int number = Ask<int>(command, code, items...);
  *code = WhenWhole(*code);
  return number;
}

int readTypes(const char* dataSet, int count, DatastepDataSmb& record) {
  std::int64_t unit = 0;
  for (int var = 0; var < count; ++var) {
    int code = 0;
    const int type = numberOf(Command::GetVarTypeInDS, &code, Text{dataSet}, Long{var});
    if (code != 0) return code;
    record.AddVarType(type);
    record.AddVarObsIndex(static_cast<int>(std::min<std::int64_t>(unit, std::numeric_limits<int>::max())));
    unit += record.GetVarObsLength(var);
  }
  return 0;
}

int readLayout(const char* dataSet, DatastepDataSmb& record) {
  int code = 0;
  const int size = numberOf(Command::GetCaseLength, &code, Text{dataSet});
  if (code != 0) return code;
  if (size < 0) return kInvalidAnswer;
  record.SetOneCaseSize(size);
  const int count = numberOf(Command::GetVarCountInDS, &code, Text{dataSet});
  return code != 0 ? code : readTypes(dataSet, count, record);
}

}  // namespace

DataSetCaches& TheDataSetCaches() {
  static NeverDestroyed<DataSetCaches> caches;
  return caches.object();
}

void ForgetDataSets() {
  DataSetCaches& caches = TheDataSetCaches();
  caches.created.clear();
  caches.pending.clear();
  caches.registry.clear();
  caches.batch.drop();
  caches.isInDataStep = false;
  caches.looseCase = DatastepDataSmb();
  TheFileTransfers().finish();
}

void CommitPendingCells() {
  if (!TheDataSetCaches().pending.empty()) CommitDataSet();
}

int RecordOf(const char* dataSet, DatastepDataSmb** record) {
  DataSetCaches& caches = TheDataSetCaches();
  const std::string_view name = dataSet ? dataSet : "";
  *record = caches.registry.find(name);
  if (*record || !caches.isInDataStep) return 0;
  DatastepDataSmb made;
  const int code = readLayout(dataSet, made);
  if (code == 0) *record = caches.registry.add(name, std::move(made));
  return code;
}

}  // namespace kova
