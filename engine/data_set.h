// A data set: its dictionary and the cases that it describes. A plain value that owns both.
#ifndef KOVADX_ENGINE_DATA_SET_H
#define KOVADX_ENGINE_DATA_SET_H

#include <string>
#include <vector>

#include "engine/attributes.h"
#include "engine/case_store.h"
#include "engine/response_set.h"
#include "engine/variables.h"

namespace kova::engine {

struct DataSet {
  std::string name;
  std::string source;   // The file that it was read from, if any.
  Variables variables;  // In the order of the cases' values.
  CaseStore cases;
  Attributes attributes;
  std::vector<ResponseSet> responseSets;  // No two of the same name.
  std::string weight;                     // The name of the variable that says how often a case counts, or empty.
  std::vector<std::string> split;         // The names of the variables whose values divide the cases into groups.
  std::string filter;                     // The name of the numeric variable that selects cases, or empty for all.
  bool isCreated = false;                 // A program created it.
  int cacheFlag = 0;                      // What a program last asked for; the cases are in memory anyway.

  bool operator==(const DataSet&) const = default;
};

}  // namespace kova::engine

#endif
