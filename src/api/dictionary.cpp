// Calls that read the dictionary of the active data set.
#include "api/call_frame.h"
#include "api/kovadx.h"

using namespace kova;

int GetVariableCount(int* errorCode) { return Ask<int>(Command::GetVariableCount, errorCode); }

const char* GetVariableName(int index, int* errorCode) {
  return Ask<const char*>(Command::GetVariableName, errorCode, Long{index});
}

const char* GetVariableLabel(int index, int* errorCode) {
  return Ask<const char*>(Command::GetVariableLabel, errorCode, Long{index});
}

int GetVariableType(int index, int* errorCode) { return Ask<int>(Command::GetVariableType, errorCode, Long{index}); }

const char* GetVariableFormat(int index, int* errorCode) {
  return Ask<const char*>(Command::GetVariableFormat, errorCode, Long{index});
}

int GetVariableFormatType(int index, int* formatType, int* width, int* decimals) {
  return Tell(Command::GetVariableFormatType, Long{index}, IntoLongs{formatType, width, decimals});
}

int GetVariableMeasurementLevel(int index, int* errorCode) {
  return Ask<int>(Command::GetVariableMeasurementLevel, errorCode, Long{index});
}

int GetVariableRole(int index, int* errorCode) { return Ask<int>(Command::GetVariableRole, errorCode, Long{index}); }

int GetVarNMissingValues(int index, int* type, double* v1, double* v2, double* v3) {
  return Tell(Command::GetVarNMissingValues, Long{index}, IntoLong{type}, IntoDoubles{v1, v2, v3});
}

int GetVarCMissingValues(int index, int* type, char* v1, char* v2, char* v3) {
  return Tell(Command::GetVarCMissingValues, Long{index}, IntoLong{type}, IntoShortTexts{v1, v2, v3});
}

int GetNValueLabels(int index, double** values, char*** labels, int* count) {
  return Tell(Command::GetNValueLabels, Long{index}, IntoNumberLabels{values, labels, count});
}

int GetCValueLabels(int index, char*** values, char*** labels, int* count) {
  return Tell(Command::GetCValueLabels, Long{index}, IntoTextLabels{values, labels, count});
}

int GetVarAttributeNames(int index, char*** names, int* count) {
  return Tell(Command::GetVarAttributeNames, Long{index}, IntoCountedTexts{names, count});
}

int GetVarAttributes(int index, const char* attrName, char*** attributes, int* count) {
  return Tell(Command::GetVarAttributes, Long{index}, Text{attrName}, IntoCountedTexts{attributes, count});
}

int GetDataFileAttributeNames(char*** names, int* count) {
  return Tell(Command::GetDataFileAttributeNames, IntoCountedTexts{names, count});
}

int GetDataFileAttributes(const char* attrName, char*** attributes, int* count) {
  return Tell(Command::GetDataFileAttributes, Text{attrName}, IntoCountedTexts{attributes, count});
}

char** GetMultiResponseSetNames(int* count, int* errorCode) {
  char** names = nullptr;
  Send(Command::GetMultiResponseSetNames, errorCode, IntoTexts{&names, count});
  return names;
}

int GetMultiResponseSet(const char* setName, char** label, int* codeAs, char** countedValue, char*** varNames,
                        int* varCount) {
  return Tell(Command::GetMultiResponseSet, Text{setName},
              IntoResponseSet{label, codeAs, countedValue, varNames, varCount});
}

const char* GetWeightVar(int* errorCode) { return Ask<const char*>(Command::GetWeightVar, errorCode); }

int GetSystemMissingValue(double* value) { return Tell(Command::GetSystemMissingValue, IntoDouble{value}); }

int GetKOVALowHigh(double* low, double* high) { return Tell(Command::GetKOVALowHigh, IntoDoublePair{low, high}); }

int ValidateVarName(const char* name, int* result) {
  return Tell(Command::ValidateVarName, Text{name}, IntoLong{result});
}
