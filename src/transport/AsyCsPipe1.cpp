#include "transport/AsyCsPipe1.h"

#include <cstdint>
#include <exception>
#include <mutex>

#include "message/CleXDSmb.h"
#include "platform/os/error.h"
#include "platform/os/named_pipe.h"
#include "trace/DxTracer.h"
#include "transport/KovaPipe.h"
#include "transport/interruption.h"
#include "transport/message_exchange.h"
#include "transport/stale_pipe.h"

namespace os = kova::os;
using kova::Interruption;

namespace {

constexpr const char* kServerRead = "_s";
constexpr const char* kClientRead = "_c";

constexpr int kNeitherOpenNorConnected = 1;
constexpr int kEndsLoop = -1;

constexpr std::uint32_t kOpenPauseStepMs = 100;
constexpr std::uint32_t kLongestOpenPauseMs = 2000;
constexpr std::uint32_t kTakenPauseMs = 20;

// A read that goes on failing must neither keep a processor busy nor go on for ever.
constexpr int kMostFailedReads = 100;
constexpr std::uint32_t kFailedReadPauseMs = 10;

constexpr int status(os::Error error) { return static_cast<int>(error); }

int statusOf(Interruption::Reason reason) {
  if (reason == Interruption::Reason::None) return 0;
  return status(reason == Interruption::Reason::GivenUp ? os::kOperationAborted : os::kBrokenPipe);
}

// A handler that is a plain function.
class FunctionVisitor : public AsyCsPipe1::Visitor {
 public:
  explicit FunctionVisitor(int (*handler)(CleXDSmb& request, CleXDSmb& reply)) : handler_(handler) {}
  int VisitReceiver(CleXDSmb& request, CleXDSmb& reply) override { return handler_(request, reply); }

 private:
  int (*handler_)(CleXDSmb& request, CleXDSmb& reply);
};

// The handler's result. One that throws leaves what it has put into the reply, and code 8.
int answer(AsyCsPipe1::Visitor* visitor, CleXDSmb& request, CleXDSmb& reply) {
  try {
    return visitor->VisitReceiver(request, reply);
  } catch (const std::exception&) {
    reply.SetErrorCode(status(os::kNotEnoughMemory));
    return status(os::kNotEnoughMemory);
  }
}

}  // namespace

struct AsyCsPipe1::Labels {
  const char* received;
  const char* sent;
};

struct AsyCsPipe1::Waits {
  Interruption interruption;
  std::mutex ends;  // Held where the pointers to the two ends change or another thread uses them.
};

AsyCsPipe1::Visitor::~Visitor() = default;

bool AsyCsPipe1::isServerThere(const std::string& baseName) {
  return os::AwaitServer((baseName + kServerRead).c_str(), 1) != os::kFileNotFound;
}

AsyCsPipe1::AsyCsPipe1(const std::string& baseName, bool isServer)
    : baseName_(baseName), isServer_(isServer), waits_(std::make_unique<Waits>()) {
  openPipe();
}

AsyCsPipe1::~AsyCsPipe1() {
  cancel();
  waits_->interruption.awaitNobody();
  closePipe();
  kova::removeStalePipe(baseName_ + (isServer_ ? kClientRead : kServerRead));
}

int AsyCsPipe1::openPipe() {
  if (open_) return 0;
  auto serverRead = std::make_unique<KovaPipe>(baseName_ + kServerRead);
  auto clientRead = std::make_unique<KovaPipe>(baseName_ + kClientRead);
  KovaPipe* const own = (isServer_ ? serverRead : clientRead).get();
  own->CreatePipe();
  const int result = own->DisconnectPipe();
  if (result != 0) {
    serverRead.reset();
    clientRead.reset();
  }
  const std::lock_guard<std::mutex> hold(waits_->ends);
  waits_->interruption.withdraw();
  serverRead_ = std::move(serverRead);
  clientRead_ = std::move(clientRead);
  open_ = result == 0;
  return result;
}

int AsyCsPipe1::connectClient() {
  const Interruption::Stay stay(&waits_->interruption);
  const int opened = createPipeFile(clientRead_.get());
  if (opened != 0 || serverRead_->IsWritePipeConnected()) return opened;
  DxTrace("AsyCsPipe1 S ConnectPipe A");
  const int connected = connect(serverRead_.get());
  DxTrace("AsyCsPipe1 S ConnectPipe B");
  return connected;
}

int AsyCsPipe1::connectServer() {
  const Interruption::Stay stay(&waits_->interruption);
  if (clientRead_ == nullptr) return kova::kPipeFailed;
  if (!clientRead_->IsWritePipeConnected()) {
    DxTrace("AsyCsPipe1 C ConnectPipe A");
    connect(clientRead_.get());
    DxTrace("AsyCsPipe1 C ConnectPipe B");
  }
  return createPipeFile(serverRead_.get());
}

int AsyCsPipe1::createPipeFile(KovaPipe* pipe) {
  const Interruption::Stay stay(&waits_->interruption);
  if (pipe == nullptr) return kova::kPipeFailed;
  if (pipe->HasPipe()) return 0;
  DxTrace("AsyCsPipe1 KOVACreateFile A");
  int result = 0;
  std::uint32_t delay = 0;
  do {
    result = openFile(pipe);
    if (result == 0) break;
    delay += kOpenPauseStepMs;
    const int ended = statusOf(waits_->interruption.wait(delay));
    if (ended != 0) {
      result = ended;
      break;
    }
  } while (delay < kLongestOpenPauseMs);
  DxTrace("AsyCsPipe1 KOVACreateFile B");
  return result;
}

int AsyCsPipe1::closePipe() {
  if (!open_) return 0;
  const int result = ownPipe()->DisconnectPipe();
  if (result != 0) return result;
  serverRead_->ClosePipe();
  clientRead_->ClosePipe();
  open_ = false;
  return 0;
}

int AsyCsPipe1::receive(int (*handler)(CleXDSmb& request, CleXDSmb& reply)) {
  FunctionVisitor visitor(handler);
  return serve(handler == nullptr ? nullptr : &visitor, {"AsyCsPipe1: ReceiveData", "AsyCsPipe1: SendData"});
}

int AsyCsPipe1::receive(Visitor* visitor) {
  return serve(visitor, {"AsyCsPipe1:receive: ReceiveData", "AsyCsPipe1:receive: SendData"});
}

int AsyCsPipe1::serve(Visitor* visitor, const Labels& labels) {
  const Interruption::Stay stay(&waits_->interruption);
  // Deliberate: the owner has connected before, so an object that is open is not connected here.
  if (openPipe() != 0 && connectClient() != 0) return kNeitherOpenNorConnected;
  for (int failedReads = 0;;) {
    CleXDSmb request;
    CleXDSmb reply;
    int transportStatus = 0;
    const int received = receiveFrom(serverRead_.get(), request, &transportStatus);
    DxTraceError(labels.received, received);
    const bool isLast = received == 0 && visitor != nullptr && answer(visitor, request, reply) == kEndsLoop;
    const int sent = sendTo(clientRead_.get(), reply);
    DxTraceError(labels.sent, sent);
    if (isLast || sent != 0) return sent;
    // An empty message is a message: the other side is there.
    const bool failed = transportStatus != 0 && transportStatus != kova::kPipeEmptyRead;
    failedReads = failed ? failedReads + 1 : 0;
    if (failedReads == kMostFailedReads) return received;
    // A process that has ended has closed its pipes: without a pause, the next reply can not be sent.
    if (failed && waits_->interruption.wait(kFailedReadPauseMs) == Interruption::Reason::GivenUp) return received;
  }
}

int AsyCsPipe1::send(CleXDSmb& request, CleXDSmb& reply) {
  const Interruption::Stay stay(&waits_->interruption);
  if (openPipe() != 0 && connectServer() != 0) return kNeitherOpenNorConnected;
  const int sent = sendTo(serverRead_.get(), request);
  DxTraceError("AsyCsPipe1:send: SendData", sent);
  if (sent != 0) return sent;
  int ignored = 0;
  const int received = receiveFrom(clientRead_.get(), reply, &ignored);
  DxTraceError("AsyCsPipe1:send: ReceiveData", received);
  return received;
}

void AsyCsPipe1::cancel() {
  waits_->interruption.request(Interruption::Reason::GivenUp);
  const std::lock_guard<std::mutex> hold(waits_->ends);
  if (serverRead_) serverRead_->CancelWait();
  if (clientRead_) clientRead_->CancelWait();
}

void AsyCsPipe1::peerHasEnded() {
  waits_->interruption.request(Interruption::Reason::PeerEnded);
  const std::lock_guard<std::mutex> hold(waits_->ends);
  if (ownPipe() != nullptr) ownPipe()->DeclarePeerGone();
}

// Why nothing may be waited for on the ends: they may have been opened just after the call that cancelled them. 0 when
// it may.
int AsyCsPipe1::refusal() const {
  return waits_->interruption.reason() == Interruption::Reason::GivenUp ? status(os::kOperationAborted) : 0;
}

// KOVACreateFile, but for the wait for a pipe that another process has taken: that one can be ended.
int AsyCsPipe1::openFile(KovaPipe* pipe) {
  for (;;) {
    const int result = pipe->TryCreateFile();
    if (result != status(os::kPipeBusy)) return result;
    const int ended = statusOf(waits_->interruption.wait(kTakenPauseMs));
    if (ended != 0) return ended;
  }
}

int AsyCsPipe1::connect(KovaPipe* pipe) {
  const int refused = refusal();
  return refused != 0 ? refused : pipe->ConnectPipe();
}

int AsyCsPipe1::sendTo(KovaPipe* pipe, CleXDSmb& message) {
  if (pipe == nullptr) return kova::kPipeFailed;
  const int opened = pipe->HasPipe() ? 0 : openFile(pipe);
  if (opened != 0) return opened;
  const int refused = refusal();
  return refused != 0 ? refused : SendData(pipe, message, false);
}

int AsyCsPipe1::receiveFrom(KovaPipe* pipe, CleXDSmb& message, int* transportStatus) {
  const int refused = pipe == nullptr ? kova::kPipeFailed : refusal();
  if (refused != 0) return *transportStatus = refused;
  return kova::ReceiveMessage(pipe, message, transportStatus);
}
