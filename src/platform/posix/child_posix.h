// A process that this one has started.
#ifndef KOVADX_PLATFORM_POSIX_CHILD_POSIX_H
#define KOVADX_PLATFORM_POSIX_CHILD_POSIX_H

#include <sys/types.h>

#include <memory>
#include <mutex>

#include "platform/os/error.h"
#include "platform/posix/descriptor_posix.h"

namespace kova::os {

// A process is known by its descriptor: a number may be another process's by the time it is used, a descriptor never.
// A child that was started apart leads a process group of its own, which is known by a number alone: that is nobody
// else's as long as the child's end has not been collected. Its functions may be called on any thread.
class Child {
 public:
  Child(pid_t id, Descriptor descriptor, bool leadsGroup)
      : id_(id), descriptor_(std::move(descriptor)), leadsGroup_(leadsGroup) {}
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  pid_t id() const { return id_; }

  // Readable once the process has ended.
  int descriptor() const { return descriptor_.get(); }

  // Takes the end of the process, if it has come, and what is left of its group with it; later calls tell it again. 258
  // when the process still runs.
  Error collect(int* exitCode);

  Error signal(int number) const;

  // Kills the process and its group.
  Error terminate();

 private:
  // Whether its end has come, which it does not take. 258 when the process still runs.
  Error look(int* exitCode) const;

  const pid_t id_;
  const Descriptor descriptor_;
  const bool leadsGroup_;
  std::mutex mutex_;  // Guards what follows, and the group's number while it is used.
  bool ended_ = false;
  int exitCode_ = 0;
};

// Takes over a child that nobody wants to know of any more: its end is collected some time after it has come.
void abandonChild(std::unique_ptr<Child> child);

// Collects the ends of such children that have come.
void collectAbandoned();

// A descriptor of the process of that id; none, and errno, when it can not be had.
Descriptor openProcess(pid_t id);

}  // namespace kova::os

#endif
