// The C++ half of the check of the byte layout by a second implementation (wire_format_check.py).
//
//   wire_messages write FILE   writes messages one behind the other and prints what each holds
//   wire_messages read FILE    parses such a file and prints what each message holds
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

#include "message/CleXDSmb.h"
#include "message/message_test_kit.h"

namespace {

using kova::test::Bytes;

std::string hexOf(const void* data, std::size_t length) {
  static const char kDigits[] = "0123456789abcdef";
  std::string hex;
  for (std::size_t i = 0; i < length; ++i) {
    const unsigned byte = static_cast<const unsigned char*>(data)[i];
    hex += kDigits[byte >> 4];
    hex += kDigits[byte & 15];
  }
  return hex;
}

std::string textOf(int value) { return std::to_string(value); }
// The bits, so that a signed zero and a quiet NaN are told apart from others.
std::string textOf(double value) { return hexOf(&value, sizeof value); }
std::string textOf(const std::string& value) { return "'" + hexOf(value.data(), value.size()) + "'"; }
std::string textOf(const dataSet& value) {
  return "(" + textOf(value.datasetName) + " " + textOf(value.caseIndex) + " " + textOf(value.varIndex) + " " +
         textOf(value.valueKind) + " " + textOf(value.numValue) + " " + textOf(value.strValue) + ")";
}

template <typename Item>
std::string listOf(const Item& item) {
  std::string text = "[";
  for (const auto& value : item.values()) text += (text.size() > 1 ? " " : "") + textOf(value);
  return text + "]";
}

template <typename Item>
std::string listsOf(const std::vector<Item>& items) {
  std::string text = "{";
  for (const Item& item : items) text += listOf(item);
  return text + "}";
}

std::string describe(const CleXDSmb& message) {
  std::size_t units = 0;
  const kova::WideUnit* const wide = message.GetwStringData();
  while (wide != nullptr && wide[units] != 0) ++units;
  int voidLength = 0;
  const void* const block = message.GetVoidData(voidLength);
  return textOf(static_cast<int>(message.GetCommandAction())) + " " + textOf(message.GetErrorCode()) +
         listOf(message.Longs()) + listOf(message.Doubles()) + listOf(message.Strings()) + listOf(message.Structs()) +
         listsOf(message.LongArrays()) + listsOf(message.DoubleArrays()) + listsOf(message.StringArrays()) +
         hexOf(message.GetBinaryData(), static_cast<std::size_t>(message.BinaryLength())) + "|" +
         hexOf(wide, units * sizeof(kova::WideUnit)) + "|" + hexOf(block, static_cast<std::size_t>(voidLength));
}

CleXDSmb everySlotTwice() {
  CleXDSmb message;
  kova::test::fillEverySlot(message);
  message.SetCommandAction(kova::Command::SetCaseValue);
  message.SetLong(std::numeric_limits<std::int32_t>::min());
  message.SetDouble(-0.0);
  message.SetDouble(std::numeric_limits<double>::quiet_NaN());
  message.SetString("na\xC3\xAFve");
  message.SetStruct(dataSet{"", -1, 0, 0, 1e300, ""});
  message.SetDoubleArray(DoubleData());
  message.SetStringArray(StringData());
  message.SetwString(L"\U0001F600 and \u00E9");
  return message;
}

// One slot at a time, and all of them; the last one is longer than one chunk of a pipe.
std::vector<CleXDSmb> messages() {
  std::vector<CleXDSmb> made(11);
  LongData longs;
  DoubleData doubles;
  StringData strings;
  longs.AppendValue({1, 2, 3});
  doubles.SetValue(0.1);
  strings.SetValue("s");
  made[1].SetLong(-7);
  made[2].SetDouble(2.5);
  made[3].SetString("");
  made[4].SetStruct(dataSet{"d", 1, 2, 1, 0.5, "v"});
  made[5].SetLongArray(longs);
  made[6].SetDoubleArray(doubles);
  made[7].SetStringArray(strings);
  made[8].SetBinaryString("\x00\x01", 2);
  made[9].SetwString(L"wide");
  made[10].BorrowVoidData("block", 5);
  made.push_back(everySlotTwice());
  CleXDSmb large;
  for (int i = 0; i < 3000; ++i) large.SetString(std::to_string(i));
  made.push_back(large);
  return made;
}

int write(const char* path) {
  std::ofstream file(path, std::ios::binary);
  for (CleXDSmb& message : messages()) {
    const Bytes image = kova::test::imageOf(message);
    file.write(reinterpret_cast<const char*>(image.data()), static_cast<std::streamsize>(image.size()));
    std::printf("%s\n", describe(message).c_str());
  }
  return file.good() ? 0 : 1;
}

int read(const char* path) {
  std::ifstream file(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  for (std::size_t at = 0; at + 4 <= bytes.size();) {
    std::int32_t total = 0;
    std::memcpy(&total, bytes.data() + at, sizeof total);
    if (total < 52 || static_cast<std::size_t>(total) > bytes.size() - at) return 1;
    CleXDSmb message;
    if (kova::test::parse(message, Bytes(bytes.begin() + static_cast<std::ptrdiff_t>(at),
                                         bytes.begin() + static_cast<std::ptrdiff_t>(at) + total)) != 0) {
      return 1;
    }
    std::printf("%s\n", describe(message).c_str());
    at += static_cast<std::size_t>(total);
  }
  return 0;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 3) return 2;
  return std::strcmp(arguments[1], "write") == 0 ? write(arguments[2]) : read(arguments[2]);
}
