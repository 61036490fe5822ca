// What the exported functions send: one small type for each kind of argument.
//
// `append` adds the argument's items to a request and may throw std::bad_alloc. The objects hold pointers of the
// caller's and live as long as the call. A null text or list adds no item at all, so that later ones move up a place.
#ifndef KOVADX_API_CALL_ARGUMENTS_H
#define KOVADX_API_CALL_ARGUMENTS_H

#include <vector>

#include "message/CleXDSmb.h"

namespace kova {

// An integer, or a flag as it was passed.
struct Long {
  int value;
  void append(CleXDSmb& request) const { request.SetLong(value); }
};

struct Double {
  double value;
  void append(CleXDSmb& request) const { request.SetDouble(value); }
};

// A text up to its NUL.
struct Text {
  const char* text;
  void append(CleXDSmb& request) const { request.SetString(text); }
};

// The first `length` bytes of a text, whatever they are; a negative length counts as 0.
struct Bytes {
  const char* text;
  int length;
  void append(CleXDSmb& request) const { request.SetString(text, length); }
};

// `count` texts as one list; a negative count counts as 0, and a null text within the list is left out.
struct TextList {
  const char* const* texts;
  int count;
  void append(CleXDSmb& request) const;
};

// `count` texts or integers, each an item of its own; a negative count counts as 0.
struct Texts {
  const char* const* texts;
  int count;
  void append(CleXDSmb& request) const;
};
struct Longs {
  const int* values;
  int count;
  void append(CleXDSmb& request) const;
};

// `count` integers as one list; a negative count counts as 0.
struct LongList {
  const int* values;
  int count;
  void append(CleXDSmb& request) const;
};

// `size` bytes as the raw block, sent from where they lie; a null block or a negative size sends none.
struct RawBlock {
  const void* block;
  int size;
  void append(CleXDSmb& request) const { request.BorrowVoidData(block, size); }
};

// Changes of cells, each a record.
struct Cells {
  const std::vector<dataSet>& cells;
  void append(CleXDSmb& request) const { request.SetStruct(cells); }
};

// What names a pivot table in every call about it: three texts and a flag, 0 or 1.
struct TableKey {
  const char* key1;
  const char* key2;
  const char* key3;
  int flag;
  void append(CleXDSmb& request) const;
};

// What names a dimension of a table: a text, two integers and two flags, 0 or 1.
struct DimensionKey {
  const char* key;
  int int1;
  int int2;
  int flag1;
  int flag2;
  void append(CleXDSmb& request) const;
};

// 1 for a flag that is not 0. Callers in other languages may pass any byte for a C bool, and a compiler that trusts
// every bool to be 0 or 1 would send that byte.
int NormalisedFlag(bool flag);

}  // namespace kova

#endif
