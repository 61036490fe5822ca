// A list of doubles.
//
// Owned and used as `DataType` says.
#ifndef KOVADX_MESSAGE_DOUBLEDATA_H
#define KOVADX_MESSAGE_DOUBLEDATA_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "message/DataType.h"
#include "message/plain_list.h"

namespace kova {
class ByteReader;
class ByteWriter;
}  // namespace kova

class KOVADX_API DoubleData : public DataType {
 public:
  using Values = kova::PlainList<double>;

  void* ConstructData(int& length) override;
  void ParseData(const void* source, int& consumed) override;
  int DataLength() override;
  int Size() const override { return static_cast<int>(values_.size()); }

  void SetValue(double value) { values_.push_back(value); }
  std::vector<double> GetData() const { return {values_.begin(), values_.end()}; }
  // `index` is 0-based and must be below Size().
  double& operator[](int index);
  const double& operator[](int index) const;
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
