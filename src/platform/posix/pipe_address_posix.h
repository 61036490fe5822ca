// Where a pipe's socket file lies, and who may have made what lies there.
#ifndef KOVADX_PLATFORM_POSIX_PIPE_ADDRESS_POSIX_H
#define KOVADX_PLATFORM_POSIX_PIPE_ADDRESS_POSIX_H

#include <sys/socket.h>
#include <sys/types.h>
#include <sys/un.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/os/error.h"
#include "platform/posix/descriptor_posix.h"

namespace kova::os {

// The folder of the socket files: KOVA_PIPE_DIR, else "kova" in XDG_RUNTIME_DIR, else /tmp/kova-<user id>; its full
// path, without a separator at its end. The environment is read at the first call alone: pipes are opened on any
// thread.
std::string pipeFolder();

// Has the next call read the environment again. For tests.
void forgetPipeFolder();

// FNV-1a, 64 bits.
std::uint64_t nameHash(std::string_view name);

// The socket address of a pipe name in a folder. 123 for a name that is no pipe name or has a folder in it, 206 when no
// file name fits.
Error pipeAddress(const std::string& folder, const char* name, sockaddr_un* out);

// Whether the folder is a real one (no link) of mode 0700 that belongs to the user: 5 when it is anything else, 2 when
// there is none.
Error checkPipeFolder(const std::string& folder, uid_t user);

// Holds a folder's lock against other creators. The lock is given back by name, since a child that another thread has
// forked meanwhile holds a copy of the descriptor, and closing ours alone would leave the lock with it.
class FolderLock {
 public:
  FolderLock() = default;
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;
  ~FolderLock();

  // Waits for the lock and keeps the descriptor.
  Error take(Descriptor folder);

  explicit operator bool() const { return static_cast<bool>(folder_); }

 private:
  Descriptor folder_;
};

// Makes the folder when there is none, checks it, and locks it until the lock goes.
Error lockPipeFolder(const std::string& folder, uid_t user, FolderLock* out);

// Whether somebody serves a socket file: 0, or 2 when there is none or nobody does. The server does not see it.
Error probeServer(const sockaddr_un& address);

// Takes a file that nobody serves out of the way. 5 when it is another user's, no socket, or served.
Error removeStaleFile(const sockaddr_un& address, uid_t user);

// Takes away the user's files that nobody serves and whose names have that part in them. The caller holds the lock.
void removeStaleFiles(const std::string& folder, uid_t user, std::string_view namePart);

// 5 when the process on the other side of a connection is another user's.
Error checkPeer(int connection, uid_t user);

}  // namespace kova::os

#endif
