// Calls about the cases of a data set.
#include "api/call_frame.h"
#include "api/kovadx.h"

using namespace kova;

int GetRowCount(int* errorCode) { return Ask<int>(Command::GetRowCount, errorCode); }

char** GetSplitVariableNames(int* count, int* errorCode) {
  char** names = nullptr;
  Send(Command::GetSplitVariableNames, errorCode, IntoTexts{&names, count});
  return names;
}

int GetSplitEndIndex(int* errorCode) { return Ask<int>(Command::GetSplitEndIndex, errorCode); }

int SplitChange(const char* procedureName) { return Tell(Command::SplitChange, Text{procedureName}); }

int IsUseOrFilter(int* isUse) { return Tell(Command::IsUseOrFilter, IntoLong{isUse}); }
