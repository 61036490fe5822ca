// Checks cases that come as bytes, before a data set takes them in.
#ifndef KOVADX_ENGINE_CASE_BYTES_H
#define KOVADX_ENGINE_CASE_BYTES_H

#include <cstddef>
#include <string_view>

#include "engine/data_set.h"
#include "engine/error_codes.h"

namespace kova::engine {

// Whether the bytes can be the values of so many variables, from the first on, of one case: numbers are finite, and may
// be system-missing; texts are UTF-8 without NUL bytes, and behind their width there are blanks. kNone, else
// kNumberNotValid, kTextNotUtf8, kTextWithNul or kValueTooLong.
ErrorCode checkCaseBytes(const DataSet& dataSet, std::size_t first, std::size_t count, const void* bytes);

// Whether the value can be that of the variable: kNone, or one of those codes.
ErrorCode checkNumber(double value);
ErrorCode checkCellText(const Variable& variable, std::string_view text);

}  // namespace kova::engine

#endif
