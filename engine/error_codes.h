// The reference engine's error codes are rows of the one table that the library has: kova::ErrorCode, errorName,
// errorMeaning and errorAdvice.
#ifndef KOVADX_ENGINE_ERROR_CODES_H
#define KOVADX_ENGINE_ERROR_CODES_H

#include "message/error_codes.h"

#endif
