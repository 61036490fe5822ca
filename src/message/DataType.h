// The base of the four kinds of item that a message carries: a list of values and its image in bytes.
//
// An item is a value: it is owned by the message or by the caller that fills it, copies are deep, and one thread uses
// it at a time. Operations that grow a list may throw std::bad_alloc, as growing any container may; the operations
// that make or read an image do not.
#ifndef KOVADX_MESSAGE_DATATYPE_H
#define KOVADX_MESSAGE_DATATYPE_H

#include <cstdint>

#include "message/held_bytes.h"

class KOVADX_API DataType {
 public:
  // Builds the list's image and returns it with its length. The item owns the image until the next call or its own
  // end. Null and 0 when there is no memory for it or when it would exceed 2^31 - 1 bytes.
  virtual void* ConstructData(int& length) = 0;
  // Reads one image from `source`, appends its values to the list and stores the number of bytes read. The caller
  // vouches for the image: nothing here knows where it ends.
  virtual void ParseData(const void* source, int& consumed) = 0;
  // The length that the image would have, without building it.
  virtual int DataLength() = 0;
  // The number of values in the list.
  virtual int Size() const = 0;

  virtual ~DataType() = default;

 protected:
  DataType() = default;
  DataType(const DataType&) = default;
  DataType& operator=(const DataType&) = default;
  DataType(DataType&&) noexcept = default;
  DataType& operator=(DataType&&) noexcept = default;

  kova::HeldBytes image_;
  std::int32_t imageLength_ = 0;
};

#endif
