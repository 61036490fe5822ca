// What the exchange over pipes and the one over the socket share: how a message is cut for sending, and what becomes of
// one that was received whole or in part. For the sources of the exchange alone.
#ifndef KOVADX_TRANSPORT_MESSAGE_PARTS_H
#define KOVADX_TRANSPORT_MESSAGE_PARTS_H

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "message/CleXDSmb.h"

namespace kova {

constexpr int kSmallestMessage = 52;
constexpr int kMessageHeader = 12;  // Total length, command action, error code.

// The most that goes out in one piece.
constexpr int kMessageChunk = 8192;

// Writes head and block as one run of bytes in full chunks, by write(bytes, length), until that gives a result other
// than 0. Each chunk goes out from where it lies; only the one that spans both is put together first.
template <class Write>
int writePieces(const WirePieces& pieces, Write write) {
  if (pieces.blockLength <= 0) return write(pieces.head, pieces.headLength);

  const int tail = pieces.headLength % kMessageChunk;
  const int whole = pieces.headLength - tail;
  if (whole > 0) {
    const int result = write(pieces.head, whole);
    if (result != 0) return result;
  }
  const int joined = tail == 0 ? 0 : std::min(kMessageChunk - tail, pieces.blockLength);
  if (tail > 0) {
    char chunk[kMessageChunk];
    std::memcpy(chunk, pieces.head + whole, static_cast<std::size_t>(tail));
    std::memcpy(chunk + tail, pieces.block, static_cast<std::size_t>(joined));
    const int result = write(chunk, tail + joined);
    if (result != 0) return result;
  }
  if (joined == pieces.blockLength) return 0;
  return write(pieces.block + joined, pieces.blockLength - joined);
}

// The result of a message that was put together; only memory can have failed.
int parsed(int parseResult, const CleXDSmb& message, int* transportStatus);

// The result of a message of which the first `received` bytes of `total` came; *transportStatus tells why not all did.
//
// Deliberate: a message cut short is parsed all the same, zeros in place of what is missing, and its own error code is
// the result; only the transport's status tells. Without an error code the transport's status is the result too.
int parseCutMessage(CleXDSmb& message, const char* data, int received, int total, int* transportStatus);

}  // namespace kova

#endif
