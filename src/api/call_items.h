// What the exported functions send and where they put what comes back: one small type for each kind of item.
//
// An argument has `append`, a result has `take`; both may throw std::bad_alloc. A result is taken only from the reply
// of a call that succeeded, and each of them stores all or, when it throws, nothing. A null place for a result drops
// it. The objects hold pointers of the caller's and live as long as the call.
#ifndef KOVADX_API_CALL_ITEMS_H
#define KOVADX_API_CALL_ITEMS_H

#include "message/CleXDSmb.h"

namespace kova {

// ---- Arguments.

struct Long {
  int value;
  void append(CleXDSmb& request) const { request.SetLong(value); }
};

// The first `length` bytes of a text, whatever they are; a negative length counts as 0.
struct Bytes {
  const char* text;
  int length;
  void append(CleXDSmb& request) const { request.SetString(text, length); }
};

// ---- Results through pointers.

// The first integer; 0 when there is none.
struct IntoLong {
  int* place;
  void take(const CleXDSmb& reply) const;
};

// The first three integers; 0 for each that is not there.
struct IntoLongs {
  int* places[3];
  void take(const CleXDSmb& reply) const;
};

// The first double; 0.0 when there is none.
struct IntoDouble {
  double* place;
  void take(const CleXDSmb& reply) const;
};

// The first three doubles; the place of each that is not there stays as it was.
struct IntoDoubles {
  double* places[3];
  void take(const CleXDSmb& reply) const;
};

// The first three texts, in buffers of 9 bytes: at most 8 bytes and NUL. The buffer of each that is not there stays as
// it was.
struct IntoShortTexts {
  char* buffers[3];
  void take(const CleXDSmb& reply) const;
};

// Value labels of numbers: the doubles and the texts. Their count is what the reply says, as far as it has both; with
// none nothing is allocated and no list is stored.
struct IntoNumberLabels {
  double** values;
  char*** labels;
  int* count;
  void take(const CleXDSmb& reply) const;
};

// Value labels of texts: the first and the second list of texts, counted likewise.
struct IntoTextLabels {
  char*** values;
  char*** labels;
  int* count;
  void take(const CleXDSmb& reply) const;
};

// ---- Results as return values. `drop` is what a failed call does.

template <class Result>
struct Returned;

template <>
struct Returned<int> {
  int* value;
  void take(const CleXDSmb& reply) const { *value = reply.FirstLong(); }
  void drop() const {}
};

// The first text, kept in the block that all text-returning functions share.
template <>
struct Returned<const char*> {
  const char** value;
  void take(const CleXDSmb& reply) const;
  void drop() const;
};

}  // namespace kova

#endif
