// The one request and reply record: a command, an error code and a fixed set of typed slots.
//
// A message is a value owned by whoever builds or receives it; copies are deep. One thread uses a message at a time.
// The setters keep no pointer to what they are given, but for `SetVoidData` and `BorrowVoidData`. A setter that finds
// no memory leaves its slot as it was or empty and marks the message: it can then not be serialised (result 8), so that
// a request with a hole is never sent. The mark goes with `CleanUpAllData`. Getters that return copies of lists may
// throw std::bad_alloc, as copying any container may.
#ifndef KOVADX_MESSAGE_CLEXDSMB_H
#define KOVADX_MESSAGE_CLEXDSMB_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "message/DoubleData.h"
#include "message/LongData.h"
#include "message/StringData.h"
#include "message/StructData.h"
#include "message/block.h"
#include "message/commands.h"
#include "message/held_bytes.h"
#include "message/void_data.h"
#include "message/wide_text.h"

namespace kova {

// A message ready to be sent without copying its void data: first `head`, then `block`. Both stay with the message.
// `head` is null when the message cannot be serialised.
struct WirePieces {
  const char* head = nullptr;
  int headLength = 0;
  const char* block = nullptr;
  int blockLength = 0;
};

}  // namespace kova

class KOVADX_API CleXDSmb {
 public:
  using CommandAction = kova::Command;
  static constexpr int LONG_LEN = 4;

  CleXDSmb() = default;
  CleXDSmb(const CleXDSmb&) = default;
  CleXDSmb& operator=(const CleXDSmb&) = default;
  CleXDSmb(CleXDSmb&&) noexcept = default;
  CleXDSmb& operator=(CleXDSmb&&) noexcept = default;
  virtual ~CleXDSmb() = default;

  // Building a message.

  void SetCommandAction(CommandAction action) { action_ = action; }
  CommandAction GetCommandAction() const { return action_; }
  void SetErrorCode(int code) { errorCode_ = code; }
  int GetErrorCode() const { return errorCode_; }

  // Appends the low 32 bits of `value` to the scalar integers.
  void SetLong(long value);
  void SetDouble(double value);
  // A null pointer appends nothing at all, so that later strings move up one place.
  void SetString(const char* text);
  // Exactly `length` bytes, NUL bytes included; a negative length counts as 0.
  void SetString(const char* text, int length);
  void SetString(const std::string& text);
  // Empties the scalar strings, then appends.
  void SetSingleString(const char* text);
  void SetStruct(const dataSet& record);
  void SetStruct(const std::vector<dataSet>& records);

  // One list is appended; a vector of lists replaces all of them.
  void SetLongArray(const LongData& list);
  void SetLongArray(const std::vector<LongData>& lists);
  void SetDoubleArray(const DoubleData& list);
  void SetDoubleArray(const std::vector<DoubleData>& lists);
  void SetStringArray(const StringData& list);
  void SetStringArray(const std::vector<StringData>& lists);

  // Copies `length` bytes. Null means no binary string.
  void SetBinaryString(const char* data, int length);
  // Copies the text as UTF-16. Null means no wide string.
  void SetwString(const wchar_t* text);
  void SetwString(const char16_t* text);

  // Adopts a block made by malloc, to be released with free. Null or a length of 0 or less means none.
  void SetVoidData(void* data, int length);
  // Makes room for `size` bytes; the void-data length is 0 until `SaveDataIntoVoidData` fills them.
  void AllocVoidData(int size);
  // Copies what fits of n bytes behind those already saved, and adds as many to the length.
  void SaveDataIntoVoidData(const void* data, int n);
  // As `SetVoidData`, but the block stays the caller's and must outlive its sending.
  void BorrowVoidData(const void* data, int length);

  // Reading a message. Pointers and references stay valid until the message changes.

  LongData GetLongData() const { return longs_; }
  DoubleData GetDoubleData() const { return doubles_; }
  StringData GetStringData() const { return strings_; }
  StructData GetStructData() const { return structs_; }
  LongData& GetLongDataRef() { return longs_; }
  DoubleData& GetDoubleDataRef() { return doubles_; }
  std::string GetSingleString() const { return strings_.GetSingleString(); }

  std::vector<LongData> GetLongArray() const { return longArrays_; }
  std::vector<DoubleData> GetDoubleArray() const { return doubleArrays_; }
  std::vector<StringData> GetStringArray() const { return stringArrays_; }
  std::vector<LongData>& GetLongArrayRef() { return longArrays_; }
  std::vector<DoubleData>& GetDoubleArrayRef() { return doubleArrays_; }
  std::vector<StringData>& GetStringArrayRef() { return stringArrays_; }

  // The binary string, or null. A received one has one byte more than its length: see `ParseBuf`.
  char* GetBinaryData() const { return binary_.data(); }
  // The length of what `GetBinaryData` returns, without that byte.
  int BinaryLength() const { return binary_.held() ? binaryLength_ : 0; }
  // NUL-terminated, or null when there is none.
  kova::WideUnit* GetwStringData() const;
  // The void data, or null, and its length.
  void* GetVoidData(int& length) const;
  // Hands the void data over without a copy; the message has none then.
  kova::VoidData TakeVoidData() { return std::move(voidData_); }

  // The same slots without a copy.
  const LongData& Longs() const { return longs_; }
  const DoubleData& Doubles() const { return doubles_; }
  const StringData& Strings() const { return strings_; }
  const StructData& Structs() const { return structs_; }
  const std::vector<LongData>& LongArrays() const { return longArrays_; }
  const std::vector<DoubleData>& DoubleArrays() const { return doubleArrays_; }
  const std::vector<StringData>& StringArrays() const { return stringArrays_; }
  // The first value of a slot; 0, 0.0 or "" when it is empty.
  int FirstLong() const;
  double FirstDouble() const;
  const char* FirstString() const;

  // Serialising.

  // Builds the send buffer. 0, or 8 when there is no memory for it, when it would exceed 2^31 - 1 bytes, or when an
  // earlier setter found no memory; there is no send buffer then. (The name is spelt so: sic.)
  int ContructSendData();
  // The send buffer and its length; null before it was built and after it was released, and null with a length of 0
  // when `BuildPieces` has left the void data out of it. After `ParseBuf` without a send buffer the length is that of
  // the parsed message.
  char* GetSendBuf(int& length) const;
  // Builds the same bytes as `ContructSendData`, but leaves the void data where it lies. The head takes the send
  // buffer's place; its first field tells the length of both pieces together.
  kova::WirePieces BuildPieces();

  // Rebuilds a message from a received buffer: values are appended to the scalar lists and to the arrays, the binary
  // string, the wide string and the void data are replaced. The bound is the buffer's own first field. A field that
  // does not fit, or a negative count, ends the parse; what was parsed stays. 0, or 8 when memory ran out.
  //
  // Deliberate: B + 1 bytes of the binary string are copied, the last one being the first byte of the field behind it
  // (0 when it is not there), so that the copy is terminated only when that byte is 0.
  int ParseBuf(void* buffer);
  // The same with the bound from the transport: nothing beyond `available` bytes is read.
  int ParseBuf(const void* buffer, int available);
  // The same for a buffer of the message's whole length of which `arrived` bytes are the sender's; the rest must be
  // zeros and reads as such, but a list ends at its first text, record or list that would be made of the rest alone.
  // The block is kept: the void data stays in place inside it, without a copy.
  int AdoptReceived(kova::Block&& block, int arrived);

  // Clearing.

  void CleanUpLongData() { longs_.CleanUp(); }
  void CleanUpDoubleData() { doubles_.CleanUp(); }
  void CleanUpStringData() { strings_.CleanUp(); }
  void CleanUpStructData() { structs_.CleanUp(); }
  // Deliberate: the wide string stays; only `CleanUp` releases it.
  void CleanUpwStringData() {}
  // Empties all lists, releases the void data and forgets the binary string.
  void CleanUpAllData();
  // Releases the send buffer and the wide string too. Command and error code stay.
  void CleanUp();

 private:
  template <typename Change>
  void guarded(Change change);
  void holdWide(const void* units, std::size_t count);

  int outgoingBinaryLength() const { return binaryIsOutgoing_ && binary_.held() ? binaryLength_ : 0; }
  int outgoingVoidLength() const { return voidData_.data() != nullptr ? voidData_.length() : 0; }
  std::size_t wideUnitCount() const;
  std::int64_t headLength(std::size_t wideUnits) const;
  // Writes every field but the void data's bytes into the send buffer, which has room for these on request. Returns the
  // place behind them, or null when the message cannot be serialised; there is no send buffer then.
  char* writeHead(bool withVoidData);

  // With an `owner`, the void data stays inside it and the message keeps it.
  int parse(const char* buffer, std::int64_t available, std::int64_t arrived, kova::Block* owner);
  // Each is false when the parse ends here: the bytes ended, or `result` became 8 for want of memory.
  bool parseHeader(kova::ByteReader& reader);
  bool parseBinary(kova::ByteReader& reader, int& result);
  bool parseWide(kova::ByteReader& reader, int& result);
  void parseVoidData(kova::ByteReader& reader, kova::Block* owner, int& result);

  kova::HeldBytes sendBuffer_;
  std::int32_t sendLength_ = 0;
  std::int32_t binaryLength_ = 0;
  bool binaryIsOutgoing_ = false;  // Only a binary string that was set here is sent again, not a received one.
  bool outOfMemory_ = false;
  kova::VoidData voidData_;
  CommandAction action_ = CommandAction::kNone;
  std::int32_t errorCode_ = 0;
  LongData longs_;
  DoubleData doubles_;
  StringData strings_;
  kova::HeldBytes wide_;
  kova::HeldBytes binary_;
  std::vector<LongData> longArrays_;
  std::vector<DoubleData> doubleArrays_;
  std::vector<StringData> stringArrays_;
  StructData structs_;
};

#endif
