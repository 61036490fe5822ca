// Error codes with their names and advice. They travel in a reply's error code, or stand for what the transport met on
// its way, and reach the caller unchanged.
#ifndef KOVADX_MESSAGE_ERROR_CODES_H
#define KOVADX_MESSAGE_ERROR_CODES_H

#include "export.h"

namespace kova {

// The known codes. A code that was received may be any other number.
enum class ErrorCode : int {
#define KOVA_ERROR(code, name, happened, advice) k##name = (code),
#include "message/error_codes.def"
#undef KOVA_ERROR
};

// The name ("IndexOutOfRange"), what happened and the advice, each on one line; "" for a number that is not known.
// Static texts.
KOVADX_API const char* errorName(int code);
KOVADX_API const char* errorMeaning(int code);
KOVADX_API const char* errorAdvice(int code);

}  // namespace kova

#endif
