// Carries out the control commands of an engine in a runtime's process: makes the language's host inside this process
// and a runner for each run, starts the runs, ends them, and ends the wait of the thread that runs them.
//
// Its maker owns it; the thread that receives the commands is the only one that uses it.
#ifndef KOVADX_HOST_STARTXDISPATCHERVISITOR_H
#define KOVADX_HOST_STARTXDISPATCHERVISITOR_H

#include <string>
#include <vector>

#include "export.h"
#include "transport/DXCmdDispatcher.h"

class KOVADX_API StartXDispatcherVisitor : public DXCmdDispatcherVisitor {
 public:
  // kovaDrive is that of a host that has to be made first.
  StartXDispatcherVisitor(const std::string& language, bool kovaDrive);

  // kTestCmdst and 0 do nothing. kSetupDXRun makes the runner and its syntax pipe and starts it; the pipe's result,
  // 99104 for a language that the configuration does not list. kRunDX starts the runner at the back of the registry.
  // kExitDxRun waits for its end, without limit, and destroys it. kStopDX ends the meeting of sync_syntax.h where that
  // is in use. 99119 for any other key. The arguments are not used.
  int cmdDispatcher(DXCmdDispatcher::CmdKey key, const std::vector<std::string>& args) override;

 private:
  int perform(int key);
  int setUpRun();
  int makeSyntaxPipe();

  std::string language_;
  bool kovaDrive_;
};

#endif
