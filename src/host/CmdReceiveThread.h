// The thread on which a program that drives an engine receives the engine's control commands, for the blocks of its own
// language that the engine has it run.
//
// Who started the engine owns it, and the dispatcher must outlive it. Start, the question and the destructor belong to
// the owner's thread.
#ifndef KOVADX_HOST_CMDRECEIVETHREAD_H
#define KOVADX_HOST_CMDRECEIVETHREAD_H

#include <atomic>

#include "export.h"
#include "platform/PlugInThreadHot.h"

class DXCmdDispatcher;

class KOVADX_API CmdReceiveThread : public PlugInThreadHot {
 public:
  explicit CmdReceiveThread(DXCmdDispatcher* dispatcher);

  // Ends the waits on the dispatcher for good, and waits for the thread's real end.
  ~CmdReceiveThread() override;

  // Starts to receive. 0; 8 when no thread can be started.
  int receive();

  // False before receive, and when the commands have ended.
  bool isRunning() const { return running_; }

 protected:
  unsigned int Run() override;

 private:
  DXCmdDispatcher* dispatcher_;
  std::atomic<bool> running_{false};
};

#endif
