// The process's registry of runtime hosts, one per language name.
//
// It owns the hosts and deletes them. InitDxGlobal makes the one of the process. No lock: the thread that drives the
// runtimes uses it.
#ifndef KOVADX_HOST_XMANAGER_H
#define KOVADX_HOST_XMANAGER_H

#include <map>
#include <memory>
#include <string>

#include "export.h"
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

  // Deletes every host, in the order of their names, and forgets them.
  void stopX();

  // Empties the registry.
  void cleanup();

 private:
  std::map<std::string, std::unique_ptr<StatisticsX>> hosts_;
};

// The process's registry; null until it is set. Setting stores the pointer and nothing else: whoever made the registry
// owns it.
KOVADX_API XManager* GetXManager();
KOVADX_API void SetXManager(XManager* manager);

#endif
