// The pipe sets of one runtime, one for each level of nested runs. The current index selects the set that calls use
// now; a nested run raises it, so that nested conversations never share a pipe. Besides, on demand, the runtime's
// control channel and the two monitors of its process.
//
// It owns its sets, the control channel and the monitors; the manager that it belongs to must outlive it. No lock: the
// thread that drives the runtime uses it. Its owner ends the threads that use the control channel before it destroys
// it; what such a thread still waits for ends then.
#ifndef KOVADX_TRANSPORT_XPIPESUIT_H
#define KOVADX_TRANSPORT_XPIPESUIT_H

#include <memory>
#include <string>
#include <vector>

#include "export.h"

class DXCmdDispatcher;
class MonitorThread;
class XPipeManager;
class XPipes;

class KOVADX_API XPipeSuit {
 public:
  // The suite of the runtime `name`. Its index is -1 and it has no pipes until increaseIndex is called.
  XPipeSuit(const std::string& name, XPipeManager* manager);
  XPipeSuit(const XPipeSuit&) = delete;
  XPipeSuit& operator=(const XPipeSuit&) = delete;

  // Destroys the sets, the last one first, then the control channel, then the monitors, parent to child first.
  ~XPipeSuit();

  const std::string& XName() const { return name_; }
  int getIndex() const { return index_; }

  // "\\.\pipe\", the manager's process-id text and the runtime's name, with nothing between them.
  std::string getPipeNamePrefix() const;

  // Raises the index by one, at the start of a run, and makes the set for it when there is none.
  void increaseIndex();

  // Lowers the index by one, at the end of a run, and destroys the set that the run had; the first set stays. Whoever
  // raised the index lowers it once: the index itself can go below 0.
  void decreaseIndex();

  // The current set; null when the index is out of range, as before the first and after the last run.
  XPipes* getXPipes();

  // The set of that index; null when it is negative or greater than the current index.
  XPipes* getXPipes(int index);

  // The current set; between two runs the first one, which stays. Null when no run has begun yet.
  XPipes* getLastXPipes();

  // The control channel on the suite's own name, made at the first call: false for the engine's side, true for the
  // runtime's. Deliberate: the flag of later calls is ignored. Owned by the suite.
  DXCmdDispatcher* getCmdDispatcher(bool flag);

  // Destroys the control channel: the next child needs a new one.
  void dropCmdDispatcher();

  // Makes and starts a monitor, or gives the one that is there: the reader of "<prefix>P2C" for true, the writer of
  // "<prefix>C2P" for false, which are the runtime process's two; the engine makes its own MonitorThread objects for
  // the other ends. `context` is the address of the end callback, void (*)(MonitorThread*), or null. Owned by the
  // suite.
  MonitorThread* startMonitor(bool parentToChild, void* context);

  // Asks that monitor to stop, when there is one. Always 0.
  int stopMonitor(bool parentToChild);

  // That monitor; null when there is none.
  MonitorThread* getMonitor(bool parentToChild);

 private:
  std::unique_ptr<MonitorThread>& monitor(bool parentToChild) {
    return parentToChild ? parentToChild_ : childToParent_;
  }

  std::string name_;
  XPipeManager* manager_;
  int index_ = -1;
  std::vector<std::unique_ptr<XPipes>> sets_;  // Entry i serves index i.
  std::unique_ptr<MonitorThread> parentToChild_;
  std::unique_ptr<MonitorThread> childToParent_;
  std::unique_ptr<DXCmdDispatcher> dispatcher_;
};

#endif
