#include "message/LongData.h"

#include <cassert>

#include "message/item_image.h"

void* LongData::ConstructData(int& length) {
  char* const bytes = kova::buildImage(*this, image_, imageLength_);
  length = imageLength_;
  return bytes;
}

void LongData::ParseData(const void* source, int& consumed) { consumed = kova::parseImage(*this, source); }

int LongData::DataLength() {
  imageLength_ = kova::imageLength(*this);
  return imageLength_;
}

void LongData::AppendValue(const std::vector<int>& values) { values_.append(values.data(), values.size()); }

int& LongData::operator[](int index) {
  assert(index >= 0 && index < Size());
  return values_[static_cast<std::size_t>(index)];
}

const int& LongData::operator[](int index) const {
  assert(index >= 0 && index < Size());
  return values_[static_cast<std::size_t>(index)];
}

std::int64_t LongData::wireLength() const {
  return std::int64_t{sizeof(std::int32_t)} + static_cast<std::int64_t>(values_.size() * sizeof(int));
}

void LongData::write(kova::ByteWriter& writer) const {
  writer.putCount(values_.size());
  writer.put(values_.data(), values_.size() * sizeof(int));
}

bool LongData::read(kova::ByteReader& reader) {
  std::int32_t count = 0;
  if (!reader.readCount(sizeof(int), count)) return false;
  int* const place = values_.grow(static_cast<std::size_t>(count));
  return reader.read(place, std::int64_t{count} * std::int64_t{sizeof(int)});
}
