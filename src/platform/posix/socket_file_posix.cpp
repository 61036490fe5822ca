#include "platform/posix/socket_file_posix.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/posix/error_posix.h"
#include "platform/posix/pipe_address_posix.h"

namespace kova::os {
namespace {

Error bindTo(const sockaddr_un& address, int socket) {
  const auto* plain = reinterpret_cast<const sockaddr*>(&address);
  return bind(socket, plain, sizeof address) == 0 ? kSuccess : lastError();
}

}  // namespace

Error SocketFile::create(const sockaddr_un& address, uid_t user, Descriptor* listener) {
  Descriptor made(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!made) return lastError();
  Error error = bindTo(address, made.get());
  if (error == errorOfErrno(EADDRINUSE)) {
    error = removeStaleFile(address, user);
    if (error == kSuccess) error = bindTo(address, made.get());
  }
  if (error != kSuccess) return error;
  struct stat status = {};
  if (lstat(address.sun_path, &status) != 0) return lastError();
  bound_ = true;
  process_ = getpid();
  address_ = address;
  device_ = status.st_dev;
  file_ = status.st_ino;
  // A queue of none still takes in one client.
  if (listen(made.get(), 0) != 0) return lastError();
  *listener = std::move(made);
  return kSuccess;
}

SocketFile::~SocketFile() {
  if (!bound_ || process_ != getpid()) return;
  struct stat status = {};
  if (lstat(address_.sun_path, &status) != 0) return;
  if (status.st_dev == device_ && status.st_ino == file_) unlink(address_.sun_path);
}

}  // namespace kova::os
