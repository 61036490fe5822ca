#include "message/StructData.h"

#include <cassert>
#include <utility>

#include "message/item_image.h"

namespace {

// Two text lengths, three integers and a double: what a record takes without its texts.
constexpr std::int64_t kSmallestRecord = 28;

bool readText(kova::ByteReader& reader, std::string& text) {
  const char* bytes = nullptr;
  std::int32_t length = 0;
  if (!reader.readText(bytes, length)) return false;
  text.assign(bytes, static_cast<std::size_t>(length));
  return true;
}

bool readRecord(kova::ByteReader& reader, dataSet& record) {
  return readText(reader, record.datasetName) && reader.readInt(record.caseIndex) && reader.readInt(record.varIndex) &&
         reader.readInt(record.valueKind) && reader.readDouble(record.numValue) && readText(reader, record.strValue);
}

}  // namespace

void* StructData::ConstructData(int& length) {
  char* const bytes = kova::buildImage(*this, image_, imageLength_);
  length = imageLength_;
  return bytes;
}

void StructData::ParseData(const void* source, int& consumed) { consumed = kova::parseImage(*this, source); }

int StructData::DataLength() {
  imageLength_ = kova::imageLength(*this);
  return imageLength_;
}

dataSet& StructData::operator[](int index) {
  assert(index >= 0 && index < Size());
  return values_[static_cast<std::size_t>(index)];
}

const dataSet& StructData::operator[](int index) const {
  assert(index >= 0 && index < Size());
  return values_[static_cast<std::size_t>(index)];
}

std::int64_t StructData::wireLength() const {
  std::int64_t length = sizeof(std::int32_t);
  for (const dataSet& value : values_) {
    length += kSmallestRecord + static_cast<std::int64_t>(value.datasetName.size() + value.strValue.size());
  }
  return length;
}

void StructData::write(kova::ByteWriter& writer) const {
  writer.putCount(values_.size());
  for (const dataSet& value : values_) {
    writer.putText(value.datasetName.data(), value.datasetName.size());
    writer.putInt(value.caseIndex);
    writer.putInt(value.varIndex);
    writer.putInt(value.valueKind);
    writer.putDouble(value.numValue);
    writer.putText(value.strValue.data(), value.strValue.size());
  }
}

bool StructData::read(kova::ByteReader& reader) {
  std::int32_t count = 0;
  if (!reader.readCount(kSmallestRecord, count)) return false;
  values_.reserve(values_.size() + reader.likely(count, kSmallestRecord));
  for (std::int32_t i = 0; i < count; ++i) {
    dataSet value;
    if (!reader.hasArrived() || !readRecord(reader, value)) return false;
    values_.push_back(std::move(value));
  }
  return true;
}
