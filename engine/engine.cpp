#include "engine/engine.h"

#include <memory>
#include <utility>

#include "engine/dispatcher.h"

namespace kova::engine {

void Engine::open(DataSet dataSet) {
  const std::lock_guard lock(mutex_);
  state_.dataSets.push_back(std::make_unique<DataSet>(std::move(dataSet)));
  state_.active = state_.dataSets.back().get();
}

void Engine::perform(const CleXDSmb& request, CleXDSmb& reply) noexcept {
  const std::lock_guard lock(mutex_);
  dispatch(state_, request, reply);
}

std::vector<std::string> Engine::submittedSyntax() const {
  const std::lock_guard lock(mutex_);
  return state_.submittedSyntax;
}

}  // namespace kova::engine
