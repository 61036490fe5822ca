// What the tests of this folder share: a message's bytes as a vector, and a parse of such a vector.
#ifndef KOVADX_MESSAGE_MESSAGE_TEST_KIT_H
#define KOVADX_MESSAGE_MESSAGE_TEST_KIT_H

#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "message/CleXDSmb.h"

namespace kova::test {

using Bytes = std::vector<unsigned char>;

// The bytes that the message is sent as; empty when it cannot be serialised.
inline Bytes imageOf(CleXDSmb& message) {
  int length = 0;
  if (message.ContructSendData() != 0) return {};
  const char* const bytes = message.GetSendBuf(length);
  return {bytes, bytes + length};
}

// Parses a copy of exactly the given size, so that an address checker sees every byte read beyond it.
inline int parse(CleXDSmb& message, const Bytes& bytes) {
  const Bytes exact(bytes.begin(), bytes.end());
  return message.ParseBuf(exact.data(), static_cast<int>(exact.size()));
}

// The same by the road of a received buffer of which only the first `arrived` bytes have arrived.
inline int adopt(CleXDSmb& message, const Bytes& bytes, int arrived) {
  kova::Block block = kova::Block::take(bytes.size());
  std::memset(block.data(), 0, bytes.size());
  std::memcpy(block.data(), bytes.data(), static_cast<std::size_t>(arrived));
  return message.AdoptReceived(std::move(block), arrived);
}

inline std::string_view voidDataOf(const CleXDSmb& message) {
  int length = 0;
  const void* const data = message.GetVoidData(length);
  return {static_cast<const char*>(data), static_cast<std::size_t>(length)};
}

// A message with something in every slot. Its bytes are written down in wire_golden_test.cpp.
inline void fillEverySlot(CleXDSmb& message) {
  message.SetCommandAction(kova::Command::CommitDataSet);
  message.SetErrorCode(17);
  message.SetLong(1);
  message.SetLong(-2);
  message.SetDouble(1.5);
  message.SetString("ab");
  message.SetString("");
  message.SetStruct(dataSet{"ds", 3, 4, 1, -2.0, "xyz"});
  LongData longs;
  longs.SetValue(7);
  message.SetLongArray(longs);
  message.SetLongArray(LongData());
  DoubleData doubles;
  doubles.SetValue(-0.25);
  message.SetDoubleArray(doubles);
  StringData strings;
  strings.SetValue("q\0r", 3);
  message.SetStringArray(strings);
  message.SetBinaryString("\x01\xFF\x00", 3);
  message.SetwString(L"A\u20AC");
  char block[] = {9, 8, 7, 6};
  message.AllocVoidData(4);
  message.SaveDataIntoVoidData(block, 4);
}

}  // namespace kova::test

#endif
