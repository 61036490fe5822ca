// Reads the categories and the missing values of a field: its value labels and its user-missing values.
#ifndef KOVADX_ENGINE_FIELD_LABELS_H
#define KOVADX_ENGINE_FIELD_LABELS_H

#include "engine/field.h"
#include "engine/json_source.h"

namespace kova::engine {

// A list of values, or of objects with "value" and "label". A value without a label is labelled with its own text, and
// none may have two different labels. Does nothing when the node does not exist. Throws DataProblem.
void readCategories(const JsonNode& node, Field* field);

// An object with the "range" of missing numbers, a list of its two ends, and the "values" beside it: the user-missing
// values whole, in place of those that were read before. Does nothing when the node does not exist. Throws DataProblem.
void readOwnMissing(const JsonNode& node, Field* field);

// A list of texts, or of objects with "value" and "label"; when the node does not exist, the empty text alone. A text
// that can be a user-missing value (a number, or a text of at most 8 bytes) becomes one, with its label as value label,
// once for one value; every other one stands for no value. Throws DataProblem.
void readMissingValues(const JsonNode& node, Field* field);

}  // namespace kova::engine

#endif
