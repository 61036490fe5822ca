// A list of byte strings. The bytes are carried unchanged; a string may hold NUL bytes.
//
// Owned and used as `DataType` says. Strings that are appended wait in the form that the wire has, so that a request
// costs one copy of its bytes on its way out; the first look at the list's values makes string objects of them. That
// look changes the object, const or not, and may throw std::bad_alloc.
#ifndef KOVADX_MESSAGE_STRINGDATA_H
#define KOVADX_MESSAGE_STRINGDATA_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "message/DataType.h"
#include "message/plain_list.h"

namespace kova {
class ByteReader;
class ByteWriter;
}  // namespace kova

class KOVADX_API StringData : public DataType {
 public:
  using Values = std::vector<std::string>;

  StringData() = default;
  StringData(const StringData&) = default;
  StringData& operator=(const StringData&) = default;
  StringData(StringData&& other) noexcept;
  StringData& operator=(StringData&& other) noexcept;
  ~StringData() override = default;

  void* ConstructData(int& length) override;
  void ParseData(const void* source, int& consumed) override;
  int DataLength() override;
  int Size() const override { return static_cast<int>(count()); }

  // A null pointer appends nothing.
  void SetValue(const char* text);
  // Exactly `length` bytes; a negative length counts as 0, a null pointer appends nothing.
  void SetValue(const char* text, int length);
  void SetValue(const std::string& text);
  // Empties the list, then appends as `SetValue` does.
  void SetSingleString(const char* text);
  // The first string, or "" when the list is empty.
  std::string GetSingleString() const;
  std::vector<std::string> GetData() const { return values(); }
  // `index` is 0-based and must be below Size().
  std::string& operator[](int index);
  const std::string& operator[](int index) const;
  void CleanUp();
  // The values where they lie, valid until the list changes.
  const Values& values() const;

  // The encoder's and the decoder's side. `read` appends what fits and is false when the bytes ended early.
  std::int64_t wireLength() const;
  void write(kova::ByteWriter& writer) const;
  bool read(kova::ByteReader& reader);

 private:
  std::size_t count() const { return values_.size() + waitingCount_; }
  void add(const char* bytes, std::size_t length);
  void settle() const;

  // The list is `values_` and then the waiting strings: a byte length and the bytes of each.
  mutable Values values_;
  mutable kova::PlainList<char> waiting_;
  mutable std::size_t waitingCount_ = 0;
};

#endif
