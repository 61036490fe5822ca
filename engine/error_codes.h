// The reference engine's error codes. They travel in the reply's error code and reach the caller unchanged.
#ifndef KOVADX_ENGINE_ERROR_CODES_H
#define KOVADX_ENGINE_ERROR_CODES_H

namespace kova::engine {

enum class ErrorCode : int {
#define KOVA_ENGINE_ERROR(code, name, advice) k##name = (code),
#include "engine/error_codes.def"
#undef KOVA_ENGINE_ERROR
};

// The name ("IndexOutOfRange") and the advice for a code; "" for a number that is no code of the engine. Static texts.
const char* errorName(int code);
const char* errorAdvice(int code);

}  // namespace kova::engine

#endif
