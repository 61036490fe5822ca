// A hosted runtime in a process of its own: the program startx with the runtime's library, the console of R, or a Java
// extension, as the library starts them (host/OutpStatisticsX.h).
#ifndef KOVADX_ENGINE_OUTER_RUNTIME_H
#define KOVADX_ENGINE_OUTER_RUNTIME_H

#include <memory>
#include <optional>
#include <string>

#include "engine/hosted_runtime.h"

class MonitorThread;
class OutpStatisticsX;

namespace kova::engine {

// How the process of a runtime has ended.
struct ChildEnd {
  std::string program;          // The one that was started, or was to be; empty before.
  std::optional<int> exitCode;  // 128 and its number for a signal; nothing when none was started, or it still runs.
  std::string lastOutput;       // The end of what R's console has shown; empty for other languages.
};

class OuterRuntime : public HostedRuntime {
 public:
  // The application mode of the process (SetAppMode) is told to the runtime. A run whose process ends gives 109, or
  // 99104 in R. R's console and a Java extension take no nested runs.
  OuterRuntime(
      std::string language, Perform perform, Leave leave = [](int /*conversation*/) {});
  ~OuterRuntime() override;

  // How the runtime's process has ended, also after a stop or a start that failed; of one that runs it waits that long
  // for the end.
  ChildEnd childEnd(unsigned patienceMs = 0);

 protected:
  int raiseLevel() override;
  bool isNestable() const override { return isStartx(); }
  int startHost() override;
  int stopHost() override;
  void hostHasEnded() override;
  void runWasNotReached() override;

 private:
  OutpStatisticsX* outerHost() const;
  bool isStartx() const;
  int checkPackage();

  ChildEnd ended_;
  std::unique_ptr<MonitorThread> childToParent_;
  std::unique_ptr<MonitorThread> parentToChild_;
};

}  // namespace kova::engine

#endif
