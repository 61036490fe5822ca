// Calls that read and change the dictionary of a data set by its name.
#include "api/call_frame.h"
#include "api/data_set_caches.h"
#include "api/kovadx.h"

using namespace kova;

int GetVarCountInDS(const char* dataSet, int* errorCode) {
  return Ask<int>(Command::GetVarCountInDS, errorCode, Text{dataSet});
}

const char* GetVarNameInDS(const char* dataSet, int index, int* errorCode) {
  return Ask<const char*>(Command::GetVarNameInDS, errorCode, Text{dataSet}, Long{index});
}

int SetVarNameInDS(const char* dataSet, int index, const char* name) {
  return Tell(Command::SetVarNameInDS, Text{dataSet}, Long{index}, Text{name});
}

const char* GetVarLabelInDS(const char* dataSet, int index, int* errorCode) {
  return Ask<const char*>(Command::GetVarLabelInDS, errorCode, Text{dataSet}, Long{index});
}

int SetVarLabelInDS(const char* dataSet, int index, const char* label) {
  return Tell(Command::SetVarLabelInDS, Text{dataSet}, Long{index}, Text{label});
}

int GetVarTypeInDS(const char* dataSet, int index, int* errorCode) {
  return Ask<int>(Command::GetVarTypeInDS, errorCode, Text{dataSet}, Long{index});
}

int SetVarTypeInDS(const char* dataSet, int index, int type) {
  const int code = Tell(Command::SetVarTypeInDS, Text{dataSet}, Long{index}, Long{type});
  return OnceAccepted(code, dataSet, [&](DatastepDataSmb& record) { record.UpdateVarType(index, type); });
}

const char* GetVarFormatInDS(const char* dataSet, int index, int* errorCode) {
  return Ask<const char*>(Command::GetVarFormatInDS, errorCode, Text{dataSet}, Long{index});
}

int SetVarFormatInDS(const char* dataSet, int index, int formatType, int width, int decimals) {
  return Tell(Command::SetVarFormatInDS, Text{dataSet}, Long{index}, Long{formatType}, Long{width}, Long{decimals});
}

int GetVarAlignmentInDS(const char* dataSet, int index, int* errorCode) {
  return Ask<int>(Command::GetVarAlignmentInDS, errorCode, Text{dataSet}, Long{index});
}

int SetVarAlignmentInDS(const char* dataSet, int index, int alignment) {
  return Tell(Command::SetVarAlignmentInDS, Text{dataSet}, Long{index}, Long{alignment});
}

int GetVarColumnWidthInDS(const char* dataSet, int index, int* errorCode) {
  return Ask<int>(Command::GetVarColumnWidthInDS, errorCode, Text{dataSet}, Long{index});
}

int SetVarColumnWidthInDS(const char* dataSet, int index, int width) {
  return Tell(Command::SetVarColumnWidthInDS, Text{dataSet}, Long{index}, Long{width});
}

const char* GetVarMeasurementLevelInDS(const char* dataSet, int index, int* errorCode) {
  return Ask<const char*>(Command::GetVarMeasurementLevelInDS, errorCode, Text{dataSet}, Long{index});
}

int SetVarMeasurementLevelInDS(const char* dataSet, int index, const char* level) {
  return Tell(Command::SetVarMeasurementLevelInDS, Text{dataSet}, Long{index}, Text{level});
}

int GetVarRoleInDS(const char* dataSet, int index, int* errorCode) {
  return Ask<int>(Command::GetVarRoleInDS, errorCode, Text{dataSet}, Long{index});
}

int SetVarRoleInDS(const char* dataSet, int index, int role) {
  return Tell(Command::SetVarRoleInDS, Text{dataSet}, Long{index}, Long{role});
}

int GetVarNMissingValuesInDS(const char* dataSet, int index, int* type, double* v1, double* v2, double* v3) {
  return Tell(Command::GetVarNMissingValuesInDS, Text{dataSet}, Long{index}, IntoLong{type}, IntoDoubles{v1, v2, v3});
}

int GetVarCMissingValuesInDS(const char* dataSet, int index, int* type, char* v1, char* v2, char* v3) {
  return Tell(Command::GetVarCMissingValuesInDS, Text{dataSet}, Long{index}, IntoLong{type},
              IntoShortTexts{v1, v2, v3});
}

int SetVarNMissingValuesInDS(const char* dataSet, int index, int type, double v1, double v2, double v3) {
  return Tell(Command::SetVarNMissingValuesInDS, Text{dataSet}, Long{index}, Long{type}, Double{v1}, Double{v2},
              Double{v3});
}

int SetVarCMissingValuesInDS(const char* dataSet, int index, int type, const char* v1, const char* v2, const char* v3) {
  return Tell(Command::SetVarCMissingValuesInDS, Text{dataSet}, Long{index}, Long{type}, Text{v1}, Text{v2}, Text{v3});
}

int GetVarNValueLabelInDS(const char* dataSet, int index, double** values, char*** labels, int* count) {
  return Tell(Command::GetVarNValueLabelInDS, Text{dataSet}, Long{index}, IntoNumberLabels{values, labels, count});
}

int GetVarCValueLabelInDS(const char* dataSet, int index, char*** values, char*** labels, int* count) {
  return Tell(Command::GetVarCValueLabelInDS, Text{dataSet}, Long{index}, IntoTextLabels{values, labels, count});
}

int SetVarNValueLabelInDS(const char* dataSet, int index, double value, const char* label) {
  return Tell(Command::SetVarNValueLabelInDS, Text{dataSet}, Long{index}, Double{value}, Text{label});
}

int SetVarCValueLabelInDS(const char* dataSet, int index, const char* value, const char* label) {
  return Tell(Command::SetVarCValueLabelInDS, Text{dataSet}, Long{index}, Text{value}, Text{label});
}

int DelVarValueLabelInDS(const char* dataSet, int index) {
  return Tell(Command::DelVarValueLabelInDS, Text{dataSet}, Long{index});
}

int DelVarNValueLabelInDS(const char* dataSet, int index, double value) {
  return Tell(Command::DelVarNValueLabelInDS, Text{dataSet}, Long{index}, Double{value});
}

int DelVarCValueLabelInDS(const char* dataSet, int index, const char* value) {
  return Tell(Command::DelVarCValueLabelInDS, Text{dataSet}, Long{index}, Text{value});
}

int GetVarAttributesNameInDS(const char* dataSet, int index, char*** names, int* count) {
  return Tell(Command::GetVarAttributesNameInDS, Text{dataSet}, Long{index}, IntoCountedTexts{names, count});
}

int GetVarAttributesInDS(const char* dataSet, int index, const char* attrName, char*** attributes, int* count) {
  return Tell(Command::GetVarAttributesInDS, Text{dataSet}, Long{index}, Text{attrName},
              IntoCountedTexts{attributes, count});
}

int SetVarAttributesInDS(const char* dataSet, int index, const char* attrName, const char* const* attrValues,
                         int count) {
  return Tell(Command::SetVarAttributesInDS, Text{dataSet}, Long{index}, Text{attrName}, TextList{attrValues, count});
}

int DelVarAttributesInDS(const char* dataSet, int index, const char* attrName) {
  return Tell(Command::DelVarAttributesInDS, Text{dataSet}, Long{index}, Text{attrName});
}

int GetDataFileAttributeNamesInDS(const char* dataSet, char*** names, int* count) {
  return Tell(Command::GetDataFileAttributeNamesInDS, Text{dataSet}, IntoCountedTexts{names, count});
}

int GetDataFileAttributesInDS(const char* dataSet, const char* attrName, char*** attributes, int* count) {
  return Tell(Command::GetDataFileAttributesInDS, Text{dataSet}, Text{attrName}, IntoCountedTexts{attributes, count});
}

int SetDataFileAttributesInDS(const char* dataSet, const char* attrName, const char* const* attrValues, int count) {
  return Tell(Command::SetDataFileAttributesInDS, Text{dataSet}, Text{attrName}, TextList{attrValues, count});
}

int DelDataFileAttributesInDS(const char* dataSet, const char* attrName) {
  return Tell(Command::DelDataFileAttributesInDS, Text{dataSet}, Text{attrName});
}

char** GetMultiResponseSetNamesInDS(const char* dataSet, int* count, int* errorCode) {
  char** names = nullptr;
  Send(Command::GetMultiResponseSetNamesInDS, errorCode, Text{dataSet}, IntoTexts{&names, count});
  return names;
}

int GetMultiResponseSetInDS(const char* dataSet, const char* setName, char** label, int* codeAs, char** countedValue,
                            char*** varNames, int* varCount) {
  return Tell(Command::GetMultiResponseSetInDS, Text{dataSet}, Text{setName},
              IntoResponseSet{label, codeAs, countedValue, varNames, varCount});
}

int SetMultiResponseSetInDS(const char* dataSet, const char* setName, const char* label, int codeAs,
                            const char* countedValue, const char* const* varNames, int varCount) {
  return Tell(Command::SetMultiResponseSetInDS, Text{dataSet}, Text{setName}, Text{label}, Long{codeAs},
              Text{countedValue}, TextList{varNames, varCount});
}

int DelMultiResponseSetInDS(const char* dataSet, const char* setName) {
  return Tell(Command::DelMultiResponseSetInDS, Text{dataSet}, Text{setName});
}
