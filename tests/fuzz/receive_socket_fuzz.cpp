// Feeds a foreign stream to ReceiveData over the socket of the in-memory backend, whose pauses take no time.
//
// The low half of the first byte is the most that one read gives (0: no limit). When all bits of its high half are set
// the peer closes in the end; otherwise it breaks off, which is noticed much sooner. The rest is the stream. Where a
// message begins in it, a claimed total length is brought below 1 MiB, so that the fuzzer does not spend its time on
// clearing memory.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "message/CleXDSmb.h"
#include "platform/os/socket.h"
#include "tests/os_fake/os_fake.h"
#include "transport/JavaPlugInSocket.h"
#include "transport/message_exchange.h"

namespace {

namespace os = kova::os;

constexpr std::size_t kMostBytes = 60000;  // What the stream takes in before anyone reads.
constexpr std::int32_t kSmallestMessage = 52;
constexpr std::int32_t kMostClaimed = 1 << 20;

void require(bool condition) {
  if (!condition) std::abort();
}

void tameClaims(std::string& stream) {
  std::int32_t claimed = 0;
  for (std::size_t at = 0; stream.size() - at >= sizeof claimed; at += static_cast<std::size_t>(claimed)) {
    std::memcpy(&claimed, stream.data() + at, sizeof claimed);
    if (claimed > kMostClaimed) claimed %= kMostClaimed;
    std::memcpy(stream.data() + at, &claimed, sizeof claimed);
    if (claimed < kSmallestMessage || static_cast<std::size_t>(claimed) > stream.size() - at) return;
  }
}

// Every receive ends, and its result and its status fit each other.
bool receiveOne(JavaPlugInSocket& socket) {
  CleXDSmb message;
  int status = -1;
  const int result = kova::ReceiveMessage(&socket, message, &status);
  require(status == 0 || status == 99122 || status == 8);
  require(result == status || (status != 8 && result == message.GetErrorCode()));
  return status == 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0 || size > kMostBytes) return -1;
  kova::fake::reset();
  kova::fake::limitReceives(data[0] & 0x0F);
  if (data[0] < 0xF0) kova::fake::breakEndedStreams();
  JavaPlugInSocket socket;
  require(socket.CreateSocket() == 0);
  os::Socket peer;
  require(!os::Socket::Open(&peer).failed());
  require(!peer.Connect(os::kLoopbackAddress, static_cast<std::uint16_t>(socket.GetSocketPort())).failed());
  require(socket.AcceptSocket() == 0);
  std::string stream(reinterpret_cast<const char*>(data + 1), size - 1);
  tameClaims(stream);
  std::uint32_t sent = 0;
  require(!peer.Send(stream.data(), static_cast<std::uint32_t>(stream.size()), &sent).failed());
  peer.Close();
  std::size_t received = 0;
  while (receiveOne(socket)) require(++received <= size / std::size_t{kSmallestMessage});
  require(socket.CloseSocket() == 0);
  return 0;
}
