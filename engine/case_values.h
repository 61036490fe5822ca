// Values of a case by the names of their variables, as a program sends them to change a case or to add one.
#ifndef KOVADX_ENGINE_CASE_VALUES_H
#define KOVADX_ENGINE_CASE_VALUES_H

#include <cstddef>
#include <string>
#include <vector>

#include "engine/data_set.h"
#include "engine/error_codes.h"
#include "message/CleXDSmb.h"

namespace kova::engine {

// Values that the data set's variables can take. A plain value; it refers to the request that it was read from.
struct CaseValues {
  struct Number {
    std::size_t variable;
    double value;
  };
  struct Text {
    std::size_t variable;
    const std::string* value;
  };
  std::vector<Number> numbers;
  std::vector<Text> texts;

  // Writes them into a case; of two values of one variable the later one stays.
  void writeTo(DataSet* dataSet, std::size_t position) const;
};

// Reads the values of a request: a double and, as a string, a name for each number, and two lists of strings, the names
// and the values of the string variables. Or the code of the first that is wrong: a name that no variable has, a value
// of the other kind, a number that is not finite, a text that is too long or no UTF-8, names and values that do not
// pair.
ErrorCode readCaseValues(const DataSet& dataSet, const CleXDSmb& request, CaseValues* values);

}  // namespace kova::engine

#endif
