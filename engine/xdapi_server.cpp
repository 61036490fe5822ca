#include "engine/xdapi_server.h"

#include <cstdint>
#include <cstdio>
#include <system_error>
#include <utility>

#include "engine/error_codes.h"
#include "platform/os/clock.h"
#include "platform/os/error.h"
#include "platform/os/named_pipe.h"
#include "transport/XPipes.h"
#include "transport/message_exchange.h"

namespace kova::engine {
namespace {

// A pipe that can not be connected so often in a row, a pause apart, is broken for good.
constexpr int kMostFailedConnects = 100;

// Between two tries of what may work once something else has gone: another's turn, a shortage.
constexpr std::uint32_t kRetryPauseMs = 20;
constexpr std::uint32_t kLookMs = 2;  // How often a stop with a limit looks for the end.

bool isConnected(int result) { return result == 0 || result == static_cast<int>(os::kPipeConnected); }

}  // namespace

XdapiServer::XdapiServer(const std::string& baseName, Perform perform, Leave leave)
    : perform_(std::move(perform)),
      leave_(std::move(leave)),
      requests_(baseName + XPipes::XDAPI_PIPE),
      replies_(baseName + XPipes::XDAPI_RESULT_PIPE) {}

std::string XdapiServer::baseName(std::uint32_t processId, const std::string& instance, int index) {
  char digits[16];
  std::snprintf(digits, sizeof digits, "%04x", static_cast<unsigned>(processId));
  return "\\\\.\\pipe\\" + std::string(digits) + instance + std::to_string(index);
}

int XdapiServer::start(std::optional<int> greeting) {
  int code = requests_.CreatePipe();
  if (code != 0) return code;
  stopping_ = false;
  endsAfterReply_ = false;
  ended_ = false;
  if (greeting) code = greet(*greeting);
  if (code != 0) {
    closeReplies();
    requests_.ClosePipe();
    return code;
  }
  try {
    thread_ = std::thread([this] { serve(); });
  } catch (const std::system_error&) {
    requests_.ClosePipe();
    return static_cast<int>(os::kNotEnoughMemory);
  }
  return 0;
}

// A refusal must not be lost with its sender, who has no other reason to stay.
int XdapiServer::greet(int code) {
  CleXDSmb greeting;
  greeting.SetErrorCode(code);
  const int sent = openReplies() ? SendData(&replies_, greeting) : kPipeFailed;
  if (sent != 0 || code == 0) return sent;
  char ignored = 0;
  unsigned long count = 0;
  replies_.ReadData(1, &ignored, count);
  return code;
}

bool XdapiServer::stop(std::uint32_t patienceMs) {
  if (!thread_.joinable()) return true;
  stopping_ = true;
  {
    const std::lock_guard lock(pipeMutex_);
    requests_.CancelWait();
    if (replyOpen_) replies_.CancelWait();
  }
  if (patienceMs != os::kWaitForever && !endsWithin(patienceMs)) return false;
  thread_.join();
  return true;
}

bool XdapiServer::endsWithin(std::uint32_t patienceMs) const {
  const std::uint64_t start = os::TickMs();
  while (!ended_) {
    if (os::TickMs() - start >= patienceMs) return false;
    os::SleepMs(kLookMs);
  }
  return true;
}

void XdapiServer::serve() {
  int failures = 0;
  while (!stopping_ && failures < kMostFailedConnects) {
    const bool connected = isConnected(requests_.ConnectPipe());
    if (connected) {
      converse();
      leave_();
    }
    closeReplies();
    requests_.DisconnectPipe();
    failures = connected ? 0 : failures + 1;
    if (!connected && !stopping_) os::SleepMs(kRetryPauseMs);
  }
  // A client that comes from now on is told that nobody serves it.
  {
    const std::lock_guard lock(pipeMutex_);
    requests_.ClosePipe();
  }
  ended_ = true;
}

// A request that was cut short could still be parsed, but half a request must never be carried out: the transport's own
// status decides.
void XdapiServer::converse() {
  while (!stopping_) {
    CleXDSmb request;
    int transportStatus = 0;
    ReceiveMessage(&requests_, request, &transportStatus);
    if (transportStatus != 0) return;
    CleXDSmb reply;
    perform_(request, reply);
    if (!answer(reply)) return;
    if (endsAfterReply_) stopping_ = true;
  }
}

bool XdapiServer::answer(CleXDSmb& reply) {
  if (!openReplies()) return false;
  int result = SendData(&replies_, reply);
  if (result == static_cast<int>(os::kNotEnoughMemory)) {
    // The reply is too large to be sent; its client still needs an answer.
    reply.CleanUp();
    reply.SetErrorCode(static_cast<int>(ErrorCode::kOutOfMemory));
    result = SendData(&replies_, reply);
  }
  return result == 0;
}

// The client created this pipe before it sent its first request, and waits in it for as long as it takes. So whatever
// keeps the pipe from being opened is waited out, unless the pipe is gone. The open itself never waits: stop() could
// not end that.
bool XdapiServer::openReplies() {
  if (replies_.HasPipe()) return true;
  replies_.OpenPipeToUnBlockWrite();
  while (!replies_.HasPipe()) {
    if (stopping_ || os::AwaitServer(replies_.GetPipeName().c_str(), 0) == os::kFileNotFound) return false;
    os::SleepMs(kRetryPauseMs);
    replies_.OpenPipeToUnBlockWrite();
  }
  if (replies_.ChangeReadMode() != 0) return false;
  const std::lock_guard lock(pipeMutex_);
  replyOpen_ = true;
  return !stopping_;
}

void XdapiServer::closeReplies() {
  {
    const std::lock_guard lock(pipeMutex_);
    replyOpen_ = false;
  }
  replies_.ClosePipe();
}

}  // namespace kova::engine
