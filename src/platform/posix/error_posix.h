// errno in the seam's language.
#ifndef KOVADX_PLATFORM_POSIX_ERROR_POSIX_H
#define KOVADX_PLATFORM_POSIX_ERROR_POSIX_H

#include <new>

#include "platform/os/error.h"

namespace kova::os {

// Numbers that this backend alone gives.
constexpr Error kInvalidParameter = 87;
constexpr Error kInvalidName = 123;
constexpr Error kPossibleDeadlock = 1131;

// The Windows number of an errno; 31 (general failure) for one that the table does not know, 0 for 0.
Error errorOfErrno(int number);

// The same for a failed call of a stream socket, for which Windows has numbers of its own (10000 and above).
Error socketErrorOfErrno(int number);

// The Windows number of this thread's errno.
Error lastError();

// The body's result, or 8 when it finds no memory: the seam's language is error numbers.
template <class Body>
Error orNoMemory(Body body) {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return kNotEnoughMemory;
  }
}

}  // namespace kova::os

#endif
