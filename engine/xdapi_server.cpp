#include "engine/xdapi_server.h"

#include <cstdint>
#include <cstdio>
#include <system_error>
#include <utility>

#include "engine/error_codes.h"
#include "platform/os/error.h"
#include "transport/XPipes.h"
#include "transport/message_exchange.h"

namespace kova::engine {
namespace {

// A pipe that can not be connected so often in a row is broken for good.
constexpr int kMostFailedConnects = 100;

bool isConnected(int result) { return result == 0 || result == static_cast<int>(os::kPipeConnected); }

}  // namespace

XdapiServer::XdapiServer(const std::string& baseName, Perform perform)
    : perform_(std::move(perform)),
      requests_(baseName + XPipes::XDAPI_PIPE),
      replies_(baseName + XPipes::XDAPI_RESULT_PIPE) {}

std::string XdapiServer::baseName(std::uint32_t processId, const std::string& instance, int index) {
  char digits[16];
  std::snprintf(digits, sizeof digits, "%04x", static_cast<unsigned>(processId));
  return "\\\\.\\pipe\\" + std::string(digits) + instance + std::to_string(index);
}

int XdapiServer::start() {
  const int created = requests_.CreatePipe();
  if (created != 0) return created;
  stopping_ = false;
  try {
    thread_ = std::thread([this] { serve(); });
  } catch (const std::system_error&) {
    requests_.ClosePipe();
    return static_cast<int>(os::kNotEnoughMemory);
  }
  return 0;
}

void XdapiServer::stop() {
  if (!thread_.joinable()) return;
  stopping_ = true;
  requests_.CancelWait();
  {
    const std::lock_guard lock(replyMutex_);
    if (replyOpen_) replies_.CancelWait();
  }
  thread_.join();
  requests_.ClosePipe();
}

void XdapiServer::serve() {
  int failures = 0;
  while (!stopping_ && failures < kMostFailedConnects) {
    if (isConnected(requests_.ConnectPipe())) {
      failures = 0;
      converse();
    } else {
      ++failures;
    }
    closeReplies();
    requests_.DisconnectPipe();
  }
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

// The client created this pipe before it sent its first request.
bool XdapiServer::openReplies() {
  if (replies_.HasPipe()) return true;
  if (replies_.KOVACreateFile() != 0 || replies_.ChangeReadMode() != 0) return false;
  const std::lock_guard lock(replyMutex_);
  replyOpen_ = true;
  return !stopping_;
}

void XdapiServer::closeReplies() {
  {
    const std::lock_guard lock(replyMutex_);
    replyOpen_ = false;
  }
  replies_.ClosePipe();
}

}  // namespace kova::engine
