// The system's signal for the end of the parent.
#ifndef KOVADX_PLATFORM_POSIX_PARENT_SIGNAL_POSIX_H
#define KOVADX_PLATFORM_POSIX_PARENT_SIGNAL_POSIX_H

namespace kova::os {

// Has the system no longer kill this process when its parent ends. May be called on any thread.
void dropParentSignal();

}  // namespace kova::os

#endif
