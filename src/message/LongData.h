// A list of 32-bit integers.
//
// Owned and used as `DataType` says.
#ifndef KOVADX_MESSAGE_LONGDATA_H
#define KOVADX_MESSAGE_LONGDATA_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "message/DataType.h"
#include "message/plain_list.h"

namespace kova {
class ByteReader;
class ByteWriter;
}  // namespace kova

class KOVADX_API LongData : public DataType {
 public:
  using Values = kova::PlainList<int>;

  void* ConstructData(int& length) override;
  void ParseData(const void* source, int& consumed) override;
  int DataLength() override;
  int Size() const override { return static_cast<int>(values_.size()); }

  void SetValue(int value) { values_.push_back(value); }
  void AppendValue(const std::vector<int>& values);
  std::vector<int> GetData() const { return {values_.begin(), values_.end()}; }
  // `index` is 0-based and must be below Size().
  int& operator[](int index);
  const int& operator[](int index) const;
  void CleanUp() { values_.clear(); }
  // The values where they lie, valid until the list changes.
  const Values& values() const { return values_; }

  // The encoder's and the decoder's side. `read` appends what fits and is false when the bytes ended early.
  std::int64_t wireLength() const;
  void write(kova::ByteWriter& writer) const;
  bool read(kova::ByteReader& reader);

 private:
  Values values_;
};

#endif
