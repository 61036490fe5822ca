// The control channel between an engine and a runtime's process, beside their data pipes: the engine sends one numbered
// command at a time and waits for its result, the runtime's process hands each command to a visitor.
//
// A pipe suite owns one, on its own name. One thread at a time uses it: a nested run may send commands on another
// thread while the first is blocked in its run, never both at once. Nothing is locked here.
#ifndef KOVADX_TRANSPORT_DXCMDDISPATCHER_H
#define KOVADX_TRANSPORT_DXCMDDISPATCHER_H

#include <memory>
#include <string>
#include <vector>

#include "export.h"
#include "transport/AsyCsPipe1.h"

namespace kova {

constexpr int kUnknownControlCommand = 99119;

}  // namespace kova

class DXCmdDispatcherVisitor;

class KOVADX_API DXCmdDispatcher {
 public:
  // The upper half of each spells "DX".
  enum CmdKey : int {
    kStopDX = 0x4458C002,      // Stop; also ends the receiving loop.
    kSetupDXRun = 0x4458C003,  // Make ready for a run and start it.
    kExitDxRun = 0x4458C004,   // Wait for the end of the run and clear it away.
    kRunDX = 0x4458C005,       // Start the run.
    kTestCmdst = 0x4458C0FF,   // Nothing; the answer tells that somebody is there. A key of 0 means the same.
  };

  // The runtime's process takes `client` true: it creates "<name>_s" and receives. The engine takes false: it creates
  // "<name>_c" and sends. Deliberate: the flag goes to AsyCsPipe1 as it is, where it has the opposite name.
  DXCmdDispatcher(const std::string& pipeName, bool client);
  DXCmdDispatcher(const DXCmdDispatcher&) = delete;
  DXCmdDispatcher& operator=(const DXCmdDispatcher&) = delete;

  // Ends the waits of a thread that is still inside and waits until it has left; see AsyCsPipe1.
  ~DXCmdDispatcher();

  // Connects this side to the other; each of the two must call it. AsyCsPipe1::connectClient where commands are
  // received, which may give 535 for a good connection, connectServer where they are sent.
  int connectPeer();

  // Sends a command and waits for its result: the handler's, or the code of the failed send or receive.
  int sendCmd(CmdKey key);
  int sendCmd(CmdKey key, const std::vector<std::string>& args);

  // Receives commands until kStopDX has been answered or a send has failed; the last send's result, or what
  // AsyCsPipe1::receive gave.
  int receiveCmd(DXCmdDispatcherVisitor* visitor);

  // On any thread: AsyCsPipe1's, by which an owner has its thread return, or tells of the other side's end.
  void cancel();
  void peerHasEnded();

 private:
  std::unique_ptr<AsyCsPipe1> pipe_;
};

// Takes a request of the control channel apart and calls cmdDispatcher, which subclasses override. Used by the
// receiving thread alone; its maker owns it.
class KOVADX_API DXCmdDispatcherVisitor : public AsyCsPipe1::Visitor {
 public:
  DXCmdDispatcherVisitor() = default;
  DXCmdDispatcherVisitor(const DXCmdDispatcherVisitor&) = default;
  DXCmdDispatcherVisitor& operator=(const DXCmdDispatcherVisitor&) = default;
  ~DXCmdDispatcherVisitor() override;

  // The reply gets cmdDispatcher's result as its error code, which is also the result here; kStopDX is always answered
  // 0, and -1 is the result. A request that has not exactly one number is not handled, and its reply stays untouched.
  int VisitReceiver(CleXDSmb& request, CleXDSmb& reply) override;

  // Carries out one command. This one gives 0.
  virtual int cmdDispatcher(DXCmdDispatcher::CmdKey key, const std::vector<std::string>& args);
};

#endif
