// What a process that was killed leaves of a pipe that it had created, on platforms where something is left.
#ifndef KOVADX_TRANSPORT_STALE_PIPE_H
#define KOVADX_TRANSPORT_STALE_PIPE_H

#include <string>

#include "platform/os/named_pipe.h"

namespace kova {

// Takes it away; a pipe of that name that is in use stays. For who has done with the other side and knows its pipes'
// names, since nobody else ever looks for them.
inline void removeStalePipe(const std::string& pipeName) {
  os::SweepStalePipes(pipeName.substr(pipeName.find_last_of('\\') + 1));
}

}  // namespace kova

#endif
