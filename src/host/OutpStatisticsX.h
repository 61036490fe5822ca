// The host of a runtime in a process of its own, in one of three ways that the language decides: the program "startx",
// which loads the runtime's library and is reached over the pipes of the language's suite; the console of R, over its
// standard streams; a Java extension, over the socket.
//
// The engine makes it and gives it to the registry. It owns the child process; the options are the configuration
// reader's and must outlive it. All operations run on the caller's thread. A start changes the environment of this
// process, which the child inherits, so starts are made one after another.
//
// A wait for the child ends with 109, or with 99104 at R's console, when the child's process ends.
#ifndef KOVADX_HOST_OUTPSTATISTICSX_H
#define KOVADX_HOST_OUTPSTATISTICSX_H

#include <memory>
#include <optional>
#include <string>

#include "export.h"
#include "host/StatisticsX.h"

class XCmdArgument;
class XConfigOptions;
class XPipeSuit;
class XPipes;

namespace kova {

constexpr int kChildNotRunning = 99107;      // The child does not run right after its start.
constexpr int kJavaSocketNotMade = 99122;    // There is no socket for the Java extension.
constexpr int kJavaChildNotRunning = 99123;  // The Java extension does not run right after its start.

}  // namespace kova

class KOVADX_API OutpStatisticsX : public StatisticsX {
 public:
  // Starts nothing. `appMode` is told to the child: 1 for an engine on this machine, 0 for one elsewhere, any other
  // value for the name of this program. With kovaDrive false nothing is ever started or stopped: the runtime is another
  // program that drives the engine, and runs reach it.
  OutpStatisticsX(XConfigOptions* options, int appMode, bool kovaDrive);

  // Stops the runtime.
  ~OutpStatisticsX() override;

  // True while the child's process runs, and always with kovaDrive false.
  bool isXProcessActive();

  int getAppMode() const { return appMode_; }
  void setAppMode(int appMode) { appMode_ = appMode; }

  // The program that was started last, or was to be; empty before.
  const std::string& childProgram() const;

  // The id of the child's process; 0 without one.
  unsigned int childProcessId() const;

  // How the last child has ended, once that is known: its exit code, or 128 and the signal that has ended it. Waits
  // that long for it: the pipes of a process that ends break before it has ended.
  std::optional<int> childExitCode(unsigned int patienceMs);

  // The end of what R's console has shown since the last statement; empty for other languages.
  const std::string& lastConsoleOutput() const;

  // Ends the children of all hosts of this process at once, with what they have started; their hosts find them ended.
  // Any thread, at any time: for a process that can not wait for the thread that its host works on.
  static void terminateChildren();

 protected:
  // Starts the child and waits until it answers. 0; the codes above; 99104, or what the control channel or R's set-up
  // gave. No child is left behind by a failure. A first argument of exactly "JavaExtension" starts Java.
  int x_init_embedded_x(int argc, char** argv) override;

  // Has the child run the text, once between x_pre_action and x_post_action. For startx the result of the run. R gets
  // the lines that a line feed ends, one after the other, whatever becomes of them; the result is that of the last
  // one's pipes. Java gets the record that JavaExtensionSmb holds, not the text, and is waited for.
  int x_execute_x(char* syntax) override;

  // Has the child end and waits for it without limit. The result of asking it.
  int x_stop_embedded_x() override;

  int x_pre_action() override;
  int x_post_action() override;

  // Nothing: the child's own host has an output function.
  void x_set_post_kova_output(PostOutput post) override;

  // Always 0: nothing is locked here.
  int x_get_library_lock() override;
  int x_release_library_lock() override;

 private:
  struct Child;
  struct Processes;

  static Processes& processes();
  int stat_start_x();
  int start_x_process(int argc, char** argv);
  int stat_start_java();
  int stat_stop_x();
  int setup_x_run();
  int exit_x_run();
  int setup_java_run() { return 0; }
  int exit_java_run() { return 0; }
  int execute_x_syntax(const char* text);
  int get_x_result();
  void pushEnv(XCmdArgument& environment);
  std::string getBackendProcessName() const;
  std::string getMajorVersion() const;

  bool isRConsole() const;
  void startProcess(const std::string& program, XCmdArgument& arguments);
  int connectChild();
  int shakeHandsWithR();
  void acceptJava();
  int runJava();
  int runInConsole(const char* syntax);
  int runInStartx(const char* syntax);
  int ask(const char* statement);
  int sendCommand(int key);
  void removeChildsPipes();
  void closeJavaSocket();
  void endChild();
  void abandonChild();
  XPipeSuit* suite() const;
  XPipes* pipes() const;
  XPipes* lastPipes() const;

  XConfigOptions* options_;
  std::unique_ptr<Child> child_;  // The process and, for R, its console; never null.
  int appMode_;
  bool isJava_ = false;
};

#endif
