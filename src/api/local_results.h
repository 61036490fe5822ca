// How results are handed out.
#ifndef KOVADX_API_LOCAL_RESULTS_H
#define KOVADX_API_LOCAL_RESULTS_H

#include "api/guard.h"

namespace kova {

// Stores a result, unless the caller wants none, and gives it back.
template <class Value>
Value StoreAt(Value* place, Value value) {
  if (place) *place = value;
  return value;
}

// The text that the body stores in a block of malloc; null when its code is not 0. `*errorCode` receives the code.
template <class Body>
char* TextOf(int* errorCode, Body body) {
  char* text = nullptr;
  StoreAt(errorCode, Guarded([&] { return body(&text); }));
  return text;
}

}  // namespace kova

#endif
