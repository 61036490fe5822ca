// Calls about data sets as such: which there are, and how many cases they have.
#include <cstdlib>
#include <string>

#include "api/call_frame.h"
#include "api/caller_memory.h"
#include "api/data_set_caches.h"
#include "api/guard.h"
#include "api/kovadx.h"

using namespace kova;

namespace {

// The name of the active data set; empty when the engine does not tell. The text that text-returning functions share
// stays as it is.
std::string activeName() {
  char* name = nullptr;
  Send(Command::GetActive, nullptr, IntoText{&name});
  const CallerText owner(name);
  return name ? name : "";
}

// Remembers a data set that the engine has created. Deliberate: its counts of cases and variables are asked for, and
// the answers are dropped.
void rememberCreated(const char* name) {
  const std::string given = name ? name : "";
  const std::string created = given.empty() || given == "*" ? activeName() : given;
  Ask<int>(Command::GetCaseCountInDS, nullptr, Text{created.c_str()});
  Ask<int>(Command::GetVarCountInDS, nullptr, Text{created.c_str()});
  if (!created.empty()) TheDataSetCaches().created.add(created);
}

int createDataSet(const char* name, int flag1, int flag2) {
  const int code = Tell(Command::CreateDataset, Text{name}, Long{flag1}, Long{flag2});
  if (code == 0) rememberCreated(name);
  return code;
}

int closeDataSet(const char* name) {
  CommitPendingCells();
  const int code = Tell(Command::CloseDataset, Text{name});
  if (code == 0) TheDataSetCaches().created.remove(name ? name : "");
  return code;
}

}  // namespace

int CreateDataset(const char* name, int flag1, int flag2) {
  return Guarded([&] { return createDataSet(name, flag1, flag2); });
}

int SetDatasetName(const char* oldName, const char* newName) {
  return Tell(Command::SetDatasetName, Text{oldName}, Text{newName});
}

int GetNewDatasetName(char** name) { return Tell(Command::GetNewDatasetName, IntoText{name}); }

const char* GetActive(int* errorCode) { return Ask<const char*>(Command::GetActive, errorCode); }

int SetActive(const char* name) { return Tell(Command::SetActive, Text{name}); }

int CopyDataset(const char* source, const char* target) {
  return Tell(Command::CopyDataset, Text{source}, Text{target});
}

int CloseDataset(const char* name) {
  return IsEngineRunning() ? Guarded([&] { return closeDataSet(name); }) : kEngineNotRunning;
}

int GetKovaDatasets(char*** names, int* count) { return Tell(Command::GetKovaDatasets, IntoNames{names, count}); }

int GetOpenedKovaDatasets(char*** names, int* count) {
  return Tell(Command::GetOpenedKovaDatasets, IntoNames{names, count});
}

int SetCacheInDS(const char* dataSet, int flag) { return Tell(Command::SetCacheInDS, Text{dataSet}, Long{flag}); }

int IsNeedCache(int* isNeed) { return Tell(Command::IsNeedCache, IntoLong{isNeed}); }

int GetCaseCountInDS(const char* dataSet, int* errorCode) {
  return Ask<int>(Command::GetCaseCountInDS, errorCode, Text{dataSet});
}

int GetVarObsIndex(const char* dataSet, int index, int* errorCode) {
  return Ask<int>(Command::GetVarObsIndex, errorCode, Text{dataSet}, Long{index});
}

int GetTrendsInfoInDS(const char* dataSet, int* errorCode) {
  int info = 0;
  SendWhenRunning(Command::GetTrendsInfoInDS, errorCode, Text{dataSet}, IntoLong{&info});
  return info;
}

int GetRowCountInProcDS(int* errorCode) { return Ask<int>(Command::GetRowCountInProcDS, errorCode); }

int GetSelectedRowCountInProcDS(int* errorCode) {
  int count = -1;
  SendWhenRunning(Command::GetSelectedRowCountInProcDS, errorCode, IntoLong{&count});
  return count;
}

int GetRowCount(int* errorCode) { return Ask<int>(Command::GetRowCount, errorCode); }

char** GetSplitVariableNames(int* count, int* errorCode) {
  char** names = nullptr;
  Send(Command::GetSplitVariableNames, errorCode, IntoTexts{&names, count});
  return names;
}

int GetSplitEndIndex(int* errorCode) { return Ask<int>(Command::GetSplitEndIndex, errorCode); }

int SplitChange(const char* procedureName) { return Tell(Command::SplitChange, Text{procedureName}); }

int IsUseOrFilter(int* isUse) { return Tell(Command::IsUseOrFilter, IntoLong{isUse}); }
