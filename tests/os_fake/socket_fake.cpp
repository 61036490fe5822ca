// Stream sockets between the threads of this process. Addresses are not looked at: a port is enough to be reached.
#include "platform/os/socket.h"

#include <algorithm>
#include <deque>
#include <map>
#include <memory>
#include <string>

#include "tests/os_fake/fake_kernel.h"
#include "tests/os_fake/os_fake.h"

namespace kova::os {

using fake::Call;
using fake::Logged;

namespace {

constexpr Error kInvalidArgument = 10022;
constexpr Error kNotConnected = 10057;
constexpr std::size_t kRoom = std::size_t{64} << 10;  // What a stream takes in before its reader reads.
constexpr std::uint16_t kFirstChosenPort = 49152;

// One way of a connection.
struct Stream {
  std::deque<char> bytes;
  bool ended = false;       // Nothing more will be written.
  bool readerGone = false;  // Nothing more will be read.
};

struct Link {
  Stream toServer;
  Stream toClient;
};

// What a handle stands for.
struct State {
  std::shared_ptr<fake::ProcessState> owner;
  std::uint16_t port = 0;
  bool listening = false;
  std::deque<std::shared_ptr<Link>> waiting;  // Connected, not accepted yet.
  std::shared_ptr<Link> link;
  bool server = false;

  Stream& in() const { return server ? link->toServer : link->toClient; }
  Stream& out() const { return server ? link->toClient : link->toServer; }
};

using Shared = std::shared_ptr<State>;

struct Sockets {
  std::map<std::uintptr_t, Shared> all;
  std::uintptr_t lastHandle = 0;
  std::uint16_t lastPort = kFirstChosenPort;
  std::uint16_t version = kSocketVersion;
  std::uint32_t receiveLimit = 0;
  std::uint32_t shortSend = 0;
  bool breakEnded = false;
};

Sockets& sockets() {
  static Sockets* const theSockets = new Sockets;
  return *theSockets;
}

SocketResult failed(Error error) { return {error, fake::socketNumber(error)}; }

// Null for a handle that is none.
Shared stateOf(std::uintptr_t native) {
  const auto found = sockets().all.find(native);
  return found == sockets().all.end() ? nullptr : found->second;
}

std::uintptr_t add(Shared state) {
  state->owner = fake::currentThread()->process;
  sockets().all[++sockets().lastHandle] = std::move(state);
  return sockets().lastHandle;
}

Shared boundTo(std::uint16_t port) {
  for (const auto& [handle, state] : sockets().all) {
    if (state->port == port) return state;
  }
  return nullptr;
}

std::uint16_t freePort() {
  do {
    ++sockets().lastPort;
  } while (sockets().lastPort < kFirstChosenPort || boundTo(sockets().lastPort));
  return sockets().lastPort;
}

void end(Link& link) {
  for (Stream* const stream : {&link.toServer, &link.toClient}) stream->ended = stream->readerGone = true;
}

// What a closed socket means to its peers.
void leave(State& state) {
  if (state.link) {
    state.in().readerGone = true;
    state.out().ended = true;
  }
  for (const auto& link : state.waiting) end(*link);
  Call::notify();
}

bool hasNews(const State& state) {
  if (state.listening) return !state.waiting.empty();
  return state.link && (!state.in().bytes.empty() || state.in().ended);
}

std::uint32_t take(Stream& stream, char* buffer, std::uint32_t size) {
  if (sockets().receiveLimit > 0) size = std::min(size, sockets().receiveLimit);
  const std::size_t count = std::min<std::size_t>(stream.bytes.size(), size);
  const auto last = stream.bytes.begin() + static_cast<std::ptrdiff_t>(count);
  std::copy(stream.bytes.begin(), last, buffer);
  stream.bytes.erase(stream.bytes.begin(), last);
  Call::notify();
  return static_cast<std::uint32_t>(count);
}

std::string placeText(std::uint32_t address, std::uint16_t port) {
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) {
    text += std::to_string(address >> shift & 0xFF) + (shift > 0 ? "." : ":");
  }
  return text + std::to_string(port);
}

}  // namespace

SocketResult StartSockets(std::uint16_t version, std::uint16_t* obtained) {
  const Call call("StartSockets", (std::to_string(version & 0xFF) + "." + std::to_string(version >> 8)).c_str());
  if (call.failure()) return failed(*call.failure());
  *obtained = sockets().version;
  return {};
}

void StopSockets() { const Call call("StopSockets"); }

Socket::~Socket() {
  if (*this) Close();
}

SocketResult Socket::Open(Socket* out) {
  Socket opened;
  {
    const Call call("Socket::Open");
    if (call.failure()) return failed(*call.failure());
    opened.native_ = add(std::make_shared<State>());
  }
  *out = std::move(opened);
  return {};
}

SocketResult Socket::Bind(std::uint32_t address, std::uint16_t port) {
  const Call call("Socket::Bind", placeText(address, port).c_str());
  if (call.failure()) return failed(*call.failure());
  const Shared state = stateOf(native_);
  if (!state) return failed(kInvalidHandle);
  if (port != 0 && boundTo(port)) return failed(kAddressInUse);
  state->port = port != 0 ? port : freePort();
  return {};
}

SocketResult Socket::Listen(int backlog) {
  const Call call("Socket::Listen", std::to_string(backlog).c_str());
  if (call.failure()) return failed(*call.failure());
  const Shared state = stateOf(native_);
  if (!state) return failed(kInvalidHandle);
  state->listening = true;
  return {};
}

SocketResult Socket::Port(std::uint16_t* port) const {
  const Call call("Socket::Port");
  if (call.failure()) return failed(*call.failure());
  const Shared state = stateOf(native_);
  if (!state) return failed(kInvalidHandle);
  *port = state->port;
  return {};
}

SocketResult Socket::Connect(std::uint32_t address, std::uint16_t port) {
  const Call call("Socket::Connect", placeText(address, port).c_str());
  if (call.failure()) return failed(*call.failure());
  const Shared state = stateOf(native_);
  if (!state) return failed(kInvalidHandle);
  const Shared listener = boundTo(port);
  if (!listener || !listener->listening) return failed(kConnectionRefused);
  state->link = std::make_shared<Link>();
  listener->waiting.push_back(state->link);
  Call::notify();
  return {};
}

SocketResult Socket::Await(std::uint32_t timeoutMs) const {
  Call call("Socket::Await", Logged::CountOnly);
  if (call.failure()) return failed(*call.failure());
  const Shared state = stateOf(native_);
  if (!state) return failed(kInvalidHandle);
  return call.waitFor(timeoutMs, [&] { return hasNews(*state); }) ? SocketResult{} : failed(kWaitTimeout);
}

SocketResult Socket::Accept(Socket* out) const {
  Socket accepted;
  {
    Call call("Socket::Accept");
    if (call.failure()) return failed(*call.failure());
    const Shared state = stateOf(native_);
    if (!state) return failed(kInvalidHandle);
    if (!state->listening) return failed(kInvalidArgument);
    call.wait([&] { return !state->waiting.empty(); });
    auto connection = std::make_shared<State>();
    connection->server = true;
    connection->link = state->waiting.front();
    state->waiting.pop_front();
    accepted.native_ = add(std::move(connection));
  }
  *out = std::move(accepted);
  return {};
}

SocketResult Socket::Receive(void* buffer, std::uint32_t size, std::uint32_t* read) {
  Call call("Socket::Receive", std::to_string(size).c_str());
  if (call.failure()) return failed(*call.failure());
  const Shared state = stateOf(native_);
  if (!state) return failed(kInvalidHandle);
  if (!state->link) return failed(kNotConnected);
  Stream& stream = state->in();
  call.wait([&] { return !stream.bytes.empty() || stream.ended; });
  if (stream.bytes.empty() && sockets().breakEnded) return failed(kConnectionReset);
  *read = take(stream, static_cast<char*>(buffer), size);
  return {};
}

SocketResult Socket::Send(const void* data, std::uint32_t size, std::uint32_t* sent) {
  Call call("Socket::Send", std::to_string(size).c_str());
  if (call.failure()) return failed(*call.failure());
  const Shared state = stateOf(native_);
  if (!state) return failed(kInvalidHandle);
  if (!state->link) return failed(kNotConnected);
  Stream& stream = state->out();
  if (stream.readerGone) return failed(kConnectionReset);
  const std::uint32_t count = sockets().shortSend > 0 ? std::min(size, sockets().shortSend) : size;
  sockets().shortSend = 0;
  const char* const bytes = static_cast<const char*>(data);
  stream.bytes.insert(stream.bytes.end(), bytes, bytes + count);
  Call::notify();
  // The bytes lie in the stream already; the writer stays until what is unread fits it.
  call.wait([&] { return stream.bytes.size() <= kRoom || stream.readerGone; });
  if (stream.bytes.size() > kRoom) return failed(kConnectionReset);
  *sent = count;
  return {};
}

SocketResult Socket::Shutdown() {
  const Call call("Socket::Shutdown");
  if (call.failure()) return failed(*call.failure());
  const Shared state = stateOf(native_);
  if (!state) return failed(kInvalidHandle);
  if (!state->link) return failed(kNotConnected);
  end(*state->link);
  Call::notify();
  return {};
}

// The handle goes also when the call is told to fail: its contract wants it so.
SocketResult Socket::Close() {
  const std::uintptr_t native = Release();
  const Call call("Socket::Close");
  const Shared state = stateOf(native);
  if (state) leave(*state);
  sockets().all.erase(native);
  if (call.failure()) return failed(*call.failure());
  return state ? SocketResult{} : failed(kInvalidHandle);
}

}  // namespace kova::os

namespace kova::fake {

std::int32_t socketNumber(os::Error error) { return static_cast<std::int32_t>(error) + kSocketNumberOffset; }

void setSocketVersion(std::uint16_t version) {
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  os::sockets().version = version;
}

void limitReceives(std::uint32_t bytes) {
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  os::sockets().receiveLimit = bytes;
}

void shortNextSend(std::uint32_t bytes) {
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  os::sockets().shortSend = bytes;
}

void breakEndedStreams() {
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  os::sockets().breakEnded = true;
}

unsigned openSockets() {
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  return static_cast<unsigned>(os::sockets().all.size());
}

void closeSocketsOf(const ProcessState& process) {
  auto& all = os::sockets().all;
  for (auto entry = all.begin(); entry != all.end();) {
    if (entry->second->owner.get() != &process) {
      ++entry;
      continue;
    }
    os::leave(*entry->second);
    entry = all.erase(entry);
  }
}

void resetSockets() {
  os::sockets().version = os::kSocketVersion;
  os::sockets().receiveLimit = 0;
  os::sockets().shortSend = 0;
  os::sockets().breakEnded = false;
}

}  // namespace kova::fake
