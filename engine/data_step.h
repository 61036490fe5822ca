// A conversation's data step: the bracket in which it may insert, delete and move cases and variables of the data sets.
// A plain value of the engine's state; the data sets that it names are open.
#ifndef KOVADX_ENGINE_DATA_STEP_H
#define KOVADX_ENGINE_DATA_STEP_H

#include <vector>

#include "engine/data_set.h"

namespace kova::engine {

struct DataStep {
  std::vector<DataSet*> touched;  // Those whose cases were read or which were changed, each once, in that order.
};

}  // namespace kova::engine

#endif
