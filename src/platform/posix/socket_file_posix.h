// The socket file of one server end.
#ifndef KOVADX_PLATFORM_POSIX_SOCKET_FILE_POSIX_H
#define KOVADX_PLATFORM_POSIX_SOCKET_FILE_POSIX_H

#include <sys/types.h>
#include <sys/un.h>

#include "platform/os/error.h"
#include "platform/posix/descriptor_posix.h"

namespace kova::os {

// Owns a socket file that this process bound, and takes it away when destroyed: that file alone, not another that has
// come to bear its name. A forked copy of the process takes nothing away.
class SocketFile {
 public:
  SocketFile() = default;
  SocketFile(const SocketFile&) = delete;
  SocketFile& operator=(const SocketFile&) = delete;
  ~SocketFile();

  // Makes the file and a listening socket on it that takes in one client ahead of its accept. Replaces a stale file of
  // the user's own; 5 when the name is taken otherwise. The caller holds the folder's lock.
  Error create(const sockaddr_un& address, uid_t user, Descriptor* listener);

 private:
  bool bound_ = false;
  pid_t process_ = 0;
  sockaddr_un address_ = {};
  dev_t device_ = 0;
  ino_t file_ = 0;
};

}  // namespace kova::os

#endif
