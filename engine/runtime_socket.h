// The engine's socket for a runtime that connects over TCP.
//
// Owned by the engine's state; it closes what it has opened. Used by request handlers alone, one at a time.
#ifndef KOVADX_ENGINE_RUNTIME_SOCKET_H
#define KOVADX_ENGINE_RUNTIME_SOCKET_H

#include <memory>

#include "engine/error_codes.h"

class JavaPlugInSocket;

namespace kova::engine {

class RuntimeSocket {
 public:
  // How long one accept may keep the engine from its other requests.
  static constexpr int kAcceptLimitMs = 4000;

  RuntimeSocket();
  RuntimeSocket(RuntimeSocket&& other) noexcept;
  RuntimeSocket& operator=(RuntimeSocket&& other) noexcept;
  RuntimeSocket(const RuntimeSocket&) = delete;
  RuntimeSocket& operator=(const RuntimeSocket&) = delete;
  ~RuntimeSocket();

  // Listens on a port that the system chooses. What was open before is closed, its runtime's connection too.
  ErrorCode open(int* port);

  // Waits for a runtime, at most so long; at once when one is there already. A wait that ends without one may be begun
  // again.
  ErrorCode accept();

  void setAcceptLimitMs(int milliseconds) { acceptLimitMs_ = milliseconds; }

 private:
  void close();

  std::unique_ptr<JavaPlugInSocket> socket_;  // Null when none is open.
  bool isConnected_ = false;
  int acceptLimitMs_ = kAcceptLimitMs;
};

}  // namespace kova::engine

#endif
