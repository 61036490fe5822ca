// What the error codes are called and what may be done about them. Local functions.
#include "api/kovadx_ext.h"
#include "message/error_codes.h"

const char* KovaErrorName(int code) { return kova::errorName(code); }

const char* KovaErrorAdvice(int code) { return kova::errorAdvice(code); }
