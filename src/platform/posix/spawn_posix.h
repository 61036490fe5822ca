// The way from a description of a process to the process.
#ifndef KOVADX_PLATFORM_POSIX_SPAWN_POSIX_H
#define KOVADX_PLATFORM_POSIX_SPAWN_POSIX_H

#include <sys/types.h>

#include "platform/os/error.h"
#include "platform/posix/descriptor_posix.h"
#include "platform/posix/program_image_posix.h"

namespace kova::os {

// How a program is to be started.
struct Birth {
  const ProgramImage& image;
  bool endsWithParent;
  bool leadsGroup;
  int input;   // The descriptor that becomes its standard input, and
  int output;  // the one that becomes its standard output and error stream; -1: this process's own.
};

struct Spawned {
  pid_t id = -1;
  Descriptor descriptor;
};

// Starts it and waits until it is the program, or could not become it: then that error. A process that is to end with
// this one is forked on a thread of its own, which stays until that process has ended: the system's signal for it
// follows the thread.
Error spawn(const Birth& birth, Spawned* out);

}  // namespace kova::os

#endif
