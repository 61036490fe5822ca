// How numbers are written into a table, such that numberOf reads the same bits again.
#ifndef KOVADX_ENGINE_NUMBER_TEXT_H
#define KOVADX_ENGINE_NUMBER_TEXT_H

#include <string>

#include "engine/field.h"

namespace kova::engine {

// True when a field of this type has a text for exactly this number. No type has one for system-missing, and none but
// by its bits for a not-a-number.
bool canBeWritten(FieldType type, double number);

// Adds that text: the shortest one that is read as the number, or a day or time.
void appendNumber(FieldType type, double number, std::string* text);

// The same as a text of its own.
std::string numberText(FieldType type, double number);

// The text of a not-a-number: "NaN:" and its bits as 16 hexadecimal digits.
std::string notANumberText(double number);

}  // namespace kova::engine

#endif
