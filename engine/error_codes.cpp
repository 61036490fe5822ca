#include "engine/error_codes.h"

namespace kova::engine {

const char* errorName(int code) {
  switch (code) {
#define KOVA_ENGINE_ERROR(number, name, advice) \
  case number:                                  \
    return #name;
#include "engine/error_codes.def"
#undef KOVA_ENGINE_ERROR
    default:
      return "";
  }
}

const char* errorAdvice(int code) {
  switch (code) {
#define KOVA_ENGINE_ERROR(number, name, advice) \
  case number:                                  \
    return advice;
#include "engine/error_codes.def"
#undef KOVA_ENGINE_ERROR
    default:
      return "";
  }
}

}  // namespace kova::engine
