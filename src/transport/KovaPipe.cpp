#include "transport/KovaPipe.h"

#include <cstdint>
#include <utility>

#include "platform/os/clock.h"
#include "platform/os/file.h"
#include "platform/os/named_pipe.h"
#include "trace/DxTracer.h"
#include "transport/yielding_wait.h"

namespace os = kova::os;

namespace {

constexpr unsigned kOpenWaits = 101;
constexpr std::uint32_t kOpenPauseMs = 100;

// The value that an open which failed leaves in a handle.
void* invalidHandle() { return reinterpret_cast<void*>(static_cast<std::intptr_t>(-1)); }

}  // namespace

KovaPipe::KovaPipe() = default;

KovaPipe::KovaPipe(std::string name) : name_(std::move(name)) {}

KovaPipe::~KovaPipe() {
  ClosePipe();
  if (!name_.empty()) os::DeletePlainFile(name_);
}

int KovaPipe::CreatePipe() {
  if (name_.empty()) return kova::kPipeWithoutName;
  ClosePipe();  // An end that is still held could not be closed by anyone afterwards.
  os::NativeHandle created = invalidHandle();
  const os::Error error = os::CreateMessagePipe(name_.c_str(), kova::kPipeChunk, &created);
  Hold(created);
  if (error != os::kSuccess) {
    TraceFailure(" CreateNamedPipe", error);
    return kova::kPipeFailed;
  }
  created_ = true;
  return 0;
}

int KovaPipe::ConnectPipe() {
  if (connectTried_) return 0;
  const os::Error error = HasPipe() ? os::AcceptPeer(handle_) : os::kInvalidHandle;
  // Deliberate: a client that came before this call gives 535 and leaves the flag clear, though it is connected.
  if (error == os::kSuccess) {
    writeConnected_ = true;
  } else {
    TraceFailure(" ConnectPipe", error);
  }
  connectTried_ = true;
  return static_cast<int>(error);
}

int KovaPipe::DisconnectPipe() {
  if (!writeConnected_ && !connectTried_) return 0;
  const os::Error error = HasPipe() ? os::DisconnectPeer(handle_) : os::kInvalidHandle;
  writeConnected_ = false;
  connectTried_ = false;
  return error == os::kSuccess ? 0 : kova::kPipeFailed;
}

int KovaPipe::ClosePipe() {
  if (!HasPipe()) return 0;
  os::NativeHandle closed = handle_;
  Hold(nullptr);
  os::ClosePipeHandle(closed);
  writeConnected_ = false;
  connectTried_ = false;
  created_ = false;
  TraceFailure(" ClosePipe", os::kSuccess);
  return 0;
}

int KovaPipe::KOVACreateFile() { return CreateFileWaiting(os::kWaitForever) == os::kSuccess ? 0 : kova::kPipeFailed; }

int KovaPipe::TryCreateFile() {
  const unsigned int error = CreateFileWaiting(0);
  if (error == os::kPipeBusy) return static_cast<int>(error);
  return error == os::kSuccess ? 0 : kova::kPipeFailed;
}

unsigned int KovaPipe::CreateFileWaiting(unsigned int timeoutMs) {
  ClosePipe();
  Hold(invalidHandle());
  const os::Error error = os::AwaitServer(name_.c_str(), timeoutMs);
  const bool isTaken = timeoutMs == 0 && error == os::kSemTimeout;
  if (error != os::kSuccess) {
    if (!isTaken) TraceFailure(" KOVACreateFile", error);
    return isTaken ? os::kPipeBusy : error;
  }
  // Deliberate: a failed open is not traced here, only a failed wait.
  const auto whenTaken = timeoutMs == 0 ? os::WhenTaken::GiveUp : os::WhenTaken::Wait;
  os::NativeHandle opened = invalidHandle();
  const os::Error result = os::OpenPipe(name_.c_str(), os::PipeAccess::ReadWrite, whenTaken, &opened);
  Hold(opened);
  return result;
}

int KovaPipe::KOVACreateFileR() {
  ClosePipe();
  Hold(invalidHandle());
  os::Error error = os::AwaitServer(name_.c_str(), os::kWaitForever);
  for (unsigned waits = 1; error != os::kSuccess; ++waits) {
    if (waits == kOpenWaits) return kova::kPipeFailed;  // Deliberate: the last failed wait is not traced.
    TraceFailure(" KOVACreateFileR", error);
    if (error != os::kFileNotFound) return static_cast<int>(error);
    os::SleepMs(kOpenPauseMs);
    error = os::AwaitServer(name_.c_str(), os::kWaitForever);
  }
  os::NativeHandle opened = invalidHandle();
  error = os::OpenPipe(name_.c_str(), os::PipeAccess::Read, os::WhenTaken::Wait, &opened);
  Hold(opened);
  if (error == os::kSuccess) return 0;
  TraceFailure(" KOVACreateFileR", error);
  return kova::kPipeFailed;
}

int KovaPipe::OpenPipeToWrite() { return OpenPipeToUnBlockWrite(); }

int KovaPipe::OpenPipeToUnBlockWrite() {
  // Deliberate: the earlier handle is replaced, not closed, because another thread may be blocked on it, and neither
  // the result nor the flag tells whether the open worked.
  os::NativeHandle opened = invalidHandle();
  os::OpenPipe(name_.c_str(), os::PipeAccess::ReadWrite, os::WhenTaken::GiveUp, &opened);
  Hold(opened);
  writeConnected_ = true;
  return 0;
}

int KovaPipe::OpenPipeToRead() { return 0; }

int KovaPipe::OpenPipeToUnBlockRead() { return 0; }

int KovaPipe::ChangeReadMode() {
  const os::Error error = HasPipe() ? os::SetMessageReadMode(handle_) : os::kInvalidHandle;
  if (error == os::kSuccess) return 0;
  TraceFailure(" ChangeReadMode", error);
  return kova::kPipeFailed;
}

int KovaPipe::ChangeToUnBlockMode() {
  const os::Error error = HasPipe() ? os::SetNoWaitMode(handle_) : os::kInvalidHandle;
  if (error == os::kSuccess) return 0;
  TraceFailure(" ChangeToUnBlockMode", error);
  return kova::kPipeFailed;
}

int KovaPipe::ReadData(int size, void* buffer, unsigned long& read) {
  std::uint32_t count = 0;
  os::Error error = os::kInvalidHandle;
  if (HasPipe()) {
    error = kova::ReadMessageYielding(handle_, buffer, size > 0 ? static_cast<std::uint32_t>(size) : 0, &count);
  }
  read = count;
  if (error != os::kSuccess) TraceFailure(" ReadData", error);
  return static_cast<int>(error);
}

int KovaPipe::WriteData(const void* data, int length, unsigned long* written) {
  const char* position = static_cast<const char*>(data);
  int remaining = length;
  for (;;) {
    const int chunk = remaining < kova::kPipeChunk ? remaining : kova::kPipeChunk;
    std::uint32_t count = 0;
    os::Error error = os::kInvalidHandle;
    if (HasPipe()) {
      error =
          chunk < 0 ? os::kInvalidData : os::WriteMessage(handle_, position, static_cast<std::uint32_t>(chunk), &count);
    }
    if (written != nullptr) *written = count;
    if (error != os::kSuccess) {
      TraceFailure(" WriteData", error);
      return kova::kPipeFailed;
    }
    remaining -= chunk;
    if (remaining == 0) return 0;
    position += chunk;
  }
}

int KovaPipe::FlushPipe() {
  if (HasPipe()) os::FlushMessages(handle_);
  return 0;
}

void KovaPipe::CancelWait() {
  const std::lock_guard<std::mutex> hold(handleGuard_);
  if (HasPipe()) os::CancelPipeWait(handle_);
}

void KovaPipe::DeclarePeerGone() {
  const std::lock_guard<std::mutex> hold(handleGuard_);
  if (HasPipe()) os::DeclarePeerGone(handle_);
}

const char* KovaPipe::GetPipeName(int& length) const {
  length = static_cast<int>(name_.size());
  return name_.c_str();
}

void KovaPipe::SetPipeName(std::string name) { name_ = std::move(name); }

void KovaPipe::Hold(void* handle) {
  const std::lock_guard<std::mutex> hold(handleGuard_);
  handle_ = handle;
}

bool KovaPipe::HasPipe() const { return handle_ != nullptr && handle_ != invalidHandle(); }

void KovaPipe::TraceFailure(const char* label, unsigned int error) const noexcept {
  try {
    DxTraceError(name_ + label, static_cast<int>(error));
  } catch (...) {
    // A record that can not be written for want of memory must not change the result of what it tells of.
  }
}
