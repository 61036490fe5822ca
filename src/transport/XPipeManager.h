// All pipe suites of one process, one per runtime name, and the text that all their pipe names begin with.
//
// It owns the suites; a pointer to one is valid until that suite is removed. No lock: the thread that drives the
// runtime uses it.
#ifndef KOVADX_TRANSPORT_XPIPEMANAGER_H
#define KOVADX_TRANSPORT_XPIPEMANAGER_H

#include <memory>
#include <string>
#include <vector>

#include "export.h"

class XPipeSuit;

class KOVADX_API XPipeManager {
 public:
  // The path is stored and handed on, but is no part of a pipe name; the process-id text is.
  XPipeManager(const std::string& pipePath, const std::string& pipePid);
  XPipeManager(const XPipeManager&) = delete;
  XPipeManager& operator=(const XPipeManager&) = delete;
  ~XPipeManager();

  const std::string& getPipePath() const { return pipePath_; }
  void setPipePath(const std::string& pipePath) { pipePath_ = pipePath; }
  const std::string& getPipePid() const { return pipePid_; }
  void setPipePid(const std::string& pipePid) { pipePid_ = pipePid; }

  // The suite of that name, byte for byte; it is made when there is none, so the result is never null.
  XPipeSuit* getPipeSuit(const std::string& name);

  // Destroys the suite of that name; an unknown name does nothing. The client interface holds on to the suite of its
  // first call until FinalizeDXGlobal: that one must not be removed before.
  void removePipeSuit(const std::string& name);

  // Destroys every suite; the same holds.
  void cleanup();

 private:
  std::string pipePath_;
  std::string pipePid_;
  std::vector<std::unique_ptr<XPipeSuit>> suits_;  // In the order of their making.
};

// The process's manager; null until it is set. Setting stores the pointer and nothing else: whoever made the manager
// owns it.
KOVADX_API XPipeManager* GetXPipeManager();
KOVADX_API void SetXPipeManager(XPipeManager* manager);

#endif
