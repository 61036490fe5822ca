#include "message/DoubleData.h"

#include <cassert>

#include "message/item_image.h"

void* DoubleData::ConstructData(int& length) {
  char* const bytes = kova::buildImage(*this, image_, imageLength_);
  length = imageLength_;
  return bytes;
}

void DoubleData::ParseData(const void* source, int& consumed) { consumed = kova::parseImage(*this, source); }

int DoubleData::DataLength() {
  imageLength_ = kova::imageLength(*this);
  return imageLength_;
}

double& DoubleData::operator[](int index) {
  assert(index >= 0 && index < Size());
  return values_[static_cast<std::size_t>(index)];
}

const double& DoubleData::operator[](int index) const {
  assert(index >= 0 && index < Size());
  return values_[static_cast<std::size_t>(index)];
}

std::int64_t DoubleData::wireLength() const {
  return std::int64_t{sizeof(std::int32_t)} + static_cast<std::int64_t>(values_.size() * sizeof(double));
}

void DoubleData::write(kova::ByteWriter& writer) const {
  writer.putCount(values_.size());
  writer.put(values_.data(), values_.size() * sizeof(double));
}

bool DoubleData::read(kova::ByteReader& reader) {
  std::int32_t count = 0;
  if (!reader.readCount(sizeof(double), count)) return false;
  double* const place = values_.grow(static_cast<std::size_t>(count));
  return reader.read(place, std::int64_t{count} * std::int64_t{sizeof(double)});
}
