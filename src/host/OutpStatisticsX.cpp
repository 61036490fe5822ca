#include "host/OutpStatisticsX.h"

#include <cstdint>
#include <mutex>
#include <set>
#include <string_view>
#include <utility>

#include "config/XCmdArgument.h"
#include "config/XConfigOptions.h"
#include "config/never_destroyed.h"
#include "config/process_values.h"
#include "config/text_utilities.h"
#include "host/child_environment.h"
#include "host/child_programs.h"
#include "host/r_console.h"
#include "message/CleXDSmb.h"
#include "message/JavaExtensionSmb.h"
#include "platform/os/clock.h"
#include "platform/os/environment.h"
#include "platform/os/file.h"
#include "platform/os/named_pipe.h"
#include "platform/os/process.h"
#include "trace/DxTracer.h"
#include "transport/DXCmdDispatcher.h"
#include "transport/JavaPlugInSocket.h"
#include "transport/KovaPipe.h"
#include "transport/XPipeManager.h"
#include "transport/XPipeSuit.h"
#include "transport/XPipes.h"
#include "transport/message_exchange.h"
#include "transport/stale_pipe.h"
#include "transport/watched_wait.h"

using namespace kova;

namespace {

constexpr const char* kVersion = "29.0.0.0";
constexpr std::string_view kJavaArgument = "JavaExtension";
constexpr const char* kJavaClass = "com.qor.statistics.plugin.Extension";

constexpr std::uint32_t kStartPauseMs = 500;
constexpr int kMostTests = 100;
constexpr std::uint32_t kTestPauseMs = 100;
constexpr int kJavaLookMs = 50;
constexpr std::uint32_t kLookMs = 100;

// A path between single quotes, as R reads it.
std::string quotedForR(const std::string& path) {
  std::string quoted = "'";
  for (const char c : transPath(path)) quoted += c == '\'' ? "\\'" : std::string(1, c);
  return quoted + "'";
}

}  // namespace

// The processes of all hosts, for the one who ends them on a thread of its own, which meets none half started.
struct OutpStatisticsX::Processes {
  std::mutex mutex;
  std::set<os::Process*> present;

  bool start(const os::ProcessStart& start, os::Process* process) {
    const std::lock_guard hold(mutex);
    if (os::Process::Start(start, process) != os::kSuccess) return false;
    present.insert(process);
    return true;
  }
  void remove(os::Process* process) {
    const std::lock_guard hold(mutex);
    present.erase(process);
  }
};

OutpStatisticsX::Processes& OutpStatisticsX::processes() {
  static NeverDestroyed<Processes> theProcesses;
  return theProcesses.object();
}

struct OutpStatisticsX::Child {
  std::string program;
  os::Process process;
  std::unique_ptr<PeerWatch> watch;
  std::optional<int> exitCode;
  RConsole console;

  Child() = default;
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() { processes().remove(&process); }

  bool isActive() { return process && look(0) == os::kWaitTimeout; }

  // Waits that long for the end, and notes the exit code.
  os::Error look(std::uint32_t timeoutMs) {
    int code = 0;
    const os::Error error = process.Wait(timeoutMs, &code);
    if (error == os::kSuccess) exitCode = code;
    return error;
  }

  void start(const os::ProcessStart& start) {
    exitCode.reset();
    program = start.program;
    if (!processes().start(start, &process)) return;
    watch = std::make_unique<PeerWatch>(process.Id());
  }

  void close() {
    watch.reset();
    processes().remove(&process);
    process = os::Process();
    console.close();
  }
};

OutpStatisticsX::OutpStatisticsX(XConfigOptions* options, int appMode, bool kovaDrive)
    : StatisticsX(kovaDrive), options_(options), child_(std::make_unique<Child>()), appMode_(appMode) {}

OutpStatisticsX::~OutpStatisticsX() { stop_embedded_x(); }

bool OutpStatisticsX::isXProcessActive() { return !isKovaDrive() || child_->isActive(); }

const std::string& OutpStatisticsX::childProgram() const { return child_->program; }

unsigned int OutpStatisticsX::childProcessId() const { return child_->process ? child_->process.Id() : 0; }

std::optional<int> OutpStatisticsX::childExitCode(unsigned int patienceMs) {
  if (child_->process) child_->look(patienceMs);
  return child_->exitCode;
}

const std::string& OutpStatisticsX::lastConsoleOutput() const { return child_->console.lastOutput(); }

bool OutpStatisticsX::isRConsole() const { return !isJava_ && options_->XName() == "R"; }

XPipeSuit* OutpStatisticsX::suite() const {
  XPipeManager* const manager = GetXPipeManager();
  return manager != nullptr ? manager->getPipeSuit(options_->XName()) : nullptr;
}

XPipes* OutpStatisticsX::pipes() const { return suite() != nullptr ? suite()->getXPipes() : nullptr; }

// A child is stopped between runs as well as within one.
XPipes* OutpStatisticsX::lastPipes() const { return suite() != nullptr ? suite()->getLastXPipes() : nullptr; }

std::string OutpStatisticsX::getBackendProcessName() const {
  if (appMode_ == 1) return "LOCAL";
  if (appMode_ == 0) return "REMOTE";
  const std::string path = os::ProgramPath();
  return path.substr(path.find_last_of(os::kPathSeparator) + 1);
}

std::string OutpStatisticsX::getMajorVersion() const {
  const std::string_view version = kVersion;
  return std::string(version.substr(0, version.find('.')));
}

void OutpStatisticsX::pushEnv(XCmdArgument& environment) { pushChildEnvironment(*options_, environment); }

int OutpStatisticsX::x_init_embedded_x(int argc, char** argv) {
  if (suite() == nullptr) return kPipeFailed;
  if (child_->process) stat_stop_x();  // A console that drives itself is started again: the first one goes.
  isJava_ = argc > 0 && argv[0] == kJavaArgument;
  int code = 0;
  if (isJava_) {
    code = stat_start_java();
  } else {
    code = isRConsole() ? start_x_process(argc, argv) : stat_start_x();
  }
  // Without a socket nothing was begun.
  if (code != 0 && code != kJavaSocketNotMade) abandonChild();
  return code;
}

// A start that fails leaves no process: that shows in the looks that follow.
void OutpStatisticsX::startProcess(const std::string& program, XCmdArgument& arguments) {
  XCmdArgument environment;
  pushEnv(environment);
  applyEnvironment(environment);
  os::ProcessStart start;
  start.program = program;
  const char* const line = arguments.cmdline();
  start.commandLine = line != nullptr ? line : "";
  start.endsWithParent = true;
  start.isApart = true;
  if (isRConsole() && child_->console.open() == os::kSuccess) {
    start.input = child_->console.childInput();
    start.output = child_->console.childOutput();
  }
  child_->start(start);
  child_->console.closeChildEnds();
}

int OutpStatisticsX::stat_start_x() {
  XCmdArgument arguments;
  arguments.pushArgument(getBackendProcessName(), true);
  arguments.pushArgument(orQuotes(GetXPipeManager()->getPipePath()), false);
  arguments.pushArgument(GetXPipeManager()->getPipePid(), true);
  arguments.pushArgument(options_->XName(), true);
  if (options_->XName().find("PYTHON") != std::string::npos) {
    arguments.pushArgument("\"" + options_->GetXHome() + "\"", true);
  }
  suite()->getCmdDispatcher(false);  // Its pipe is there before the child looks for it.
  startProcess(startxProgram(GetKOVAHOME(), options_->WorkOn32()), arguments);
  os::SleepMs(kStartPauseMs);
  if (isKovaDrive() && !child_->isActive()) return kChildNotRunning;
  const int result = connectChild();
  DxTraceError("stat_start_x result", result);
  return result;
}

// A child that has ended is not waited for.
int OutpStatisticsX::connectChild() {
  DXCmdDispatcher* const dispatcher = suite()->getCmdDispatcher(false);
  {
    const WatchedWait wait(child_->watch.get(), dispatcher);
    dispatcher->connectPeer();
  }
  int result = sendCommand(DXCmdDispatcher::kTestCmdst);
  for (int sends = 1; result != 0 && sends < kMostTests && isXProcessActive(); ++sends) {
    os::SleepMs(kTestPauseMs);
    result = sendCommand(DXCmdDispatcher::kTestCmdst);
  }
  return result;
}

int OutpStatisticsX::sendCommand(int key) {
  if (suite() == nullptr) return kPipeFailed;
  DXCmdDispatcher* const dispatcher = suite()->getCmdDispatcher(false);
  const WatchedWait wait(child_->watch.get(), dispatcher);
  return dispatcher->sendCmd(static_cast<DXCmdDispatcher::CmdKey>(key));
}

int OutpStatisticsX::start_x_process(int argc, char** argv) {
  XCmdArgument arguments;
  for (int i = 0; i < argc; ++i) arguments.pushArgument(argv[i], true);
  startProcess(rConsoleProgram(options_->GetXHome()), arguments);
  os::SleepMs(kStartPauseMs);
  const int result = isKovaDrive() && !child_->isActive() ? kChildNotRunning : shakeHandsWithR();
  DxTraceError("start_x_process result", result);
  return result;
}

// Deliberate: that the package can not be loaded shows in the statement that follows.
int OutpStatisticsX::shakeHandsWithR() {
  const int prompted = get_x_result();
  if (prompted != 0) return prompted;
  ask("library(kovastatistics)\n");
  const XPipeManager& manager = *GetXPipeManager();
  const std::string statement = "initRProcess('" + getBackendProcessName() + "', " + quotedForR(manager.getPipePath()) +
                                ", '" + manager.getPipePid() + "', '" + options_->XName() + "')\n";
  return ask(statement.c_str());
}

int OutpStatisticsX::stat_start_java() {
  if (GetJavaExtSocket() == nullptr) SetavaExtSocket(new JavaPlugInSocket);
  if (GetJavaExtSocket()->CreateSocket() != 0) return kJavaSocketNotMade;
  XCmdArgument arguments;
  arguments.pushArgument(kJavaClass, true);
  arguments.pushArgument(getBackendProcessName(), true);
  arguments.pushArgument(std::to_string(GetJavaExtSocket()->GetSocketPort()), true);
  arguments.pushArgument(JavaExtensionSmb().GetCommandName(), true);
  startProcess(javaProgram(GetKOVAHOME()), arguments);
  acceptJava();
  os::SleepMs(kStartPauseMs);
  const int result = isKovaDrive() && !child_->isActive() ? kJavaChildNotRunning : 0;
  DxTraceError("stat_start_java result", result);
  return result;
}

void OutpStatisticsX::acceptJava() {
  int come = kNoPeerYet;
  while (come == kNoPeerYet && isXProcessActive()) come = GetJavaExtSocket()->AwaitPeer(kJavaLookMs);
  if (come == 0) GetJavaExtSocket()->AcceptSocket();
}

int OutpStatisticsX::x_execute_x(char* syntax) {
  const char* const text = syntax != nullptr ? syntax : "";
  if (isJava_) return runJava();
  return isRConsole() ? runInConsole(text) : runInStartx(text);
}

// Deliberate: with kovaDrive false this never returns.
int OutpStatisticsX::runJava() {
  JavaExtensionSmb record;
  const int result = SendData(GetJavaExtSocket(), record);
  DxTraceError("x_execute_x SendData syntaxSocket", result);
  if (result != 0) return result;
  while (isXProcessActive()) {
    if (child_->look(os::kWaitForever) != os::kSuccess) os::SleepMs(kLookMs);
  }
  return 0;
}

int OutpStatisticsX::runInConsole(const char* syntax) {
  int result = 0;
  std::string_view rest = syntax;
  for (std::size_t end = rest.find('\n'); end != std::string_view::npos; end = rest.find('\n')) {
    result = ask(std::string(rest.substr(0, end + 1)).c_str());
    rest.remove_prefix(end + 1);
  }
  return result;
}

int OutpStatisticsX::runInStartx(const char* syntax) {
  XPipes* const set = pipes();
  if (set == nullptr) return kPipeFailed;
  CleXDSmb message;
  message.SetString(syntax);
  int result = SendData(set->GetSyntaxPipe(), message, false);
  DxTraceError("x_execute_x SendData syntaxPipe", result);
  if (result != 0) return result;
  CleXDSmb reply;
  const WatchedWait wait(child_->watch.get(), set->GetSyntaxResultPipe());
  result = ReceiveData(set->GetSyntaxResultPipe(), reply, true);
  DxTraceError("x_execute_x ReceiveData syntaxResultPipe", result);
  return result;
}

int OutpStatisticsX::execute_x_syntax(const char* text) { return isRConsole() ? child_->console.write(text) : 0; }

int OutpStatisticsX::get_x_result() { return isRConsole() ? child_->console.awaitPrompt(child_->watch.get()) : 0; }

int OutpStatisticsX::ask(const char* statement) {
  const int written = execute_x_syntax(statement);
  return written != 0 ? written : get_x_result();
}

int OutpStatisticsX::x_pre_action() { return isJava_ ? setup_java_run() : setup_x_run(); }

int OutpStatisticsX::x_post_action() { return isJava_ ? exit_java_run() : exit_x_run(); }

int OutpStatisticsX::setup_x_run() {
  if (isRConsole()) return ask("prekova()\n");
  XPipes* const set = pipes();
  if (set == nullptr) return kPipeFailed;
  KovaPipe& results = *set->GetSyntaxResultPipe();
  if (results.IsPipeCreated()) {
    DxTrace("setup_x_run syntaxResultPipe has CreatePipe");
  } else {
    const int created = results.CreatePipe();
    if (created != 0) {
      DxTraceError("setup_x_run syntaxResultPipe CreatePipe", created);
      return created;
    }
    results.DisconnectPipe();
  }
  const int answer = sendCommand(DXCmdDispatcher::kSetupDXRun);
  DxTraceError("setup_x_run cmdDispatcher sendCmd", answer);
  if (answer != 0) return answer;
  const WatchedWait wait(child_->watch.get(), &results);
  // Whatever this gives, 535 for a child that was faster too: the receive tells whether the child is there.
  if (!results.IsWritePipeConnected()) results.ConnectPipe();
  CleXDSmb readiness;
  return ReceiveData(&results, readiness, true);
}

int OutpStatisticsX::exit_x_run() {
  if (isRConsole()) {
    const int ended = child_->console.isInContinuation() ? ask("END\n") : 0;
    return ended != 0 ? ended : ask("postkova()\n");
  }
  const int answer = sendCommand(DXCmdDispatcher::kExitDxRun);
  DxTraceError("exit_x_run cmdDispatcher sendCmd", answer);
  if (!isXProcessActive()) removeChildsPipes();
  return answer;
}

// A child that was killed could not take away what it has created.
void OutpStatisticsX::removeChildsPipes() {
  XPipes* const set = lastPipes();
  if (set == nullptr) return;
  removeStalePipe(set->GetSyntaxPipe()->GetPipeName());
  removeStalePipe(set->GetXDAPIResultPipe()->GetPipeName());
}

int OutpStatisticsX::x_stop_embedded_x() { return stat_stop_x(); }

int OutpStatisticsX::stat_stop_x() {
  int result = 0;
  if (isRConsole()) {
    while (child_->console.isInBrowser() && execute_x_syntax("Q\n") == 0 && get_x_result() == 0) {
    }
    result = execute_x_syntax("q()\n");
    child_->console.endInput();
    if (child_->process) child_->console.drain(child_->watch.get());
  } else if (isXProcessActive()) {
    closeJavaSocket();
    result = sendCommand(DXCmdDispatcher::kStopDX);
    DxTraceError("stat_stop_x cmdDispatcher sendCmd", result);
  } else {
    closeJavaSocket();
    DxTrace("stat_stop_x: x process has already exited ");
  }
  if (XPipeSuit* const own = suite()) {
    own->stopMonitor(false);
    own->stopMonitor(true);
  }
  endChild();
  return result;
}

// The wait is without limit; it fails where there is no process, and nothing is ended then.
void OutpStatisticsX::endChild() {
  if (child_->look(os::kWaitForever) != os::kSuccess && child_->process) {
    child_->process.Terminate();
    child_->look(os::kWaitForever);
  }
  child_->close();
  // What was connected to this child is of no use to the next one.
  if (suite() != nullptr) suite()->dropCmdDispatcher();
  if (XPipes* const set = lastPipes()) {
    set->GetSyntaxPipe()->ClosePipe();
    set->GetSyntaxResultPipe()->ClosePipe();
  }
  removeChildsPipes();
}

// Java that has not ended yet ends when its connection does.
void OutpStatisticsX::closeJavaSocket() {
  if (isJava_ && GetJavaExtSocket() != nullptr) GetJavaExtSocket()->CloseSocket();
}

void OutpStatisticsX::terminateChildren() {
  Processes& all = processes();
  const std::lock_guard hold(all.mutex);
  for (os::Process* const process : all.present) process->Terminate();
}

void OutpStatisticsX::abandonChild() {
  closeJavaSocket();
  if (child_->process) child_->process.Terminate();
  endChild();
}

void OutpStatisticsX::x_set_post_kova_output(PostOutput) {}

int OutpStatisticsX::x_get_library_lock() { return 0; }

int OutpStatisticsX::x_release_library_lock() { return 0; }
