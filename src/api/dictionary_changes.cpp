// Calls that change the dictionary of the active data set.
#include "api/call_frame.h"
#include "api/kovadx.h"

using namespace kova;

int SetVarLabel(const char* varName, const char* label) {
  return Tell(Command::SetVarLabel, Text{varName}, Text{label});
}

int SetVarCValueLabel(const char* varName, const char* value, const char* label) {
  return Tell(Command::SetVarCValueLabel, Text{varName}, Text{value}, Text{label});
}

int SetVarNValueLabel(const char* varName, double value, const char* label) {
  return Tell(Command::SetVarNValueLabel, Text{varName}, Double{value}, Text{label});
}

int SetVarCMissingValues(const char* varName, int type, const char* v1, const char* v2, const char* v3) {
  return Tell(Command::SetVarCMissingValues, Text{varName}, Long{type}, Text{v1}, Text{v2}, Text{v3});
}

int SetVarNMissingValues(const char* varName, int type, double v1, double v2, double v3) {
  return Tell(Command::SetVarNMissingValues, Text{varName}, Long{type}, Double{v1}, Double{v2}, Double{v3});
}

int SetVarMeasureLevel(const char* varName, int level) {
  return Tell(Command::SetVarMeasureLevel, Text{varName}, Long{level});
}

int SetVarAlignment(const char* varName, int alignment) {
  return Tell(Command::SetVarAlignment, Text{varName}, Long{alignment});
}

int SetVarFormat(const char* varName, int formatType, int width, int decimals) {
  return Tell(Command::SetVarFormat, Text{varName}, Long{formatType}, Long{width}, Long{decimals});
}

int SetVarRole(const char* varName, int role) { return Tell(Command::SetVarRole, Text{varName}, Long{role}); }

int SetVarAttributes(const char* varName, const char* attrName, const char* attrValue, int index) {
  return Tell(Command::SetVarAttributes, Text{varName}, Text{attrName}, Text{attrValue}, Long{index});
}
