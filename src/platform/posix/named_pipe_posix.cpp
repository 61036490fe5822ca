#include "platform/os/named_pipe.h"

#include <unistd.h>

#include <cstdint>
#include <memory>

#include "platform/posix/error_posix.h"
#include "platform/posix/pipe_address_posix.h"
#include "platform/posix/pipe_end_posix.h"

namespace kova::os {
namespace {

PipeEnd* endOf(NativeHandle pipe) { return static_cast<PipeEnd*>(pipe); }

bool isHandle(NativeHandle pipe) { return pipe != nullptr && reinterpret_cast<std::intptr_t>(pipe) != -1; }

}  // namespace

std::string PipeFolder() { return pipeFolder(); }

Error SweepStalePipes(const std::string& namePart) {
  return orNoMemory([&] {
    const std::string folder = pipeFolder();
    const uid_t user = geteuid();
    FolderLock lock;
    Error error = checkPipeFolder(folder, user);
    if (error == kSuccess) error = lockPipeFolder(folder, user, &lock);
    if (error == kSuccess) removeStaleFiles(folder, user, namePart);
    return error == kFileNotFound ? kSuccess : error;
  });
}

Error CreateMessagePipe(const char* name, std::uint32_t, NativeHandle* out) {
  return orNoMemory([&] {
    auto end = std::make_unique<PipeEnd>();
    const Error error = end->serve(name);
    if (error == kSuccess) *out = end.release();
    return error;
  });
}

Error AcceptPeer(NativeHandle pipe) { return isHandle(pipe) ? endOf(pipe)->accept() : kInvalidHandle; }

Error DisconnectPeer(NativeHandle pipe) { return isHandle(pipe) ? endOf(pipe)->disconnect() : kInvalidHandle; }

Error ClosePipeHandle(NativeHandle pipe) {
  if (!isHandle(pipe)) return kInvalidHandle;
  delete endOf(pipe);
  return kSuccess;
}

Error AwaitServer(const char* name, std::uint32_t) {
  return orNoMemory([&] {
    const std::string folder = pipeFolder();
    sockaddr_un address;
    Error error = pipeAddress(folder, name, &address);
    if (error == kSuccess) error = checkPipeFolder(folder, geteuid());
    return error == kSuccess ? probeServer(address) : error;
  });
}

Error OpenPipe(const char* name, PipeAccess access, WhenTaken whenTaken, NativeHandle* out) {
  return orNoMemory([&] {
    auto end = std::make_unique<PipeEnd>();
    const Error error = end->open(name, access == PipeAccess::ReadWrite, whenTaken);
    if (error == kSuccess) *out = end.release();
    return error;
  });
}

Error SetMessageReadMode(NativeHandle pipe) { return isHandle(pipe) ? endOf(pipe)->messageMode() : kInvalidHandle; }

Error SetNoWaitMode(NativeHandle pipe) {
  if (!isHandle(pipe)) return kInvalidHandle;
  endOf(pipe)->setNoWait();
  return kSuccess;
}

Error ReadMessage(NativeHandle pipe, void* buffer, std::uint32_t size, std::uint32_t* read) {
  *read = 0;
  return isHandle(pipe) ? endOf(pipe)->read(buffer, size, read, true) : kInvalidHandle;
}

Error TryReadMessage(NativeHandle pipe, void* buffer, std::uint32_t size, std::uint32_t* read) {
  *read = 0;
  return isHandle(pipe) ? endOf(pipe)->read(buffer, size, read, false) : kInvalidHandle;
}

// Two sleeps and wake-ups cost about 10; a look costs less than 1.
std::uint32_t GoodLookUs() { return 20; }

Error WriteMessage(NativeHandle pipe, const void* data, std::uint32_t size, std::uint32_t* written) {
  return isHandle(pipe) ? endOf(pipe)->write(data, size, written) : kInvalidHandle;
}

// A local socket can not tell what its peer has read.
Error FlushMessages(NativeHandle pipe) { return isHandle(pipe) ? kSuccess : kInvalidHandle; }

Error CancelPipeWait(NativeHandle pipe) { return isHandle(pipe) ? endOf(pipe)->cancel() : kInvalidHandle; }

Error DeclarePeerGone(NativeHandle pipe) { return isHandle(pipe) ? endOf(pipe)->expectNoMore() : kInvalidHandle; }

}  // namespace kova::os
