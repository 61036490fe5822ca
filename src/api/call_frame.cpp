#include "api/call_frame.h"

#include "api/guard.h"
#include "api/local_results.h"
#include "api/pipe_selection.h"
#include "config/text_utilities.h"
#include "platform/os/error.h"
#include "transport/KovaPipe.h"
#include "transport/message_exchange.h"
#include "transport/watched_wait.h"

namespace kova {
namespace {

constexpr int kOpenAttempts = 20;
constexpr unsigned int kOpenPauseMs = 100;
constexpr int kMostLooks = 100;
constexpr unsigned int kLookPauseMs = 2;
constexpr int kEngineGone = static_cast<int>(os::kBrokenPipe);

// A pause follows every failed attempt, the last one too, so that a dead engine costs two seconds.
int openRequestPipe(KovaPipe& pipe) {
  int code = 0;
  for (int attempt = 0; attempt < kOpenAttempts; ++attempt) {
    code = pipe.KOVACreateFile();
    if (code == 0) break;
    msleep(kOpenPauseMs);
  }
  return code;
}

int sendRequest(KovaPipe& pipe, CleXDSmb& request) {
  const int code = pipe.HasPipe() ? 0 : openRequestPipe(pipe);
  return code != 0 ? code : SendData(&pipe, request, false);
}

bool hasOwnEngineEnded() {
  const PeerWatch* const watch = EngineWatch();
  return watch != nullptr && watch->hasEnded();
}

// A process that ends loses its pipes a little before it has ended.
void awaitOwnEnginesEnd() {
  for (int looks = 0; EngineWatch() != nullptr && !hasOwnEngineEnded() && looks < kMostLooks; ++looks) {
    msleep(kLookPauseMs);
  }
}

// What it gives is not looked at: 535 is a client that came first, and where there is no connection the read says so.
// An engine that this process has started may end before it has ever come to this pipe.
void connectReplies(KovaPipe& pipe) {
  const WatchedWait wait(EngineWatch(), &pipe);
  pipe.ConnectPipe();
}

// The engine's own code comes as the result of a reply that was put together.
int receiveReply(KovaPipe& pipe, CleXDSmb& reply, EngineCode engineCode) {
  if (!pipe.IsWritePipeConnected()) connectReplies(pipe);
  int status = 0;
  const int code = ReceiveMessage(&pipe, reply, &status);
  SetLastReceiveStatus(status);
  if (status == kEngineGone) awaitOwnEnginesEnd();
  return engineCode == EngineCode::kIgnored ? status : code;
}

void pack(Command command, std::span<const CallItem> items, CleXDSmb& request) {
  request.SetCommandAction(command);
  for (const CallItem& item : items) {
    if (item.append) item.append(item.object, request);
  }
}

bool isUnpacked(int code, EngineCode engineCode) {
  const bool isEnd = code == kEndOfCases || code == kEndOfSplitGroup;
  return code == 0 || (isEnd && engineCode == EngineCode::kTellsTheEnd);
}

void unpack(std::span<const CallItem> items, CleXDSmb& reply) {
  for (const CallItem& item : items) {
    if (item.take) item.take(item.object, reply);
  }
}

// Of an engine that this process has started and that has ended nothing is asked: a block that it had this process run
// may still be about to end, on the pipes that are the current ones.
int converse(Command command, std::span<const CallItem> items, int* errorCode, Manner manner) {
  if (hasOwnEngineEnded()) {
    SetLastReceiveStatus(kEngineGone);
    return kEngineGone;
  }
  CleXDSmb request;
  pack(command, items, request);
  const CallPipes pipes = SelectPipes();
  if (!pipes) return kPipeFailed;
  int code = StoreAt(errorCode, sendRequest(*pipes.request, request));
  // A request that could not be built was never sent, and nobody will answer it.
  if (code == kNotEnoughMemory || (code != 0 && !manner.waitsWhenUnsent)) return code;
  CleXDSmb reply;
  code = StoreAt(errorCode, receiveReply(*pipes.reply, reply, manner.engineCode));
  if (isUnpacked(code, manner.engineCode)) unpack(items, reply);
  return code;
}

}  // namespace

int Exchange(Command command, std::span<const CallItem> items, int* errorCode, Manner manner) noexcept {
  return StoreAt(errorCode, Guarded([&] { return converse(command, items, errorCode, manner); }));
}

bool Affirmed(Command command) {
  int answer = 0;
  return Tell(command, IntoLong{&answer}) == 0 && answer != 0;
}

}  // namespace kova
