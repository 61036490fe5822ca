// The reference engine: data sets in memory, and an answer to every request.
//
// Made by the program that offers an engine; it must outlive the servers that ask it. Any thread may call it: requests
// of several conversations are carried out one after the other.
#ifndef KOVADX_ENGINE_ENGINE_H
#define KOVADX_ENGINE_ENGINE_H

#include <mutex>
#include <string>
#include <vector>

#include "engine/data_set.h"
#include "engine/engine_state.h"
#include "message/CleXDSmb.h"

namespace kova::engine {

class Engine {
 public:
  // Takes a data set in and makes it the active one.
  void open(DataSet dataSet);

  // Carries out one request; see dispatch.
  void perform(const CleXDSmb& request, CleXDSmb& reply) noexcept;

  // Every text that was submitted, oldest first.
  std::vector<std::string> submittedSyntax() const;

 private:
  mutable std::mutex mutex_;
  EngineState state_;
};

}  // namespace kova::engine

#endif
