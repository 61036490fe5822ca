#include "transport/message_exchange.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <exception>
#include <utility>

#include "message/CleXDSmb.h"
#include "message/block.h"
#include "platform/os/error.h"
#include "transport/KovaPipe.h"
#include "transport/message_parts.h"

namespace os = kova::os;

namespace {

static_assert(kova::kMessageChunk == kova::kPipeChunk);

constexpr int status(os::Error error) { return static_cast<int>(error); }

// One read of what a message is made of. *read is above 0 exactly when the result is 0; *more tells that the pipe
// message goes on.
int readChunk(KovaPipe* pipe, void* place, int size, int* read, bool* more) {
  unsigned long count = 0;
  const int result = pipe->ReadData(size, place, count);
  *more = result == status(os::kMoreData);
  *read = static_cast<int>(count);
  if (result != 0 && !*more) return result;
  return count == 0 ? kova::kPipeEmptyRead : 0;
}

// Takes what is left of a pipe message out of the pipe, so that the next message begins at its own first byte.
void dropRest(KovaPipe* pipe, bool more) {
  char rest[kova::kPipeChunk];
  for (int read = 0; more;) {
    if (readChunk(pipe, rest, kova::kPipeChunk, &read, &more) != 0) return;
  }
}

// Receives a message whose first `received` bytes lie in `first`, and which is `total` bytes long.
int receiveRest(KovaPipe* pipe, CleXDSmb& message, const char* first, int received, int total, int* transportStatus) {
  kova::Block block = kova::Block::take(static_cast<std::size_t>(total));
  char* data = block.data();
  if (data == nullptr) return *transportStatus = status(os::kNotEnoughMemory);
  std::memcpy(data, first, static_cast<std::size_t>(received));

  bool more = false;
  while (received < total) {
    int read = 0;
    const int size = std::min(kova::kPipeChunk, total - received);
    *transportStatus = readChunk(pipe, data + received, size, &read, &more);
    if (*transportStatus != 0) break;
    received += read;
  }
  if (*transportStatus == 0 && more) {  // The last pipe message steps over the stated length.
    dropRest(pipe, more);
    return *transportStatus = status(os::kInvalidData);
  }
  if (received < total) return kova::parseCutMessage(message, data, received, total, transportStatus);
  return kova::parsed(message.AdoptReceived(std::move(block), total), message, transportStatus);
}

int receive(KovaPipe* pipe, CleXDSmb& message, int* transportStatus) {
  char first[kova::kPipeChunk];
  int received = 0;
  bool more = false;
  *transportStatus = readChunk(pipe, first, kova::kPipeChunk, &received, &more);
  if (*transportStatus != 0) return *transportStatus;

  std::int32_t total = 0;
  if (received >= static_cast<int>(sizeof total)) std::memcpy(&total, first, sizeof total);
  const bool surplus = more && received == total;
  if (total < kova::kSmallestMessage || total < received || surplus) {
    dropRest(pipe, more);
    return *transportStatus = status(os::kInvalidData);
  }
  if (received < total) return receiveRest(pipe, message, first, received, total, transportStatus);
  return kova::parsed(message.ParseBuf(first, received), message, transportStatus);
}

}  // namespace

int SendData(KovaPipe* pipe, CleXDSmb& message) try {
  const kova::WirePieces pieces = message.BuildPieces();
  if (pieces.head == nullptr) return status(os::kNotEnoughMemory);
  const int result = kova::writePieces(
      pieces, [pipe](const char* bytes, int length) { return pipe->WriteData(bytes, length, nullptr); });
  if (result == 0) message.CleanUp();
  return result;
} catch (const std::exception&) {
  return status(os::kNotEnoughMemory);
}

int SendData(KovaPipe* pipe, CleXDSmb& message, bool serverSide) {
  if (!serverSide) {
    if (!pipe->HasPipe()) {
      const int opened = pipe->KOVACreateFile();
      if (opened != 0) return opened;
    }
    const int changed = pipe->ChangeReadMode();
    if (changed != 0) {
      pipe->ClosePipe();
      return changed;
    }
  }
  return SendData(pipe, message);
}

int ReceiveData(KovaPipe* pipe, CleXDSmb& message) {
  int transportStatus = 0;
  return kova::ReceiveMessage(pipe, message, &transportStatus);
}

int ReceiveData(KovaPipe* pipe, CleXDSmb& message, bool serverSide) {
  if (!serverSide && !pipe->HasPipe()) {
    const int opened = pipe->KOVACreateFile();
    if (opened != 0) return opened;
  }
  return ReceiveData(pipe, message);
}

int kova::ReceiveMessage(KovaPipe* pipe, CleXDSmb& message, int* transportStatus) try {
  return receive(pipe, message, transportStatus);
} catch (const std::exception&) {
  return *transportStatus = status(os::kNotEnoughMemory);
}
