// Calls that read the dictionary of the running procedure's data.
#include "api/call_frame.h"
#include "api/kovadx.h"

using namespace kova;

int GetVariableCountInProcDS(int* errorCode) { return Ask<int>(Command::GetVariableCountInProcDS, errorCode); }

const char* GetVariableNameInProcDS(int index, int* errorCode) {
  return Ask<const char*>(Command::GetVariableNameInProcDS, errorCode, Long{index});
}

const char* GetVariableLabelInProcDS(int index, int* errorCode) {
  return Ask<const char*>(Command::GetVariableLabelInProcDS, errorCode, Long{index});
}

int GetVariableTypeInProcDS(int index, int* errorCode) {
  return Ask<int>(Command::GetVariableTypeInProcDS, errorCode, Long{index});
}

const char* GetVariableFormatInProcDS(int index, int* errorCode) {
  return Ask<const char*>(Command::GetVariableFormatInProcDS, errorCode, Long{index});
}

int GetVariableFormatTypeInProcDS(int index, int* formatType, int* width, int* decimals) {
  return Tell(Command::GetVariableFormatTypeInProcDS, Long{index}, IntoLongs{formatType, width, decimals});
}

int GetVariableMeasurementLevelInProcDS(int index, int* errorCode) {
  return Ask<int>(Command::GetVariableMeasurementLevelInProcDS, errorCode, Long{index});
}

int GetVariableRoleInProcDS(int index, int* errorCode) {
  return Ask<int>(Command::GetVariableRoleInProcDS, errorCode, Long{index});
}

int GetVarNMissingValuesInProcDS(int index, int* type, double* v1, double* v2, double* v3) {
  return Tell(Command::GetVarNMissingValuesInProcDS, Long{index}, IntoLong{type}, IntoDoubles{v1, v2, v3});
}

int GetVarCMissingValuesInProcDS(int index, int* type, char* v1, char* v2, char* v3) {
  return Tell(Command::GetVarCMissingValuesInProcDS, Long{index}, IntoLong{type}, IntoShortTexts{v1, v2, v3});
}

int GetVarAttributeNamesInProcDS(int index, char*** names, int* count) {
  return Tell(Command::GetVarAttributeNamesInProcDS, Long{index}, IntoCountedTexts{names, count});
}

int GetVarAttributesInProcDS(int index, const char* attrName, char*** attributes, int* count) {
  return Tell(Command::GetVarAttributesInProcDS, Long{index}, Text{attrName}, IntoCountedTexts{attributes, count});
}

int GetDataFileAttributeNamesInProcDS(char*** names, int* count) {
  return Tell(Command::GetDataFileAttributeNamesInProcDS, IntoCountedTexts{names, count});
}

int GetDataFileAttributesInProcDS(const char* attrName, char*** attributes, int* count) {
  return Tell(Command::GetDataFileAttributesInProcDS, Text{attrName}, IntoCountedTexts{attributes, count});
}

char** GetMultiResponseSetNamesInProcDS(int* count, int* errorCode) {
  char** names = nullptr;
  Send(Command::GetMultiResponseSetNamesInProcDS, errorCode, IntoTexts{&names, count});
  return names;
}

int GetMultiResponseSetInProcDS(const char* setName, char** label, int* codeAs, char** countedValue, char*** varNames,
                                int* varCount) {
  return Tell(Command::GetMultiResponseSetInProcDS, Text{setName},
              IntoResponseSet{label, codeAs, countedValue, varNames, varCount});
}
