// The engine that this process starts, drives and stops.
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "api/InitDxGlobal.h"
#include "api/call_frame.h"
#include "api/client_cursor.h"
#include "api/client_state.h"
#include "api/data_set_caches.h"
#include "api/guard.h"
#include "api/kovadx.h"
#include "api/new_values.h"
#include "api/pipe_selection.h"
#include "api/start_options.h"
#include "config/XCmdArgument.h"
#include "config/never_destroyed.h"
#include "config/process_values.h"
#include "host/CmdReceiveThread.h"
#include "host/XManager.h"
#include "host/child_programs.h"
#include "platform/os/clock.h"
#include "platform/os/file.h"
#include "platform/os/named_pipe.h"
#include "platform/os/process.h"
#include "trace/DxTracer.h"
#include "transport/DXCmdDispatcher.h"
#include "transport/KovaPipe.h"
#include "transport/XPipeManager.h"
#include "transport/XPipeSuit.h"
#include "transport/XPipes.h"
#include "transport/message_exchange.h"
#include "transport/watched_wait.h"

namespace {

using namespace kova;

constexpr int kEngineProgramMissing = 17;
constexpr int kEngineNotStarted = 99107;
constexpr int kBusy = 170;

constexpr std::uint32_t kStartPauseMs = 500;
constexpr std::uint32_t kCommandsPauseMs = 100;
constexpr int kMostCommandsPauses = 50;
constexpr std::uint32_t kStopPauseMs = 1000;

// The engine's process, from StartKova to StopKova.
struct DrivenEngine {
  os::Process process;
  std::unique_ptr<PeerWatch> watch;
  std::unique_ptr<CmdReceiveThread> commands;
  bool wasSetUpBefore = false;  // The process-wide values were there: a start that fails leaves them.

  bool isActive() { return process && process.Wait(0, nullptr) == os::kWaitTimeout; }

  void watchProcess() {
    watch = std::make_unique<PeerWatch>(process.Id());
    SetEngineWatch(watch.get());
  }

  // Waits without limit; only a wait that fails ends the process by force.
  void awaitEnd() {
    if (process && process.Wait(os::kWaitForever, nullptr) != os::kSuccess) process.Terminate();
    SetEngineWatch(nullptr);
    watch.reset();
    process = os::Process();
  }
};

DrivenEngine& engine() {
  static NeverDestroyed<DrivenEngine> theEngine;
  return theEngine.object();
}

void forget(KovaPipe* reply) {
  reply->DisconnectPipe();
  reply->ClosePipe();
}

// What the process knows of itself already is not replaced.
void adopt(const StartOptions& options) {
  ClientIdentity& identity = StoredIdentity();
  if (!options.kovaHome.empty()) identity.kovaHome = options.kovaHome;
  if (IsDXGlobalInit()) return;
  if (identity.xName.empty()) identity.xName = options.language;
  identity.tempFolder = options.tempPath;
}

std::string commandLineOf(const StartOptions& options) {
  const XPipeManager& manager = *GetXPipeManager();
  XCmdArgument arguments;
  arguments.pushArgument(orQuotes(manager.getPipePath()), false);
  arguments.pushArgument(manager.getPipePid(), true);
  arguments.pushArgument(StoredIdentity().xName, true);
  arguments.pushArgument(options.rest, true);
  return arguments.cmdline();
}

// The home goes along: the engine must not find another list of languages in one that it would choose by itself.
void startProcess(const std::string& program, const std::string& commandLine, const std::string& home) {
  os::ProcessStart start;
  start.program = program;
  start.commandLine = commandLine;
  start.environment.emplace_back("KOVA_HOME", home);
  start.endsWithParent = true;
  start.isApart = true;
  if (os::Process::Start(start, &engine().process) == os::kSuccess) engine().watchProcess();
}

// The engine's first word on the reply pipe; 109 when it ends without one.
int awaitGreeting(KovaPipe* reply) {
  const WatchedWait wait(engine().watch.get(), reply);
  // Whatever this gives: the receive tells the same.
  if (!reply->IsWritePipeConnected()) reply->ConnectPipe();
  CleXDSmb greeting;
  return ReceiveData(reply, greeting, true);
}

void takeCommands(DXCmdDispatcher* dispatcher) {
  {
    const WatchedWait wait(engine().watch.get(), dispatcher);
    dispatcher->connectPeer();
  }
  engine().commands = std::make_unique<CmdReceiveThread>(dispatcher);
  engine().commands->receive();
}

// What an engine that has ended has still written must not greet the next one's start. Deliberate: an engine that has
// greeted with an error is waited for without limit; it has to end by itself.
int giveUp(KovaPipe* reply, int code) {
  SetEngineRunning(false);
  forget(reply);
  engine().awaitEnd();
  return code;
}

int reportMissing(const std::string& program) {
  std::printf("No %s file exists\n", program.c_str());
  std::fflush(stdout);
  return kEngineProgramMissing;
}

void awaitCommandsEnd() {
  if (!engine().commands) return;
  for (int pauses = 0; engine().commands->isRunning() && pauses < kMostCommandsPauses; ++pauses) {
    os::SleepMs(kCommandsPauseMs);
  }
  if (engine().commands->isRunning()) DxTrace("Cmd Dispatcher thread can't exit timely.");
  engine().commands.reset();
}

void closeSuite() {
  XPipeSuit* const suite = CurrentSuite();
  if (suite == nullptr) return;
  if (XPipes* const set = suite->getXPipes()) forget(set->GetXDAPIResultPipe());
  suite->stopMonitor(false);
  suite->stopMonitor(true);
  if (IsHostCreatedHere()) {
    awaitCommandsEnd();
    GetXManager()->cleanup();
  } else {
    GetXPipeManager()->getPipeSuit(StoredIdentity().xName)->decreaseIndex();
  }
  ForgetCurrentSuite();
  GetXPipeManager()->cleanup();
}

// All that the process knows of its engine, so that a later StartKova begins afresh; who the process is stays.
void forgetEngine() {
  SetEngineRunning(false);
  SetHostCreatedHere(false);
  DropSharedText();
  DropWideText();
  SetRecordBrowserOutput(nullptr, false);
  ForgetDataSets();
  DropClientCursor();
  TheNewValues().clear();
}

// For an engine that is not to be talked to any more. Another one is reached over pipes of its own, and the process may
// have another name and home by then.
void abandonEngine() {
  if (engine().process) engine().process.Terminate();
  closeSuite();
  if (!engine().wasSetUpBefore) FinalizeDXGlobal();
  engine().awaitEnd();
  forgetEngine();
}

// Whether a block that the engine had this process run goes on: it uses the pipes, and nobody can end it.
bool hasBlock() {
  awaitCommandsEnd();
  const XManager* const manager = GetXManager();
  for (int pauses = 0; manager != nullptr && !manager->releaseRunners(); ++pauses) {
    if (pauses == kMostCommandsPauses) return true;
    os::SleepMs(kCommandsPauseMs);
  }
  return false;
}

int begin(const StartOptions& options) {
  adopt(options);
  XPipeSuit* const suite = CurrentSuite();
  if (suite == nullptr) return kPipeFailed;
  DxTrace("call StartKOVA");
  const std::string home = options.kovaHome.empty() ? GetKOVAHOME() : options.kovaHome;
  const std::string program = engineProgram(home);
  DXCmdDispatcher* const dispatcher = IsHostCreatedHere() ? suite->getCmdDispatcher(true) : nullptr;
  const CallPipes pipes = SelectPipes();
  if (!pipes) return kPipeFailed;
  if (!os::FileExists(program)) return reportMissing(program);
  startProcess(program, commandLineOf(options), home);
  os::SleepMs(kStartPauseMs);
  if (!engine().isActive()) return giveUp(pipes.reply, kEngineNotStarted);
  SetEngineRunning(true);
  const int greeted = awaitGreeting(pipes.reply);
  if (greeted != 0) return giveUp(pipes.reply, greeted);
  if (dispatcher != nullptr) takeCommands(dispatcher);
  return 0;
}

// The engine has this process run a block, on a level of its own.
bool isInBlock() {
  const XPipeSuit* const suite = CurrentSuite();
  return suite != nullptr && suite->getIndex() > 0;
}

// One that is there was never stopped, since it did not answer any more.
int start(const StartOptions& options) {
  if (engine().process) {
    engine().process.Terminate();
    if (hasBlock()) return kBusy;
    abandonEngine();
  }
  engine().wasSetUpBefore = IsDXGlobalInit();
  const int code = begin(options);
  if (code != 0) abandonEngine();
  return code;
}

void stop() {
  Send(Command::StopKova, nullptr);
  closeSuite();
  FinalizeDXGlobal();
  engine().awaitEnd();
  DxTrace("stopkova");
  forgetEngine();
  StoredIdentity() = {};
  os::SleepMs(kStopPauseMs);
}

}  // namespace

int StartKova(const char* options) {
  if (IsBackendReady()) return 0;
  return Guarded([&] { return start(parseStartOptions(options ? options : "")); });
}

// Deliberate: nothing happens inside a block either, whose end the stop would have to wait for.
void StopKova(void) {
  if (!IsBackendReady() || !IsXDriven()) return;
  Guarded([&] {
    if (!isInBlock()) stop();
    return 0;
  });
}
