// Serves one client program: reads its requests from the "xdapi" pipe and writes the replies on its "xdapiresult" pipe,
// on a thread of its own and with pipe ends of its own.
//
// One conversation follows another: when a client goes, or sends what is no message, the server drops it and waits for
// the next one. A second client of the same name waits until the first has gone. A reply pipe that can not be opened
// yet is tried again until it is gone; a request pipe that takes nobody in any more is closed.
//
// Made and destroyed by the program that offers the engine, on one thread, the only one that may call it. Destruction
// stops it.
#ifndef KOVADX_ENGINE_XDAPI_SERVER_H
#define KOVADX_ENGINE_XDAPI_SERVER_H

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "message/CleXDSmb.h"
#include "platform/os/named_pipe.h"
#include "transport/KovaPipe.h"

namespace kova::engine {

class XdapiServer {
 public:
  // Carries out a request and fills the reply. Called on the server's thread; must not throw.
  using Perform = std::function<void(const CleXDSmb& request, CleXDSmb& reply)>;

  // The client has gone. Called on the server's thread; must not throw.
  using Leave = std::function<void()>;

  // For the pipes baseName + "xdapi" and baseName + "xdapiresult"; see baseName().
  XdapiServer(
      const std::string& baseName, Perform perform, Leave leave = [] {});
  XdapiServer(const XdapiServer&) = delete;
  XdapiServer& operator=(const XdapiServer&) = delete;
  ~XdapiServer() { stop(); }

  // What the names of a client's pipes begin with: the client's process id in at least four hexadecimal digits, its
  // instance name and its nesting index.
  static std::string baseName(std::uint32_t processId, const std::string& instance, int index);

  // Creates the request pipe, so that a client can open it from now on, and starts to serve. 0; 99104 when there can be
  // no such pipe; 8 when no thread could be started. A client that waits for a greeting on its reply pipe gets it
  // first, as a message with that code; then also 99104 when it can not be reached. A greeting with another code than 0
  // is a refusal: when the client has closed its reply pipe the code is the result, and nobody is served.
  int start(std::optional<int> greeting = std::nullopt);

  // While a request is carried out: its conversation ends with the reply, and no other one follows.
  void endAfterReply() { endsAfterReply_ = true; }

  // Ends the conversation, wherever it stands, and waits for the thread; false when a request is still being carried
  // out after that time. May be called twice, and without a start.
  bool stop(std::uint32_t patienceMs = os::kWaitForever);

 private:
  int greet(int code);
  void serve();
  bool endsWithin(std::uint32_t patienceMs) const;
  void converse();
  bool answer(CleXDSmb& reply);
  bool openReplies();
  void closeReplies();

  Perform perform_;
  Leave leave_;
  KovaPipe requests_;
  KovaPipe replies_;
  std::atomic<bool> stopping_{false};
  std::atomic<bool> endsAfterReply_{false};
  std::mutex pipeMutex_;  // Held where replyOpen_ changes or the requests close, and while waits are cancelled.
  bool replyOpen_ = false;
  std::atomic<bool> ended_{false};
  std::thread thread_;  // Last: it uses everything above.
};

}  // namespace kova::engine

#endif
