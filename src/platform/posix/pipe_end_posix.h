// One end of a message pipe over a local packet socket: what a NativeHandle of named_pipe.h points to.
#ifndef KOVADX_PLATFORM_POSIX_PIPE_END_POSIX_H
#define KOVADX_PLATFORM_POSIX_PIPE_END_POSIX_H

#include <sys/types.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>

#include "platform/os/error.h"
#include "platform/os/named_pipe.h"
#include "platform/posix/descriptor_posix.h"
#include "platform/posix/socket_file_posix.h"

namespace kova::os {

// Owns its descriptors, and a server end its socket file. Used by one thread, its user; cancel, expectNoMore and
// disconnect may be called on another one meanwhile. A small message costs its user one system call.
class PipeEnd {
 public:
  PipeEnd() = default;
  PipeEnd(const PipeEnd&) = delete;
  PipeEnd& operator=(const PipeEnd&) = delete;

  // Makes it a server end of that name, or a client end. To be called once, before anything else.
  Error serve(const char* name);
  Error open(const char* name, bool mayWrite, WhenTaken whenTaken);

  // The functions of named_pipe.h, with their contracts.
  Error accept();
  Error disconnect();
  Error cancel();
  Error expectNoMore();
  Error read(void* buffer, std::uint32_t size, std::uint32_t* count, bool mayWait);
  Error write(const void* data, std::uint32_t size, std::uint32_t* count);
  Error messageMode() const;
  void setNoWait() { noWait_ = true; }

 private:
  enum class State { Listening, Connected, Disconnected };

  Error useConnection(int* connection);
  Error awaitClient();
  Error takeClient();
  Error waitForClient() const;
  void dropClients();
  Error nextPacket(int connection, void* buffer, std::uint32_t size, bool mayWait, std::size_t* length);
  Error nothingReceived(int connection);
  Error takeRest(void* buffer, std::uint32_t size, std::uint32_t* count);

  bool isServer() const { return static_cast<bool>(listener_); }

  bool mayWrite_ = true;
  bool noWait_ = false;
  bool peerGone_ = false;
  // Takes what of a packet does not fit the caller's buffer: a packet socket would drop it.
  std::unique_ptr<char[]> spill_;
  std::size_t restOffset_ = 0;
  std::size_t restLength_ = 0;

  std::mutex change_;  // Held where the next four change.
  std::atomic<State> state_{State::Listening};
  std::atomic<bool> cancelled_{false};
  std::atomic<bool> noMore_{false};  // The peer was declared gone.
  Descriptor connection_;            // Stays open after a disconnect until its user can no longer be in a call on it.

  Descriptor wake_;  // Readable once a server end is cancelled, or its peer declared gone.
  Descriptor listener_;
  SocketFile file_;  // Goes before the listener: a file without a listener would look stale.
};

}  // namespace kova::os

#endif
