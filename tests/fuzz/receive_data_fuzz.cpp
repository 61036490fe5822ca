// Feeds foreign pipe messages to ReceiveData through a pipe of the platform.
//
// The input is a run of pipe messages, each preceded by its length in two bytes. A claimed total length is brought
// below 1 MiB, so that the fuzzer does not spend its time on clearing memory.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "message/CleXDSmb.h"
#include "platform/os/named_pipe.h"
#include "platform/os/process.h"
#include "transport/KovaPipe.h"
#include "transport/message_exchange.h"
#include "transport/yielding_wait.h"

namespace {

namespace os = kova::os;

constexpr std::size_t kMostBytes = 60000;  // What a socket takes in before anyone reads.
constexpr int kMostMessages = 64;
constexpr std::int32_t kMostClaimed = 1 << 20;

void require(bool condition) {
  if (!condition) std::abort();
}

// Claims beyond what can be tried quickly become smaller ones; negative and small ones stay as they are.
void tameClaim(std::string& packet) {
  std::int32_t claimed = 0;
  if (packet.size() < sizeof claimed) return;
  std::memcpy(&claimed, packet.data(), sizeof claimed);
  if (claimed > kMostClaimed) claimed %= kMostClaimed;
  std::memcpy(packet.data(), &claimed, sizeof claimed);
}

void writePackets(os::NativeHandle pipe, const std::uint8_t* data, std::size_t size) {
  std::size_t at = 0;
  for (int count = 0; count < kMostMessages && size - at >= 2; ++count) {
    std::size_t length = static_cast<std::size_t>(data[at] | data[at + 1] << 8);
    at += 2;
    if (length > size - at) length = size - at;
    std::string packet(reinterpret_cast<const char*>(data + at), length);
    at += length;
    tameClaim(packet);
    std::uint32_t written = 0;
    os::WriteMessage(pipe, packet.data(), static_cast<std::uint32_t>(length), &written);
  }
}

// Every receive ends, and its result and its status fit each other.
bool receiveOne(KovaPipe& pipe) {
  CleXDSmb message;
  int status = -1;
  const int result = kova::ReceiveMessage(&pipe, message, &status);
  const bool parsed = status == 0 || status == 99103 || status == 109;
  require(parsed || status == 13 || status == 8);
  require(result == status || (parsed && result == message.GetErrorCode()));
  return status == 0 || status == 13;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > kMostBytes) return -1;
  kova::SetYieldLimitUs(0);
  KovaPipe pipe("\\\\.\\pipe\\kova_fuzz_" + std::to_string(os::CurrentProcessId()));
  require(pipe.CreatePipe() == 0);
  os::NativeHandle peer = nullptr;
  require(os::OpenPipe(pipe.GetPipeName().c_str(), os::PipeAccess::ReadWrite, os::WhenTaken::Wait, &peer) ==
          os::kSuccess);
  writePackets(peer, data, size);
  os::ClosePipeHandle(peer);
  // At most one message a packet, and the end.
  int received = 0;
  while (receiveOne(pipe)) require(++received <= kMostMessages);
  return 0;
}
