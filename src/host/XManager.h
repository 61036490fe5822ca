// The process's registry of runtime hosts, one per language name, and of the runners of the runs under way, a stack
// with the innermost run at its back.
//
// It owns hosts and runners and deletes them. InitDxGlobal makes the one of the process. No lock: the thread that
// drives the runtimes uses it, and that of a nested run while the outer one waits for it.
#ifndef KOVADX_HOST_XMANAGER_H
#define KOVADX_HOST_XMANAGER_H

#include <deque>
#include <map>
#include <memory>
#include <string>

#include "export.h"
#include "host/DriveX.h"
#include "host/StatisticsX.h"

class KOVADX_API XManager {
 public:
  XManager();
  XManager(const XManager&) = delete;
  XManager& operator=(const XManager&) = delete;
  ~XManager();

  // Registers a host, null allowed, and takes it over. The name's earlier host is deleted; the same host again is left
  // alone.
  void addStatisticsX(const std::string& name, StatisticsX* host);

  // The name's host, owned by the registry; null when there is none.
  StatisticsX* getStatisticsX(const std::string& name) const;

  // Deletes the name's host and forgets the name; an unknown name does nothing. (sic)
  void destoryStatisticsX(const std::string& name);

  // Begins a run: takes the runner over, names the trace records after its language, raises the index of the language's
  // pipes, gives it to the runner and puts the runner at the back of the stack. Null is ignored. Without a tracer or a
  // pipe manager what it would do is left out.
  void addKovaDX(DriveX* runner);

  // The runner at the back, owned by the registry; null when there is none.
  DriveX* getBackKovaDX() const;

  // Wakes the runners' threads where they wait for somebody who has not come. False when a thread still runs.
  bool releaseRunners() const;

  // Ends a run: lowers the index of the runner's pipes and deletes the runner. Only the one at the back; any other is
  // left alone. (sic)
  void destoryKovaDX(DriveX* runner);

  // Deletes every host, in the order of their names, and forgets them.
  void stopX();

  // Empties the registry: the hosts first, then the runners, from the back.
  void cleanup();

 private:
  std::map<std::string, std::unique_ptr<StatisticsX>> hosts_;
  std::deque<std::unique_ptr<DriveX>> runners_;
};

// The process's registry; null until it is set. Setting stores the pointer and nothing else: whoever made the registry
// owns it.
KOVADX_API XManager* GetXManager();
KOVADX_API void SetXManager(XManager* manager);

#endif
