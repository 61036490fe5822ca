// Data in temporary files of the engine, and files of data that are moved without it.
#include "api/call_frame.h"
#include "api/file_transfers.h"
#include "api/guard.h"
#include "api/kovadx.h"
#include "api/local_results.h"

using namespace kova;

int SaveDataToTempFile(const char* fileName, int* result, int flag) {
  const int code = Tell(Command::SaveDataToTempFile, Text{fileName}, Long{flag});
  StoreAt(result, code);
  return code;
}

int GetDataFromTempFile(const char* fileName, int firstRow, int rowCount) {
  return Tell(Command::GetDataFromTempFile, Text{fileName}, Long{firstRow}, Long{rowCount});
}

int GetRowCountInTempFile(int* errorCode) { return Ask<int>(Command::GetRowCountInTempFile, errorCode); }

int TransportData(const char* source, const char* target, bool flag) {
  if (!IsEngineRunning()) return kEngineNotRunning;
  return Guarded([&] { return TheFileTransfers().start(source, target, NormalisedFlag(flag) != 0); });
}
