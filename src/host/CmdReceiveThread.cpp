#include "host/CmdReceiveThread.h"

#include "config/process_values.h"
#include "host/StartXDispatcherVisitor.h"
#include "platform/os/error.h"
#include "transport/DXCmdDispatcher.h"

CmdReceiveThread::CmdReceiveThread(DXCmdDispatcher* dispatcher) : dispatcher_(dispatcher) {}

CmdReceiveThread::~CmdReceiveThread() {
  if (running_) dispatcher_->cancel();
  joinThread();
}

// The flag is set before the thread begins: who asks at once must not take it for one that has ended.
int CmdReceiveThread::receive() {
  running_ = true;
  if (Start()) return 0;
  running_ = false;
  return static_cast<int>(kova::os::kNotEnoughMemory);
}

// The runtime of this process runs already; the commands start nothing.
unsigned int CmdReceiveThread::Run() {
  struct Ending {
    std::atomic<bool>& running;
    ~Ending() { running = false; }
  };
  const Ending ending{running_};
  StartXDispatcherVisitor visitor(GetXName(), false);
  return static_cast<unsigned int>(dispatcher_->receiveCmd(&visitor));
}
