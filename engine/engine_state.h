// What the engine knows: its data sets, which of them is active, and the syntax that was submitted. Changed by request
// handlers alone, one at a time.
#ifndef KOVADX_ENGINE_ENGINE_STATE_H
#define KOVADX_ENGINE_ENGINE_STATE_H

#include <memory>
#include <string>
#include <vector>

#include "engine/data_set.h"

namespace kova::engine {

struct EngineState {
  std::vector<std::unique_ptr<DataSet>> dataSets;
  DataSet* active = nullptr;  // One of dataSets, or none.
  std::vector<std::string> submittedSyntax;
};

}  // namespace kova::engine

#endif
