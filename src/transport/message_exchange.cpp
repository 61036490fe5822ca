#include "transport/message_exchange.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <utility>

#include "message/CleXDSmb.h"
#include "message/block.h"
#include "platform/os/error.h"
#include "transport/KovaPipe.h"

namespace os = kova::os;

namespace {

constexpr int kSmallestMessage = 52;
constexpr int kHeader = 12;  // Total length, command action, error code.

constexpr int status(os::Error error) { return static_cast<int>(error); }

// Writes head and block as one run of bytes in full chunks. Each chunk goes out from where it lies; only the one that
// spans both is put together first.
int writePieces(KovaPipe* pipe, const kova::WirePieces& pieces) {
  if (pieces.blockLength <= 0) return pipe->WriteData(pieces.head, pieces.headLength, nullptr);

  const int tail = pieces.headLength % kova::kPipeChunk;
  const int whole = pieces.headLength - tail;
  if (whole > 0) {
    const int result = pipe->WriteData(pieces.head, whole, nullptr);
    if (result != 0) return result;
  }
  const int joined = tail == 0 ? 0 : std::min(kova::kPipeChunk - tail, pieces.blockLength);
  if (tail > 0) {
    char chunk[kova::kPipeChunk];
    std::memcpy(chunk, pieces.head + whole, static_cast<std::size_t>(tail));
    std::memcpy(chunk + tail, pieces.block, static_cast<std::size_t>(joined));
    const int result = pipe->WriteData(chunk, tail + joined, nullptr);
    if (result != 0) return result;
  }
  if (joined == pieces.blockLength) return 0;
  return pipe->WriteData(pieces.block + joined, pieces.blockLength - joined, nullptr);
}

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

// The result of a message that was put together; only memory can have failed.
int parsed(int parseResult, const CleXDSmb& message, int* transportStatus) {
  if (parseResult != 0) return *transportStatus = parseResult;
  return message.GetErrorCode();
}

// Deliberate: a message cut short is parsed all the same, zeros in place of what is missing, and its own error code is
// the result; only the transport's status tells. Without an error code the transport's status is the result too.
int parseCutMessage(CleXDSmb& message, const char* data, int received, int total, int* transportStatus) {
  if (received < kHeader) return *transportStatus;
  // The stated length may be a lie. Memory that comes zeroed from the system costs nothing where nobody touches it.
  void* zeroed = std::calloc(1, static_cast<std::size_t>(total));
  if (zeroed == nullptr) return *transportStatus = status(os::kNotEnoughMemory);
  std::memcpy(zeroed, data, static_cast<std::size_t>(received));
  kova::Block block = kova::Block::adopt(zeroed, static_cast<std::size_t>(total));
  return parsed(message.AdoptReceived(std::move(block), received), message, transportStatus);
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
  if (received < total) return parseCutMessage(message, data, received, total, transportStatus);
  return parsed(message.AdoptReceived(std::move(block), total), message, transportStatus);
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
  if (total < kSmallestMessage || total < received || surplus) {
    dropRest(pipe, more);
    return *transportStatus = status(os::kInvalidData);
  }
  if (received < total) return receiveRest(pipe, message, first, received, total, transportStatus);
  return parsed(message.ParseBuf(first, received), message, transportStatus);
}

}  // namespace

int SendData(KovaPipe* pipe, CleXDSmb& message) try {
  const kova::WirePieces pieces = message.BuildPieces();
  if (pieces.head == nullptr) return status(os::kNotEnoughMemory);
  const int result = writePieces(pipe, pieces);
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
