// Runs blocks of a language whose runtime is hosted inside the engine's own process: the library loads the runtime and
// drives it, this class serves the calls that the blocks make of the engine, each level of nested runs over pipes of
// its own and on a thread of its own.
//
// Made by the program that offers the engine, after InitDxGlobal, and destroyed before FinalizeDXGlobal. A process has
// one at a time: it is the one client that the process's calls come from. start, run and stop are called on one thread
// at a time; run may also be called while a request is carried out, which makes it a nested run.
#ifndef KOVADX_ENGINE_INNER_RUNTIME_H
#define KOVADX_ENGINE_INNER_RUNTIME_H

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/xdapi_server.h"

class CmdKovaDX;
class StatisticsX;

namespace kova::engine {

class InnerRuntime {
 public:
  // The two sides of XdapiServer, told which conversation it is: the level of the block that makes the call, from 0.
  // Called on that level's thread.
  using Perform = std::function<void(const CleXDSmb& request, CleXDSmb& reply, int conversation)>;
  using Leave = std::function<void(int conversation)>;

  // `language` as the configuration lists it, `home` the home folder.
  InnerRuntime(
      std::string language, std::string home, Perform perform, Leave leave = [](int /*conversation*/) {});
  InnerRuntime(const InnerRuntime&) = delete;
  InnerRuntime& operator=(const InnerRuntime&) = delete;
  ~InnerRuntime();

  // Loads the runtime and starts it. 0, also when it is started already; 99120 when the configuration does not list the
  // language, 99118 when it names no library, 99114 when that can not be loaded; 99104 or 8 when calls can not be
  // served; the runtime's own code. Nothing is left behind by a failure.
  int start();

  // Runs the lines. The code of the run; 99115 when the runtime is not started. *areReached, when it is not null, tells
  // whether the runtime was given them: a code alone does not, since a block may end with any.
  int run(std::vector<std::string> lines, bool* areReached = nullptr);

  // Stops the runtime and the service of its calls; start may follow. The runtime's code, 0 when it is not started.
  // 170, and nothing stops, while a block runs.
  int stop();

 private:
  class Level;

  StatisticsX* host() const;
  int runOn(std::vector<std::string>& lines, bool* areReached);
  void endService();

  std::string language_;
  std::string home_;
  Perform perform_;
  Leave leave_;
  std::atomic<int> running_{0};
  std::unique_ptr<Level> first_;  // As long as the runtime is started, so that it may call when it starts or stops.
};

}  // namespace kova::engine

#endif
