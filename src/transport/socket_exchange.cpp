// The message exchange over the socket.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <exception>
#include <utility>

#include "message/CleXDSmb.h"
#include "message/JavaExtensionSmb.h"
#include "message/block.h"
#include "platform/os/clock.h"
#include "platform/os/error.h"
#include "transport/JavaPlugInSocket.h"
#include "transport/message_exchange.h"
#include "transport/message_parts.h"

namespace os = kova::os;

namespace {

static_assert(kova::kMessageChunk == kova::kSocketChunk);

constexpr int kNoMemory = static_cast<int>(os::kNotEnoughMemory);

// A stream that has ended gives empty reads for ever; that many in a row, so far apart, are the end.
constexpr int kMostEmptyReads = 100;
constexpr std::uint32_t kEmptyReadPauseMs = 10;

// Reads until `wanted` bytes lie in the place, of which `*received` lie there already.
int readExactly(JavaPlugInSocket* socket, char* place, int wanted, int* received) {
  for (int emptyReads = 0; *received < wanted;) {
    unsigned long count = 0;
    const int result = socket->ReadData(place + *received, std::min(kova::kSocketChunk, wanted - *received), count);
    if (result != 0) return result;
    *received += static_cast<int>(count);
    emptyReads = count == 0 ? emptyReads + 1 : 0;
    if (emptyReads == kMostEmptyReads) return kova::kSocketBroken;
    if (emptyReads > 0) os::SleepMs(kEmptyReadPauseMs);
  }
  return 0;
}

int receive(JavaPlugInSocket* socket, CleXDSmb& message, int* transportStatus) {
  // The length is collected whole before it is believed, and nothing behind the message is read: the next one may be
  // there already.
  std::int32_t total = 0;
  char first[sizeof total];
  int received = 0;
  *transportStatus = readExactly(socket, first, sizeof first, &received);
  if (*transportStatus != 0) return *transportStatus;
  std::memcpy(&total, first, sizeof total);
  if (total < kova::kSmallestMessage) return *transportStatus = kova::kSocketBroken;

  kova::Block block = kova::Block::take(static_cast<std::size_t>(total));
  char* data = block.data();
  if (data == nullptr) return *transportStatus = kNoMemory;
  std::memcpy(data, first, sizeof first);
  *transportStatus = readExactly(socket, data, total, &received);
  if (received < total) return kova::parseCutMessage(message, data, received, total, transportStatus);
  return kova::parsed(message.AdoptReceived(std::move(block), total), message, transportStatus);
}

}  // namespace

int SendData(JavaPlugInSocket* socket, CleXDSmb& message) try {
  const kova::WirePieces pieces = message.BuildPieces();
  if (pieces.head == nullptr) return kNoMemory;
  unsigned long written = 0;
  const int result = kova::writePieces(
      pieces, [&](const char* bytes, int length) { return socket->WriteData(bytes, length, written); });
  if (result == 0) message.CleanUp();
  return result;
} catch (const std::exception&) {
  return kNoMemory;
}

int ReceiveData(JavaPlugInSocket* socket, CleXDSmb& message) {
  int transportStatus = 0;
  return kova::ReceiveMessage(socket, message, &transportStatus);
}

int SendData(JavaPlugInSocket* socket, JavaExtensionSmb& record) {
  int length = 0;
  const char* const bytes = record.GetSendBuf(length);
  unsigned long written = 0;
  const int result = socket->WriteData(bytes, length, written);
  if (result == 0) record.CleanUp();
  return result;
}

int ReceiveData(JavaPlugInSocket*, JavaExtensionSmb&) { return 0; }

int kova::ReceiveMessage(JavaPlugInSocket* socket, CleXDSmb& message, int* transportStatus) try {
  return receive(socket, message, transportStatus);
} catch (const std::exception&) {
  return *transportStatus = kNoMemory;
}
