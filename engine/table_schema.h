// Reads the fields of a Table Schema.
#ifndef KOVADX_ENGINE_TABLE_SCHEMA_H
#define KOVADX_ENGINE_TABLE_SCHEMA_H

#include <string_view>
#include <vector>

#include "engine/field.h"
#include "engine/json_source.h"

namespace kova::engine {

// The fields that the schema describes, in its order; at least one, no two of the same name. Throws DataProblem for
// what is malformed, and for what would change the meaning of the data but is not read here.
std::vector<Field> readTableSchema(const JsonNode& schema);

// The type as a schema names it: "string".
std::string_view wordOf(FieldType type);

}  // namespace kova::engine

#endif
