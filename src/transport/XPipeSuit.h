// The pipe sets of one runtime, one for each level of nested runs. The current index selects the set that calls use
// now; a nested run raises it, so that nested conversations never share a pipe.
//
// It owns its sets; the manager that it belongs to must outlive it. No lock: the thread that drives the runtime uses
// it.
#ifndef KOVADX_TRANSPORT_XPIPESUIT_H
#define KOVADX_TRANSPORT_XPIPESUIT_H

#include <memory>
#include <string>
#include <vector>

#include "export.h"

class XPipeManager;
class XPipes;

class KOVADX_API XPipeSuit {
 public:
  // The suite of the runtime `name`. Its index is -1 and it has no pipes until increaseIndex is called.
  XPipeSuit(const std::string& name, XPipeManager* manager);
  XPipeSuit(const XPipeSuit&) = delete;
  XPipeSuit& operator=(const XPipeSuit&) = delete;

  // Destroys the sets, the last one first.
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

 private:
  std::string name_;
  XPipeManager* manager_;
  int index_ = -1;
  std::vector<std::unique_ptr<XPipes>> sets_;  // Entry i serves index i.
};

#endif
