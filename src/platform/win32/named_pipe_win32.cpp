#include "platform/os/named_pipe.h"

#include <condition_variable>
#include <cstring>
#include <mutex>
#include <new>

#include "platform/win32/blocking_call_win32.h"
#include "platform/win32/system_win32.h"

namespace kova::os {
namespace {

constexpr std::size_t kLongestName = 256;

enum class Wait { None, Accept, Read, Write };

// What a handle of the seam points to: the system's handle, and who is blocked on it. The handles are synchronous, so
// the system serves one call at a time on each: a second thread has to end the first one's call before its own.
struct Pipe {
  HANDLE handle;

  std::mutex guard;  // Of the next five.
  Wait wait = Wait::None;
  DWORD waitingThread = 0;
  bool cancelled = false;
  bool disconnecting = false;
  bool peerGone = false;
  std::condition_variable disconnected;  // Notified when `disconnecting` becomes false.

  bool noWait = false;  // Used by the end's own thread alone.
};

Pipe* pipeOf(NativeHandle pipe) { return static_cast<Pipe*>(pipe); }

bool isHandle(NativeHandle pipe) { return pipe != nullptr && pipe != INVALID_HANDLE_VALUE; }

// Stands around one blocking call. A thread leaves it only when nobody is about to cancel that call, so that a cancel
// never meets the thread's next one.
class BlockingCall {
 public:
  BlockingCall(Pipe* pipe, Wait kind) : pipe_(pipe) {
    std::unique_lock<std::mutex> lock(pipe_->guard);
    // An accept is for the next client, so a disconnect of this one does not concern it.
    if (kind == Wait::Accept) pipe_->disconnected.wait(lock, [pipe] { return !pipe->disconnecting; });
    refusal_ = whyRefused();
    if (refusal_) return;
    pipe_->wait = kind;
    pipe_->waitingThread = GetCurrentThreadId();
    mayWait_ = !pipe_->peerGone;
  }
  BlockingCall(const BlockingCall&) = delete;
  BlockingCall& operator=(const BlockingCall&) = delete;
  ~BlockingCall() {
    if (!left_) leave(kSuccess);
  }

  // Why the call must not be made; 0 when it may.
  Error refusal() const { return refusal_; }

  // False when the peer was declared gone before the call: there is nobody to wait for.
  bool mayWait() const { return mayWait_; }

  // The call's result, as the caller should see it: one that a disconnect or a declaration has ended tells so.
  Error leave(Error result) {
    const std::lock_guard<std::mutex> lock(pipe_->guard);
    const bool awaitsPeer = pipe_->wait == Wait::Accept || pipe_->wait == Wait::Read;
    if (!refusal_) pipe_->wait = Wait::None;
    left_ = true;
    if (result == kOperationAborted && pipe_->disconnecting) return kPipeNotConnected;
    return awaitsPeer && pipe_->peerGone && tellsOfNobody(result) ? kBrokenPipe : result;
  }

 private:
  bool tellsOfNobody(Error result) const {
    if (result == kOperationAborted) return !pipe_->cancelled;
    return result == kNoData || result == kPipeListening || result == kPipeNotConnected;
  }

  Error whyRefused() const {
    if (pipe_->disconnecting) return kPipeNotConnected;
    return pipe_->cancelled ? kOperationAborted : kSuccess;
  }

  Pipe* pipe_;
  Error refusal_ = kSuccess;
  bool mayWait_ = true;
  bool left_ = false;
};

// Ends the blocking call under way.
enum class Ended { AnyCall, WaitForPeer };
void endCallOn(Pipe* pipe, Ended ended) {
  endBlockingCall(pipe->guard, [pipe, ended]() -> DWORD {
    const bool concerned = pipe->wait != Wait::None && (pipe->wait != Wait::Write || ended == Ended::AnyCall);
    return concerned ? pipe->waitingThread : 0;
  });
}

Error adopt(HANDLE handle, NativeHandle* out) {
  Pipe* const pipe = new (std::nothrow) Pipe{.handle = handle, .guard = {}, .disconnected = {}};
  if (pipe == nullptr) {
    CloseHandle(handle);
    return kNotEnoughMemory;
  }
  *out = pipe;
  return kSuccess;
}

Error setMode(HANDLE handle, DWORD mode) { return resultOf(SetNamedPipeHandleState(handle, &mode, nullptr, nullptr)); }

Error readInto(HANDLE handle, void* buffer, std::uint32_t size, std::uint32_t* read) {
  DWORD count = 0;
  const Error result = resultOf(ReadFile(handle, buffer, size, &count, nullptr));
  *read = count;
  return result;
}

// The system's own no-wait mode is on for the read alone: a write in it would give up where the pipe is full.
Error readWithoutWaiting(HANDLE handle, void* buffer, std::uint32_t size, std::uint32_t* read) {
  const Error notSet = setMode(handle, PIPE_READMODE_MESSAGE | PIPE_NOWAIT);
  if (notSet) return notSet;
  const Error result = readInto(handle, buffer, size, read);
  setMode(handle, PIPE_READMODE_MESSAGE | PIPE_WAIT);
  return result;
}

bool isPeerGone(Pipe* pipe) {
  const std::lock_guard<std::mutex> lock(pipe->guard);
  return pipe->peerGone;
}

// Asks for a client without waiting: 535 when one is there, 232 when one came and went, 536 when none has come.
Error acceptWithoutWaiting(HANDLE handle) {
  const Error notSet = setMode(handle, PIPE_READMODE_MESSAGE | PIPE_NOWAIT);
  if (notSet) return notSet;
  const Error result = resultOf(ConnectNamedPipe(handle, nullptr));
  setMode(handle, PIPE_READMODE_MESSAGE | PIPE_WAIT);
  // Success tells in this mode that the end has begun to listen.
  return result == kSuccess ? kPipeListening : result;
}

}  // namespace

// The system keeps pipes in a place of its own, and takes them away with the process that made them.
std::string PipeFolder() { return {}; }

Error SweepStalePipes(const std::string&) { return kSuccess; }

Error CreateMessagePipe(const char* name, std::uint32_t bufferSize, NativeHandle* out) {
  if (name == nullptr) return ERROR_INVALID_NAME;
  if (std::strlen(name) > kLongestName) return kFileNameTooLong;
  const HANDLE handle =
      CreateNamedPipeA(name, PIPE_ACCESS_DUPLEX, PIPE_TYPE_MESSAGE | PIPE_READMODE_MESSAGE | PIPE_WAIT,
                       PIPE_UNLIMITED_INSTANCES, bufferSize, bufferSize, NMPWAIT_WAIT_FOREVER, nullptr);
  return handle == INVALID_HANDLE_VALUE ? lastError() : adopt(handle, out);
}

Error AcceptPeer(NativeHandle pipe) {
  if (!isHandle(pipe)) return kInvalidHandle;
  BlockingCall call(pipeOf(pipe), Wait::Accept);
  if (call.refusal()) return call.refusal();
  const HANDLE handle = pipeOf(pipe)->handle;
  const Error result = call.mayWait() ? resultOf(ConnectNamedPipe(handle, nullptr)) : acceptWithoutWaiting(handle);
  // A client that came and went again has come first too: what it wrote can be read.
  return call.leave(result == kNoData ? kPipeConnected : result);
}

Error DisconnectPeer(NativeHandle pipe) {
  if (!isHandle(pipe)) return kInvalidHandle;
  Pipe* const end = pipeOf(pipe);
  {
    const std::lock_guard<std::mutex> lock(end->guard);
    if (end->wait == Wait::Accept) return kSuccess;  // No client yet; one that comes just now stays.
    end->disconnecting = true;
  }
  endCallOn(end, Ended::AnyCall);
  const Error result = resultOf(DisconnectNamedPipe(end->handle));
  const std::lock_guard<std::mutex> lock(end->guard);
  end->disconnecting = false;
  end->disconnected.notify_all();
  end->peerGone = false;
  return result == kPipeNotConnected || result == kPipeListening ? kSuccess : result;
}

Error ClosePipeHandle(NativeHandle pipe) {
  if (!isHandle(pipe)) return kInvalidHandle;
  const Error result = resultOf(CloseHandle(pipeOf(pipe)->handle));
  delete pipeOf(pipe);
  return result;
}

Error AwaitServer(const char* name, std::uint32_t timeoutMs) {
  if (name == nullptr) return ERROR_INVALID_NAME;
  // 0 would stand for the server's own limit, which is none.
  const DWORD limit = timeoutMs == 0 ? NMPWAIT_NOWAIT : timeoutMs;
  return resultOf(WaitNamedPipeA(name, limit));
}

// A taken name is refused at once, whatever the caller would like: AwaitServer has waited.
Error OpenPipe(const char* name, PipeAccess access, WhenTaken, NativeHandle* out) {
  if (name == nullptr) return ERROR_INVALID_NAME;
  // A reader needs the attributes to choose its read mode.
  const DWORD rights = access == PipeAccess::Read ? GENERIC_READ | FILE_WRITE_ATTRIBUTES : GENERIC_READ | GENERIC_WRITE;
  const DWORD quality = SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION;
  const HANDLE handle = CreateFileA(name, rights, 0, nullptr, OPEN_EXISTING, quality, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return lastError();
  // A client's end begins in byte mode. When the server has gone meanwhile, the first read tells.
  setMode(handle, PIPE_READMODE_MESSAGE);
  return adopt(handle, out);
}

Error SetMessageReadMode(NativeHandle pipe) {
  if (!isHandle(pipe)) return kInvalidHandle;
  const Error result = setMode(pipeOf(pipe)->handle, PIPE_READMODE_MESSAGE);
  return result == kBrokenPipe ? kPipeNotConnected : result;
}

Error SetNoWaitMode(NativeHandle pipe) {
  if (!isHandle(pipe)) return kInvalidHandle;
  pipeOf(pipe)->noWait = true;
  return kSuccess;
}

Error ReadMessage(NativeHandle pipe, void* buffer, std::uint32_t size, std::uint32_t* read) {
  *read = 0;
  if (!isHandle(pipe)) return kInvalidHandle;
  BlockingCall call(pipeOf(pipe), Wait::Read);
  if (call.refusal()) return call.refusal();
  const HANDLE handle = pipeOf(pipe)->handle;
  const auto readOne = pipeOf(pipe)->noWait || !call.mayWait() ? readWithoutWaiting : readInto;
  Error result = readOne(handle, buffer, size, read);
  // What came just before the declaration that ended the wait is still given.
  if (result == kOperationAborted && isPeerGone(pipeOf(pipe))) result = readWithoutWaiting(handle, buffer, size, read);
  return call.leave(result);
}

Error TryReadMessage(NativeHandle pipe, void* buffer, std::uint32_t size, std::uint32_t* read) {
  *read = 0;
  if (!isHandle(pipe)) return kInvalidHandle;
  if (pipeOf(pipe)->noWait || isPeerGone(pipeOf(pipe))) return ReadMessage(pipe, buffer, size, read);
  DWORD available = 0;
  const Error error = resultOf(PeekNamedPipe(pipeOf(pipe)->handle, nullptr, 0, nullptr, &available, nullptr));
  // A look does not tell why there is no client; a read does.
  if (error == ERROR_BAD_PIPE) return readWithoutWaiting(pipeOf(pipe)->handle, buffer, size, read);
  if (error) return error;
  // A message of no bytes does not show in a look. The no-wait mode would show it, for three more calls each time.
  return available == 0 ? kNoData : ReadMessage(pipe, buffer, size, read);
}

// A look and the read behind it are two calls of the system; under Wine they take longer than the wake-up they save.
std::uint32_t GoodLookUs() { return 0; }

Error WriteMessage(NativeHandle pipe, const void* data, std::uint32_t size, std::uint32_t* written) {
  if (!isHandle(pipe)) return kInvalidHandle;
  BlockingCall call(pipeOf(pipe), Wait::Write);
  if (call.refusal()) return call.refusal();
  DWORD count = 0;
  const Error result = call.leave(resultOf(WriteFile(pipeOf(pipe)->handle, data, size, &count, nullptr)));
  if (result == kSuccess) *written = count;
  return result;
}

Error FlushMessages(NativeHandle pipe) {
  if (!isHandle(pipe)) return kInvalidHandle;
  BlockingCall call(pipeOf(pipe), Wait::Write);
  if (call.refusal()) return call.refusal();
  return call.leave(resultOf(FlushFileBuffers(pipeOf(pipe)->handle)));
}

Error CancelPipeWait(NativeHandle pipe) {
  if (!isHandle(pipe)) return kInvalidHandle;
  {
    const std::lock_guard<std::mutex> lock(pipeOf(pipe)->guard);
    pipeOf(pipe)->cancelled = true;
  }
  endCallOn(pipeOf(pipe), Ended::AnyCall);
  return kSuccess;
}

Error DeclarePeerGone(NativeHandle pipe) {
  if (!isHandle(pipe)) return kInvalidHandle;
  {
    const std::lock_guard<std::mutex> lock(pipeOf(pipe)->guard);
    pipeOf(pipe)->peerGone = true;
  }
  endCallOn(pipeOf(pipe), Ended::WaitForPeer);
  return kSuccess;
}

}  // namespace kova::os
