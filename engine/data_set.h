// A data set: a dictionary of variables and the cases that it describes. A plain value that owns both.
#ifndef KOVADX_ENGINE_DATA_SET_H
#define KOVADX_ENGINE_DATA_SET_H

#include <string>
#include <vector>

#include "engine/case_store.h"
#include "engine/variable.h"

namespace kova::engine {

struct DataSet {
  std::string name;
  std::vector<Variable> variables;  // In the order of the cases' values.
  CaseStore cases;
};

}  // namespace kova::engine

#endif
