// Message images for the tests of the exchange, whole and spoilt.
#ifndef KOVADX_TESTS_TRANSPORT_EXCHANGE_IMAGES_H
#define KOVADX_TESTS_TRANSPORT_EXCHANGE_IMAGES_H

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "message/CleXDSmb.h"

namespace kova {

// What a message is on the wire; empty when it can not be serialised.
inline std::string imageOf(CleXDSmb& message) {
  if (message.ContructSendData() != 0) return {};
  int length = 0;
  const char* bytes = message.GetSendBuf(length);
  return {bytes, static_cast<std::size_t>(length)};
}

// The image of a message with that error code, brought to a total length of 52, or 56 and more, by one string.
inline std::string imageOfLength(int total, int errorCode) {
  CleXDSmb message;
  message.SetErrorCode(errorCode);
  if (total > 52) message.SetString(std::string(static_cast<std::size_t>(total - 56), 's'));
  return imageOf(message);
}

// The bytes with another total length in front.
inline std::string claiming(std::int32_t total, std::string bytes) {
  std::memcpy(bytes.data(), &total, std::min(bytes.size(), sizeof total));
  return bytes;
}

// The bytes cut into pieces of that size, the last one of what remains.
inline std::vector<std::string> inPieces(const std::string& bytes, std::size_t size) {
  std::vector<std::string> pieces;
  for (std::size_t at = 0; at < bytes.size(); at += size) pieces.push_back(bytes.substr(at, size));
  return pieces;
}

}  // namespace kova

#endif
