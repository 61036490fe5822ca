// The field of a Table Schema that describes a variable, such that the variable can be read from it again.
#ifndef KOVADX_ENGINE_FIELD_DESCRIPTION_H
#define KOVADX_ENGINE_FIELD_DESCRIPTION_H

#include <nlohmann/json.hpp>
#include <vector>

#include "engine/field_writer.h"

namespace kova::engine {

// The members in the order in which people read them. What the standard has no member for stands in "x-kova".
nlohmann::ordered_json describeField(const FieldWriter& field);

// An object of the names, or, when they stand in another order than its members would, a list.
nlohmann::ordered_json describeAttributes(const Attributes& attributes);

// The user-missing values that are no ends of a range.
std::vector<double> discreteMissingNumbers(const MissingValues& missing);
std::vector<std::string> discreteMissingTexts(const MissingValues& missing);

}  // namespace kova::engine

#endif
