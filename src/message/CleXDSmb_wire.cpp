// The encoder and the decoder: the only places that know the order of a message's fields.
#include <cassert>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "message/CleXDSmb.h"
#include "message/byte_reader.h"
#include "message/byte_writer.h"

namespace {

// The Windows error number for "not enough memory", the only failure that serialising and parsing know.
constexpr int kNotEnoughMemory = 8;
constexpr std::int64_t kIntLength = CleXDSmb::LONG_LEN;
constexpr std::int64_t kUnitLength = sizeof(kova::WideUnit);
// Total length, command, error code.
constexpr std::int64_t kHeaderLength = 3 * kIntLength;

template <typename List>
std::int64_t wireLengthOf(const std::vector<List>& lists) {
  std::int64_t length = kIntLength;
  for (const List& list : lists) length += list.wireLength();
  return length;
}

template <typename List>
void writeLists(kova::ByteWriter& writer, const std::vector<List>& lists) {
  writer.putCount(lists.size());
  for (const List& list : lists) list.write(writer);
}

// A list that ends early is kept as far as it went.
template <typename List>
bool readLists(kova::ByteReader& reader, std::vector<List>& lists) {
  std::int32_t count = 0;
  if (!reader.readCount(kIntLength, count)) return false;
  lists.reserve(lists.size() + reader.likely(count, kIntLength));
  for (std::int32_t i = 0; i < count; ++i) {
    if (!reader.hasArrived() || !lists.emplace_back().read(reader)) return false;
  }
  return true;
}

}  // namespace

std::size_t CleXDSmb::wideUnitCount() const {
  return wide_.held() ? kova::wideLength(GetwStringData(), wide_.size() / sizeof(kova::WideUnit)) : 0;
}

std::int64_t CleXDSmb::headLength(std::size_t wideUnits) const {
  return kHeaderLength + longs_.wireLength() + doubles_.wireLength() + strings_.wireLength() + structs_.wireLength() +
         wireLengthOf(longArrays_) + wireLengthOf(doubleArrays_) + wireLengthOf(stringArrays_) + kIntLength +
         outgoingBinaryLength() + kIntLength + static_cast<std::int64_t>(wideUnits) * kUnitLength + kIntLength;
}

char* CleXDSmb::writeHead(bool withVoidData) {
  const std::size_t wideUnits = wideUnitCount();
  const std::int64_t head = headLength(wideUnits);
  const std::int64_t total = head + outgoingVoidLength();
  sendLength_ = 0;
  if (outOfMemory_ || total > std::numeric_limits<std::int32_t>::max()) {
    sendBuffer_.release();
    return nullptr;
  }
  char* const bytes = sendBuffer_.resize(static_cast<std::size_t>(withVoidData ? total : head));
  if (bytes == nullptr) return nullptr;
  kova::ByteWriter writer(bytes);
  writer.putInt(static_cast<std::int32_t>(total));
  writer.putInt(static_cast<std::int32_t>(action_));
  writer.putInt(errorCode_);
  longs_.write(writer);
  doubles_.write(writer);
  strings_.write(writer);
  structs_.write(writer);
  writeLists(writer, longArrays_);
  writeLists(writer, doubleArrays_);
  writeLists(writer, stringArrays_);
  writer.putText(binary_.data(), static_cast<std::size_t>(outgoingBinaryLength()));
  writer.putCount(wideUnits);
  writer.put(wide_.data(), wideUnits * sizeof(kova::WideUnit));
  writer.putInt(outgoingVoidLength());
  assert(writer.position() == bytes + head);
  sendLength_ = static_cast<std::int32_t>(total);
  return bytes + head;
}

int CleXDSmb::ContructSendData() {
  char* const end = writeHead(true);
  if (end == nullptr) return kNotEnoughMemory;
  kova::ByteWriter(end).put(voidData_.data(), static_cast<std::size_t>(outgoingVoidLength()));
  return 0;
}

kova::WirePieces CleXDSmb::BuildPieces() {
  if (writeHead(false) == nullptr) return {};
  return {sendBuffer_.data(), static_cast<int>(sendBuffer_.size()), static_cast<const char*>(voidData_.data()),
          outgoingVoidLength()};
}

char* CleXDSmb::GetSendBuf(int& length) const {
  length = sendLength_;
  if (!sendBuffer_.held()) return nullptr;
  std::int32_t total = 0;
  std::memcpy(&total, sendBuffer_.data(), sizeof total);
  const bool isWhole = sendBuffer_.size() == static_cast<std::size_t>(total);  // Not the head of pieces alone.
  length = isWhole ? total : 0;
  return isWhole ? sendBuffer_.data() : nullptr;
}

int CleXDSmb::ParseBuf(void* buffer) {
  if (buffer == nullptr) return 0;
  std::int32_t total = 0;
  std::memcpy(&total, buffer, sizeof total);
  return ParseBuf(buffer, total);
}

int CleXDSmb::ParseBuf(const void* buffer, int available) {
  if (buffer == nullptr) return 0;
  return parse(static_cast<const char*>(buffer), available, available, nullptr);
}

int CleXDSmb::AdoptReceived(kova::Block&& block, int arrived) {
  kova::Block received = std::move(block);
  if (received.data() == nullptr) return kNotEnoughMemory;
  return parse(received.data(), static_cast<std::int64_t>(received.size()), arrived, &received);
}

int CleXDSmb::parse(const char* buffer, std::int64_t available, std::int64_t arrived, kova::Block* owner) {
  kova::ByteReader reader(buffer, available, arrived);
  voidData_.release();
  try {
    const bool whole = parseHeader(reader) && longs_.read(reader) && doubles_.read(reader) && strings_.read(reader) &&
                       structs_.read(reader) && readLists(reader, longArrays_) && readLists(reader, doubleArrays_) &&
                       readLists(reader, stringArrays_);
    if (!whole) return 0;
  } catch (...) {
    return kNotEnoughMemory;
  }
  int result = 0;
  if (parseBinary(reader, result) && parseWide(reader, result)) parseVoidData(reader, owner, result);
  return result;
}

bool CleXDSmb::parseHeader(kova::ByteReader& reader) {
  std::int32_t action = 0;
  if (!reader.readInt(sendLength_) || !reader.readInt(action)) return false;
  action_ = static_cast<CommandAction>(action);
  return reader.readInt(errorCode_);
}

bool CleXDSmb::parseBinary(kova::ByteReader& reader, int& result) {
  const char* bytes = nullptr;
  std::int32_t length = 0;
  if (!reader.readText(bytes, length)) return false;
  binary_.release();
  binaryLength_ = 0;
  binaryIsOutgoing_ = false;
  if (length == 0) return true;
  const std::size_t held = static_cast<std::size_t>(length) + 1;
  char* const copy = binary_.resize(held);
  if (copy == nullptr) {
    result = kNotEnoughMemory;
    return false;
  }
  copy[length] = 0;
  std::memcpy(copy, bytes, reader.left() > 0 ? held : held - 1);
  binaryLength_ = length;
  return true;
}

bool CleXDSmb::parseWide(kova::ByteReader& reader, int& result) {
  std::int32_t units = 0;
  if (!reader.readCount(kUnitLength, units)) return false;
  wide_.release();
  if (units == 0) return true;
  const std::size_t length = static_cast<std::size_t>(units) * sizeof(kova::WideUnit);
  char* const copy = wide_.resize(length + sizeof(kova::WideUnit));
  if (copy == nullptr) {
    result = kNotEnoughMemory;
    return false;
  }
  std::memset(copy + length, 0, sizeof(kova::WideUnit));
  return reader.read(copy, static_cast<std::int64_t>(length));
}

void CleXDSmb::parseVoidData(kova::ByteReader& reader, kova::Block* owner, int& result) {
  const char* bytes = nullptr;
  std::int32_t length = 0;
  if (!reader.readText(bytes, length) || length == 0) return;
  if (owner != nullptr) {
    char* const place = owner->data() + (bytes - owner->data());
    voidData_.keepInside(std::move(*owner), place, length);
  } else if (!voidData_.copyOf(bytes, length)) {
    result = kNotEnoughMemory;
  }
}
