// Takes back what earlier calls gave to the caller: local functions.
#include <cstdlib>

#include "api/call_frame.h"
#include "api/caller_memory.h"
#include "api/kovadx.h"

using kova::FreeTexts;
using kova::IsEngineRunning;
using kova::kEngineNotRunning;

int FreeString(char* text) {
  std::free(text);
  return 0;
}

int FreeStringArray(char** list, int count) {
  if (!IsEngineRunning()) return kEngineNotRunning;
  if (count > 0) FreeTexts(list, count);
  return 0;
}

int FreeDoubleArray(double* values, int count) {
  if (count > 0) std::free(values);
  return 0;
}

int FreeAttributeNames(char** list, int count) { return FreeStringArray(list, count); }

int FreeAttributes(char** list, int count) { return FreeStringArray(list, count); }

int FreeNValueLabels(double* values, char** labels, int count) {
  const int code = FreeStringArray(labels, count);
  return code != 0 ? code : FreeDoubleArray(values, count);
}

int FreeCValueLabels(char** values, char** labels, int count) {
  const int code = FreeStringArray(values, count);
  return code != 0 ? code : FreeStringArray(labels, count);
}
