// Message pipes between the threads of this process, with the ways of Windows: several instances of one name, "busy"
// seen from outside, a disconnected end that takes nobody in until it accepts again.
#include "platform/os/named_pipe.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <set>
#include <string>
#include <vector>

#include "tests/os_fake/fake_kernel.h"
#include "tests/os_fake/os_fake.h"

namespace kova::os {

using fake::Call;

namespace {

constexpr Error kInvalidName = 123;

// One way of a connection.
struct Lane {
  std::deque<std::vector<char>> messages;
  std::size_t offset = 0;  // How much of the first message has been read.
  std::size_t bytes = 0;   // What is left of all.
  bool writerGone = false;
  bool readerGone = false;
};

struct Connection {
  Lane toServer;
  Lane toClient;
  bool disconnected = false;
};

// What a handle points to.
struct End {
  std::string name;
  bool server = false;
  std::uint32_t bufferSize = 0;
  bool listening = false;
  bool cancelled = false;
  bool peerGone = false;
  bool noWait = false;
  bool mayWrite = true;
  std::shared_ptr<Connection> connection;
  std::shared_ptr<fake::ProcessState> owner;

  Lane& in() const { return server ? connection->toServer : connection->toClient; }
  Lane& out() const { return server ? connection->toClient : connection->toServer; }
};

struct Pipes {
  std::set<End*> ends;
  std::vector<End*> servers;  // In the order of their birth, which is the order in which clients get them.
  std::optional<std::uint32_t> shortRead;
};

Pipes& pipes() {
  static Pipes* const thePipes = new Pipes;
  return *thePipes;
}

End* endOf(NativeHandle pipe) {
  End* const end = static_cast<End*>(pipe);
  return pipes().ends.count(end) ? end : nullptr;
}

bool serverExists(const std::string& name) {
  return std::any_of(pipes().servers.begin(), pipes().servers.end(), [&](End* end) { return end->name == name; });
}

End* listeningServer(const std::string& name) {
  const auto found = std::find_if(pipes().servers.begin(), pipes().servers.end(),
                                  [&](End* end) { return end->name == name && end->listening; });
  return found == pipes().servers.end() ? nullptr : *found;
}

End* newEnd(const char* name) {
  End* const end = new End;
  end->name = name;
  end->owner = fake::currentThread()->process;
  pipes().ends.insert(end);
  return end;
}

void leave(const End& end) {
  if (!end.connection) return;
  end.in().readerGone = true;
  end.out().writerGone = true;
}

void destroy(End* end) {
  leave(*end);
  std::erase(pipes().servers, end);
  pipes().ends.erase(end);
  delete end;
  Call::notify();
}

// Why a read that finds no message does not wait; kSuccess when it should.
Error whyNotToWait(const End& end, const Connection* connection) {
  if (end.peerGone) return kBrokenPipe;
  if (connection->disconnected) return kPipeNotConnected;
  const Lane& lane = end.server ? connection->toServer : connection->toClient;
  if (lane.writerGone) return kBrokenPipe;
  return kSuccess;
}

// Takes the next message, or what fits of it.
Error take(Lane& lane, void* buffer, std::uint32_t size, std::uint32_t* read) {
  const std::vector<char>& message = lane.messages.front();
  if (pipes().shortRead) size = std::min(size, *pipes().shortRead);
  pipes().shortRead.reset();
  const std::size_t left = message.size() - lane.offset;
  const std::size_t taken = std::min<std::size_t>(left, size);
  if (taken > 0) std::memcpy(buffer, message.data() + lane.offset, taken);
  lane.offset += taken;
  lane.bytes -= taken;
  *read = static_cast<std::uint32_t>(taken);
  const bool more = taken < left;
  if (!more) {
    lane.messages.pop_front();
    lane.offset = 0;
  }
  Call::notify();
  return more ? kMoreData : kSuccess;
}

Error readMessage(Call& call, NativeHandle pipe, void* buffer, std::uint32_t size, std::uint32_t* read, bool mayWait) {
  *read = 0;
  if (call.failure()) return *call.failure();
  End* const end = endOf(pipe);
  if (!end) return kInvalidHandle;
  if (end->cancelled) return kOperationAborted;
  if (!end->connection && end->peerGone) return kBrokenPipe;
  if (!end->connection) return end->listening ? kPipeListening : kPipeNotConnected;
  // A disconnect on another thread takes the connection from the end.
  const std::shared_ptr<Connection> connection = end->connection;
  Lane& lane = end->in();
  if (mayWait && !end->noWait) {
    call.wait([&] { return !lane.messages.empty() || end->cancelled || whyNotToWait(*end, connection.get()); });
  }
  if (end->cancelled) return kOperationAborted;
  if (!lane.messages.empty()) return take(lane, buffer, size, read);
  const Error reason = whyNotToWait(*end, connection.get());
  return reason ? reason : kNoData;
}

}  // namespace

std::string PipeFolder() {
  const Call call("PipeFolder");
  return {};
}

// A process that is ended takes its pipes with it.
Error SweepStalePipes(const std::string& namePart) {
  const Call call("SweepStalePipes", namePart.c_str());
  return call.failure().value_or(kSuccess);
}

Error CreateMessagePipe(const char* name, std::uint32_t bufferSize, NativeHandle* out) {
  const Call call("CreateMessagePipe", name);
  if (call.failure()) return *call.failure();
  if (!name) return kInvalidName;
  End* const end = newEnd(name);
  end->server = true;
  end->bufferSize = bufferSize;
  end->listening = true;
  pipes().servers.push_back(end);
  *out = end;
  Call::notify();
  return kSuccess;
}

Error AcceptPeer(NativeHandle pipe) {
  Call call("AcceptPeer");
  if (call.failure()) return *call.failure();
  End* const end = endOf(pipe);
  if (!end || !end->server) return kInvalidHandle;
  if (end->cancelled) return kOperationAborted;
  if (end->connection) return kPipeConnected;
  end->listening = true;
  Call::notify();
  call.wait([&] { return end->connection || end->cancelled || end->peerGone; });
  if (end->connection) return kSuccess;
  return end->cancelled ? kOperationAborted : kBrokenPipe;
}

Error DisconnectPeer(NativeHandle pipe) {
  const Call call("DisconnectPeer");
  if (call.failure()) return *call.failure();
  End* const end = endOf(pipe);
  if (!end || !end->server) return kInvalidHandle;
  end->peerGone = false;
  if (!end->connection) return kSuccess;
  leave(*end);
  end->connection->disconnected = true;
  end->connection->toServer.messages.clear();
  end->connection->toClient.messages.clear();
  end->connection.reset();
  Call::notify();
  return kSuccess;
}

Error ClosePipeHandle(NativeHandle pipe) {
  const Call call("ClosePipeHandle");
  if (call.failure()) return *call.failure();
  End* const end = endOf(pipe);
  if (!end) return kInvalidHandle;
  destroy(end);
  return kSuccess;
}

Error AwaitServer(const char* name, std::uint32_t timeoutMs) {
  Call call("AwaitServer", name);
  if (call.failure()) return *call.failure();
  if (!name) return kInvalidName;
  const bool inTime = call.waitFor(timeoutMs, [&] { return !serverExists(name) || listeningServer(name); });
  if (!inTime) return kSemTimeout;
  return serverExists(name) ? kSuccess : kFileNotFound;
}

Error OpenPipe(const char* name, PipeAccess access, WhenTaken, NativeHandle* out) {
  const Call call("OpenPipe", name);
  if (call.failure()) return *call.failure();
  if (!name) return kInvalidName;
  if (!serverExists(name)) return kFileNotFound;
  End* const server = listeningServer(name);
  if (!server) return kPipeBusy;
  End* const end = newEnd(name);
  end->bufferSize = server->bufferSize;
  end->mayWrite = access == PipeAccess::ReadWrite;
  end->connection = std::make_shared<Connection>();
  server->connection = end->connection;
  server->listening = false;
  *out = end;
  Call::notify();
  return kSuccess;
}

Error SetMessageReadMode(NativeHandle pipe) {
  const Call call("SetMessageReadMode");
  if (call.failure()) return *call.failure();
  const End* const end = endOf(pipe);
  if (!end) return kInvalidHandle;
  if (end->connection && (end->connection->disconnected || end->in().writerGone)) return kPipeNotConnected;
  return kSuccess;
}

Error SetNoWaitMode(NativeHandle pipe) {
  const Call call("SetNoWaitMode");
  if (call.failure()) return *call.failure();
  End* const end = endOf(pipe);
  if (!end) return kInvalidHandle;
  end->noWait = true;
  return kSuccess;
}

Error ReadMessage(NativeHandle pipe, void* buffer, std::uint32_t size, std::uint32_t* read) {
  Call call("ReadMessage");
  return readMessage(call, pipe, buffer, size, read, true);
}

Error TryReadMessage(NativeHandle pipe, void* buffer, std::uint32_t size, std::uint32_t* read) {
  Call call("TryReadMessage");
  return readMessage(call, pipe, buffer, size, read, false);
}

std::uint32_t GoodLookUs() { return 20; }

Error WriteMessage(NativeHandle pipe, const void* data, std::uint32_t size, std::uint32_t* written) {
  Call call("WriteMessage");
  if (call.failure()) return *call.failure();
  End* const end = endOf(pipe);
  if (!end) return kInvalidHandle;
  if (!end->mayWrite) return kAccessDenied;
  if (end->cancelled) return kOperationAborted;
  if (!end->connection) return end->listening ? kPipeListening : kNoData;
  const std::shared_ptr<Connection> connection = end->connection;
  Lane& lane = end->out();
  if (lane.readerGone) return kNoData;
  const char* const bytes = static_cast<const char*>(data);
  lane.messages.emplace_back(bytes, bytes + size);
  lane.bytes += size;
  Call::notify();
  // The message lies in the pipe already; the writer stays until what is unread fits the pipe.
  if (!end->noWait) call.wait([&] { return lane.bytes <= end->bufferSize || lane.readerGone || end->cancelled; });
  if (end->cancelled) return kOperationAborted;
  if (lane.readerGone && lane.bytes > end->bufferSize) return kNoData;
  *written = size;
  return kSuccess;
}

Error FlushMessages(NativeHandle pipe) {
  const Call call("FlushMessages");
  if (call.failure()) return *call.failure();
  return endOf(pipe) ? kSuccess : kInvalidHandle;
}

Error CancelPipeWait(NativeHandle pipe) {
  const Call call("CancelPipeWait");
  if (call.failure()) return *call.failure();
  End* const end = endOf(pipe);
  if (!end) return kInvalidHandle;
  end->cancelled = true;
  Call::notify();
  return kSuccess;
}

Error DeclarePeerGone(NativeHandle pipe) {
  const Call call("DeclarePeerGone");
  if (call.failure()) return *call.failure();
  End* const end = endOf(pipe);
  if (!end) return kInvalidHandle;
  end->peerGone = true;
  Call::notify();
  return kSuccess;
}

}  // namespace kova::os

namespace kova::fake {

void losePeer(const char* pipeName) {
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  for (const os::End* end : os::pipes().ends) {
    if (end->name != pipeName || !end->connection) continue;
    end->in().writerGone = true;
    end->out().readerGone = true;
  }
  Call::notify();
}

void shortNextRead(std::uint32_t bytes) {
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  os::pipes().shortRead = bytes;
}

unsigned openPipeEnds(const char* pipeName) {
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  const auto& ends = os::pipes().ends;
  const auto count =
      std::count_if(ends.begin(), ends.end(), [&](const os::End* end) { return !pipeName || end->name == pipeName; });
  return static_cast<unsigned>(count) + (pipeName ? 0 : openBytePipeEnds());
}

void closePipesOf(const ProcessState& process) {
  const std::set<os::End*> ends = os::pipes().ends;
  for (os::End* end : ends) {
    if (end->owner.get() == &process) os::destroy(end);
  }
}

void resetPipes() { os::pipes().shortRead.reset(); }

}  // namespace kova::fake
