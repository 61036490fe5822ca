// What the engine knows: its data sets, which of them is active, its settings, its output and the socket for a runtime.
// Changed by request handlers alone, one at a time.
#ifndef KOVADX_ENGINE_ENGINE_STATE_H
#define KOVADX_ENGINE_ENGINE_STATE_H

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/data_pass.h"
#include "engine/data_set.h"
#include "engine/data_step.h"
#include "engine/output_state.h"
#include "engine/runtime_socket.h"
#include "engine/session.h"

namespace kova::engine {

// Runs the lines of a block in a language; the block's code, or one that tells why it was not run.
using RunBlock = std::function<int(const std::string& language, const std::vector<std::string>& lines)>;

struct EngineState {
  std::vector<std::unique_ptr<DataSet>> dataSets;
  DataSet* active = nullptr;                 // One of dataSets, or none.
  DataSet* ofProcedure = nullptr;            // The running procedure's, when it is another than the active one.
  int conversation = 0;                      // The one that asks at present.
  std::map<int, DataPass> passes;            // The open passes over cases, by conversation.
  std::map<int, DataStep> steps;             // The running data steps, by conversation.
  std::optional<std::size_t> tempFileCases;  // Of the data file that was saved or read last.
  Session session;
  OutputState output;
  RuntimeSocket runtimeSocket;
  RunBlock runBlock;  // Empty when no blocks are run. While it runs, other requests may change the state.
  int nestDepth = 0;  // How many blocks run at present.
};

}  // namespace kova::engine

#endif
