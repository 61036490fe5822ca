// Any bytes as a received message: by each road into the decoder, then out again.
//
// What was parsed must be whole enough to be sent, and what is sent must read back as the same message.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "message/CleXDSmb.h"

namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

std::string imageOf(CleXDSmb& message) {
  require(message.ContructSendData() == 0);
  int length = 0;
  const char* const bytes = message.GetSendBuf(length);
  return {bytes, static_cast<std::size_t>(length)};
}

void requireSameAfterATrip(CleXDSmb& message) {
  const std::string sent = imageOf(message);
  const kova::WirePieces pieces = message.BuildPieces();
  std::string joined(pieces.head, static_cast<std::size_t>(pieces.headLength));
  if (pieces.blockLength > 0) joined.append(pieces.block, static_cast<std::size_t>(pieces.blockLength));
  require(joined == sent);
  CleXDSmb received;
  require(received.ParseBuf(sent.data(), static_cast<int>(sent.size())) == 0);
  require(imageOf(received) == sent);
}

// The bytes in a block of exactly their size, so that every read beyond them is seen.
kova::Block exactBlock(const std::uint8_t* data, std::size_t size) {
  kova::Block block = kova::Block::take(size);
  if (size > 0) std::memcpy(block.data(), data, size);
  return block;
}

// The void data without a copy, and the last part of the buffer not arrived.
void adopt(const std::uint8_t* data, std::size_t size, std::size_t arrived) {
  CleXDSmb message;
  kova::Block block = exactBlock(data, size);
  if (arrived < size) std::memset(block.data() + arrived, 0, size - arrived);
  require(message.AdoptReceived(std::move(block), static_cast<int>(arrived)) == 0);
  requireSameAfterATrip(message);
}

void parseBounded(const std::uint8_t* data, std::size_t size) {
  const kova::Block exact = exactBlock(data, size);
  CleXDSmb message;
  require(message.ParseBuf(exact.data(), static_cast<int>(size)) == 0);
  // A second time into the same message: the lists grow, the blocks are replaced.
  require(message.ParseBuf(exact.data(), static_cast<int>(size)) == 0);
  requireSameAfterATrip(message);
}

void parseByFirstField(const std::uint8_t* data, std::size_t size) {
  std::int32_t total = 0;
  if (size < sizeof total) return;
  std::memcpy(&total, data, sizeof total);
  if (total > static_cast<std::int64_t>(size)) return;
  const kova::Block exact = exactBlock(data, size);
  CleXDSmb message;
  require(message.ParseBuf(exact.data()) == 0);
  requireSameAfterATrip(message);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  parseBounded(data, size);
  parseByFirstField(data, size);
  adopt(data, size, size);
  adopt(data, size, size / 2);
  return 0;
}
