// Which properties a variable may have. Each function makes a property of the values of a request, or answers with the
// code of what is wrong and leaves its result alone.
#ifndef KOVADX_ENGINE_DICTIONARY_RULES_H
#define KOVADX_ENGINE_DICTIONARY_RULES_H

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <vector>

#include "engine/data_set.h"
#include "engine/error_codes.h"

namespace kova::engine {

// The lowest and the highest number that a range of missing values can begin and end with: all but system-missing.
constexpr double kLowestNumber = std::bit_cast<double>(std::uint64_t{0xFFEFFFFFFFFFFFFE});
constexpr double kHighestNumber = std::numeric_limits<double>::max();

// False for what is not finite and for system-missing.
bool isValidNumber(double number);

ErrorCode makeFormat(const Variable& variable, int type, int width, int decimals, Format* format);
ErrorCode makeMissing(const Variable& variable, int kind, const std::array<double, kMostMissing>& numbers,
                      MissingValues* missing);
ErrorCode makeMissing(const Variable& variable, int kind, const std::array<std::string, kMostMissing>& texts,
                      MissingValues* missing);

// Gives the variable another type, 0 or a width. Texts of the cases are cut or filled up; labels and missing values
// that no longer fit go. With another kind the cases have no value of it, and format and alignment are those of a new
// variable. kOutOfMemory when the cases would need more than kMostCasesBytes.
ErrorCode changeType(DataSet* dataSet, std::size_t position, int type);

// A variable to be made: its type is 0 or a string's width.
struct NewVariable {
  std::string name;
  int type;
};

// Whether the data set can take them: their names are sound, new and differ, their types are in range.
ErrorCode checkNewVariables(const DataSet& dataSet, const std::vector<NewVariable>& variables);

// Adds variables in front of the one at a position, which may be their number, all or none. The cases have no values of
// them. kOutOfMemory when the cases would need more than kMostCasesBytes.
ErrorCode insertVariables(DataSet* dataSet, std::size_t position, const std::vector<NewVariable>& variables);

// Deletes variables, whose positions rise, with their values, all or none. Takes them out of wherever the data set
// names them: without the weight every case counts once, without the filter all are selected, and a response set of
// fewer than two variables goes.
void deleteVariables(DataSet* dataSet, std::span<const std::size_t> positions);

// Renames it wherever the data set names it.
ErrorCode renameVariable(DataSet* dataSet, std::size_t position, const std::string& name);

}  // namespace kova::engine

#endif
