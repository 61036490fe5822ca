// A hosted runtime inside the engine's own process. A process has one at a time: it is the one client that the
// process's calls come from.
#ifndef KOVADX_ENGINE_INNER_RUNTIME_H
#define KOVADX_ENGINE_INNER_RUNTIME_H

#include <string>

#include "engine/hosted_runtime.h"

namespace kova::engine {

class InnerRuntime : public HostedRuntime {
 public:
  // `language` as the configuration lists it, `home` the home folder. The start also gives 99118 when the configuration
  // names no library, and 99114 when that can not be loaded.
  InnerRuntime(
      std::string language, std::string home, Perform perform, Leave leave = [](int /*conversation*/) {});
  ~InnerRuntime() override;

 protected:
  int raiseLevel() override;
  int startHost() override;
  void hostHasEnded() override;

 private:
  std::string home_;
};

}  // namespace kova::engine

#endif
