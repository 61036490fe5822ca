// The runtime of a program that drives the engine: it is running already, in that program's process. The first level is
// the program's own, whose calls are served from the start; the blocks that the engine has it run are nested in it. A
// program that takes no commands has no blocks; whether it does is its own decision, made before it starts the engine.
#ifndef KOVADX_ENGINE_DRIVEN_RUNTIME_H
#define KOVADX_ENGINE_DRIVEN_RUNTIME_H

#include <mutex>
#include <optional>
#include <string>

#include "engine/hosted_runtime.h"

namespace kova::engine {

class DrivenRuntime : public HostedRuntime {
 public:
  // `name` is that of the driving program. The start greets it with that code, which is the start's result when it is
  // not 0, and waits for its control channel; run gives 99115 without one, or when the configuration does not list the
  // name. The stop tells the program that no more blocks come.
  DrivenRuntime(std::string name, int greeting, Perform perform, Leave leave);
  ~DrivenRuntime() override;

  // While a request of the program is carried out: it is the program's last.
  void endAfterReply() { endFirstLevelAfterReply(); }

 protected:
  int raiseLevel() override;
  std::optional<int> greeting() const override { return greeting_; }
  int startHost() override;
  void awaitStart() override;
  int stopHost() override;
  void hostHasEnded() override;
  void runWasNotReached() override;

 private:
  int greeting_;
  bool takesCommands_;
  std::mutex starting_;  // Held while the control channel is connected and the host made ready.
};

}  // namespace kova::engine

#endif
