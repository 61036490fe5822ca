// Reads what a descriptor says in "x-kova", where the Data Package standard has no property for it.
#ifndef KOVADX_ENGINE_OWN_KEYS_H
#define KOVADX_ENGINE_OWN_KEYS_H

#include <string>
#include <vector>

#include "engine/attributes.h"
#include "engine/json_source.h"
#include "engine/response_set.h"
#include "engine/variables.h"

namespace kova::engine {

// What a package and its resource say of the data set; see there. A plain value.
struct OwnKeys {
  Attributes attributes;
  std::vector<ResponseSet> responseSets;
  std::string weight;
  std::vector<std::string> split;
  std::string filter;
};

// An object whose members are texts or lists of texts, or, where the order of the names counts, a list of objects with
// "name" and "values". Nothing when the node does not exist. Throws DataProblem.
Attributes readAttributes(const JsonNode& node);

// Adds what the node says to the keys, or replaces what they have of the same name. The variables are those of the data
// set; a string whose width is not known yet is there with the greatest one. Does nothing when the node does not exist.
// Throws DataProblem.
void readOwnKeys(const JsonNode& node, const Variables& variables, OwnKeys* keys);

}  // namespace kova::engine

#endif
