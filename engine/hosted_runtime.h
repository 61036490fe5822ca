// Runs blocks of a language whose runtime the engine hosts: the library drives the runtime, this class serves the calls
// that the blocks make of the engine, each level of nested runs over pipes of its own and on a thread of its own.
// InnerRuntime hosts it inside the engine's process, OuterRuntime in a process of its own; DrivenRuntime reaches that
// of a program that drives the engine.
//
// Made by the program that offers the engine, after InitDxGlobal, and destroyed before FinalizeDXGlobal. start, run and
// stop are called on one thread at a time; run may also be called while a request is carried out, which makes it a
// nested run.
#ifndef KOVADX_ENGINE_HOSTED_RUNTIME_H
#define KOVADX_ENGINE_HOSTED_RUNTIME_H

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/xdapi_server.h"

class StatisticsX;

namespace kova::engine {

class HostedRuntime {
 public:
  // The two sides of XdapiServer, told which conversation it is: the level of the block that makes the call, from 0.
  // Called on that level's thread.
  using Perform = std::function<void(const CleXDSmb& request, CleXDSmb& reply, int conversation)>;
  using Leave = std::function<void(int conversation)>;

  HostedRuntime(const HostedRuntime&) = delete;
  HostedRuntime& operator=(const HostedRuntime&) = delete;
  virtual ~HostedRuntime();

  // Starts the runtime. 0, also when it is started already; 99120 when the configuration does not list the language;
  // 99104 or 8 when calls can not be served; the host's own code. Nothing is left behind by a failure.
  int start();

  // Runs the lines. The code of the run; 99115 when the runtime is not started; 170 for a run nested in one of a
  // runtime that can not take another block meanwhile. *areReached, when it is not null, tells whether the runtime was
  // given them: a code alone does not, since a block may end with any.
  int run(std::vector<std::string> lines, bool* areReached = nullptr);

  // Stops the runtime and the service of its calls; start may follow. The runtime's code, 0 when it is not started.
  // 170, and nothing stops, while a block runs.
  int stop();

 protected:
  // `language` as the configuration lists it. Where `isOutermost` is false the first level is another's, and every run
  // is nested in it.
  HostedRuntime(std::string language, Perform perform, Leave leave, bool isOutermost = true);

  const std::string& language() const { return language_; }

  // The language's host; null when the registry has none.
  StatisticsX* host() const;

  // Puts a runner that stands for a level of runs, and is never started, at the back of the registry. 0, or why not.
  virtual int raiseLevel() = 0;

  // Whether the runtime can run a block while another one waits in a call of the engine.
  virtual bool isNestable() const { return true; }

  // What the client of the first level is greeted with, where one waits for that.
  virtual std::optional<int> greeting() const { return std::nullopt; }

  // Starts the host. Its calls are served.
  virtual int startHost() = 0;

  // A run begins, on whatever thread.
  virtual void awaitStart() {}

  // Stops the host; its code.
  virtual int stopHost();

  // The host has stopped, or could not be started. Its calls are still served.
  virtual void hostHasEnded() {}

  // A run has failed before the runtime was given its lines.
  virtual void runWasNotReached() {}

  // While a request of the first level is carried out: it is that level's last.
  void endFirstLevelAfterReply();

 private:
  class Level;

  int runOn(std::vector<std::string>& lines, bool* areReached);

  std::string language_;
  Perform perform_;
  Leave leave_;
  const int runningAtRest_;
  std::atomic<int> running_;
  std::unique_ptr<Level> first_;  // As long as the runtime is started, so that it may call when it starts or stops.
};

}  // namespace kova::engine

#endif
