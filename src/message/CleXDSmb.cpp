#include "message/CleXDSmb.h"

#include <algorithm>
#include <cstring>

template <typename Change>
void CleXDSmb::guarded(Change change) {
  try {
    change();
  } catch (...) {
    outOfMemory_ = true;
  }
}

void CleXDSmb::SetLong(long value) {
  // Deliberate: an integer has 32 bits on the wire, whatever the platform's long has.
  guarded([&] { longs_.SetValue(static_cast<std::int32_t>(value)); });
}

void CleXDSmb::SetDouble(double value) {
  guarded([&] { doubles_.SetValue(value); });
}

void CleXDSmb::SetString(const char* text) {
  guarded([&] { strings_.SetValue(text); });
}

void CleXDSmb::SetString(const char* text, int length) {
  guarded([&] { strings_.SetValue(text, length); });
}

void CleXDSmb::SetString(const std::string& text) {
  guarded([&] { strings_.SetValue(text); });
}

void CleXDSmb::SetSingleString(const char* text) {
  guarded([&] { strings_.SetSingleString(text); });
}

void CleXDSmb::SetStruct(const dataSet& record) {
  guarded([&] { structs_.SetValue(record); });
}

void CleXDSmb::SetStruct(const std::vector<dataSet>& records) {
  guarded([&] { structs_.AssignValue(records); });
}

void CleXDSmb::SetLongArray(const LongData& list) {
  guarded([&] { longArrays_.push_back(list); });
}

void CleXDSmb::SetLongArray(const std::vector<LongData>& lists) {
  guarded([&] { longArrays_ = lists; });
}

void CleXDSmb::SetDoubleArray(const DoubleData& list) {
  guarded([&] { doubleArrays_.push_back(list); });
}

void CleXDSmb::SetDoubleArray(const std::vector<DoubleData>& lists) {
  guarded([&] { doubleArrays_ = lists; });
}

void CleXDSmb::SetStringArray(const StringData& list) {
  guarded([&] { stringArrays_.push_back(list); });
}

void CleXDSmb::SetStringArray(const std::vector<StringData>& lists) {
  guarded([&] { stringArrays_ = lists; });
}

void CleXDSmb::SetBinaryString(const char* data, int length) {
  const int held = std::max(length, 0);
  binaryLength_ = 0;
  binaryIsOutgoing_ = false;
  if (data == nullptr) return binary_.release();
  char* const bytes = binary_.resize(static_cast<std::size_t>(held));
  if (bytes == nullptr) {
    outOfMemory_ = true;
    return;
  }
  std::memmove(bytes, data, static_cast<std::size_t>(held));
  binaryLength_ = held;
  binaryIsOutgoing_ = true;
}

void CleXDSmb::SetwString(const wchar_t* text) {
  if (text == nullptr) return wide_.release();
  guarded([&] {
    const auto units = kova::wideUnits(text);
    holdWide(units.data(), units.size());
  });
}

void CleXDSmb::SetwString(const char16_t* text) {
  if (text == nullptr) return wide_.release();
  holdWide(text, std::char_traits<char16_t>::length(text));
}

void CleXDSmb::holdWide(const void* units, std::size_t count) {
  const std::size_t length = count * sizeof(kova::WideUnit);
  char* const bytes = wide_.resize(length + sizeof(kova::WideUnit));
  if (bytes == nullptr) {
    outOfMemory_ = true;
    return;
  }
  if (length > 0) std::memmove(bytes, units, length);
  std::memset(bytes + length, 0, sizeof(kova::WideUnit));
}

void CleXDSmb::SetVoidData(void* data, int length) { voidData_.adopt(data, length); }

void CleXDSmb::AllocVoidData(int size) {
  if (!voidData_.allocate(size)) outOfMemory_ = true;
}

void CleXDSmb::SaveDataIntoVoidData(const void* data, int n) { voidData_.append(data, n); }

void CleXDSmb::BorrowVoidData(const void* data, int length) { voidData_.borrow(data, length); }

kova::WideUnit* CleXDSmb::GetwStringData() const {
  return static_cast<kova::WideUnit*>(static_cast<void*>(wide_.data()));
}

void* CleXDSmb::GetVoidData(int& length) const {
  length = voidData_.length();
  return voidData_.data();
}

int CleXDSmb::FirstLong() const { return longs_.values().empty() ? 0 : longs_.values().front(); }

double CleXDSmb::FirstDouble() const { return doubles_.values().empty() ? 0.0 : doubles_.values().front(); }

const char* CleXDSmb::FirstString() const { return strings_.Size() > 0 ? strings_.values().front().c_str() : ""; }

void CleXDSmb::CleanUpAllData() {
  longs_.CleanUp();
  doubles_.CleanUp();
  strings_.CleanUp();
  structs_.CleanUp();
  longArrays_.clear();
  doubleArrays_.clear();
  stringArrays_.clear();
  voidData_.release();
  binary_.release();
  // The recorded length goes with the bytes: a length without bytes would shift every field behind it.
  binaryLength_ = 0;
  binaryIsOutgoing_ = false;
  outOfMemory_ = false;
}

void CleXDSmb::CleanUp() {
  sendBuffer_.release();
  wide_.release();
  CleanUpAllData();
  sendLength_ = 0;
}
