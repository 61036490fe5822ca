// Where the exported functions put what comes back: one small type for each kind of result.
//
// `take` may throw std::bad_alloc. A result is taken only from the reply of a call that succeeded, and each of them
// stores all or, when it throws, nothing. A null place for a result drops it. What a reply does not hold is 0, 0.0, an
// empty text or an empty list, unless said otherwise. The objects hold pointers of the caller's and live as long as the
// call.
#ifndef KOVADX_API_CALL_RESULTS_H
#define KOVADX_API_CALL_RESULTS_H

#include "message/CleXDSmb.h"

namespace kova {

struct StringList;

// ---- Numbers.

// The first integer.
struct IntoLong {
  int* place;
  void take(const CleXDSmb& reply) const;
};

// The first three integers.
struct IntoLongs {
  int* places[3];
  void take(const CleXDSmb& reply) const;
};

// The first double.
struct IntoDouble {
  double* place;
  void take(const CleXDSmb& reply) const;
};

// The first two doubles.
struct IntoDoublePair {
  double* first;
  double* second;
  void take(const CleXDSmb& reply) const;
};

// The first three doubles; the place of each that is not there stays as it was.
struct IntoDoubles {
  double* places[3];
  void take(const CleXDSmb& reply) const;
};

// ---- Texts.

// The first three texts, in buffers of 9 bytes: at most 8 bytes and NUL. The buffer of each that is not there stays as
// it was.
struct IntoShortTexts {
  char* buffers[3];
  void take(const CleXDSmb& reply) const;
};

// The first text, in a block of the caller's own.
struct IntoText {
  char** place;
  void take(const CleXDSmb& reply) const;
};

// The first two texts, each in a block of the caller's own.
struct IntoTextPair {
  char** first;
  char** second;
  void take(const CleXDSmb& reply) const;
};

// The first text, in the block that all text-returning functions share. `drop` is what a failed call does.
struct IntoSharedText {
  char** place;
  void take(const CleXDSmb& reply) const;
  void drop() const;
};

// The wide text, in the one block of its kind.
struct IntoWideText {
  const unsigned short** place;
  void take(const CleXDSmb& reply) const;
};

// ---- Lists in memory of the caller's own. Of an empty list only the count is stored, and nothing is allocated.

// All texts.
struct IntoTexts {
  char*** texts;
  int* count;
  void take(const CleXDSmb& reply) const;
};

// All names: the texts, or, where there are none, those of the first list of texts.
struct IntoNames {
  char*** names;
  int* count;
  void take(const CleXDSmb& reply) const;
};

// As many texts as the first integer says, as far as they are there.
struct IntoCountedTexts {
  char*** texts;
  int* count;
  void take(const CleXDSmb& reply) const;
};

// Value labels of numbers: the doubles and the texts. Their count is what the reply says, as far as it has both.
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

// A multiple-response set: its label and its counted value are the first two texts, its variables' names are the
// others, and how it is coded is the first integer.
struct IntoResponseSet {
  char** label;
  int* codeAs;
  char** countedValue;
  char*** names;
  int* count;
  void take(const CleXDSmb& reply) const;
};

// An image: the bytes of the binary string, as many as the first integer says and as are there, with a NUL behind them,
// and its type, the first text: null when that is empty.
struct IntoImage {
  char** image;
  int* size;
  char** type;
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

// The first text, shared as IntoSharedText says.
template <>
struct Returned<const char*> {
  const char** value;
  void take(const CleXDSmb& reply) const;
  void drop() const;
};

// All texts, as a list that the library keeps until RemoveStringList.
template <>
struct Returned<StringList*> {
  StringList** value;
  void take(const CleXDSmb& reply) const;
  void drop() const {}
};

}  // namespace kova

#endif
