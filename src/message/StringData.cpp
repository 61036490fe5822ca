#include "message/StringData.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "message/item_image.h"

namespace {

constexpr std::int64_t kLengthField = 4;

// Appends `count` strings, or those before the bytes ended.
bool readStrings(kova::ByteReader& reader, std::size_t count, StringData::Values& values) {
  for (std::size_t i = 0; i < count; ++i) {
    const char* bytes = nullptr;
    std::int32_t length = 0;
    if (!reader.hasArrived() || !reader.readText(bytes, length)) return false;
    values.emplace_back(bytes, static_cast<std::size_t>(length));
  }
  return true;
}

}  // namespace

// The count goes with the bytes that it counts.
StringData::StringData(StringData&& other) noexcept
    : DataType(static_cast<DataType&&>(other)),
      values_(std::move(other.values_)),
      waiting_(std::move(other.waiting_)),
      waitingCount_(std::exchange(other.waitingCount_, 0)) {}

StringData& StringData::operator=(StringData&& other) noexcept {
  if (this == &other) return *this;
  DataType::operator=(static_cast<DataType&&>(other));
  values_ = std::move(other.values_);
  waiting_ = std::move(other.waiting_);
  waitingCount_ = std::exchange(other.waitingCount_, 0);
  return *this;
}

void* StringData::ConstructData(int& length) {
  char* const bytes = kova::buildImage(*this, image_, imageLength_);
  length = imageLength_;
  return bytes;
}

void StringData::ParseData(const void* source, int& consumed) { consumed = kova::parseImage(*this, source); }

int StringData::DataLength() {
  imageLength_ = kova::imageLength(*this);
  return imageLength_;
}

void StringData::SetValue(const char* text) {
  if (text != nullptr) add(text, std::strlen(text));
}

void StringData::SetValue(const char* text, int length) {
  if (text != nullptr) add(text, static_cast<std::size_t>(std::max(length, 0)));
}

void StringData::SetValue(const std::string& text) { add(text.data(), text.size()); }

void StringData::add(const char* bytes, std::size_t length) {
  if (length > std::numeric_limits<std::int32_t>::max()) throw std::bad_alloc();
  kova::ByteWriter writer(waiting_.grow(kLengthField + length));
  writer.putText(bytes, length);
  ++waitingCount_;
}

void StringData::SetSingleString(const char* text) {
  // Made before the list is emptied: the text may be one of the list's own.
  StringData single;
  single.SetValue(text);
  *this = std::move(single);
}

std::string StringData::GetSingleString() const { return count() > 0 ? values().front() : std::string(); }

std::string& StringData::operator[](int index) {
  assert(index >= 0 && index < Size());
  if (waitingCount_ > 0) settle();
  return values_[static_cast<std::size_t>(index)];
}

const std::string& StringData::operator[](int index) const {
  assert(index >= 0 && index < Size());
  return values()[static_cast<std::size_t>(index)];
}

void StringData::CleanUp() {
  values_.clear();
  waiting_.clear();
  waitingCount_ = 0;
}

const StringData::Values& StringData::values() const {
  if (waitingCount_ > 0) settle();
  return values_;
}

// Makes string objects of the waiting strings.
void StringData::settle() const {
  const std::size_t settled = values_.size();
  kova::ByteReader reader(waiting_.data(), static_cast<std::int64_t>(waiting_.size()));
  try {
    values_.reserve(settled + waitingCount_);
    readStrings(reader, waitingCount_, values_);
  } catch (...) {
    values_.resize(settled);
    throw;
  }
  waiting_.clear();
  waitingCount_ = 0;
}

std::int64_t StringData::wireLength() const {
  std::int64_t length = kLengthField + static_cast<std::int64_t>(waiting_.size());
  for (const std::string& value : values_) length += kLengthField + static_cast<std::int64_t>(value.size());
  return length;
}

void StringData::write(kova::ByteWriter& writer) const {
  writer.putCount(count());
  for (const std::string& value : values_) writer.putText(value.data(), value.size());
  writer.put(waiting_.data(), waiting_.size());
}

bool StringData::read(kova::ByteReader& reader) {
  std::int32_t count = 0;
  if (!reader.readCount(kLengthField, count)) return false;
  if (waitingCount_ > 0) settle();
  values_.reserve(values_.size() + reader.likely(count, kLengthField));
  return readStrings(reader, static_cast<std::size_t>(count), values_);
}
